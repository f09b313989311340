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

// The server language code, such as "en" or "zh_CN". Written by getCurrentLocaleCode; emptied by the panel
// model before it asks for it.
extern std::string gServerLanguage;

// The exchange record of the launch under way, owned by the panel model, which writes the pointer before it
// calls mainJP; null for none.
extern SharedMemoryList* sharedList;

// A list came from the module, and is kept in sharedListCopyFromJP. Written by the list conversions.
extern bool gotSharedListFromJP;
// That list carried a preset of the server. Written by the list conversions.
extern bool gotServerPresetFromJP;
// The whole record as the module's settings were written into it; null before the first time.
extern SharedMemoryListPtr sharedListCopyFromJP;

// The callback table, which LoadJPModule fills.
extern std::array<SDMCallbackSlot, SDM_CALLBACK_SLOTS> mFuncList;
// Set by LoadJPModule, cleared by UnloadJPModule.
extern bool mJPLoaded;
// The module's session: begun by OpenUI, ended by UnloadJPModule.
extern JPHANDLE mJPHandle;
extern bool sessionBegan;
// The module's data server as its callbacks named it; null when none did. Cleared by LoadJPModule and
// UnloadJPModule.
extern SDMHANDLE mSDMHandle;
// A session's window is being opened or is open. Written by OpenUI.
extern bool mInsideOpenUI;
// Cleared at a launch.
extern bool mSpecialReload;
// Of the interface that a launch speaks; 2 from the first launch on.
extern int moduleSubVersion;
// 4096 or, where the system measures in metric, 8192. Written by OpenUI; no call of the interface takes it.
extern std::uint32_t paperUnit;
// The record's printer address and two-way state at the last launch. Written by mainJP.
extern std::string mPrevIPAddress;
extern bool mPrevBidiEnabledState;
// Written when the server answers a request of its toner with nothing; whoever polls for toner stops then.
extern bool do_not_poll_for_Toner_Info_File;

} // namespace torka
