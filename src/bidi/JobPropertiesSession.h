#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace torka {

// File name of the Job Properties module, which lies in the folder that holds the bundle.
inline constexpr std::string_view moduleFileName = "libzanjp2.so";
std::filesystem::path moduleBesideBundle(const std::filesystem::path& bundle);

enum class ModuleStatus {
    loaded,
    notInstalled, // there is no such file
    doesNotLoad,  // no library, or one that lacks an entry point
};
struct ModuleAvailability {
    ModuleStatus status = ModuleStatus::notInstalled;
    std::string reason; // one line, of one that does not load
};

// Loads the module's library, unless this one is loaded already. To be asked before a launch: without a
// module no launch starts. REQUIRES: no session is under way.
ModuleAvailability loadJobPropertiesLibrary(const std::filesystem::path& path);

// Runs one launch with the record in sharedList: builds the callback table, runs a session with its window,
// reads the module's answer back into the record and ends the module. 0; 1 when there is no record, or no
// library is loaded, and then the record is as it was.
int mainJP();

// The steps of a launch. LoadJPModule builds the callback table; 0.
int LoadJPModule();
// One session of the module: "jpOpenMainUI" opens its window, with any other name nothing is shown and counts
// as cancelled. The answer is in the record.
void OpenUI(std::string_view name);
// Ends the session that began, and the module. True when it was not loaded or JP1_1DllEnd returned 0.
bool UnloadJPModule();

// Finds the server language code for the user's first preferred language, and keeps it in gServerLanguage.
void getCurrentLocaleCode();
// The code for a language tag of BCP 47.
std::string_view serverLanguageCode(std::string_view languageTag);

bool isSandboxedApp();

} // namespace torka
