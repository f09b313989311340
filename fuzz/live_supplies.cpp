// SPDX-License-Identifier: Apache-2.0
// Makes records of arbitrary attributes for supplies and trays. The records can be read again, entry for
// entry.
//
// Input: each line is a value, and its first character chooses the attribute.

#include "bidi/records/RecordEncoding.h"
#include "bidi/serverdata/ServerRecords.h"
#include "spooler/filter/LiveRecords.h"
#include "spooler/filter/SupplyText.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using namespace torka;

void take(std::string_view line, PrinterFacts& facts) {
    const std::string value(line.substr(1));
    switch (line[0]) {
    case 'n':
        facts.markerNames.push_back(value);
        break;
    case 't':
        facts.markerTypes.push_back(value);
        break;
    case 'c':
        facts.markerColors.push_back(value);
        break;
    case 'l':
        facts.markerLevels.push_back(filter::SupplyText(value).Number("level"));
        break;
    case 's':
        facts.supplies.push_back(value);
        break;
    case 'd':
        facts.supplyDescriptions.push_back(value);
        break;
    case 'i':
        facts.inputTrays.push_back(value);
        break;
    case 'm':
        facts.mediaReady.push_back({value, value, value, 21000, 29700});
        break;
    default:
        facts.name = value;
    }
}

void check(bool isTrue) {
    if (!isTrue) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    PrinterFacts facts;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (!line.empty()) {
            take(line, facts);
        }
    }
    const filter::QueueChoices choices{
        {{"Tray1", "Tray 1"}}, {{"Plain", "Plain"}}, {{{"A4", "A4"}, 595, 842}}};
    for (const filter::ControllerRecord& record : filter::liveRecords(facts, {}, choices)) {
        const std::wstring text = wideFromPayload(record.payload);
        if (record.name == "TonerInfo") {
            const auto toners = readToners(text);
            check(toners && toners->size() == std::min<std::size_t>(std::max(facts.markerNames.size(),
                                                                             facts.markerNames.empty()
                                                                                 ? facts.supplies.size()
                                                                                 : std::size_t{0}),
                                                                    1000));
        } else if (record.name == "TrayInfo") {
            const auto trays = readTrays(text);
            check(trays && !trays->empty());
        } else {
            const auto pairs = readServerInfo(text);
            check(pairs && pairs->size() == 1);
        }
    }
    return 0;
}
