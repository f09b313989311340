/* SPDX-License-Identifier: Apache-2.0 */
/* A module that lacks one entry point. It is written in C, so that the public header is compiled as C. */

#define JOB_PROPERTIES_MODULE
#include "bidi/JobPropertiesModule.h"

#include <stdlib.h>

static const SDMCallbackSlot* callbacks;

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

SDMRESULT JP1_1GetJobKeyValues(JPHANDLE session, int32_t flags, SDMKeyValueList** list, void* reserved) {
    return session && list && !flags && !reserved ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
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

SDMRESULT JP1_1DllEnd(void) { return SDM_SUCCESS; }
