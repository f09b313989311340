#include "FakePane.h"

#include <cstdlib>
#include <dlfcn.h>
#include <gtest/gtest.h>

namespace torka::tests {

namespace {

FakePane* current = nullptr;

template <typename Proc>
void find(void* library, const char* name, Proc& proc) {
    proc = reinterpret_cast<Proc>(::dlsym(library, name));
    EXPECT_NE(proc, nullptr) << name;
}

template <typename Proc>
SDMCallbackSlot slotOf(Proc proc) {
    SDMCallbackSlot slot{};
    slot.function = reinterpret_cast<void (*)()>(proc);
    return slot;
}

SDMRESULT giveText(const std::wstring& value, wchar_t** text) {
    if (value.empty()) {
        return SDM_NOT_AVAILABLE;
    }
    *text = current->Give(value);
    return SDM_SUCCESS;
}

SDMRESULT giveList(const Pairs& pairs, SDMKeyValueList** list) {
    if (pairs.empty()) {
        return SDM_NOT_AVAILABLE;
    }
    *list = current->Give(pairs);
    return SDM_SUCCESS;
}

wchar_t* giveOptional(const wchar_t* text) {
    return text == nullptr ? nullptr : current->Give(std::wstring(text));
}

SDMRESULT getServerData(SDMHANDLE /*handle*/, wchar_t** text) { return giveText(current->serverData, text); }

SDMRESULT getInformation(SDMHANDLE /*handle*/, SDMKeyValueList** list) {
    return giveList(current->information, list);
}

SDMRESULT getHelp(SDMHANDLE /*handle*/, SDMKeyValueList** list) { return giveList(current->help, list); }

SDMRESULT getHoldQueue(SDMHANDLE /*handle*/, SDMKeyValueList** first, SDMKeyValueList** second) {
    if (current->lockedKeys.empty()) {
        return SDM_NOT_AVAILABLE;
    }
    *first = current->Give({{L"*Collate", L"True"}});
    *second = current->Give(current->lockedKeys);
    return SDM_SUCCESS;
}

SDMRESULT getTrays(SDMHANDLE /*handle*/, SDMTrayInfoArray** trays) {
    if (const auto act = std::exchange(current->whenAskedForTrays, nullptr)) {
        act();
    }
    if (current->trays.empty()) {
        return SDM_NOT_AVAILABLE;
    }
    auto* items = static_cast<SDMTrayInfo*>(current->Give(current->trays.size() * sizeof(SDMTrayInfo)));
    for (std::size_t i = 0; i < current->trays.size(); ++i) {
        items[i] = current->trays[i];
        for (wchar_t** text : {&items[i].name, &items[i].key, &items[i].mediaName, &items[i].mediaSize,
                               &items[i].mediaType, &items[i].mediaColor}) {
            *text = giveOptional(*text);
        }
    }
    *trays = static_cast<SDMTrayInfoArray*>(current->Give(sizeof(SDMTrayInfoArray)));
    **trays = {current->trays.size(), items};
    return SDM_SUCCESS;
}

SDMRESULT getToners(SDMHANDLE /*handle*/, SDMTonerInfoArray** toners) {
    if (current->toners.empty()) {
        return SDM_NOT_AVAILABLE;
    }
    auto* items = static_cast<SDMTonerInfo*>(current->Give(current->toners.size() * sizeof(SDMTonerInfo)));
    for (std::size_t i = 0; i < current->toners.size(); ++i) {
        items[i] = current->toners[i];
        items[i].name = giveOptional(items[i].name);
        items[i].color = giveOptional(items[i].color);
    }
    *toners = static_cast<SDMTonerInfoArray*>(current->Give(sizeof(SDMTonerInfoArray)));
    **toners = {current->toners.size(), items};
    return SDM_SUCCESS;
}

SDMRESULT getPresetNames(SDMHANDLE /*handle*/, wchar_t*** names, int32_t* count) {
    const std::vector<std::wstring>& known = current->presetNames;
    *names = static_cast<wchar_t**>(current->Give(known.size() * sizeof(wchar_t*)));
    for (std::size_t i = 0; i < known.size(); ++i) {
        (*names)[i] = current->Give(known[i]);
    }
    *count = static_cast<int32_t>(known.size());
    return SDM_SUCCESS;
}

SDMRESULT getPreset(SDMHANDLE /*handle*/, const wchar_t* name, SDMKeyValueList** job,
                    SDMKeyValueList** tessel, SDMKeyValueList** preset) {
    if (current->presetNames.empty() || current->presetNames.front() != name) {
        return SDM_NOT_AVAILABLE;
    }
    *job = current->Give(current->presetJob);
    *tessel = current->Give(current->presetTessel);
    *preset = nullptr; // this set may be absent
    return SDM_SUCCESS;
}

SDMRESULT getVersion(SDMHANDLE /*handle*/, int32_t kind, wchar_t** version) {
    return giveText(kind == SDM_VERSION_DRIVER ? L"1.2" : L"4.3", version);
}

SDMRESULT freeBlock(void** pointer) { return current->TakeBack(pointer); }

// A list that refers to the texts in `pairs`.
class BorrowedList {
public:
    explicit BorrowedList(const Pairs& pairs) {
        for (const auto& [key, value] : pairs) {
            items.push_back({const_cast<wchar_t*>(key.c_str()), const_cast<wchar_t*>(value.c_str())});
        }
        list = {items.size(), items.data()};
    }
    const SDMKeyValueList* Get() const { return &list; }

private:
    std::vector<SDMKeyValue> items;
    SDMKeyValueList list{};
};

} // namespace

const Module& Module::Loaded() {
    static const Module module = [] {
        Module found{};
        void* library = ::dlopen(TORKA_MODULE, RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) {
            ADD_FAILURE() << ::dlerror();
            std::abort();
        }
        find(library, "JP1_1BeginSession", found.beginSession);
        find(library, "JP1_1IsServerReady", found.isServerReady);
        find(library, "JP1_1SetJobKeyValues", found.setJobKeyValues);
        find(library, "JPSetJobReadOnlyKeys", found.setReadOnlyKeys);
        find(library, "JP1_1SetJobVeiledKeys", found.setVeiledKeys);
        find(library, "JP1_1SetWatermarks", found.setWatermarks);
        find(library, "JP1_1OpenUI", found.openUI);
        find(library, "JP1_1GetJobKeyValues", found.getJobKeyValues);
        find(library, "JP1_1GetWatermarks", found.getWatermarks);
        find(library, "JP1_1Free", found.free);
        find(library, "SDMAllocMemory", found.allocMemory);
        find(library, "SDMTerminate", found.terminate);
        find(library, "SDMDllEnd", found.dllEndServer);
        find(library, "JP1_1EndSession", found.endSession);
        find(library, "JP1_1DllEnd", found.dllEnd);
        return found;
    }();
    return module;
}

FakePane::FakePane() {
    current = this;
    SetTwoWay(true);
}

FakePane::~FakePane() {
    EXPECT_EQ(BlocksOut(), 0U) << "blocks that a callback returned were not freed";
    current = nullptr;
}

void FakePane::SetTwoWay(bool on) {
    isTwoWay = on;
    table = {};
    table[SDM_SLOT_VERSION].number = SDM_CALLBACK_VERSION;
    table[SDM_SLOT_TWO_WAY].number = on ? 1 : 0;
    table[SDM_SLOT_GET_SERVER_DATA] = slotOf(getServerData);
    table[SDM_SLOT_FREE] = slotOf(freeBlock);
    table[SDM_SLOT_GET_DRIVER_VERSION] = slotOf(getVersion);
    table[SDM_SLOT_GET_SERVER_INFO_ALL] = slotOf(getInformation);
    table[SDM_SLOT_GET_HOLD_QUEUE_ATTRIBUTES] = slotOf(getHoldQueue);
    if (!on) {
        return;
    }
    table[SDM_SLOT_GET_TRAY_INFO] = slotOf(getTrays);
    table[SDM_SLOT_GET_TONER_INFO] = slotOf(getToners);
    table[SDM_SLOT_GET_SERVER_PRESET_NAMES_LIST] = slotOf(getPresetNames);
    table[SDM_SLOT_GET_SERVER_PRESET_DATA_BY_NAME] = slotOf(getPreset);
    table[SDM_SLOT_GET_LOCL_HELP_STRINGS] = slotOf(getHelp);
}

void* FakePane::Give(std::size_t bytes) {
    void* block = isTwoWay ? Module::Loaded().allocMemory(nullptr, bytes) : std::malloc(bytes);
    blocks.insert(block);
    return block;
}

wchar_t* FakePane::Give(const std::wstring& text) {
    auto* block = static_cast<wchar_t*>(Give((text.size() + 1) * sizeof(wchar_t)));
    std::copy_n(text.c_str(), text.size() + 1, block);
    return block;
}

SDMKeyValueList* FakePane::Give(const Pairs& pairs) {
    auto* items = static_cast<SDMKeyValue*>(Give(pairs.size() * sizeof(SDMKeyValue)));
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        items[i] = {Give(pairs[i].first), Give(pairs[i].second)};
    }
    auto* list = static_cast<SDMKeyValueList*>(Give(sizeof(SDMKeyValueList)));
    *list = {pairs.size(), items};
    return list;
}

