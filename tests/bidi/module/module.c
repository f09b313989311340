/* SPDX-License-Identifier: Apache-2.0 */
/* The smallest module for a session. It is written in C, so that the public header is compiled as C. A second
 * build lacks one of its entry points. */

#define JOB_PROPERTIES_MODULE
#include "bidi/JobPropertiesModule.h"

#include <stdlib.h>

static const SDMCallbackSlot* callbacks;

static wchar_t* copied(const wchar_t* text) {
    const size_t size = (wcslen(text) + 1) * sizeof(wchar_t);
    wchar_t* copy = malloc(size);
    return copy ? wmemcpy(copy, text, size / sizeof(wchar_t)) : NULL;
}

SDMRESULT JP1_1BeginSession(const SDMCallbackSlot* table, JPHANDLE* session) {
    callbacks = table;
    *session = &callbacks;
    return table[SDM_SLOT_VERSION].number == SDM_CALLBACK_VERSION ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
}

int32_t JP1_1IsServerReady(JPHANDLE session) { return session == &callbacks; }

SDMRESULT JP1_1SetJobKeyValues(JPHANDLE session, const SDMKeyValueList* list) {
    return session && list ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
}

SDMRESULT JPSetJobReadOnlyKeys(JPHANDLE session, const SDMKeyValueList* list) {
    return session && list ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
}

SDMRESULT JP1_1SetJobVeiledKeys(JPHANDLE session, const SDMKeyValueList* list) {
    return session && list ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
}

SDMRESULT JP1_1SetWatermarks(JPHANDLE session, const JPWatermarkList* list) {
    return session && list ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
}

SDMRESULT JP1_1OpenUI(JPHANDLE session, const char* title, int32_t flags, int32_t reserved, int32_t* result) {
    *result = session && title && flags == 3 && reserved == 0 ? 0 : 1;
    return SDM_SUCCESS;
}

/* Returns one setting: the driver's version from the callback. */
SDMRESULT JP1_1GetJobKeyValues(JPHANDLE session, int32_t flags, SDMKeyValueList** list, void* reserved) {
    SDMGetDriverVersionProc getVersion =
        (SDMGetDriverVersionProc)callbacks[SDM_SLOT_GET_DRIVER_VERSION].function;
    SDMFreeProc freeBlock = (SDMFreeProc)callbacks[SDM_SLOT_FREE].function;
    wchar_t* version = NULL;
    (void)session, (void)flags, (void)reserved;
    *list = malloc(sizeof **list);
    if (!*list || getVersion(NULL, SDM_VERSION_DRIVER, &version) != SDM_SUCCESS) {
        free(*list);
        return SDM_NOT_AVAILABLE;
    }
    (*list)->items = malloc(sizeof *(*list)->items);
    (*list)->count = (*list)->items ? 1 : 0;
    if ((*list)->items) {
        (*list)->items[0].szKey = copied(L"DriverVersion");
        (*list)->items[0].szValue = copied(version);
    }
    freeBlock((void**)&version);
    return SDM_SUCCESS;
}

SDMRESULT JP1_1GetWatermarks(JPHANDLE session, JPWatermarkList** list) {
    (void)session, (void)list;
    return SDM_NOT_AVAILABLE;
}

void JP1_1Free(void* pointer) { free(pointer); }

void* SDMAllocMemory(SDMHANDLE handle, size_t size) {
    (void)handle;
    return malloc(size);
}

SDMRESULT SDMTerminate(SDMHANDLE handle) {
    (void)handle;
    return SDM_SUCCESS;
}

SDMRESULT SDMDllEnd(void) { return SDM_SUCCESS; }

#ifndef INCOMPLETE
SDMRESULT JP1_1EndSession(JPHANDLE session) {
    (void)session;
    return SDM_SUCCESS;
}
#endif

SDMRESULT JP1_1DllEnd(void) { return SDM_SUCCESS; }
