// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/core/JobSettings.h"

#include "jobproperties/core/PrinterDescription.h"
#include "jobproperties/core/Text.h"
#include "jobproperties/core/Watermark.h"

#include <algorithm>
#include <array>
#include <utility>

namespace torka::jobproperties {

namespace {

constexpr std::string_view selectedWatermarkKey = "*QV_WATERMARK";
constexpr std::string_view firstPageOnlyKey = "*QV_WATERMARK_FIRSTPAGEONLY";
constexpr std::string_view presetNameKey = "*PresetName";
constexpr std::array<std::string_view, 3> presetKeys{presetNameKey, "*PresetType",
                                                     "*PresetTimestampModified"};

bool isPresetKey(std::string_view key) {
    return std::any_of(presetKeys.begin(), presetKeys.end(),
                       [&](std::string_view presetKey) { return bareKey(presetKey) == bareKey(key); });
}

} // namespace

std::optional<std::size_t> JobSettings::Index(std::string_view key) const {
    if (const auto found = exact.find(std::string(key)); found != exact.end()) {
        return found->second;
    }
    if (const auto found = bare.find(std::string(bareKey(key))); found != bare.end()) {
        return exact.at(settings[found->second].key);
    }
    return std::nullopt;
}

void JobSettings::Append(JobSetting setting) {
    const auto [same, isNew] = exact.try_emplace(setting.key, settings.size());
    setting.earlier = isNew ? std::nullopt : std::optional(std::exchange(same->second, settings.size()));
    bare.emplace(bareKey(setting.key), settings.size());
    settings.push_back(std::move(setting));
}

void JobSettings::Rebuild() {
    exact.clear();
    bare.clear();
    for (JobSetting& setting : std::exchange(settings, {})) {
        Append(std::move(setting));
    }
}

void JobSettings::HandOver(const KeyValues& values) {
    ResetSettings(); // so that positions in `settings` and `handed` match
    const bool isFirst = settings.empty();
    for (const KeyValue& entry : values) {
        auto index = isFirst ? std::nullopt : Index(entry.key);
        if (!index) {
            Append({entry.key, entry.value, entry.value});
            handed.push_back(entry);
        }
        for (; index; index = settings[*index].earlier) {
            settings[*index].value = settings[*index].handedOver = entry.value;
            handed[*index].value = entry.value;
        }
    }
}

void JobSettings::LockKeys(const KeyValues& keys, Lock reason) {
    for (const KeyValue& entry : keys) {
        if (lockOf.emplace(bareKey(entry.key), reason).second) {
            locks.emplace_back(entry.key, reason);
        }
    }
}

void JobSettings::VeilKeys(const KeyValues& keys) {
    for (const KeyValue& entry : keys) {
        if (isVeiled.emplace(bareKey(entry.key), true).second) {
            veiled.push_back({entry.key, ""});
        }
    }
}

void JobSettings::HandOverWatermarks(std::vector<std::string> definitions) {
    watermarks = watermarksBefore = std::move(definitions);
    watermarksHandedOver = true;
}

const JobSetting* JobSettings::Find(std::string_view key) const {
    const auto index = Index(key);
    return index ? &settings[*index] : nullptr;
}

std::string JobSettings::Value(std::string_view key) const {
    const JobSetting* setting = Find(key);
    return setting == nullptr ? std::string() : setting->value;
}

Lock JobSettings::LockOf(std::string_view key) const {
    const auto found = lockOf.find(std::string(bareKey(key)));
    return found == lockOf.end() ? Lock::None : found->second;
}

bool JobSettings::IsVeiled(std::string_view key) const {
    return isVeiled.contains(std::string(bareKey(key)));
}

KeyValues JobSettings::LockedKeys() const {
    KeyValues keys;
    for (const auto& [key, reason] : locks) {
        keys.push_back({key, ""});
    }
    return keys;
}

KeyValues JobSettings::VeiledKeys() const { return veiled; }

bool JobSettings::Edit(std::string_view key, const std::string& value) {
    if (LockOf(key) != Lock::None || IsVeiled(key)) {
        return false;
    }
    if (const JobSetting* setting = Find(key); setting != nullptr && setting->value == value) {
        return true;
    }
    Force(key, value);
    if (!isPresetKey(key)) {
        for (const std::string_view presetKey : presetKeys) {
            if (Find(presetKey) != nullptr) {
                Force(presetKey, "");
            }
        }
    }
    return true;
}

void JobSettings::Force(std::string_view key, const std::string& value) {
    auto index = Index(key);
    if (!index) {
        Append({std::string(key), value, ""});
    }
    for (; index; index = settings[*index].earlier) {
        settings[*index].value = value;
    }
}

void JobSettings::Remove(std::string_view key) {
    if (const JobSetting* found = Find(key)) {
        std::erase_if(settings,
                      [name = found->key](const JobSetting& setting) { return setting.key == name; });
        Rebuild();
    }
}

void JobSettings::Apply(const std::string& name, const Preset& preset) {
    for (const KeyValues* values : {&preset.jobValues, &preset.tesselValues, &preset.presetValues}) {
        for (const KeyValue& entry : *values) {
            if (LockOf(entry.key) == Lock::None && !IsVeiled(entry.key)) {
                Force(entry.key, entry.value);
            }
        }
    }
    Force(presetNameKey, name);
}

void JobSettings::ResetSettings() {
    settings.clear();
    for (const KeyValue& entry : handed) {
        settings.push_back({entry.key, entry.value, entry.value});
    }
    Rebuild();
}

void JobSettings::Restore() {
    ResetSettings();
    watermarks = watermarksBefore;
}

bool JobSettings::IsChanged() const {
    return watermarks != watermarksBefore || settings.size() != handed.size() ||
           std::any_of(settings.begin(), settings.end(),
                       [](const JobSetting& setting) { return setting.value != setting.handedOver; });
}

int JobSettings::SelectedWatermark() const {
    const auto position = wholeNumber(Value(selectedWatermarkKey));
    return position && *position >= 0 && *position < static_cast<long>(watermarks.size())
               ? static_cast<int>(*position)
               : -1;
}

void JobSettings::SelectWatermark(int position) {
    if (LockOf(selectedWatermarkKey) != Lock::None) {
        return;
    }
    Edit(selectedWatermarkKey, std::to_string(position));
    TellFirstPageOnly();
}

// Copies the property of the printed watermark to the setting beside the list.
void JobSettings::TellFirstPageOnly() {
    const int selected = SelectedWatermark();
    if (selected < 0 && Find(firstPageOnlyKey) == nullptr) {
        return;
    }
    const bool firstPageOnly =
        selected >= 0 &&
        Watermark::FromDefinition(watermarks[static_cast<std::size_t>(selected)]).firstPageOnly;
    Edit(firstPageOnlyKey, firstPageOnly ? "True" : "False");
}

void JobSettings::AddWatermark(const std::string& definition) { watermarks.push_back(definition); }

void JobSettings::ReplaceWatermark(std::size_t position, const std::string& definition) {
    if (position >= watermarks.size()) {
        return;
    }
    watermarks[position] = definition;
    if (static_cast<int>(position) == SelectedWatermark()) {
        TellFirstPageOnly();
    }
}

void JobSettings::RemoveWatermark(std::size_t position) {
    if (position >= watermarks.size()) {
        return;
    }
    const int selected = SelectedWatermark();
    watermarks.erase(watermarks.begin() + static_cast<std::ptrdiff_t>(position));
    // The selection follows its watermark even when locked: the position is only its name.
    if (selected == static_cast<int>(position)) {
        Force(selectedWatermarkKey, "-1");
    } else if (selected > static_cast<int>(position)) {
        Force(selectedWatermarkKey, std::to_string(selected - 1));
    }
}

bool JobSettings::HasRoomFor(std::size_t position, const std::string& definition) const {
    std::size_t bytes = definition.size() + 1;
    for (std::size_t i = 0; i < watermarks.size(); ++i) {
        bytes += i == position ? 0 : watermarks[i].size() + 1;
    }
    return definition.size() <= maximumDefinitionBytes && bytes <= maximumWatermarkBytes;
}

} // namespace torka::jobproperties