SDMRESULT FakePane::TakeBack(void** pointer) {
    if (pointer == nullptr || *pointer == nullptr) {
        return isTwoWay ? SDM_INVALID_ARGUMENT : SDM_NOT_AVAILABLE;
    }
    EXPECT_EQ(blocks.erase(*pointer), 1U) << "a block that no callback gave, or freed twice";
    if (isTwoWay) {
        Module::Loaded().free(*pointer);
        *pointer = nullptr;
    } else {
        std::free(*pointer);
    }
    return SDM_SUCCESS;
}

bool FakePane::Run() {
    const Module& module = Module::Loaded();
    JPHANDLE session = nullptr;
    if (module.beginSession(table.data(), &session) != SDM_SUCCESS) {
        return false;
    }
    for (int asked = 0; module.isServerReady(session) == 0; ++asked) {
        if (asked == 1000) {
            ADD_FAILURE() << "never ready";
            break;
        }
    }
    EXPECT_EQ(module.setJobKeyValues(session, BorrowedList(settings).Get()), SDM_SUCCESS);
    if (!templateSettings.empty()) {
        EXPECT_EQ(module.setJobKeyValues(session, BorrowedList(templateSettings).Get()), SDM_SUCCESS);
    }
    EXPECT_EQ(module.setReadOnlyKeys(session, BorrowedList(readOnly).Get()), SDM_SUCCESS);
    EXPECT_EQ(module.setVeiledKeys(session, BorrowedList(veiled).Get()), SDM_SUCCESS);
    if (hasWatermarks) {
        std::vector<wchar_t*> definitions;
        for (const std::wstring& definition : watermarks) {
            definitions.push_back(const_cast<wchar_t*>(definition.c_str()));
        }
        const JPWatermarkList list{definitions.size(), definitions.data()};
        EXPECT_EQ(module.setWatermarks(session, &list), SDM_SUCCESS);
    }
    openResult = module.openUI(session, "Printing Preferences", 3, 0, &result);
    TakeReturned(session);
    EXPECT_EQ(module.terminate(session), SDM_SUCCESS); // the handle that the module passed to callbacks
    EXPECT_EQ(module.dllEndServer(), SDM_SUCCESS);
    EXPECT_EQ(module.endSession(session), SDM_SUCCESS);
    return true;
}

