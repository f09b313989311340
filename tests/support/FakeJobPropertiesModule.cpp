// SPDX-License-Identifier: Apache-2.0
#include "tests/support/FakeJobPropertiesModule.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace torka::tests {

namespace {

FakeJobPropertiesModule* current = nullptr;
int session = 0;

wchar_t* copied(const std::wstring& text) {
    auto* copy = static_cast<wchar_t*>(current->Allocate((text.size() + 1) * sizeof(wchar_t)));
    *std::copy(text.begin(), text.end(), copy) = L'\0';
    return copy;
}

SDMRESULT beginSession(const SDMCallbackSlot* table, JPHANDLE* handle) {
    current->calls.emplace_back("begin");
    current->table = table;
    *handle = &session;
    return current->beginResult;
}

std::int32_t isServerReady(JPHANDLE handle) {
    EXPECT_EQ(handle, &session);
    if (current->readyAfter > 0) {
        --current->readyAfter;
        return 0;
    }
    return current->readyAfter == 0 ? 1 : 0;
}

SDMRESULT setJobKeyValues(JPHANDLE, const SDMKeyValueList* list) {
    current->calls.push_back("settings " + std::to_string(list->count));
    for (std::size_t i = 0; i < list->count; ++i) {
        current->Set(list->items[i].szKey, list->items[i].szValue);
    }
    return 0;
}

SDMRESULT keep(const char* call, std::vector<std::wstring>& keys, const SDMKeyValueList* list) {
    current->calls.emplace_back(call);
    for (std::size_t i = 0; i < list->count; ++i) {
        keys.emplace_back(list->items[i].szKey);
    }
    return 0;
}

SDMRESULT setWatermarks(JPHANDLE, const JPWatermarkList* list) {
    current->calls.emplace_back("watermarks");
    current->watermarks.assign(list->definitions, list->definitions + list->count);
    return 0;
}

SDMRESULT openUI(JPHANDLE handle, const char* title, std::int32_t flags, std::int32_t reserved,
                 std::int32_t* result) {
    EXPECT_EQ(handle, &session);
    EXPECT_EQ(flags, 3);
    EXPECT_EQ(reserved, 0);
    current->calls.emplace_back("open");
    current->title = title;
    if (current->edit) {
        current->edit();
    }
    *result = current->windowResult;
    return current->openResult;
}

SDMRESULT getJobKeyValues(JPHANDLE, std::int32_t, SDMKeyValueList** list, void*) {
    current->calls.emplace_back("get settings");
    if (current->returnsNull || current->getResult != 0) {
        return current->getResult;
    }
    *list = static_cast<SDMKeyValueList*>(current->Allocate(sizeof(SDMKeyValueList)));
    (*list)->count = current->settings.size();
    (*list)->items =
        static_cast<SDMKeyValue*>(current->Allocate(current->settings.size() * sizeof(SDMKeyValue)));
    for (std::size_t i = 0; i < current->settings.size(); ++i) {
        (*list)->items[i] = {copied(current->settings[i].first), copied(current->settings[i].second)};
    }
    return 0;
}

SDMRESULT getWatermarks(JPHANDLE, JPWatermarkList** list) {
    current->calls.emplace_back("get watermarks");
    if (current->returnsNull) {
        return 0;
    }
    *list = static_cast<JPWatermarkList*>(current->Allocate(sizeof(JPWatermarkList)));
    (*list)->count = current->watermarks.size();
    (*list)->definitions =
        static_cast<wchar_t**>(current->Allocate(current->watermarks.size() * sizeof(wchar_t*)));
    std::transform(current->watermarks.begin(), current->watermarks.end(), (*list)->definitions, copied);
    return 0;
}

void* allocMemory(SDMHANDLE, std::size_t size) {
    if (current->allocationsLeft == 0) {
        return nullptr;
    }
    --current->allocationsLeft;
    return current->Allocate(size);
}

SDMRESULT done(const char* call) {
    current->calls.emplace_back(call);
    return 0;
}

// Callers name the header's type as Proc, so that a different signature does not compile.
template <typename Proc>
void* symbol(Proc function) {
    return reinterpret_cast<void*>(function);
}

} // namespace

FakeJobPropertiesModule::FakeJobPropertiesModule() {
    current = this;
    auto made = std::make_unique<MemoryLibraryLoader>();
    loader = made.get();
    loader->libraries[path].symbols = {
        {"JP1_1BeginSession", symbol<JP1_1BeginSessionProc>(beginSession)},
        {"JP1_1IsServerReady", symbol<JP1_1IsServerReadyProc>(isServerReady)},
        {"JP1_1SetJobKeyValues", symbol<JP1_1SetJobKeyValuesProc>(setJobKeyValues)},
        {"JPSetJobReadOnlyKeys", symbol<JPSetJobReadOnlyKeysProc>([](JPHANDLE, const SDMKeyValueList* list) {
             return keep("read-only", current->readOnlyKeys, list);
         })},
        {"JP1_1SetJobVeiledKeys",
         symbol<JP1_1SetJobVeiledKeysProc>([](JPHANDLE, const SDMKeyValueList* list) {
             return keep("veiled", current->veiledKeys, list);
         })},
        {"JP1_1SetWatermarks", symbol<JP1_1SetWatermarksProc>(setWatermarks)},
        {"JP1_1OpenUI", symbol<JP1_1OpenUIProc>(openUI)},
        {"JP1_1GetJobKeyValues", symbol<JP1_1GetJobKeyValuesProc>(getJobKeyValues)},
        {"JP1_1GetWatermarks", symbol<JP1_1GetWatermarksProc>(getWatermarks)},
        {"JP1_1Free", symbol<JP1_1FreeProc>([](void* block) { block ? current->Free(block) : void(); })},
        {"SDMAllocMemory", symbol<SDMAllocMemoryProc>(allocMemory)},
        {"SDMTerminate", symbol<SDMTerminateProc>([](SDMHANDLE) { return done("terminate"); })},
        {"SDMDllEnd", symbol<SDMDllEndProc>([] { return done("data server end"); })},
        {"JP1_1EndSession", symbol<JP1_1EndSessionProc>([](JPHANDLE handle) {
             EXPECT_EQ(handle, &session);
             return done("end session");
         })},
        {"JP1_1DllEnd", symbol<JP1_1DllEndProc>([] { return done("end"); })},
    };
    setLibraryLoader(std::move(made));
}

FakeJobPropertiesModule::~FakeJobPropertiesModule() {
    EXPECT_TRUE(blocks.empty()) << blocks.size() << " blocks of the module were not freed";
    for (const auto& [block, size] : blocks) {
        std::free(block);
    }
    setLibraryLoader(nullptr);
    current = nullptr;
}

void FakeJobPropertiesModule::Set(const std::wstring& key, const std::wstring& value) {
    const auto known = std::ranges::find(settings, key, &Settings::value_type::first);
    (known == settings.end() ? settings.emplace_back(key, L"") : *known).second = value;
}

void* FakeJobPropertiesModule::Allocate(std::size_t size) {
    void* block = std::malloc(size + 1);
    blocks[block] = size;
    return block;
}

void FakeJobPropertiesModule::Free(void* block) {
    EXPECT_EQ(blocks.erase(block), 1U) << "no block of the module, or one that was freed";
    std::free(block);
}

} // namespace torka::tests
