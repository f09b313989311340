// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/UTF8Level.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "pane/data/ControlTables.h"
#include "pane/data/ControlValueText.h"
#include "pane/data/PDEData.h"
#include "pane/data/SpecialControls.h"
#include "pane/panel/UI_Panel.h"
#include "platform/Log.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <span>
#include <unordered_map>

// Applies the answer of the Job Properties module. The answer is not trusted: unknown keys are skipped,
// invalid values change nothing, and no list grows beyond what the pane keeps.

namespace torka {

namespace {

// The notes whose text is kept as UTF-8 at every level of the description.
constexpr std::array<std::string_view, 3> documentServerNotes = {"*QVDSFileName", "*QVDSUserName",
                                                                 "*QVDSPassword"};

bool isUtf8Note(std::string_view keyword) {
    return keyword == controlBarKeyword ||
           std::ranges::find(dynamicColourKeywords, keyword) != dynamicColourKeywords.end() ||
           std::ranges::find(serverPresetKeywords, keyword) != serverPresetKeywords.end() ||
           std::ranges::find(documentServerNotes, keyword) != documentServerNotes.end();
}

std::optional<long> wholeNumber(std::string_view text) {
    long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

// Restores entries that the record has cut and the module has not changed. A cut entry stands for the first
// earlier entry that the record would cut to the same text and that no other entry stands for.
void restoreUnchanged(std::vector<WideSetting>& returned, const std::vector<WideSetting>& before) {
    std::unordered_map<std::string, std::vector<const WideSetting*>> known; // null when taken
    for (const WideSetting& setting : before) {
        known[keyThroughRecord(utf8FromWide(setting.key))].push_back(&setting);
    }
    for (WideSetting& setting : returned) {
        const std::string key = utf8FromWide(setting.key);
        const std::string cut = keyThroughRecord(key);
        const auto place = known.find(cut);
        if (place == known.end()) {
            continue;
        }
        const auto old = std::ranges::find_if(place->second, [&](const WideSetting* candidate) {
            return candidate != nullptr && (key == cut || candidate->key == setting.key);
        });
        if (old == place->second.end()) {
            continue;
        }
        setting.key = (*old)->key;
        if (isUnchanged(utf8FromWide(setting.value), utf8FromWide((*old)->value))) {
            setting.value = (*old)->value;
        }
        *old = nullptr;
    }
}

} // namespace

// The returned settings, by key without asterisk, in the order of the first occurrence of each key. A key may
// occur more than once. The settings of the side lists keep their order.
class UI_Panel::Returned {
public:
    struct Entry {
        std::string key; // without asterisk
        std::vector<std::string> values;
    };

    Returned(const SDMKeyValueList& list, const PPDXControls& controls) {
        const std::size_t count = list.items ? std::min(list.count, exchangeEntryLimit) : 0;
        entries.reserve(count);
        for (const SDMKeyValue& item : std::span(list.items, count)) {
            const std::wstring_view key = item.szKey ? item.szKey : L"";
            const std::wstring_view bare = key.substr(key.starts_with(L'*') ? 1 : 0);
            const std::wstring_view value = item.szValue ? item.szValue : L"";
            const std::size_t side = SideListOf(bare, controls);
            if (side < sideLists.size()) {
                sideLists[side].push_back({std::wstring(key), std::wstring(value)});
            } else if (!bare.empty()) {
                const auto [place, isNew] = places.try_emplace(bare, entries.size());
                if (isNew) {
                    entries.push_back({utf8FromWide(bare), {}});
                }
                entries[place->second].values.push_back(utf8FromWide(value));
            }
        }
    }

    const std::vector<Entry>& Entries() const { return entries; }
    // The last value of a key; null when the key was not returned.
    const std::string* Find(std::wstring_view key) const {
        const auto place = places.find(key);
        return place == places.end() ? nullptr : &entries[place->second].values.back();
    }
    // In the order of PDEData::SideLists().
    const std::vector<WideSetting>& SideList(std::size_t index) const { return sideLists[index]; }

private:
    // A key for which the description has a control belongs to that control, whatever its prefix.
    static std::size_t SideListOf(std::wstring_view key, const PPDXControls& controls) {
        constexpr std::array kinds = {KeyKind::mixedMedia, KeyKind::padCover, KeyKind::slipSheet,
                                      KeyKind::coverPage};
        const auto kind = std::ranges::find(kinds, keyKind(key));
        CNTL_TYPE type{};
        const bool isListed =
            kind != kinds.end() && !controls.Find(("*" + utf8FromWide(key)).c_str(), type, true);
        return isListed ? static_cast<std::size_t>(kind - kinds.begin()) : kinds.size();
    }

