// SPDX-License-Identifier: Apache-2.0
#include "bidi/records/CPPDMsgHdlr.h"

#include "bidi/commands/BidiFilePaths.h"
#include "bidi/records/RecordReader.h"
#include "bidi/records/RecordWriter.h"
#include "bidi/text/StandardStreams.h"
#include "platform/System.h"

#include <chrono>
#include <cups/ppd.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <unordered_set>

// libcups marks its PPD functions as deprecated and offers no others for a PPD's attributes.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace torka {

namespace {

// The print server renames a PPD to "….ppd.O" before it writes the new one under the old name. For a moment
// the PPD is absent or incomplete.
constexpr int settlingLooks = 40;
constexpr std::chrono::milliseconds settlingInterval{50};
constexpr std::chrono::milliseconds settledAge{100};

struct FileState {
    ino_t file = 0;
    off_t size = 0;
    std::chrono::nanoseconds written{0}; // since 1970
    bool operator==(const FileState&) const = default;
};

std::optional<FileState> stateOf(const std::string& path) {
    struct stat facts {};
    if (::stat(path.c_str(), &facts) != 0) {
        return std::nullopt;
    }
    return FileState{facts.st_ino, facts.st_size,
                     std::chrono::seconds(facts.st_mtim.tv_sec) +
                         std::chrono::nanoseconds(facts.st_mtim.tv_nsec)};
}

bool isBeingReplaced(const std::string& path, const std::optional<FileState>& state) {
    if (!stateOf(resolvedPPDPath(path) + ".O")) {
        return false;
    }
    const auto now = platform::system().CalendarTime().time_since_epoch();
    return !state || (state->written <= now && now - state->written < settledAge);
}

} // namespace

bool ppdxWriteData(std::string_view recordName, const void* data, std::size_t size) {
    PieceGatherer lines("PPD:", "\n", [](std::string_view line) { standardStreams().Error(line); });
    std::string pair;
    const bool taken =
        encodeRecord(recordName, data, size, [&](std::string_view name, std::string_view text) {
            pair.assign(" ").append(name).append("=").append(text.empty() ? "\"\"" : text);
            lines.Add(pair);
        });
    if (taken) {
        lines.Flush();
    }
    return taken;
}

RecordBlock ppdxReadData(ppd_file_t* ppd, std::string_view recordName, std::size_t* size) {
    std::size_t payloadSize = 0;
    RecordBlock payload;
    ChunkName chunk(recordName);
    const ppd_attr_t* attribute =
        ppd && chunk.IsUsable() ? ppdFindAttr(ppd, chunk.Text().c_str(), nullptr) : nullptr;
    if (attribute) {
        RecordReader reader;
        // The decoder skips characters that are not Base64, quotes included.
        for (std::size_t number = 1; attribute && attribute->value && reader.Add(attribute->value);
             ++number) {
            attribute = chunk.SetNumber(number) ? ppdFindAttr(ppd, chunk.Text().c_str(), nullptr) : nullptr;
        }
        payload = reader.Finish(payloadSize);
    }
    if (size) {
        *size = payloadSize;
    }
    return payload;
}

std::vector<std::string> ppdxRecordNames(ppd_file_t* ppd) {
    std::vector<std::string> names;
    std::unordered_set<std::string_view> seen;
    for (int i = 0; ppd && i < ppd->num_attrs; ++i) {
        std::string_view name = ppd->attrs[i]->name;
        if (name.size() > 4 && name.ends_with("0000") && name.starts_with("QV")) {
            name.remove_suffix(4);
            if (seen.insert(name).second) {
                names.emplace_back(name);
            }
        }
    }
    return names;
}

CPPDMsgHdlr::CPPDMsgHdlr(std::string path, std::string_view messageName)
    : ppdPath(std::move(path))
    , recordName("QV" + std::string(messageName)) {}

int CPPDMsgHdlr::Commit(std::wstring_view text) const {
    const std::string_view payload = payloadFromWide(text);
    if (payload.empty()) {
        return -1;
    }
    ppdxWriteData(recordName, payload.data(), payload.size());
    return static_cast<int>(recordName.size());
}

int CPPDMsgHdlr::Commit(std::string_view text) const {
    if (text.empty()) {
        return -1;
    }
    ppdxWriteData(recordName, text.data(), text.size());
    return static_cast<int>(recordName.size());
}

void CPPDMsgHdlr::Discard() {
    wideData.clear();
    narrowData.clear();
}

RecordBlock CPPDMsgHdlr::Read(std::size_t& size) const {
    size = 0;
    RecordBlock payload;
    for (int look = 0; !ppdPath.empty() && look < settlingLooks; ++look) {
        const std::optional<FileState> before = stateOf(ppdPath);
        const bool isLast = look + 1 == settlingLooks || !hasSystem();
        if (isLast || !isBeingReplaced(ppdPath, before)) {
            const std::unique_ptr<ppd_file_t, void (*)(ppd_file_t*)> ppd(ppdOpenFile(ppdPath.c_str()),
                                                                         &ppdClose);
            payload = ppdxReadData(ppd.get(), recordName, &size);
            if (isLast || stateOf(ppdPath) == before) {
                break;
            }
        }
        if (!system().Sleep(settlingInterval)) {
            break;
        }
    }
    return payload;
}

const std::wstring& CPPDMsgHdlr::GetStringData() {
    std::size_t size = 0;
    const RecordBlock payload = Read(size);
    wideData = wideFromPayload({payload.get(), size});
    return wideData;
}

const std::string& CPPDMsgHdlr::GetCStringData() {
    std::size_t size = 0;
    const RecordBlock payload = Read(size);
    narrowData.assign(payload ? payload.get() : "", size);
    return narrowData;
}

} // namespace torka
