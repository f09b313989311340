// SPDX-License-Identifier: Apache-2.0
#include "pane/data/PresetStore.h"

#include "PPDX/PPDObjects/Controls/PPDXPopupControl.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "output/ZANJobNote.h"
#include "pane/data/ControlTables.h"
#include "pane/data/ControlValueText.h"
#include "pane/data/PDEData.h"
#include "pane/data/PersonalFile.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

namespace torka {

namespace {

constexpr CFIndex maximumListEntries = 4096;

// Whether a property list in XML can hold the text.
bool isPlainText(const CFStringRef& text) {
    return text && std::none_of(text->units.begin(), text->units.end(), [](char16_t unit) {
               return (unit < 0x20 && unit != u'\t' && unit != u'\n' && unit != u'\r') || unit >= 0xFFFE;
           });
}

bool isPresetName(const CFStringRef& name) {
    return CFStringGetLength(name) > 0 &&
           CFStringGetLength(name) <= static_cast<CFIndex>(PresetStore::maximumNameLength) &&
           std::none_of(name->units.begin(), name->units.end(),
                        [](char16_t unit) { return unit < 0x20 || unit == 0x7F || unit >= 0xFFFE; });
}

bool isKept(const ZANPPD& model, const PPDXControl& control) {
    return control.Keyword() != nullptr && control.Type() != CNTL_TYPE::specialOption &&
           !isInstallableOption(control) && !isChosenBySystem(control) && !isSecretNote(model, &control);
}

PPDXPopupControl* popupOf(PPDXControl& control) {
    return control.Type() == CNTL_TYPE::popup ? static_cast<PPDXPopupControl*>(&control) : nullptr;
}

// The value as a set keeps it. The usual text of a control has only the first of several choices, and three
// decimals of a number.
CFStringRef keptValue(PPDXControl& control) {
    const PPDXPopupControl* popup = popupOf(control);
    const bool isCut =
        popup != nullptr ? popup->CanSelectMultipleItems() : control.Type() == CNTL_TYPE::floatRange;
    return isCut ? cfString(controlValueText(control)) : control.CopyCurrentControlValueString();
}

// Returns whether the control has that value then.
bool take(PPDXControl& control, const CFStringRef& value) {
    PPDXPopupControl* popup = popupOf(control);
    if (control.Type() == CNTL_TYPE::jobNote) {
        control.SetCurrentControlWithCFString(value);
    } else if (popup != nullptr && CFStringGetLength(value) == 0) {
        popup->SetValue(0);
    } else {
        setControlValueText(control, utf8Text(value));
    }
    return CFEqual(keptValue(control), value);
}

void forEachKeptControl(const ZANPPD& model, const std::function<void(PPDXControl&)>& visit) {
    model.GetControls()->ForEach([&](PPDXControl* control) {
        if (isKept(model, *control)) {
            visit(*control);
        }
    });
}

CFArrayRef asArray(std::span<const WideSetting> entries) {
    std::vector<CFTypeRef> values;
    for (const WideSetting& entry : entries) {
        const CFStringRef key = cfString(utf8FromWide(entry.key));
        const CFStringRef value = cfString(utf8FromWide(entry.value));
        if (isPlainText(key) && isPlainText(value)) {
            values.push_back(CFArrayCreate({key, value}));
        }
    }
    return CFArrayCreate(std::move(values));
}

// Reads pairs of texts. Other elements of the array are skipped.
std::vector<WideSetting> entriesOf(const CFTypeRef& value) {
    std::vector<WideSetting> entries;
    const auto array = cfCast<CFArray>(value);
    for (CFIndex i = 0; i < std::min(CFArrayGetCount(array), maximumListEntries); ++i) {
        const auto pair = cfCast<CFArray>(CFArrayGetValueAtIndex(array, i));
        const auto key = cfCast<CFString>(CFArrayGetValueAtIndex(pair, 0));
        const auto text = cfCast<CFString>(CFArrayGetValueAtIndex(pair, 1));
        if (key && text) {
            entries.push_back({wideFromUtf16(key->units), wideFromUtf16(text->units)});
        }
    }
    return entries;
}

void fill(SettingList& list, const CFTypeRef& value) {
    list.Clear();
    for (WideSetting& entry : entriesOf(value)) {
        if (!list.Append(std::move(entry))) {
            return;
        }
    }
}

std::wstring bareKey(const std::wstring& key) { return key.substr(key.starts_with(L'*') ? 1 : 0); }

// The pairs with a value, one for each key, and every key with its asterisk. The module names keys without
// it, and a template may fill two pairs with one key; the first pair with a value counts.
std::vector<WideSetting> accountsOf(std::span<const WideSetting> pairs) {
    std::vector<WideSetting> accounts;
    for (const WideSetting& pair : pairs) {
        const std::wstring key = L'*' + bareKey(pair.key);
        if (pair.value != L"-1" && std::ranges::find(accounts, key, &WideSetting::key) == accounts.end()) {
            accounts.push_back({key, pair.value});
        }
    }
    return accounts;
}

struct ListPlace {
    std::u16string_view key;
    SettingList& (PDEData::*list)();
};
constexpr std::array<ListPlace, 4> listPlaces{{
    {u"MixedMedia", &PDEData::MixedMediaList},
    {u"PadCovers", &PDEData::PadCoverList},
    {u"CoverPages", &PDEData::CoverPageList},
    {u"SlipSheets", &PDEData::SlipSheetList},
}};

} // namespace

PresetStore::PresetStore(const CFStringRef& printerName, ZANPPD& description, PDEData& paneData)
    : model(description)
    , data(paneData)
    , file(personalFile("presets", printerName)) {}

PresetStore::Content PresetStore::Read() const {
    Content content;
    const CFDictionaryRef root = readPersonalFile(file, &content.failure);
    if (!root) {
        return content;
    }
    content.lastUsed = cfCast<CFDictionary>(CFDictionaryGetValue(root, u"LastUsed"));
    const auto presets = cfCast<CFArray>(CFDictionaryGetValue(root, u"Presets"));
    for (CFIndex i = 0; i < CFArrayGetCount(presets) && content.presets.size() < maximumPresets; ++i) {
        const auto entry = cfCast<CFDictionary>(CFArrayGetValueAtIndex(presets, i));
        const auto name = cfCast<CFString>(CFDictionaryGetValue(entry, u"Name"));
        const auto settings = cfCast<CFDictionary>(CFDictionaryGetValue(entry, u"Settings"));
        if (isPresetName(name) && settings) {
            content.presets.push_back({name, settings});
        }
    }
    return content;
}

PresetStore::Result PresetStore::NotThere(const Content& content) {
    return content.failure ? Result::notRead : Result::notFound;
}

PresetStore::Result PresetStore::Write(const Content& content) const {
    if (content.failure) {
        return Result::notRead;
    }
    std::vector<CFTypeRef> presets;
    for (const Preset& preset : content.presets) {
        presets.push_back(
            CFDictionaryCreate({{cfString("Name"), preset.name}, {cfString("Settings"), preset.settings}}));
    }
    const std::error_code failure =
        writePersonalFile(file, CFDictionaryCreate({{cfString("Presets"), CFArrayCreate(std::move(presets))},
                                                    {cfString("LastUsed"), content.lastUsed}}));
    return failure ? Result::notWritten : Result::done;
}

CFDictionaryRef PresetStore::PresentSettings() const {
    std::vector<CFDictionary::Pair> values;
    forEachKeptControl(model, [&](PPDXControl& control) {
        const CFStringRef value = keptValue(control);
        if (isPlainText(value)) {
            values.emplace_back(cfString(control.Keyword()), value);
        }
    });
    std::vector<CFDictionary::Pair> settings{{cfString("Values"), CFDictionaryCreate(values)}};
    for (const ListPlace& place : listPlaces) {
        const SettingList& list = (data.*place.list)();
        if (list.Count() > 0) {
            settings.emplace_back(CFStringCreateWithCharacters(place.key), asArray(list.Entries()));
        }
    }
    settings.emplace_back(cfString("PaperCatalog"), asArray(accountsOf(data.AccountPairs())));
    if (const ZANWatermark* watermark = data.Watermarks().Selected()) {
        settings.emplace_back(cfString("Watermark"), cfString(watermark->Definition()));
        settings.emplace_back(cfString("WatermarkFirstPageOnly"),
                              CFBooleanCreate(watermark->IsFirstPageOnly()));
    }
    return CFDictionaryCreate(settings);
}

void PresetStore::ApplySettings(const CFDictionaryRef& settings) {
    leftOut = {};
    const auto values = cfCast<CFDictionary>(CFDictionaryGetValue(settings, u"Values"));
    forEachKeptControl(model, [&](PPDXControl& control) {
        if (data.dmtLocks(control.Keyword())) {
            return; // the management template locks it
        }
        control.ResetToDefaultValue();
        const auto value = cfCast<CFString>(CFDictionaryGetValue(values, cfString(control.Keyword())));
        if (value && !take(control, value)) {
            leftOut.controls.push_back(&control);
        }
    });
    for (const auto& [key, value] : values ? values->Pairs() : std::vector<CFDictionary::Pair>()) {
        if (model.GetPPDXControlForKey(key) == nullptr) {
            leftOut.keywords.push_back(utf8Text(key));
        }
    }
    for (const ListPlace& place : listPlaces) {
        fill((data.*place.list)(), CFDictionaryGetValue(settings, place.key));
    }
    data.ResetAccountPairs();
    for (const WideSetting& entry : accountsOf(entriesOf(CFDictionaryGetValue(settings, u"PaperCatalog")))) {
        for (WideSetting& pair : data.AccountPairs()) {
            if (bareKey(pair.key) == bareKey(entry.key)) {
                // As if the module had named it: only then the print settings get the value.
                pair = {bareKey(entry.key), entry.value.substr(0, accountValueSize - 1)};
            }
        }
    }
    const std::string watermark = utf8Text(cfCast<CFString>(CFDictionaryGetValue(settings, u"Watermark")));
    data.Watermarks().SelectDefinition(
        watermark,
        CFBooleanGetValue(cfCast<CFBoolean>(CFDictionaryGetValue(settings, u"WatermarkFirstPageOnly"))));
    leftOut.watermark = !watermark.empty() && data.Watermarks().Selected() == nullptr;
}

std::vector<std::string> PresetStore::Names() const {
    std::vector<std::string> names;
    for (const Preset& preset : Read().presets) {
        names.push_back(utf8Text(preset.name));
    }
    return names;
}

std::string PresetStore::NameOf(const CFDictionaryRef& settings) const {
    for (const Preset& preset : Read().presets) {
        if (CFEqual(preset.settings, settings)) {
            return utf8Text(preset.name);
        }
    }
    return {};
}

namespace {

template <class Presets>
auto findPreset(Presets& presets, const CFStringRef& name) {
    return std::find_if(presets.begin(), presets.end(),
                        [&](const auto& preset) { return CFEqual(preset.name, name); });
}

} // namespace

PresetStore::Result PresetStore::Save(std::string_view nameText) {
    const CFStringRef name = cfString(nameText);
    if (!isPresetName(name)) {
        return Result::badName;
    }
    Content content = Read();
    const auto place = findPreset(content.presets, name);
    if (place != content.presets.end()) {
        place->settings = PresentSettings();
    } else if (content.presets.size() >= maximumPresets) {
        return Result::full;
    } else {
        content.presets.push_back({name, PresentSettings()});
    }
    return Write(content);
}

PresetStore::Result PresetStore::Apply(std::string_view name) {
    const Content content = Read();
    const auto place = findPreset(content.presets, cfString(name));
    if (place == content.presets.end()) {
        return NotThere(content);
    }
    ApplySettings(place->settings);
    return Result::done;
}

CFDictionaryRef PresetStore::SettingsOf(std::string_view name) const {
    const Content content = Read();
    const auto place = findPreset(content.presets, cfString(name));
    return place == content.presets.end() ? nullptr : place->settings;
}

PresetStore::Result PresetStore::Rename(std::string_view from, std::string_view to) {
    const CFStringRef newName = cfString(to);
    if (!isPresetName(newName)) {
        return Result::badName;
    }
    Content content = Read();
    const auto place = findPreset(content.presets, cfString(from));
    if (place == content.presets.end()) {
        return NotThere(content);
    }
    const auto taken = findPreset(content.presets, newName);
    if (taken != content.presets.end() && taken != place) {
        return Result::nameTaken;
    }
    place->name = newName;
    return Write(content);
}

PresetStore::Result PresetStore::Remove(std::string_view name) {
    Content content = Read();
    const auto place = findPreset(content.presets, cfString(name));
    if (place == content.presets.end()) {
        return NotThere(content);
    }
    content.presets.erase(place);
    return Write(content);
}

PresetStore::Result PresetStore::RememberLastUsed() {
    Content content = Read();
    content.lastUsed = PresentSettings();
    return Write(content);
}

PresetStore::Result PresetStore::ApplyLastUsed() {
    const Content content = Read();
    if (!content.lastUsed) {
        return NotThere(content);
    }
    ApplySettings(content.lastUsed);
    return Result::done;
}

} // namespace torka