    std::vector<Entry> entries;
    std::unordered_map<std::wstring_view, std::size_t> places; // views into the module's list
    std::array<std::vector<WideSetting>, 4> sideLists;
};

void UI_Panel::SetUpdatedSettings(const SDMKeyValueList& list) {
    const Returned returned(list, *model->GetControls());
    refreshUTF8Level(model->GetControls());
    ApplySideLists(returned);
    ApplyWatermarkChoice(returned);
    std::size_t refused = 0;
    for (const Returned::Entry& entry : returned.Entries()) {
        if (entry.key == "QV_COPIES") {
            ApplyCopies(entry.values.back());
        } else if (!ApplyAccount(entry.key, entry.values.back()) &&
                   !ApplyToModel("*" + entry.key, entry.values) && refused++ == 0) {
            myNSLogC("What the module returned for %s is no value of it; it stays as it is.",
                     entry.key.c_str());
        }
    }
    if (refused > 1) {
        myNSLogC("So do %zu more.", refused - 1);
    }
}

// The returned list replaces the present one: a missing entry was removed, unless the module never got it.
void UI_Panel::ApplySideLists(const Returned& returned) {
    std::size_t index = 0;
    for (SettingList* target : mPDEData->SideLists()) {
        const std::vector<WideSetting> before(target->Entries().begin(), target->Entries().end());
        std::vector<WideSetting> after = returned.SideList(index);
        restoreUnchanged(after, before);
        const std::size_t seen = std::min(handed.sideListEntries[index++], before.size());
        after.insert(after.end(), before.begin() + static_cast<std::ptrdiff_t>(seen), before.end());
        for (WideSetting& setting : after) {
            setting.key = settledKey(setting.key);
        }
        if (after.size() > target->Capacity()) {
            myNSLogC("The module returned %zu settings for a list of %zu; the rest is dropped.", after.size(),
                     target->Capacity());
            after.resize(target->Capacity());
        }
        target->Clear();
        for (WideSetting& setting : after) {
            target->Append(std::move(setting));
        }
    }
}

// A pair that the module names has no asterisk from then on. False when the key is that of no pair.
bool UI_Panel::ApplyAccount(std::string_view key, const std::string& value) {
    for (WideSetting& pair : mPDEData->AccountPairs()) {
        const std::wstring bare = pair.key.substr(pair.key.starts_with(L'*') ? 1 : 0);
        if (utf8FromWide(bare) != key) {
            continue;
        }
        // With two-way communication off, the module got "-1" instead of the value. A returned "-1" then
        // means no change.
        if (value == "-1" && !mPDEData->isBIDIEnabled()) {
            return true;
        }
        pair.key = bare;
        if (!isUnchanged(value, utf8FromWide(pair.value))) {
            pair.value = wideFromUtf8(value).substr(0, accountValueSize - 1);
        }
        return true;
    }
    return false;
}

void UI_Panel::ApplyWatermarkChoice(const Returned& returned) {
    WatermarkList& watermarks = mPDEData->Watermarks();
    const int before = watermarks.SelectedIndex();
    const std::string* choice = returned.Find(L"QV_WATERMARK");
    const auto index = wholeNumber(choice ? *choice : "");
    if (index && *choice != handed.watermarkIndex) {
        const bool exists = *index >= 0 && static_cast<std::size_t>(*index) < watermarks.Count();
        watermarks.Select(exists ? static_cast<int>(*index) : WatermarkList::noSelection);
    }
    const std::string* firstPage = returned.Find(L"QV_WATERMARK_FIRSTPAGEONLY");
    ZANWatermark* selected = watermarks.Selected();
    const bool isNews =
        firstPage && (*firstPage != handed.firstPageOnly || watermarks.SelectedIndex() != before);
    if (!isNews || !selected || (*firstPage != "True" && *firstPage != "False")) {
        return;
    }
    selected->SetFirstPageOnly(*firstPage);
    // The print settings hold the number as well, from their last writing.
    const CFStringRef key = cfString("WatermarkFirstPageInfo");
    const PMPrintSettings settings = mPDEData->Settings();
    CFTypeRef stored;
    if (PMPrintSettingsGetValue(settings, key, stored) == noErr) {
        const CFNumberRef number = CFNumberCreate(std::int32_t{selected->IsFirstPageOnly() ? 1 : 0});
        PMPrintSettingsSetValue(settings, key, number, false);
    }
}

void UI_Panel::ApplyCopies(const std::string& value) {
    const auto copies = wholeNumber(value);
    const PMPrintSettings settings = mPDEData->Settings();
    if (value == handed.copies || !copies || *copies < 1 || *copies > long{maximumCopies} || !settings) {
        return;
    }
    settings->SetCopies(static_cast<std::uint32_t>(*copies));
}

// A control and a job note may have the same keyword. The module got the value of the control and then the
// text of the note, or the text of the note before and after it. A single returned value is for both. False
// when the value is invalid.
bool UI_Panel::ApplyToModel(const std::string& keyword, const std::vector<std::string>& values) {
    PPDXControls& controls = *model->GetControls();
    PPDXControl* control = settingControl(controls, keyword.c_str());
    PPDXJobNote* note = controls.FindJobNote(keyword.c_str(), true);
    std::string noteText = note ? controlValueText(*note) : std::string();
    if (control && note && values.size() == 1) {
        const std::string handedText = noteText.empty() ? controlValueText(*control) : noteText;
        if (isUnchanged(values.front(), handedText)) {
            return true;
        }
    }
    bool isValue = true;
    if (control) {
        CNTL_TYPE type{};
        const bool noteCameFirst =
            note && values.size() > 2 && controls.Find(keyword.c_str(), type, true) == note;
        const std::string& value = note ? values[noteCameFirst ? 1 : 0] : values.back();
        const bool isPlaceholder = (keyword == "*CustomPrintSize" && value == "False") ||
                                   (keyword == "*PageSize" && value == "Custom" && HasSystemPageSize());
        isValue = isPlaceholder || setControlValueText(*control, value);
    }
    if (note && !isUnchanged(values.back(), noteText)) {
        if (isUtf8Note(keyword)) {
            note->SetUTF8Notes(cutToNote(*note, values.back()));
        } else {
            setControlValueText(*note, values.back());
        }
    }
    return isValue;
}

// Unchanged watermarks stay the same objects and keep what was set on them.
void UI_Panel::UpdateWatermarks(const SharedMemoryList& record) {
    WatermarkList& watermarks = mPDEData->Watermarks();
    const std::vector<std::string> returned = watermarkDefinitions(record);
    std::vector<std::unique_ptr<ZANWatermark>> before = watermarks.TakeAll();
    const std::size_t seen = std::min(handed.watermarks, before.size());
    const int selected = watermarks.SelectedIndex();
    for (std::size_t i = 0; i < returned.size(); ++i) {
        std::unique_ptr<ZANWatermark> watermark;
        const auto old =
            std::find_if(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(seen),
                         [&](const auto& each) { return each && each->Definition() == returned[i]; });
        if (old != before.begin() + static_cast<std::ptrdiff_t>(seen)) {
            watermark = std::move(*old);
        } else {
            watermark = std::make_unique<ZANWatermark>(returned[i].c_str());
            if (static_cast<int>(i) == selected) {
                handed.firstPageOnly.clear(); // so that the answer of the module is set again
            }
        }
        watermarks.Append(std::move(watermark));
    }
    for (std::size_t i = seen; i < before.size(); ++i) {
        watermarks.Append(std::move(before[i]));
    }
    if (selected >= 0 && static_cast<std::size_t>(selected) >= seen) {
        watermarks.Select(selected + static_cast<int>(returned.size()) - static_cast<int>(seen));
    }
}

} // namespace torka
