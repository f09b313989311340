// SPDX-License-Identifier: Apache-2.0
#include "bidi/module/JobPropertiesSession.h"

#include "bidi/module/ExchangeLists.h"
#include "bidi/module/JobPropertiesCallbacks.h"
#include "bidi/module/JobPropertiesHost.h"
#include "bidi/module/JobPropertiesState.h"
#include "bidi/serverdata/ServerDataToSDM.h"
#include "bidi/text/FieldText.h"
#include "platform/Log.h"
#include "platform/System.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <chrono>

namespace torka {

namespace {

constexpr int windowAccepted = 0;
constexpr int windowCancelled = 1;
constexpr int addressRefused = 2; // also stands for any other result of a module

using namespace std::chrono_literals;

// At most 255 bytes.
std::string windowTitle() {
    constexpr std::size_t titleSize = 256;
    std::string title = jobPropertiesHost() ? jobPropertiesHost()->WindowTitle() : std::string();
    if (title.empty()) {
        title = "Printing Preferences";
    }
    title.resize(wholeCharacters(title, titleSize - 1));
    return title;
}

// False when the wait was stopped.
bool waitForServer(const JobPropertiesFunctions& module) {
    const WaitObserver observer = jobPropertiesHost() ? jobPropertiesHost()->Observer() : WaitObserver();
    return poll(
        {WaitFor::moduleReady, Polling::withoutLimit, 100ms, false},
        [&] { return module.IsServerReady(mJPHandle) != 0; }, observer);
}

using SetList = SDMRESULT (*)(JPHANDLE session, const SDMKeyValueList* list);

void handOver(SetList set, const SDMKeyValueList* list) {
    if (list && list->count > 0) {
        set(mJPHandle, list);
        PrintSDMKeyValueList(*list);
    }
}

// Passes the settings that an administrator's template sets, locks and hides. They follow the record's
// settings and override them.
void handOverTemplate(const JobPropertiesFunctions& module) {
    const std::string text = jobPropertiesHost() ? jobPropertiesHost()->TemplateText() : std::string();
    if (text.empty()) {
        return;
    }
    const ModuleMemory memory = moduleMemory(mSDMHandle);
    SDMKeyValueList* jobValues = nullptr;
    SDMKeyValueList* readOnlyKeys = nullptr;
    SDMKeyValueList* veiledKeys = nullptr;
    if (!GetDMTOverridesToSDM(wideFromUtf8(text), memory, jobValues, readOnlyKeys, veiledKeys)) {
        return;
    }
    handOver(module.SetJobKeyValues, jobValues);
    handOver(module.SetJobReadOnlyKeys, readOnlyKeys);
    handOver(module.SetJobVeiledKeys, veiledKeys);
    memory.FreeList(jobValues);
    memory.FreeList(readOnlyKeys);
    memory.FreeList(veiledKeys);
}

void handOverWatermarks(const JobPropertiesFunctions& module, const SharedMemoryList& record) {
    if (fieldNumber(record.watermarksPresent) == 0) {
        return;
    }
    WatermarkDefinitions watermarks;
    Create_SDMWatermarkList_From_SharedMemoryList(watermarks, record);
    module.SetWatermarks(mJPHandle, &watermarks.List());
}

int showWindow(const JobPropertiesFunctions& module) {
    constexpr std::int32_t windowFlags = 3;
    std::int32_t result = windowCancelled;
    if (module.OpenUI(mJPHandle, windowTitle().c_str(), windowFlags, 0, &result) != SDM_SUCCESS) {
        return windowCancelled;
    }
    return result < windowAccepted ? addressRefused : std::min<std::int32_t>(result, addressRefused);
}

void takeBack(const JobPropertiesFunctions& module, SharedMemoryList& record) {
    const ModuleMemory memory = moduleMemory(mSDMHandle);
    SDMKeyValueList* settings = nullptr;
    const bool hasSettings =
        module.GetJobKeyValues(mJPHandle, 0, &settings, nullptr) == SDM_SUCCESS && settings;
    JPWatermarkList* watermarks = nullptr;
    const bool hasWatermarks = module.GetWatermarks(mJPHandle, &watermarks) == SDM_SUCCESS && watermarks;
    if (hasWatermarks) {
        Create_SharedMemoryWatermarkList_From_SDMList(record, *watermarks);
        memory.FreeWatermarks(watermarks);
    }
    if (hasSettings) {
        Create_SharedMemoryList_From_SDMList(record, *settings);
        memory.FreeList(settings);
    }
}

// Sets mInsideOpenUI for the duration of a session.
class InsideOpenUI {
public:
    InsideOpenUI() { mInsideOpenUI = true; }
    InsideOpenUI(const InsideOpenUI&) = delete;
    InsideOpenUI& operator=(const InsideOpenUI&) = delete;
    ~InsideOpenUI() { mInsideOpenUI = false; }
};

} // namespace

int mainJP() {
    if (mInsideOpenUI) {
        return 1; // the window is open, and its event loop makes this call
    }
    mSpecialReload = false;
    gotSharedListFromJP = false;
    gotServerPresetFromJP = false;
    moduleSubVersion = 2;
    if (!sharedList || !jobPropertiesFunctions()) {
        return 1;
    }
    getCurrentLocaleCode();
    mPrevIPAddress = fieldText(sharedList->printerAddress);
    mPrevBidiEnabledState = fieldText(sharedList->bidiEnabled) == "1";
    LoadJPModule();
    setField(sharedList->jpResult, "0");
    OpenUI("jpOpenMainUI");
    if (!UnloadJPModule()) {
        myNSLogC("The Job Properties module did not end in good order.");
    }
    return 0;
}

int LoadJPModule() {
    const bool isTwoWay = sharedList && fieldText(sharedList->bidiEnabled) == "1";
    fillCallbackTable(isTwoWay);
    mSDMHandle = nullptr;
    mJPLoaded = true;
    return 0;
}

void OpenUI(std::string_view name) {
    const JobPropertiesFunctions* module = jobPropertiesFunctions();
    if (!sharedList || !module) {
        return;
    }
    SharedMemoryList& record = *sharedList;
    const InsideOpenUI inside;
    KeyValueList settings;
    Create_SDMList_From_SharedMemoryList(settings, record);
    sessionBegan = module->BeginSession(mFuncList.data(), &mJPHandle) == SDM_SUCCESS;
    if (!sessionBegan) {
        setField(record.jpResult, "-1");
        return;
    }
    paperUnit = platform::system().MeasuresInMetric() ? 8192 : 4096;
    int result = windowCancelled;
    if (waitForServer(*module)) {
        module->SetJobKeyValues(mJPHandle, &settings.List());
        handOverTemplate(*module);
        handOverWatermarks(*module, record);
        if (name == "jpOpenMainUI") {
            result = showWindow(*module);
        }
    }
    setFieldNumber(record.jpResult, result);
    if (result == windowAccepted) {
        takeBack(*module, record);
    }
}

bool UnloadJPModule() {
    if (!mJPLoaded) {
        return true;
    }
    const JobPropertiesFunctions* module = jobPropertiesFunctions();
    mJPLoaded = false;
    if (!module) {
        return true;
    }
    if (mSDMHandle) {
        module->Terminate(mSDMHandle);
        mSDMHandle = nullptr;
        module->SDMEnd();
    }
    if (sessionBegan) {
        module->EndSession(mJPHandle);
        mJPHandle = nullptr;
        sessionBegan = false;
    }
    return module->DllEnd() == SDM_SUCCESS;
}

bool isSandboxedApp() { return true; }

} // namespace torka
