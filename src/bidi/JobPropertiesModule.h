/* SPDX-License-Identifier: Apache-2.0 */
#pragma once

/* The Job Properties module interface: the functions that a module library exports, and the callbacks of the
 * print dialog's pane that it may call. For C99 and C++; includes only standard headers.
 * docs/job-properties-module.md describes a session.
 *
 * A module is a shared library, "libzanjp2.so", that exports every entry point declared at the end of this
 * file under its C name. The pane loads it, hands it a table of callbacks, the job's settings and the
 * watermarks, lets it show its window, and takes the edited settings back.
 *
 * Text. Wide text is wchar_t with one Unicode code point per unit (32 bits), ended by a zero unit. Values
 * above U+10FFFF and surrogates become U+FFFD. Narrow text is UTF-8.
 *
 * Ownership. Every pointer in a structure is a block of its own; a structure is freed innermost block first.
 * The array of an empty list may be null.
 *
 * Arguments to the module (JP1_1Set..., JPSet..., the title): the pane keeps the ownership. The module copies
 * what it needs before it returns.
 *
 * Results of the module (JP1_1GetJobKeyValues, JP1_1GetWatermarks): the pane becomes the owner. It frees
 * every text, the array and the list with JP1_1Free.
 *
 * Results of a callback: the module becomes the owner. It frees each block with the callback in
 * SDM_SLOT_FREE. With two-way communication on, the pane allocates a block with SDMAllocMemory, and
 * SDM_SLOT_FREE frees it with JP1_1Free; these two functions must belong to one allocator. With two-way
 * communication off, a block comes from malloc, and SDM_SLOT_FREE frees it with free.
 *
 * The callback table: the pane keeps the ownership. The table is valid from JP1_1BeginSession to JP1_1DllEnd.
 *
 * When a callback does not return SDM_SUCCESS, its out-parameters are null or zero.
 *
 * Threads. The pane calls the module on one thread, and callbacks may be called on that thread only, between
 * JP1_1BeginSession and JP1_1EndSession. No call may throw through this interface.
 */

#include <stddef.h>
#include <stdint.h>
#include <wchar.h>

/* In C, "()" leaves the arguments unspecified and "(void)" declares none.
 * NOLINTBEGIN(modernize-redundant-void-arg) */

