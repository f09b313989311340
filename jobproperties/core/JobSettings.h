// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "jobproperties/core/Server.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The settings and watermarks of one job during editing. Keys keep their spelling and order. Look-ups ignore
// an asterisk before a key, so templates and presets may omit it.

namespace torka::jobproperties {

enum class Lock {
    None,
    Administrator, // by the template of the device management
    Server,        // by the queue of the server
};

struct JobSetting {
    std::string key;
    std::string value;
    std::string handedOver;                  // the value that "Restore" sets
    std::optional<std::size_t> earlier = {}; // the position of the previous entry with the same key
};

// Limits of the interface, in bytes: of one definition, and of all definitions plus one byte each.
inline constexpr std::size_t maximumDefinitionBytes = 1023;
inline constexpr std::size_t maximumWatermarkBytes = 5152;

class JobSettings {
public:
    // Takes over settings. A later list overrides an earlier one key by key and discards edits.
    void HandOver(const KeyValues& values);
    void LockKeys(const KeyValues& keys, Lock reason);
    void VeilKeys(const KeyValues& keys);
    void HandOverWatermarks(std::vector<std::string> definitions);

    const std::vector<JobSetting>& Settings() const { return settings; }
    // Returns null when no setting has the key.
    const JobSetting* Find(std::string_view key) const;
    std::string Value(std::string_view key) const; // empty when there is none
    Lock LockOf(std::string_view key) const;
    bool IsVeiled(std::string_view key) const;
    KeyValues LockedKeys() const; // in their original order, with empty values
    KeyValues VeiledKeys() const;

    // Changes a setting as a user does. Returns false and changes nothing when the setting is locked or
    // veiled. Removes the job's preset name, because the settings no longer match it.
    bool Edit(std::string_view key, const std::string& value);
    // Sets the value despite any lock. Adds a missing setting.
    void Force(std::string_view key, const std::string& value);
    void Remove(std::string_view key);
    // Sets every setting of the preset that is not locked. The job then carries the preset's name.
    void Apply(const std::string& name, const Preset& preset);
    // Restores settings and watermarks to the values that were handed over.
    void Restore();
    bool IsChanged() const;

    const std::vector<std::string>& Watermarks() const { return watermarks; }
    // Tells whether watermarks were handed over or made. Otherwise the pane keeps its own.
    bool HasWatermarkList() const { return watermarksHandedOver || !watermarks.empty(); }
    // Returns the position in the list; -1 for none.
    int SelectedWatermark() const;
    void SelectWatermark(int position);
    void AddWatermark(const std::string& definition);
    // An unknown position changes nothing.
    void ReplaceWatermark(std::size_t position, const std::string& definition);
    void RemoveWatermark(std::size_t position);
    // Tells whether the interface accepts the list with `definition` at `position`, or at the end when no
    // such position exists.
    bool HasRoomFor(std::size_t position, const std::string& definition) const;

private:
    std::optional<std::size_t> Index(std::string_view key) const;
    void Append(JobSetting setting);
    void Rebuild();
    void ResetSettings();
    void TellFirstPageOnly();

    std::vector<JobSetting> settings;
    std::unordered_map<std::string, std::size_t> exact,
        bare; // exact: the last entry of the key; bare: the first of the bare key
    KeyValues handed;
    std::vector<std::pair<std::string, Lock>> locks;
    std::unordered_map<std::string, Lock> lockOf;
    KeyValues veiled;
    std::unordered_map<std::string, bool> isVeiled;
    std::vector<std::string> watermarks, watermarksBefore;
    bool watermarksHandedOver = false;
};

} // namespace torka::jobproperties
