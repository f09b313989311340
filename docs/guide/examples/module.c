/* SPDX-License-Identifier: Apache-2.0 */
/* A Job Properties module in one file: it has no window, and switches printing on both sides on. Build it
 * with cc -shared -fPIC -fvisibility=hidden -I INCLUDE -o libzanjp2.so module.c */

#define JOB_PROPERTIES_MODULE
#include "bidi/JobPropertiesModule.h"

#include <stdlib.h>

typedef struct Session {
    SDMKeyValueList settings; /* a copy of what the pane gave */
} Session;

static Session only;

static wchar_t* copied(const wchar_t* text) {
    const size_t units = wcslen(text ? text : L"") + 1;
    wchar_t* copy = malloc(units * sizeof(wchar_t));
    return copy ? wmemcpy(copy, text ? text : L"", units) : NULL;
}

static void clear(SDMKeyValueList* list) {
    for (size_t i = 0; i < list->count; ++i) {
        free(list->items[i].szKey);
        free(list->items[i].szValue);
    }
    free(list->items);
    list->items = NULL;
    list->count = 0;
}

/* Copies a list. Leaves `to` empty when memory runs out. */
static SDMRESULT copy(SDMKeyValueList* to, const SDMKeyValueList* from) {
    to->count = 0;
    to->items = calloc(from->count + 1, sizeof *to->items);
    for (; to->items && to->count < from->count; ++to->count) {
        to->items[to->count].szKey = copied(from->items[to->count].szKey);
        to->items[to->count].szValue = copied(from->items[to->count].szValue);
        if (!to->items[to->count].szKey || !to->items[to->count].szValue) {
            ++to->count;
            clear(to);
            return SDM_NOT_AVAILABLE;
        }
    }
    return to->items ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
}

SDMRESULT JP1_1BeginSession(const SDMCallbackSlot* table, JPHANDLE* session) {
    *session = &only;
    return table[SDM_SLOT_VERSION].number == SDM_CALLBACK_VERSION ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
}

int32_t JP1_1IsServerReady(JPHANDLE session) { return session != NULL; }

SDMRESULT JP1_1SetJobKeyValues(JPHANDLE session, const SDMKeyValueList* list) {
    clear(&((Session*)session)->settings);
    return copy(&((Session*)session)->settings, list);
}

/* This module locks and hides nothing. */
SDMRESULT JPSetJobReadOnlyKeys(JPHANDLE session, const SDMKeyValueList* list) {
    return session && list ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
}
SDMRESULT JP1_1SetJobVeiledKeys(JPHANDLE session, const SDMKeyValueList* list) {
    return session && list ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
}
SDMRESULT JP1_1SetWatermarks(JPHANDLE session, const JPWatermarkList* list) {
    return session && list ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
}

/* Sets a value, and adds the setting when the list lacks it. The array has room for one more. */
static void set(SDMKeyValueList* list, const wchar_t* key, const wchar_t* value) {
    wchar_t* text = copied(value);
    size_t i = 0;
    while (i < list->count && wcscmp(list->items[i].szKey, key) != 0) {
        ++i;
    }
    if (i == list->count && text) {
        list->items[i].szKey = copied(key);
        list->count += list->items[i].szKey != NULL;
    }
    if (i < list->count && text) {
        free(list->items[i].szValue);
        list->items[i].szValue = text;
    } else {
        free(text);
    }
}

/* A module with a window shows it here, with an event loop of its own. Result 0 means accepted. */
SDMRESULT JP1_1OpenUI(JPHANDLE session, const char* title, int32_t flags, int32_t reserved, int32_t* result) {
    Session* own = session;
    (void)title, (void)flags, (void)reserved;
    if (!own->settings.items) {
        return SDM_NOT_AVAILABLE;
    }
    set(&own->settings, L"QVDuplex", L"LongEdge");
    *result = 0;
    return SDM_SUCCESS;
}

/* The pane becomes the owner, and frees each block with JP1_1Free. */
SDMRESULT JP1_1GetJobKeyValues(JPHANDLE session, int32_t flags, SDMKeyValueList** list, void* reserved) {
    (void)flags, (void)reserved;
    *list = malloc(sizeof **list);
    if (*list && copy(*list, &((Session*)session)->settings) != SDM_SUCCESS) {
        free(*list);
        *list = NULL;
    }
    return *list ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
}

SDMRESULT JP1_1GetWatermarks(JPHANDLE session, JPWatermarkList** list) {
    (void)session, (void)list;
    return SDM_NOT_AVAILABLE; /* they stay as they are */
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

SDMRESULT JP1_1EndSession(JPHANDLE session) {
    clear(&((Session*)session)->settings);
    return SDM_SUCCESS;
}

SDMRESULT JP1_1DllEnd(void) { return SDM_SUCCESS; }