#ifdef __cplusplus
extern "C" {
#endif

/* Result of a callback or an entry point. */
typedef int32_t SDMRESULT;
enum {
    SDM_SUCCESS = 0,
    SDM_NOT_AVAILABLE = 4096,    /* data not available, or not supported */
    SDM_INVALID_ARGUMENT = 7100, /* SDM_SLOT_FREE only */
};

/* A module's session. JP1_1BeginSession creates it, and JP1_1EndSession ends it. Opaque to the pane. */
typedef void* JPHANDLE;
/* A module's connection to its data server, null if it has none. A session has one such handle. The module
 * passes it to each callback as the first argument. The pane passes it to SDMAllocMemory, and once, at the
 * end, to SDMTerminate. Before the first callback has named a handle, the pane passes null to
 * SDMAllocMemory. */
typedef void* SDMHANDLE;

/* One setting. */
typedef struct SDMKeyValue {
    wchar_t* szKey;   /* such as L"Duplex"; may begin with an asterisk. At most 64 bytes as UTF-8. */
    wchar_t* szValue; /* at most 700 bytes as UTF-8; the pane cuts a longer value */
} SDMKeyValue;

/* Settings. From a list that the module returns, the pane takes the first 3,000 entries. */
typedef struct SDMKeyValueList {
    size_t count;
    SDMKeyValue* items;
} SDMKeyValueList;

/* The kinds of supplies. */
enum {
    SDM_SUPPLY_OTHER = 0,
    SDM_SUPPLY_TONER = 1,
    SDM_SUPPLY_INK = 2,
    SDM_SUPPLY_WASTE = 3 /* fills up instead of running out */
};

/* A level or capacity below 0 is one of these. */
enum {
    SDM_LEVEL_UNKNOWN = -1,
    SDM_LEVEL_UNLIMITED = -2,
    SDM_LEVEL_SOME = -3 /* but not how much, as in RFC 3805 */
};

/* One supply: toner, ink, a waste box. The members stand in the order of the record. Percentages are 0 to
 * 100, or SDM_LEVEL_... */
typedef struct SDMTonerInfo {
    wchar_t* name;     /* to be shown, such as L"Cyan" */
    int32_t level;     /* percent: the remaining supply, or the fill level of a waste box */
    int32_t lowLevel;  /* percent at or below which it counts as low */
    wchar_t* color;    /* L"#rrggbb", several one after the other ("#00ffff#ff00ff"); null if it has none */
    int32_t highLevel; /* percent at or above which it counts as full (waste) */
    int32_t capacity;  /* pages of a full supply, or SDM_LEVEL_UNKNOWN */
    int32_t kind;      /* SDM_SUPPLY_... */
} SDMTonerInfo;

typedef struct SDMTonerInfoArray {
    size_t count;
    SDMTonerInfo* items;
} SDMTonerInfoArray;

/* One input tray. The members stand in the order of the record. A text that the server does not know is
 * null. */
typedef struct SDMTrayInfo {
    wchar_t* name;       /* to be shown, such as L"Tray 1" */
    wchar_t* key;        /* the tray's choice of "*InputSlot", such as L"Tray1" */
    wchar_t* mediaName;  /* the loaded medium, to be shown, such as L"Letterhead" */
    wchar_t* mediaSize;  /* its choice of "*PageSize", such as L"A4" */
    wchar_t* mediaType;  /* its choice of "*MediaType", such as L"Plain" */
    wchar_t* mediaColor; /* to be shown, such as L"White" */
    int32_t level;       /* sheets in it, or SDM_LEVEL_... */
    int32_t capacity;    /* sheets that it holds, or SDM_LEVEL_... */
} SDMTrayInfo;

typedef struct SDMTrayInfoArray {
    size_t count;
    SDMTrayInfo* items;
} SDMTrayInfoArray;

/* Fonts of the server. The pane supplies none. */
typedef enum enumSDMFlagFontFormat {
    SDM_FONT_FORMAT_ANY = 0,
    SDM_FONT_FORMAT_TYPE1 = 1,
    SDM_FONT_FORMAT_TRUETYPE = 2
} enumSDMFlagFontFormat;

typedef struct SDMFontInfo {
    wchar_t* name;
    int32_t format; /* enumSDMFlagFontFormat */
} SDMFontInfo;

typedef struct SDMFontInfoArray {
    size_t count;
    SDMFontInfo* items;
} SDMFontInfoArray;

/* Watermarks. A definition consists of 14 comma-separated fields and the text, which may hold commas: clear
 * (0 or 1), x offset, y offset, red, green, blue, 0, first page only (0 or 1), 0, angle, 0, 0, font size,
 * font name, text. Offsets and font size are in points, colours 0 to 255, the angle in tenths of a degree. A
 * definition has at most 1,023 bytes as UTF-8. All definitions, with one byte more each, have at most 5,153
 * bytes. The setting "*QV_WATERMARK" selects the watermark that the job prints: its position in the list, or
 * -1 for none. */
typedef struct JPWatermarkList {
    size_t count;
    wchar_t** definitions;
} JPWatermarkList;

/* Selects an item of the server's information. Other values select nothing. */
typedef enum JPSERVERINFO {
    JPSERVERINFO_SERVER_NAME = 0,
    JPSERVERINFO_SERVER_VERSION = 1,
    JPSERVERINFO_DISK_AVAILABLE = 5,
    JPSERVERINFO_DISK_TOTAL = 6,
    JPSERVERINFO_MEM_AVAILABLE = 7,
    JPSERVERINFO_PRODUCT_FAMILY = 11,
    JPSERVERINFO_SERVER_OS = 12,
    JPSERVERINFO_PCL_SUPPORT = 13,
    JPSERVERINFO_PS_SUPPORT = 14,
    JPSERVERINFO_HUE_KEEPER = 15,
    JPSERVERINFO_MEM_SIZE = 16
} JPSERVERINFO;

typedef enum enumVersionInfo { SDM_VERSION_SYSTEM = 0, SDM_VERSION_DRIVER = 1 } enumVersionInfo;

/* Actions on a job of the server. The pane performs none. */
typedef enum enumSDMJobAction { SDM_JOB_ACTION_NONE = 0 } enumSDMJobAction;

/* The callback table: 64 slots, each as wide as a pointer. Slot 0 holds the version as a number. Slot 1 holds
 * 1 when two-way communication is on, else 0. Every other slot is null or a function of the type named here.
 * "on" and "off" name the states of two-way communication in which the slot is filled. The words behind the
 * type describe the function's whole effect. */
enum { SDM_CALLBACK_SLOTS = 64, SDM_CALLBACK_VERSION = 19 };
typedef union SDMCallbackSlot {
    uint32_t number;        /* slots 0 and 1 */
    void (*function)(void); /* the other slots; cast it to the slot's type */
    void* asPointer;        /* makes the slot as wide as a pointer */
} SDMCallbackSlot;

enum {
    SDM_SLOT_VERSION = 0,                         /* number: SDM_CALLBACK_VERSION */
    SDM_SLOT_TWO_WAY = 1,                         /* number: 1 or 0 */
    SDM_SLOT_GET_SERVER_DATA = 4,                 /* on, off: SDMGetTextProc; XML text "SMDData" */
    SDM_SLOT_GET_PPD_DEFAULTS = 5,                /* on: SDMGetListProc */
    SDM_SLOT_UPDATE_OUTSIDE_PPD_OPTIONS = 6,      /* off: SDMGetListProc; nothing */
    SDM_SLOT_GET_FONT_LIST = 8,                   /* off: SDMGetFontListProc; nothing */
    SDM_SLOT_GET_FONTS = 9,                       /* off: SDMGetFontsProc; nothing */
    SDM_SLOT_GET_DEVICE_LINK_PROFILE = 10,        /* off: SDMGetTextByNameProc; not available */
    SDM_SLOT_GET_SERVER_FEATURE_VALUE = 12,       /* off: SDMGetTextByNameProc; nothing */
    SDM_SLOT_GET_PREVIEW_PAGE_THUMBNAIL_PNG = 13, /* off: SDMGetThumbnailProc; nothing */
    SDM_SLOT_GET_PREVIEW_PAGES_COUNT = 14,        /* on: SDMGetCountProc; not available. off: nothing */
    SDM_SLOT_PERFORM_JOB_ACTION = 15,             /* off: SDMPerformJobActionProc; nothing */
    SDM_SLOT_FREE = 19,                           /* on, off: SDMFreeProc */
    SDM_SLOT_GET_TRAY_INFO = 22,                  /* on: SDMGetTrayInfoProc */
    SDM_SLOT_GET_TONER_INFO = 23,                 /* on: SDMGetTonerInfoProc */
    SDM_SLOT_UPDATE_QUILLFORM_MASTERS = 25,       /* on: SDMGetTextProc; not available */
    SDM_SLOT_UPDATE_HUE_KEEPER_OPTIONS = 26,      /* on: SDMGetListProc. off: nothing */
    SDM_SLOT_GET_CALIBRATION = 41,                /* on: SDMGetTwoTextsProc; not available. off: nothing */
    SDM_SLOT_GET_SERVER_VALUE_FROM_DICT = 43,     /* on: SDMGetServerValueProc */
    SDM_SLOT_GET_DRIVER_VERSION = 45,             /* on, off: SDMGetDriverVersionProc */
    SDM_SLOT_GET_SERVER_PRESET_NAMES_LIST = 46,   /* on: SDMGetNamesProc */
    SDM_SLOT_GET_SERVER_PRESET_DATA_BY_NAME = 47, /* on: SDMGetPresetProc */
    SDM_SLOT_GET_CALIBRATION_EX = 51,             /* on: SDMGetTwoTextsProc; not available. off: nothing */
    SDM_SLOT_GET_LOCL_HELP_STRINGS = 53,          /* on: SDMGetListProc; setting and help text */
    SDM_SLOT_GET_NON_TORKA_CALIBRATION_INFO = 54, /* off: SDMGetTextProc; nothing */
    SDM_SLOT_GET_ALL_DEVICE_LINK_PROFILES = 55,   /* on: SDMGetListProc */
    SDM_SLOT_GET_SERVER_INFO_ALL = 56,            /* on, off: SDMGetListProc; "ServerName" and so on */
    SDM_SLOT_GET_SERVER_FEATURES_ALL = 57,        /* on, off: SDMGetListProc */
    SDM_SLOT_GET_HOLD_QUEUE_ATTRIBUTES = 62,      /* on, off: SDMGetTwoListsProc; defaults, locked keys */
    SDM_SLOT_GET_COLOR_KEYS_FACTORY_DEFAULTS = 63 /* on, off: SDMGetListProc */
};

/* The slots' functions. "Nothing" above means SDM_SUCCESS with out-parameters that are null or zero. A
 * function with an answer returns SDM_NOT_AVAILABLE for a null out-parameter. SDMFreeProc returns
 * SDM_INVALID_ARGUMENT for it when two-way communication is on. */
typedef SDMRESULT (*SDMGetTextProc)(SDMHANDLE handle, wchar_t** text);
typedef SDMRESULT (*SDMGetTwoTextsProc)(SDMHANDLE handle, wchar_t** first, wchar_t** second);
typedef SDMRESULT (*SDMGetTextByNameProc)(SDMHANDLE handle, const wchar_t* name, wchar_t** text);
typedef SDMRESULT (*SDMGetListProc)(SDMHANDLE handle, SDMKeyValueList** list);
/* The second list is null when the server gives none. */
typedef SDMRESULT (*SDMGetTwoListsProc)(SDMHANDLE handle, SDMKeyValueList** first, SDMKeyValueList** second);
typedef SDMRESULT (*SDMGetFontListProc)(SDMHANDLE handle, SDMFontInfoArray** fonts);
typedef SDMRESULT (*SDMGetFontsProc)(SDMHANDLE handle, enumSDMFlagFontFormat format,
                                     SDMFontInfoArray** fonts);
typedef SDMRESULT (*SDMGetThumbnailProc)(SDMHANDLE handle, int32_t page, uint8_t** png, size_t* size);
typedef SDMRESULT (*SDMGetCountProc)(SDMHANDLE handle, int32_t* count);
typedef SDMRESULT (*SDMPerformJobActionProc)(SDMHANDLE handle, enumSDMJobAction action);
typedef SDMRESULT (*SDMGetTrayInfoProc)(SDMHANDLE handle, SDMTrayInfoArray** trays);
typedef SDMRESULT (*SDMGetTonerInfoProc)(SDMHANDLE handle, SDMTonerInfoArray** toners);
/* `key` L"SPD_MAPPING_ENABLE" and L"QF1_NO_RECORD" return a whole text; any other key returns its value.
 * `index` is ignored. */
typedef SDMRESULT (*SDMGetServerValueProc)(SDMHANDLE handle, int32_t index, wchar_t** value,
                                           const wchar_t* key);
/* `kind` is an enumVersionInfo; any other value gives an empty text. The block has room for 2,048 units. */
typedef SDMRESULT (*SDMGetDriverVersionProc)(SDMHANDLE handle, int32_t kind, wchar_t** version);
/* `names` is an array of `count` texts, each in its own block. Without presets: SDM_SUCCESS and count 0. */
typedef SDMRESULT (*SDMGetNamesProc)(SDMHANDLE handle, wchar_t*** names, int32_t* count);
/* The three sets of settings in one preset of the server. */
typedef SDMRESULT (*SDMGetPresetProc)(SDMHANDLE handle, const wchar_t* name, SDMKeyValueList** jobValues,
                                      SDMKeyValueList** tesselValues, SDMKeyValueList** presetValues);
/* Frees the block at *pointer. With two-way communication on, sets *pointer to null, and returns
 * SDM_INVALID_ARGUMENT when there is nothing to free. With it off, keeps *pointer, and returns
 * SDM_NOT_AVAILABLE when there is nothing to free. */
typedef SDMRESULT (*SDMFreeProc)(void** pointer);

/* The module's entry points, in the order in which a session calls them. */

/* Non-zero when no session can begin; the pane then ignores *session. `table` has 64 slots. */
typedef SDMRESULT (*JP1_1BeginSessionProc)(const SDMCallbackSlot* table, JPHANDLE* session);
/* Non-zero once the server's data are available. The pane calls it every 100 ms until then, or until a person
 * stops the wait. */
typedef int32_t (*JP1_1IsServerReadyProc)(JPHANDLE session);
/* Settings to be shown. The pane calls it for the settings of the job, and a second time when an
 * administrator's template has settings; these override the job's key by key. */
typedef SDMRESULT (*JP1_1SetJobKeyValuesProc)(JPHANDLE session, const SDMKeyValueList* list);
/* Settings that a person may see but not change. The values are unused. */
typedef SDMRESULT (*JPSetJobReadOnlyKeysProc)(JPHANDLE session, const SDMKeyValueList* list);
/* Settings to hide. The values are unused. */
typedef SDMRESULT (*JP1_1SetJobVeiledKeysProc)(JPHANDLE session, const SDMKeyValueList* list);
typedef SDMRESULT (*JP1_1SetWatermarksProc)(JPHANDLE session, const JPWatermarkList* list);
/* Shows the window and returns when it is closed. `title` is UTF-8 in at most 256 bytes with its terminator.
 * `flags` is 3 and `reserved` 0. *result: 0 accepted, 1 cancelled, 2 the server's address was refused; any
 * other value counts as 2. A non-zero return value counts as cancelled. */
typedef SDMRESULT (*JP1_1OpenUIProc)(JPHANDLE session, const char* title, int32_t flags, int32_t reserved,
                                     int32_t* result);
/* Returns all settings after an accepted window, edited or not. `flags` is 0 and `reserved` null. */
typedef SDMRESULT (*JP1_1GetJobKeyValuesProc)(JPHANDLE session, int32_t flags, SDMKeyValueList** list,
                                              void* reserved);
/* A non-zero return value or a null list leaves the watermarks unchanged. */
typedef SDMRESULT (*JP1_1GetWatermarksProc)(JPHANDLE session, JPWatermarkList** list);
/* Frees one block that the module or SDMAllocMemory returned. Null is allowed. */
typedef void (*JP1_1FreeProc)(void* pointer);
/* Allocates a block for a callback's result, aligned for any type. Null when memory runs out. */
typedef void* (*SDMAllocMemoryProc)(SDMHANDLE handle, size_t size);
/* The pane calls these two at the end, before JP1_1EndSession, when two-way communication is on and the
 * module passed a handle to a callback that answers with the server's data. */
typedef SDMRESULT (*SDMTerminateProc)(SDMHANDLE handle);
typedef SDMRESULT (*SDMDllEndProc)(void);
typedef SDMRESULT (*JP1_1EndSessionProc)(JPHANDLE session);
/* The last call. Returns 0 when the module has ended. JP1_1BeginSession may follow. */
typedef SDMRESULT (*JP1_1DllEndProc)(void);

/* A module defines JOB_PROPERTIES_MODULE before it includes this file; the prototypes then export its
 * functions. */
#ifdef JOB_PROPERTIES_MODULE
#if defined(__GNUC__)
#define JP_EXPORT __attribute__((visibility("default")))
#else
#define JP_EXPORT
#endif
JP_EXPORT SDMRESULT JP1_1BeginSession(const SDMCallbackSlot* table, JPHANDLE* session);
JP_EXPORT int32_t JP1_1IsServerReady(JPHANDLE session);
JP_EXPORT SDMRESULT JP1_1SetJobKeyValues(JPHANDLE session, const SDMKeyValueList* list);
JP_EXPORT SDMRESULT JPSetJobReadOnlyKeys(JPHANDLE session, const SDMKeyValueList* list);
JP_EXPORT SDMRESULT JP1_1SetJobVeiledKeys(JPHANDLE session, const SDMKeyValueList* list);
JP_EXPORT SDMRESULT JP1_1SetWatermarks(JPHANDLE session, const JPWatermarkList* list);
JP_EXPORT SDMRESULT JP1_1OpenUI(JPHANDLE session, const char* title, int32_t flags, int32_t reserved,
                                int32_t* result);
JP_EXPORT SDMRESULT JP1_1GetJobKeyValues(JPHANDLE session, int32_t flags, SDMKeyValueList** list,
                                         void* reserved);
JP_EXPORT SDMRESULT JP1_1GetWatermarks(JPHANDLE session, JPWatermarkList** list);
JP_EXPORT void JP1_1Free(void* pointer);
JP_EXPORT void* SDMAllocMemory(SDMHANDLE handle, size_t size);
JP_EXPORT SDMRESULT SDMTerminate(SDMHANDLE handle);
JP_EXPORT SDMRESULT SDMDllEnd(void);
JP_EXPORT SDMRESULT JP1_1EndSession(JPHANDLE session);
JP_EXPORT SDMRESULT JP1_1DllEnd(void);
#endif

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-redundant-void-arg) */
