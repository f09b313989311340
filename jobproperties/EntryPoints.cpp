// SPDX-License-Identifier: Apache-2.0
#define JOB_PROPERTIES_MODULE
#include "bidi/JobPropertiesModule.h"

#include "jobproperties/core/ModuleMemory.h"
#include "jobproperties/core/Session.h"
#include "jobproperties/core/Text.h"
#include "jobproperties/window/OpenWindow.h"

#include <cstring>
#include <iostream>

// The module's C interface. It checks all input. A handle without a session, a missing list and an
// implausible count return SDM_NOT_AVAILABLE. No exception leaves the module.

using namespace torka::jobproperties;

namespace {

constexpr std::size_t maximumTitleBytes = 256;

template <typename Action>
SDMRESULT guarded(Action&& action) noexcept {
    try {
        return action();
    } catch (const std::exception& error) {
        std::cerr << "Job Properties: " << error.what() << '\n';
    } catch (...) {
        std::cerr << "Job Properties: unknown failure\n";
    }
    return SDM_NOT_AVAILABLE;
}

template <typename Action>
SDMRESULT withSession(JPHANDLE handle, Action&& action) noexcept {
    return guarded([&]() -> SDMRESULT {
        Session* session = Sessions::All().Find(handle);
        return session == nullptr ? SDM_NOT_AVAILABLE : action(*session);
    });
}

// Converts a received list and passes it to `take`.
template <typename Take>
SDMRESULT withList(JPHANDLE handle, const SDMKeyValueList* list, Take&& take) noexcept {
    return withSession(handle, [&](Session& session) -> SDMRESULT {
        KeyValues values;
        if (!readList(list, values)) {
            return SDM_NOT_AVAILABLE;
        }
        take(session, values);
        return SDM_SUCCESS;
    });
}

} // namespace

SDMRESULT JP1_1BeginSession(const SDMCallbackSlot* table, JPHANDLE* session) {
    return guarded([&]() -> SDMRESULT {
        if (session == nullptr) {
            return SDM_NOT_AVAILABLE;
        }
        *session = nullptr;
        if (table == nullptr || table[SDM_SLOT_VERSION].number < SDM_CALLBACK_VERSION) {
            return SDM_NOT_AVAILABLE;
        }
        *session = Sessions::All().Begin(table);
        return *session == nullptr ? SDM_NOT_AVAILABLE : SDM_SUCCESS;
    });
}

int32_t JP1_1IsServerReady(JPHANDLE session) {
    bool isReady = false;
    withSession(session, [&](Session& found) -> SDMRESULT {
        isReady = found.IsServerReady();
        return SDM_SUCCESS;
    });
    return isReady ? 1 : 0;
}

SDMRESULT JP1_1SetJobKeyValues(JPHANDLE session, const SDMKeyValueList* list) {
    return withList(session, list,
                    [](Session& found, const KeyValues& values) { found.settings.HandOver(values); });
}

SDMRESULT JPSetJobReadOnlyKeys(JPHANDLE session, const SDMKeyValueList* list) {
    return withList(session, list, [](Session& found, const KeyValues& values) {
        found.settings.LockKeys(values, Lock::Administrator);
    });
}

SDMRESULT JP1_1SetJobVeiledKeys(JPHANDLE session, const SDMKeyValueList* list) {
    return withList(session, list,
                    [](Session& found, const KeyValues& values) { found.settings.VeilKeys(values); });
}

SDMRESULT JP1_1SetWatermarks(JPHANDLE session, const JPWatermarkList* list) {
    return withSession(session, [&](Session& found) -> SDMRESULT {
        if (list == nullptr || list->count > maximumListLength ||
            (list->count > 0 && list->definitions == nullptr)) {
            return SDM_NOT_AVAILABLE;
        }
        std::vector<std::string> definitions; // positions count, so a missing one becomes an empty one
        for (std::size_t i = 0; i < list->count; ++i) {
            definitions.push_back(fromWide(list->definitions[i]));
        }
        found.settings.HandOverWatermarks(std::move(definitions));
        return SDM_SUCCESS;
    });
}

SDMRESULT JP1_1OpenUI(JPHANDLE session, const char* title, int32_t /*flags*/, int32_t /*reserved*/,
                      int32_t* result) {
    return withSession(session, [&](Session& found) -> SDMRESULT {
        if (result == nullptr || found.isOpen) {
            return SDM_NOT_AVAILABLE;
        }
        *result = 1;
        const std::size_t length = title == nullptr ? 0 : ::strnlen(title, maximumTitleBytes);
        const std::string shown = cleanUtf8(std::string_view(length == 0 ? "" : title, length));
        found.TakeServerLocks();
        found.isOpen = true;
        const SDMRESULT answer = guarded([&]() -> SDMRESULT {
            return found.script ? found.script->Run(shown, *result) : openWindow(found, shown, *result);
        });
        found.isOpen = false;
        return answer;
    });
}

SDMRESULT JP1_1GetJobKeyValues(JPHANDLE session, int32_t /*flags*/, SDMKeyValueList** list,
                               void* /*reserved*/) {
    return withSession(session, [&](Session& found) -> SDMRESULT {
        if (list == nullptr) {
            return SDM_NOT_AVAILABLE;
        }
        *list = nullptr;
        if (found.script && found.script->GetFails()) {
            return SDM_NOT_AVAILABLE;
        }
        if (found.script && found.script->ReturnsNull()) {
            return SDM_SUCCESS;
        }
        std::vector<WideEntry> entries;
        for (const JobSetting& setting : found.settings.Settings()) {
            entries.push_back({toWide(setting.key), toWide(setting.value)});
        }
        if (found.script) {
            found.script->Spoil(entries);
        }
        *list = newSettingList(entries);
        return *list == nullptr ? SDM_NOT_AVAILABLE : SDM_SUCCESS;
    });
}

SDMRESULT JP1_1GetWatermarks(JPHANDLE session, JPWatermarkList** list) {
    return withSession(session, [&](Session& found) -> SDMRESULT {
        if (list == nullptr) {
            return SDM_NOT_AVAILABLE;
        }
        *list = nullptr;
        if (!found.settings.HasWatermarkList() || (found.script && found.script->ReturnsNull())) {
            return SDM_SUCCESS;
        }
        std::vector<std::wstring> definitions;
        for (const std::string& definition : found.settings.Watermarks()) {
            definitions.push_back(toWide(definition));
        }
        *list = newWatermarkList(definitions);
        return *list == nullptr ? SDM_NOT_AVAILABLE : SDM_SUCCESS;
    });
}

void JP1_1Free(void* pointer) { freeBlock(pointer); }

void* SDMAllocMemory(SDMHANDLE /*handle*/, size_t size) { return allocateBlock(size); }

// The session is also the connection to the data server, so these functions release nothing.
SDMRESULT SDMTerminate(SDMHANDLE handle) {
    return Sessions::All().Find(handle) == nullptr ? SDM_NOT_AVAILABLE : SDM_SUCCESS;
}

SDMRESULT SDMDllEnd(void) { return SDM_SUCCESS; }

SDMRESULT JP1_1EndSession(JPHANDLE session) {
    return guarded(
        [&]() -> SDMRESULT { return Sessions::All().End(session) ? SDM_SUCCESS : SDM_NOT_AVAILABLE; });
}

SDMRESULT JP1_1DllEnd(void) {
    return guarded([]() -> SDMRESULT { return Sessions::All().EndAll() ? SDM_SUCCESS : SDM_NOT_AVAILABLE; });
}
