// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace torka {

class PDEData;
class PPDXControl;
class ZANPPD;

// The named sets of settings of one printer, and the settings that were used last. docs/presets.md describes
// the file.
//
// Refers to the description and the pane's data, which must outlive it. It reads the file before each change,
// so that a second dialog's changes are kept. A set holds the values of all controls except installable
// options, the choices of the system's own panes and secret notes (isSecretNote), which are never written to
// a file. It also holds the choice of watermark and the lists that have no control.
class PresetStore {
public:
    static constexpr std::size_t maximumPresets = 200;
    static constexpr std::size_t maximumNameLength = 120; // UTF-16 units

    enum class Result {
        done,
        badName,    // empty, too long, or with control characters
        nameTaken,  // another set has the new name
        notFound,   // no set of that name
        full,       // maximumPresets are kept
        notRead,    // the file could not be read; it is unchanged
        notWritten, // the file could not be written; it is unchanged
    };

    PresetStore(const CFStringRef& printerName, ZANPPD& model, PDEData& paneData);
    PresetStore(const PresetStore&) = delete;
    PresetStore& operator=(const PresetStore&) = delete;

    // UTF-8, in the order in which the sets were first saved.
    std::vector<std::string> Names() const;
    // Saves the present settings. Replaces a set of the same name.
    Result Save(std::string_view name);
    // A control that the set does not name gets its default. So does a control whose saved choice the
    // description no longer has; LeftOut names it.
    Result Apply(std::string_view name);
    Result Rename(std::string_view from, std::string_view to);
    Result Remove(std::string_view name);

    // The settings that Save would write now, for comparison by CFEqual.
    CFDictionaryRef PresentSettings() const;
    // The first set with exactly these settings; "" for none.
    std::string NameOf(const CFDictionaryRef& settings) const;

    Result RememberLastUsed();
    // Returns notFound when no settings were used yet.
    Result ApplyLastUsed();
    // The settings that Apply or ApplyLastUsed, called last, could not set as they are kept.
    struct LeftOutSettings {
        std::vector<const PPDXControl*> controls;
        std::vector<std::string> keywords; // of controls that the description no longer has
        bool watermark = false;

        bool IsEmpty() const { return controls.empty() && keywords.empty() && !watermark; }
    };
    const LeftOutSettings& LeftOut() const { return leftOut; }
    // The settings of a set as they are kept; null for none of that name.
    CFDictionaryRef SettingsOf(std::string_view name) const;

    const std::filesystem::path& File() const { return file; }

private:
    struct Preset {
        CFStringRef name;
        CFDictionaryRef settings;
    };
    struct Content {
        std::vector<Preset> presets;
        CFDictionaryRef lastUsed; // null for none
        std::error_code failure;  // the file is there and cannot be read
    };

    Content Read() const;
    static Result NotThere(const Content& content);
    Result Write(const Content& content) const;
    void ApplySettings(const CFDictionaryRef& settings);

    ZANPPD& model;
    PDEData& data;
    std::filesystem::path file;
    LeftOutSettings leftOut;
};

} // namespace torka
