// SPDX-License-Identifier: Apache-2.0
#include "bidi/module/JobPropertiesState.h"

namespace torka {

std::string gServerLanguage;
SharedMemoryList* sharedList = nullptr;
bool gotSharedListFromJP = false;
bool gotServerPresetFromJP = false;
SharedMemoryListPtr sharedListCopyFromJP;
std::array<SDMCallbackSlot, SDM_CALLBACK_SLOTS> mFuncList{};
bool mJPLoaded = false;
JPHANDLE mJPHandle = nullptr;
bool sessionBegan = false;
SDMHANDLE mSDMHandle = nullptr;
bool mInsideOpenUI = false;
bool mSpecialReload = false;
int moduleSubVersion = 0;
std::uint32_t paperUnit = 0;
std::string mPrevIPAddress;
bool mPrevBidiEnabledState = false;
bool do_not_poll_for_Toner_Info_File = false;

} // namespace torka
