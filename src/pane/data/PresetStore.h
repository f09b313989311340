#pragma once

#include "platform/CoreFoundation.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

class PDEData;
class ZANPPD;

// The named sets of settings of one printer, and the settings that were used last. docs/presets.md tells the
// file.
//
// Refers to the description and the pane's data, which must outlive it. The file is read anew before each
// change, so that two dialogs at once lose no more than the order in which they wrote. A set holds every
// control's value but installable options, the page size, and notes that are secret (isSecretNote), which
// enter no file; it also holds the watermark's choice and the lists that have no control of their own.
class PresetStore {
public:
    static constexpr std::size_t maximumPresets = 200;
    static constexpr std::size_t maximumNameLength = 120; // UTF-16 units

    enum class Result {
        done,
        badName,    // empty, too long, or with control characters
        nameTaken,  // Rename: another set has the name
        notFound,   // no set of that name
        full,       // maximumPresets are kept
        notWritten, // the file could not be written; what is kept is as it was
    };

    PresetStore(const CFStringRef& printerName, ZANPPD& model, PDEData& paneData);
    PresetStore(const PresetStore&) = delete;
    PresetStore& operator=(const PresetStore&) = delete;

    // In the order in which they were first saved, UTF-8.
    std::vector<std::string> Names() const;
    // Keeps the settings as they are now, in place of the set of that name if there is one.
    Result Save(std::string_view name);
    // Controls that the set does not name, and choices that the description has no longer, go to or stay at
    // their defaults.
    Result Apply(std::string_view name);
    Result Rename(std::string_view from, std::string_view to);
    Result Remove(std::string_view name);

    // What Save would keep now, to be compared by CFEqual.
    CFDictionaryRef PresentSettings() const;
    // The first set that holds exactly these settings; "" for none.
    std::string NameOf(const CFDictionaryRef& settings) const;

    Result RememberLastUsed();
    // notFound when nothing was used yet.
    Result ApplyLastUsed();

    const std::filesystem::path& File() const { return file; }

private:
    struct Preset {
        CFStringRef name;
        CFDictionaryRef settings;
    };
    struct Content {
        std::vector<Preset> presets;
        CFDictionaryRef lastUsed; // null for none
    };

    Content Read() const;
    Result Write(const Content& content) const;
    void ApplySettings(const CFDictionaryRef& settings);

    ZANPPD& model;
    PDEData& data;
    std::filesystem::path file;
};

} // namespace torka
