// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/ServerMessages.h"

#include "bidi/records/RecordWriter.h"
#include "bidi/text/StandardStreams.h"

#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace torka::filter {

namespace {

// The server cuts a line at 2,047 bytes and takes the rest for a message of its own, whatever its level. A
// text from outside could so change the queue's description ("PPD:"). It keeps 1,023 bytes of a message as
// the state of the job. Bytes of a text in a line:
constexpr std::size_t longestText = 900;

// All filters of a job and its backend write into one pipe, and some write a line in several pieces
// (pdftops of cups-filters). Behind such a piece the level of a message would be text in the middle of a
// line. The server ignores an empty line.
constexpr char freshLine = '\n';

void tellLine(std::string_view kind, std::string_view text, std::string_view end) {
    std::string line(kind);
    for (const char c : text) {
        line += static_cast<unsigned char>(c) < ' ' || c == '\x7f' ? ' ' : c;
    }
    standardStreams().Error(line.append(end) += '\n');
}

// The beginning of the text that fits in a line. Ends between two characters where the text is UTF-8.
std::string_view beginning(std::string_view text) {
    constexpr std::size_t longestRest = 3; // bytes of a character behind its first
    if (text.size() <= longestText) {
        return text;
    }
    std::size_t end = longestText;
    while (end > longestText - longestRest && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80) {
        --end;
    }
    return text.substr(0, end);
}

// One line that the job and its queue keep as their state. The whole of a longer text goes into the log.
void tellState(std::string_view kind, std::string_view text) {
    const std::string_view first = beginning(text);
    const bool isWhole = first.size() == text.size();
    if (!isWhole) {
        tellDebug(text);
    }
    tellLine(freshLine + std::string(kind), first, isWhole ? "" : " ...");
}

} // namespace

// The server may replace a message of the level "ERROR" with "Filter failed" (see waitUntilRead). It keeps a
// message of a more severe level.
void tellError(std::string_view text) { tellState("ERROR: ", text); }
void tellWarning(std::string_view text) { tellState("WARNING: ", text); }

void tellDebug(std::string_view text) {
    do {
        const std::string_view first = beginning(text);
        tellLine("DEBUG: ", first, "");
        text.remove_prefix(first.size());
    } while (!text.empty());
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
        standardStreams().Error(freshLine + message);
    }
    return isAllTaken;
}

} // namespace torka::filter
