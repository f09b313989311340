// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/JobPropertiesModule.h"
#include "bidi/memory/SharedMemoryList.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>

// The process-wide state of the Job Properties module's exchange. One thread, the host's main thread, reads
// and writes it.

namespace torka {

// The server language code, such as "en" or "zh_CN". Written by getCurrentLocaleCode. The panel model empties
// it before that call.
extern std::string gServerLanguage;

// The exchange record of the launch under way; null for none. The panel model owns the record and writes the
// pointer before it calls mainJP.
extern SharedMemoryList* sharedList;

// True when sharedListCopyFromJP holds a list from the module. Written by the list conversions.
extern bool gotSharedListFromJP;
// True when that list carried a preset of the server. Written by the list conversions.
extern bool gotServerPresetFromJP;
// A copy of the whole record after the module's settings were written into it; null before the first time.
extern SharedMemoryListPtr sharedListCopyFromJP;

// The callback table. Filled by LoadJPModule.
extern std::array<SDMCallbackSlot, SDM_CALLBACK_SLOTS> mFuncList;
// Set by LoadJPModule, cleared by UnloadJPModule.
extern bool mJPLoaded;
// The module's session: begun by OpenUI, ended by UnloadJPModule.
extern JPHANDLE mJPHandle;
extern bool sessionBegan;
// The module's data server, from the arguments of its callbacks; null when none named it. Cleared by
// LoadJPModule and UnloadJPModule.
extern SDMHANDLE mSDMHandle;
// True while a session's window is being opened or is open. Written by OpenUI.
extern bool mInsideOpenUI;
// Cleared at each launch.
extern bool mSpecialReload;
// The sub-version of the interface that a launch uses; 2 from the first launch on.
extern int moduleSubVersion;
// 8192 on a system with metric units, else 4096. Written by OpenUI. No call of the interface takes it.
extern std::uint32_t paperUnit;
// The record's printer address and two-way state at the last launch. Written by mainJP.
extern std::string mPrevIPAddress;
extern bool mPrevBidiEnabledState;
// Set when the server answers a request for its toner with an empty record; polling for toner then stops.
extern bool do_not_poll_for_Toner_Info_File;

} // namespace torka
