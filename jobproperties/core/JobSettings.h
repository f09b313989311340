#pragma once

#include "jobproperties/core/Server.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The settings and watermarks of one job while they are edited. Keys keep their spelling and order; an
// asterisk before a key does not count when one is looked up, so that templates and presets may leave it out.

namespace torka::jobproperties {

enum class Lock {
    None,
    Administrator, // by the template of the device management
    Server,        // by the queue of the server
};

struct JobSetting {
    std::string key;
    std::string value;
    std::string handedOver;                  // the value that "Restore" brings back
    std::optional<std::size_t> earlier = {}; // the place of the entry before it that has the same key
};

// What the interface takes: bytes of one definition, and of all of them with one byte more each.
inline constexpr std::size_t maximumDefinitionBytes = 1023;
inline constexpr std::size_t maximumWatermarkBytes = 5152;

class JobSettings {
public:
    // Settings that were handed over. A later list overrides an earlier one key by key and undoes what was
    // edited.
    void HandOver(const KeyValues& values);
    void LockKeys(const KeyValues& keys, Lock reason);
    void VeilKeys(const KeyValues& keys);
    void HandOverWatermarks(std::vector<std::string> definitions);

    const std::vector<JobSetting>& Settings() const { return settings; }
    // Null when no setting has the key.
    const JobSetting* Find(std::string_view key) const;
    std::string Value(std::string_view key) const; // empty when there is none
    Lock LockOf(std::string_view key) const;
    bool IsVeiled(std::string_view key) const;
    KeyValues LockedKeys() const; // in the order in which they came, values empty
    KeyValues VeiledKeys() const;

    // A change as a person makes it: false, with nothing changed, when the setting is locked or veiled. The
    // name of a preset that the job carried goes, since the settings no longer match it.
    bool Edit(std::string_view key, const std::string& value);
    // Sets it whatever is locked; adds a setting that is not there.
    void Force(std::string_view key, const std::string& value);
    void Remove(std::string_view key);
    // All that is not locked; the job carries the preset's name afterwards.
    void Apply(const std::string& name, const Preset& preset);
    // Settings and watermarks as they were handed over.
    void Restore();
    bool IsChanged() const;

    const std::vector<std::string>& Watermarks() const { return watermarks; }
    // Whether watermarks were handed over or made: otherwise the pane's stay as they are.
    bool HasWatermarkList() const { return watermarksHandedOver || !watermarks.empty(); }
    // Position in the list; -1 for none.
    int SelectedWatermark() const;
    void SelectWatermark(int position);
    void AddWatermark(const std::string& definition);
    // Positions that do not exist change nothing.
    void ReplaceWatermark(std::size_t position, const std::string& definition);
    void RemoveWatermark(std::size_t position);
    // Whether the interface would take the list with `definition` at `position` (at the end when there is
    // none there).
    bool HasRoomFor(std::size_t position, const std::string& definition) const;

private:
    std::optional<std::size_t> Index(std::string_view key) const;
    void Append(JobSetting setting);
    void Rebuild();
    void ResetSettings();
    void TellFirstPageOnly();

    std::vector<JobSetting> settings;
    std::unordered_map<std::string, std::size_t> exact,
        bare; // the last one of the key; the first of the bare one
    KeyValues handed;
    std::vector<std::pair<std::string, Lock>> locks;
    std::unordered_map<std::string, Lock> lockOf;
    KeyValues veiled;
    std::unordered_map<std::string, bool> isVeiled;
    std::vector<std::string> watermarks, watermarksBefore;
    bool watermarksHandedOver = false;
};

} // namespace torka::jobproperties
