// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/ServerMessages.h"

#include "bidi/records/RecordWriter.h"
#include "bidi/text/StandardStreams.h"

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace torka::filter {

namespace {

void tell(std::string_view kind, std::string_view text) {
    std::string line(kind);
    for (const char c : text) {
        line += static_cast<unsigned char>(c) < ' ' || c == '\x7f' ? ' ' : c;
    }
    line += '\n';
    standardStreams().Error(line);
}

} // namespace

// The server may replace a message of the level "ERROR" with "Filter failed" (see waitUntilRead). It keeps a
// message of a more severe level.
void tellError(std::string_view text) { tell("ERROR: ", text); }
void tellDebug(std::string_view text) { tell("DEBUG: ", text); }

void tellWarning(std::string_view text) {
    constexpr std::size_t longest = 900; // bytes
    if (text.size() <= longest) {
        tell("WARNING: ", text);
        return;
    }
    std::size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80) {
        --end;
    }
    tell("WARNING: ", std::string(text.substr(0, end)) + " ...");
}

void waitUntilRead() {
    constexpr useconds_t interval = 5000;
    constexpr int looks = 400; // 2 seconds in all
    struct stat facts {};
    int waiting = 0;
    for (int i = 0; i < looks && ::fstat(STDERR_FILENO, &facts) == 0 && S_ISFIFO(facts.st_mode) &&
                    ::ioctl(STDERR_FILENO, FIONREAD, &waiting) == 0 && waiting > 0;
         ++i) {
        ::usleep(interval);
    }
}

bool recordMessages(const std::vector<NamedPayload>& records, std::vector<std::string>& messages,
                    const std::vector<std::string>& emptied) {
    PieceGatherer lines("PPD:", "\n", [&](std::string_view line) {
        if (line != "PPD:\n") {
            messages.emplace_back(line);
        }
    });
    bool isAllTaken = true;
    for (const auto& [name, payload] : records) {
        // A record begins with its chunk 0. An empty chunk 0 makes the record absent until the others are
        // sent.
        std::string first;
        bool isFirst = true;
        isAllTaken = encodeRecord(name, payload.data(), payload.size(),
                                  [&](std::string_view chunk, std::string_view text) {
                                      const std::string pair =
                                          " " + std::string(chunk) + "=" +
                                          (text.empty() ? std::string("\"\"") : std::string(text));
                                      if (!isFirst) {
                                          lines.Add(pair);
                                          return;
                                      }
                                      isFirst = false;
                                      first = pair;
                                      lines.Add(" " + std::string(chunk) + "=\"\"");
                                      lines.Flush();
                                  }) &&
                     isAllTaken;
        if (!first.empty()) {
            lines.Flush();
            lines.Add(first);
        }
        lines.Flush();
    }
    for (const std::string& chunk : emptied) {
        lines.Add(" " + chunk + "=\"\"");
    }
    lines.Flush();
    return isAllTaken;
}

bool sendRecords(const std::vector<NamedPayload>& records, const std::vector<std::string>& emptied) {
    std::vector<std::string> messages;
    const bool isAllTaken = recordMessages(records, messages, emptied);
    for (const std::string& message : messages) {
        standardStreams().Error(message);
    }
    return isAllTaken;
}

} // namespace torka::filter
