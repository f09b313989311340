// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/LiveRecords.h"

#include "bidi/JobPropertiesModule.h"
#include "bidi/records/RecordEncoding.h"
#include "bidi/serverdata/ServerDataToBuffer.h"
#include "bidi/text/CBuffer.h"
#include "platform/TextEncoding.h"
#include "spooler/filter/SupplyText.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace torka::filter {

namespace {

constexpr std::size_t maximumEntries = 1000;
constexpr std::size_t maximumText = 255;
constexpr double pointsPerHundredth = 72.0 / 2540.0; // of a millimetre

// Levels as the module defines them.
constexpr std::int32_t unknown = SDM_LEVEL_UNKNOWN;
constexpr std::int32_t unlimited = SDM_LEVEL_UNLIMITED;
constexpr std::int32_t some = SDM_LEVEL_SOME;

// Outlives the module's structures, which point into it. A blank replaces a character that could end a field
// or a line.
using WideText = std::wstring;

WideText fieldText(std::string_view utf8) {
    WideText text = wideFromUtf8(utf8.substr(0, 4 * maximumText));
    text.resize(std::min(text.size(), maximumText));
    for (wchar_t& c : text) {
        c = c < L' ' || c == L'\x7f' || c == L'@' ? L' ' : c;
    }
    return text;
}

// Turns a keyword such as "stationery-letterhead" into words for people.
WideText shownKeyword(std::string_view keyword) {
    WideText text = fieldText(keyword);
    std::ranges::replace(text, L'-', L' ');
    if (!text.empty() && text[0] >= L'a' && text[0] <= L'z') {
        text[0] = text[0] - L'a' + L'A';
    }
    return text;
}

wchar_t* orNull(WideText& text) { return text.empty() ? nullptr : text.data(); }

std::string_view at(const std::vector<std::string>& texts, std::size_t i) {
    return i < texts.size() ? std::string_view(texts[i]) : std::string_view();
}

// A percentage of the print server. A negative value means "some" for -3, else "not known" or "not
// available".
std::int32_t markerPercent(const std::vector<int>& levels, std::size_t i) {
    const int level = i < levels.size() ? levels[i] : unknown;
    return level >= 0 ? std::min(level, 100) : level == some ? some : unknown;
}

// Converts a level or a capacity of RFC 3805: -1 no restriction, -2 not known, -3 some.
std::int32_t mibNumber(int number) {
    return number >= 0 || number == some ? number : number == -1 ? unlimited : unknown;
}

struct Toner {
    WideText name;
    WideText color;
    std::int32_t level = unknown;
    std::int32_t lowLevel = unknown;
    std::int32_t highLevel = unknown;
    std::int32_t capacity = unknown;
    std::int32_t kind = SDM_SUPPLY_OTHER;
};

// Accepts the print server's words ("toner-cartridge") and those of RFC 3805 ("tonerCartridge").
std::int32_t kindOf(std::string_view type) {
    return type.starts_with("waste")   ? SDM_SUPPLY_WASTE
           : type.starts_with("toner") ? SDM_SUPPLY_TONER
           : type.starts_with("ink")   ? SDM_SUPPLY_INK
                                       : SDM_SUPPLY_OTHER;
}

std::vector<Toner> markers(const PrinterFacts& facts) {
    std::vector<Toner> toners(std::min(facts.markerNames.size(), maximumEntries));
    for (std::size_t i = 0; i < toners.size(); ++i) {
        toners[i].name = fieldText(facts.markerNames[i]);
        const std::string_view color = at(facts.markerColors, i);
        toners[i].color = color.starts_with('#') ? fieldText(color) : WideText();
        toners[i].level = markerPercent(facts.markerLevels, i);
        toners[i].lowLevel = markerPercent(facts.markerLowLevels, i);
        toners[i].highLevel = markerPercent(facts.markerHighLevels, i);
        toners[i].kind = kindOf(at(facts.markerTypes, i));
    }
    return toners;
}

// The colours that printers name. A supply of any other colour has no colour value.
WideText colorOf(std::string_view colorant) {
    struct Named {
        std::string_view name;
        std::wstring_view color;
    };
    constexpr Named known[] = {{"cyan", L"#00ffff"},  {"magenta", L"#ff00ff"}, {"yellow", L"#ffff00"},
                               {"black", L"#000000"}, {"white", L"#ffffff"},   {"red", L"#ff0000"},
                               {"green", L"#00ff00"}, {"blue", L"#0000ff"},    {"gray", L"#808080"}};
    const auto* const found = std::ranges::find(known, colorant, &Named::name);
    return found == std::end(known) ? WideText() : WideText(found->color);
}

Toner tonerOf(const SupplyText& supply, std::string_view description) {
    Toner toner;
    const std::string_view colorant = supply.Text("colorantname");
    toner.name = fieldText(!description.empty() ? description
                           : !colorant.empty()  ? colorant
                                                : supply.Text("type"));
    toner.color = colorOf(colorant);
    toner.kind = kindOf(supply.Text("type"));
    const int level = supply.Number("level");
    const int capacity = supply.Number("maxcapacity");
    const bool isPercent = supply.Text("unit") == "percent";
    toner.level = level < 0 || (capacity <= 0 && !isPercent)
                      ? (level >= 0 ? unknown : mibNumber(level))
                      : static_cast<std::int32_t>(std::min<std::int64_t>(
                            std::int64_t{level} * 100 / (capacity > 0 ? capacity : 100), 100));
    // For a receptacle that fills up, a printer gives the remaining room.
    if (toner.level >= 0 && supply.Text("class") == "receptacleThatIsFilled") {
        toner.level = 100 - toner.level;
        toner.kind = SDM_SUPPLY_WASTE;
    }
    const std::string_view unit = supply.Text("unit");
    toner.capacity = unit == "impressions" || unit == "sheets" ? mibNumber(capacity) : unknown;
    return toner;
}

std::vector<Toner> supplies(const PrinterFacts& facts) {
    std::vector<Toner> toners;
    for (std::size_t i = 0; i < std::min(facts.supplies.size(), maximumEntries); ++i) {
        toners.push_back(tonerOf(SupplyText(facts.supplies[i]), at(facts.supplyDescriptions, i)));
    }
    return toners;
}

struct Tray {
    WideText name;
    WideText key;
    WideText mediaName;
    WideText mediaSize;
    WideText mediaType;
    WideText mediaColor;
    std::int32_t level = unknown;
    std::int32_t capacity = unknown;
};

void nameTray(std::string_view name, const QueueChoices& choices, Tray& tray) {
    tray.name = fieldText(name);
    if (const QueueChoice* slot = choices.InputSlot(name)) {
        tray.key = fieldText(slot->keyword);
    }
}

void loadTray(const LoadedMedia& media, const QueueChoices& choices, Tray& tray) {
    if (const QueueChoice* size =
            choices.PageSize(media.width * pointsPerHundredth, media.height * pointsPerHundredth)) {
        tray.mediaSize = fieldText(size->keyword);
    }
    const QueueChoice* type = choices.MediaType(media.type);
    tray.mediaName = type == nullptr ? shownKeyword(media.type) : fieldText(type->text);
    tray.mediaType = type == nullptr ? WideText() : fieldText(type->keyword);
    tray.mediaColor = shownKeyword(media.color);
}

std::vector<Tray> trays(const PrinterFacts& facts, const QueueChoices& choices) {
    std::vector<Tray> found;
    for (const std::string& text : facts.inputTrays) {
        const SupplyText supply(text);
        Tray& tray = found.emplace_back();
        nameTray(supply.Text("name"), choices, tray);
        tray.level = mibNumber(supply.Number("level"));
        // "No restriction" says nothing about the sheets in the tray.
        tray.level = tray.level == unlimited ? unknown : tray.level;
        tray.capacity = mibNumber(supply.Number("maxcapacity"));
        if (found.size() == maximumEntries) {
            break;
        }
    }
    const bool isNamedByMedia = found.empty();
    const std::size_t loaded = std::min(facts.mediaReady.size(), maximumEntries);
    for (const LoadedMedia& media : std::span(facts.mediaReady).first(loaded)) {
        const auto tray = std::ranges::find_if(found, [&media](const Tray& known) {
            return isSameName(utf8FromWide(known.name), media.source) ||
                   isSameName(utf8FromWide(known.key), media.source);
        });
        if (tray != found.end()) {
            loadTray(media, choices, *tray);
        } else if (isNamedByMedia && !media.source.empty() && found.size() < maximumEntries) {
            nameTray(media.source, choices, found.emplace_back());
            const QueueChoice* slot = choices.InputSlot(media.source);
            found.back().name = slot == nullptr ? shownKeyword(media.source) : fieldText(slot->text);
            loadTray(media, choices, found.back());
        }
    }
    return found;
}

std::vector<Tray> traysOf(const QueueChoices& choices) {
    std::vector<Tray> found;
    for (const QueueChoice& slot : choices.inputSlots) {
        Tray& tray = found.emplace_back();
        tray.name = fieldText(slot.text);
        tray.key = fieldText(slot.keyword);
        if (found.size() == maximumEntries) {
            break;
        }
    }
    return found;
}

void addRecord(std::string_view name, const std::wstring& text, std::vector<ControllerRecord>& records) {
    records.push_back({std::string(name), std::string(payloadFromWide(text))});
}

void addToners(std::vector<Toner> toners, std::vector<ControllerRecord>& records) {
    std::vector<SDMTonerInfo> items;
    items.reserve(toners.size());
    for (Toner& toner : toners) {
        items.push_back({toner.name.data(), toner.level, toner.lowLevel, orNull(toner.color), toner.highLevel,
                         toner.capacity, toner.kind});
    }
    const SDMTonerInfoArray array{items.size(), items.data()};
    addRecord("TonerInfo", TonerInfoToBuffer(&array), records);
}

void addTrays(std::vector<Tray> found, std::vector<ControllerRecord>& records) {
    std::vector<SDMTrayInfo> items;
    items.reserve(found.size());
    for (Tray& tray : found) {
        items.push_back({orNull(tray.name), orNull(tray.key), orNull(tray.mediaName), orNull(tray.mediaSize),
                         orNull(tray.mediaType), orNull(tray.mediaColor), tray.level, tray.capacity});
    }
    const SDMTrayInfoArray array{items.size(), items.data()};
    addRecord("TrayInfo", TrayInfoToBuffer(&array), records);
}

// Each line is the value, ":" and the key. The value must hold no ":", because it ends at the first one.
void addServerInfo(const PrinterFacts& device, const PrinterFacts& queue,
                   std::vector<ControllerRecord>& records) {
    CBuffer buffer;
    const auto add = [&buffer](std::wstring_view key, const std::string& told, const std::string& kept) {
        WideText value = fieldText(told.empty() ? kept : told);
        std::ranges::replace(value, L':', L' ');
        if (!value.empty()) {
            buffer.AddString(value + L":" + WideText(key) + L"\n");
        }
    };
    add(L"ServerName", device.name, queue.name);
    add(L"ServerVersion", device.firmware, queue.firmware);
    add(L"ProductFamily", device.makeAndModel, queue.makeAndModel);
    if (!buffer.GetStringData().empty()) {
        addRecord("ServerInfo", buffer.GetStringData(), records);
    }
}

} // namespace

std::vector<ControllerRecord> liveRecords(const PrinterFacts& device, const PrinterFacts& queue,
                                          const QueueChoices& choices) {
    std::vector<Toner> toners;
    std::vector<Tray> found;
    for (const PrinterFacts* facts : {&device, &queue}) {
        if (toners.empty()) {
            toners = markers(*facts);
        }
        if (toners.empty()) {
            toners = supplies(*facts);
        }
        if (found.empty()) {
            found = trays(*facts, choices);
        }
    }
    std::vector<ControllerRecord> records;
    if (found.empty() && !toners.empty()) {
        found = traysOf(choices);
    }
    if (!toners.empty()) {
        addToners(std::move(toners), records);
    }
    if (!found.empty()) {
        addTrays(std::move(found), records);
    }
    addServerInfo(device, queue, records);
    return records;
}

} // namespace torka::filter
