// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/ControllerSource.h"

#include "bidi/commands/BidiFilePaths.h"
#include "bidi/records/RecordEncoding.h"
#include "bidi/records/RecordWriter.h"
#include "platform/NetServices.h"
#include "platform/System.h"
#include "platform/TextEncoding.h"
#include "spooler/filter/PrivateFolder.h"
#include "spooler/filter/ServerMessages.h"

#include <algorithm>
#include <map>

namespace torka::filter {

namespace {

constexpr std::string_view narrowSuffix = ".narrow";

// Adds the folder's records by name. A later record replaces an earlier one of its name.
void readRecords(const std::filesystem::path& folder, std::map<std::string, std::string>& records) {
    for (const std::string& file : namesIn(folder)) {
        std::string name = file;
        const bool isNarrow = name.ends_with(narrowSuffix);
        if (isNarrow) {
            name.resize(name.size() - narrowSuffix.size());
        }
        if (!isWritableRecordName(name)) {
            continue;
        }
        std::string text;
        if (const std::error_code error =
                platform::system().ReadFile(folder / file, maximumRecordSize, text)) {
            tellDebug("the record " + file + " cannot be read: " + error.message());
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
    records.reserve(found.size());
    for (auto& [name, payload] : found) {
        records.push_back({name, std::move(payload)});
    }
    return records;
}

} // namespace

ControllerSource::~ControllerSource() = default;

// Looks for the folder of the address as given, then of the same number in its plain form, then of the number
// that the request carries.
std::filesystem::path FolderSource::PlaceOf(std::string_view address,
                                            const std::vector<RequestLine>& request) const {
    const auto line = std::ranges::find(request, "address", &RequestLine::first);
    HostAddress number;
    std::vector<std::string> names{std::string(address)};
    for (const std::string_view text :
         {address, line == request.end() ? "" : std::string_view(line->second)}) {
        if (parseNumericAddress(text, number)) {
            names.push_back(addressText(number));
        }
    }
    for (const std::string& name : names) {
        std::error_code error;
        if (isFileName(name) && std::filesystem::is_directory(folder / name, error)) {
            return folder / name;
        }
    }
    return {};
}

ControllerAnswer FolderSource::Ask(std::string_view address, const std::vector<RequestLine>& request,
                                   std::string_view language) {
    ControllerAnswer answer;
    const std::filesystem::path place = PlaceOf(address, request);
    if (place.empty()) {
        return answer;
    }
    answer.isReached = true;
    answer.dataRecords = recordsOf(place, "data", language);
    answer.ppdRecords = recordsOf(place, "ppd", language);
    return answer;
}

} // namespace torka::filter
