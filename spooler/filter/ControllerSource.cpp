#include "spooler/filter/ControllerSource.h"

#include "bidi/BidiFilePaths.h"
#include "bidi/RecordEncoding.h"
#include "bidi/RecordWriter.h"
#include "platform/System.h"
#include "platform/TextEncoding.h"

#include <map>

namespace torka::filter {

namespace {

constexpr std::string_view narrowSuffix = ".narrow";

// Adds the folder's records, by name; those of a later call stand for earlier ones.
void readRecords(const std::filesystem::path& folder, std::map<std::string, std::string>& records) {
    std::error_code error;
    for (std::filesystem::directory_iterator file(folder, error), end; !error && file != end;
         file.increment(error)) {
        std::string name = file->path().filename().string();
        const bool isNarrow = name.ends_with(narrowSuffix);
        if (isNarrow) {
            name.resize(name.size() - narrowSuffix.size());
        }
        std::string text;
        if (!isWritableRecordName(name) ||
            platform::system().ReadFile(file->path(), maximumRecordSize, text)) {
            continue;
        }
        records[name] = isNarrow ? text : std::string(payloadFromWide(wideFromUtf8(text)));
    }
}

std::vector<ControllerRecord> recordsOf(const std::filesystem::path& place, std::string_view kind,
                                        std::string_view language) {
    std::map<std::string, std::string> found;
    readRecords(place / kind, found);
    if (!language.empty()) {
        readRecords(place / std::string(kind).append(".").append(language), found);
    }
    std::vector<ControllerRecord> records;
    for (auto& [name, payload] : found) {
        records.push_back({name, std::move(payload)});
    }
    return records;
}

} // namespace

ControllerSource::~ControllerSource() = default;

ControllerAnswer FolderSource::Ask(std::string_view address, const std::vector<RequestLine>& /*request*/,
                                   std::string_view language) {
    ControllerAnswer answer;
    std::error_code error;
    if (!isFileName(address) || !std::filesystem::is_directory(folder / address, error)) {
        return answer;
    }
    answer.isReached = true;
    answer.dataRecords = recordsOf(folder / address, "data", language);
    answer.ppdRecords = recordsOf(folder / address, "ppd", language);
    return answer;
}

} // namespace torka::filter