void FakePane::TakeReturned(JPHANDLE session) {
    const Module& module = Module::Loaded();
    const auto text = [&](wchar_t* block) {
        std::wstring taken = block == nullptr ? L"<null>" : block;
        module.free(block);
        return taken;
    };
    SDMKeyValueList* list = nullptr;
    const bool succeeded = module.getJobKeyValues(session, 0, &list, nullptr) == SDM_SUCCESS;
    hasReturnedList = succeeded && list != nullptr;
    returned.clear();
    if (hasReturnedList) {
        for (std::size_t i = 0; i < list->count; ++i) {
            std::wstring key = text(list->items[i].szKey);
            returned.emplace_back(std::move(key), text(list->items[i].szValue));
        }
        module.free(list->items);
        module.free(list);
    }
    JPWatermarkList* definitions = nullptr;
    hasReturnedWatermarks =
        module.getWatermarks(session, &definitions) == SDM_SUCCESS && definitions != nullptr;
    returnedWatermarks.clear();
    if (hasReturnedWatermarks) {
        for (std::size_t i = 0; i < definitions->count; ++i) {
            returnedWatermarks.push_back(text(definitions->definitions[i]));
        }
        module.free(static_cast<void*>(definitions->definitions));
        module.free(definitions);
    }
}

std::wstring FakePane::Value(const std::wstring& key) const {
    for (const auto& [name, value] : returned) {
        if (name == key) {
            return value;
        }
    }
    return L"<absent>";
}

} // namespace torka::tests
