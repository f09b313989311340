// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/JobPropertiesModule.h"
#include "bidi/memory/ModuleMemory.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace torka {

// File name of the Job Properties module. The module lies in the folder that holds the bundle.
inline constexpr std::string_view moduleFileName = "libzanjp2.so";
std::filesystem::path moduleBesideBundle(const std::filesystem::path& bundle);

// The entry points of a loaded module. None is null.
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
    notInstalled, // the file does not exist
    doesNotLoad,  // the file is no library, or the library lacks an entry point
};
struct ModuleAvailability {
    ModuleStatus status = ModuleStatus::notInstalled;
    std::string reason; // one line, for doesNotLoad
};

// Loads the module's library unless it is loaded already. It replaces any other library. Call it before a
// launch: without a module no launch starts. REQUIRES: no session is under way.
ModuleAvailability loadJobPropertiesLibrary(const std::filesystem::path& path);
// Releases the library. REQUIRES: no session is under way.
void unloadJobPropertiesLibrary();
// Null without a loaded module.
const JobPropertiesFunctions* jobPropertiesFunctions();
// The loaded module's allocator. REQUIRES: a module is loaded.
ModuleMemory moduleMemory(SDMHANDLE handle);

} // namespace torka
