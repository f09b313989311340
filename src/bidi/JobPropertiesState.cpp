#include "bidi/JobPropertiesState.h"

namespace torka {

std::string gServerLanguage;
SharedMemoryList* sharedList = nullptr;
bool gotSharedListFromJP = false;
bool gotServerPresetFromJP = false;
std::unique_ptr<SharedMemoryList> sharedListCopyFromJP;
bool mInsideOpenUI = false;
bool mSpecialReload = false;
std::string mPrevIPAddress;
bool mPrevBidiEnabledState = false;
bool do_not_poll_for_Toner_Info_File = false;

} // namespace torka
