#pragma once

#include "bidi/JobPropertiesModule.h"
#include "bidi/memory/ModuleMemory.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace torka {

// File name of the Job Properties module, which lies in the folder that holds the bundle.
inline constexpr std::string_view moduleFileName = "libzanjp2.so";
std::filesystem::path moduleBesideBundle(const std::filesystem::path& bundle);

// The entry points of a module that is loaded; none is null.
struct JobPropertiesFunctions {
    JP1_1BeginSessionProc BeginSession;
    JP1_1IsServerReadyProc IsServerReady;
    JP1_1SetJobKeyValuesProc SetJobKeyValues;
    JPSetJobReadOnlyKeysProc SetJobReadOnlyKeys;
    JP1_1SetJobVeiledKeysProc SetJobVeiledKeys;
    JP1_1SetWatermarksProc SetWatermarks;
    JP1_1OpenUIProc OpenUI;
    JP1_1GetJobKeyValuesProc GetJobKeyValues;
    JP1_1GetWatermarksProc GetWatermarks;
    JP1_1FreeProc Free;
    JP1_1EndSessionProc EndSession;
    JP1_1DllEndProc DllEnd;
    SDMAllocMemoryProc AllocMemory;
    SDMTerminateProc Terminate;
    SDMDllEndProc SDMEnd;
};

enum class ModuleStatus {
    loaded,
    notInstalled, // there is no such file
    doesNotLoad,  // no library, or one that lacks an entry point
};
struct ModuleAvailability {
    ModuleStatus status = ModuleStatus::notInstalled;
    std::string reason; // one line, of one that does not load
};

// Loads the module's library in place of another one, unless this one is loaded already. To be asked before a
// launch: without a module no launch starts. REQUIRES: no session is under way.
ModuleAvailability loadJobPropertiesLibrary(const std::filesystem::path& path);
// Forgets the library. REQUIRES: no session is under way.
void unloadJobPropertiesLibrary();
// Null when none is loaded.
const JobPropertiesFunctions* jobPropertiesFunctions();
// The loaded module's allocator. REQUIRES: a module is loaded.
ModuleMemory moduleMemory(SDMHANDLE handle);

} // namespace torka
