// SPDX-License-Identifier: Apache-2.0
#include "bidi/module/JobPropertiesCallbacks.h"

#include "MarkLetters.h"
#include "bidi/commands/CommandJob.h"
#include "bidi/commands/SpoolerCommands.h"
#include "bidi/module/JobPropertiesHost.h"
#include "bidi/module/JobPropertiesLibrary.h"
#include "bidi/module/JobPropertiesState.h"
#include "bidi/records/CFileHdlr.h"
#include "bidi/records/CPPDMsgHdlr.h"
#include "bidi/serverdata/CUtil.h"
#include "bidi/serverdata/ServerDataToSDM.h"
#include "bidi/serverdata/ServerDataXml.h"
#include "platform/Log.h"
#include "platform/TextEncoding.h"

#include <cstdlib>
#include <exception>
#include <optional>

namespace torka {

namespace {

// Runs the body of a callback: SDM_SUCCESS when it returns true. Catches exceptions, which must not reach the
// module.
template <typename Answer>
SDMRESULT answer(Answer&& tryToAnswer) {
    try {
        return tryToAnswer() ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
    } catch (const std::exception& failure) {
        myNSLogC("A callback of the Job Properties module failed: %s", failure.what());
        return SDM_NOT_AVAILABLE;
    }
}

// Whether callbacks allocate their results with the module's allocator.
bool isTwoWayTable() { return mFuncList[SDM_SLOT_TWO_WAY].number != 0 && jobPropertiesFunctions(); }

// Remembers the module's data server, because the session's end must terminate it even when every callback
// failed.
void rememberServer(SDMHANDLE handle) {
    if (handle && isTwoWayTable()) {
        mSDMHandle = handle;
    }
}

// The memory whose blocks the table's free callback frees.
ModuleMemory resultMemory(SDMHANDLE handle) {
    rememberServer(handle);
    return isTwoWayTable() ? moduleMemory(handle) : ModuleMemory();
}

// Reads a record from the pane's two-way data; nullopt when it is absent.
std::optional<std::wstring> readRecord(std::string_view name) {
    const std::shared_ptr<const std::string> data =
        jobPropertiesHost() ? jobPropertiesHost()->getBidiDataCopy() : nullptr;
    std::size_t size = 0;
    const RecordBlock block =
        CFileHdlr::stringReadData(data ? std::string_view(*data) : std::string_view(), name, &size);
    if (!block) {
        return std::nullopt;
    }
    return wideFromPayload({block.get(), size});
}

// Answers a callback with a record's text after `convert` has parsed it.
template <typename Out, typename Convert>
SDMRESULT answerFromRecord(SDMHANDLE handle, Out** out, std::string_view name, const Convert& convert) {
    rememberServer(handle);
    if (!out) {
        return SDM_NOT_AVAILABLE;
    }
    *out = nullptr;
    return answer([&] {
        const std::optional<std::wstring> text = readRecord(name);
        return text && !text->empty() && convert(*text, resultMemory(handle), *out);
    });
}

bool wholeText(std::wstring_view text, const ModuleMemory& memory, wchar_t*& out) {
    return AllocAndAssignValue(memory, out, text);
}

bool keyValueSet(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out) {
    return SDMAllocKeyValueListFromKeyValueSetWChar(memory, text, out);
}

template <typename... Out>
void clear(Out*... outs) {
    ((outs ? void(*outs = Out{}) : void()), ...);
}

template <typename... Out>
SDMRESULT nothing(SDMRESULT result, Out*... outs) {
    clear(outs...);
    return result;
}

} // namespace

// With two-way communication on

// A controller may leave the path of the description empty. The module then reads this machine's.
SDMRESULT sdmFuncPtrGetServerData(SDMHANDLE handle, wchar_t** xml) {
    return answerFromRecord(
        handle, xml, "BidiData", [](std::wstring_view text, const ModuleMemory& memory, wchar_t*& out) {
            const std::string_view path = sharedList ? fieldText(sharedList->ppdCopyPath) : "";
            return wholeText(withDescriptionPath(text, wideFromUtf8(path)), memory, out);
        });
}

SDMRESULT sdmGetPPDDefaults(SDMHANDLE handle, SDMKeyValueList** list) {
    return answerFromRecord(handle, list, "PpdDefaults", PPDDefaultsToSDM);
}

SDMRESULT sdmGetPreviewPagesCount(SDMHANDLE, int32_t* count) { return nothing(SDM_NOT_AVAILABLE, count); }

SDMRESULT sdmFuncPtrFree(void** pointer) {
    if (!pointer || !*pointer || !jobPropertiesFunctions()) {
        return SDM_INVALID_ARGUMENT;
    }
    jobPropertiesFunctions()->Free(*pointer);
    *pointer = nullptr;
    return SDM_SUCCESS;
}

SDMRESULT sdmFuncPtrGetTrayInfo(SDMHANDLE handle, SDMTrayInfoArray** trays) {
    return answerFromRecord(handle, trays, "TrayInfo", GetTrayInfoToSDM);
}

SDMRESULT sdmFuncPtrGetTonerInfo(SDMHANDLE handle, SDMTonerInfoArray** toners) {
    rememberServer(handle);
    if (!toners) {
        return SDM_NOT_AVAILABLE;
    }
    *toners = nullptr;
    return answer([&] {
        const std::optional<std::wstring> text = readRecord("TonerInfo");
        if (text && text->empty()) {
            do_not_poll_for_Toner_Info_File = true;
        }
        return text && !text->empty() && GetTonerInfoToSDM(*text, resultMemory(handle), *toners);
    });
}

SDMRESULT sdmFuncPtrUpdateQuillformMasters(SDMHANDLE, wchar_t** text) {
    return nothing(SDM_NOT_AVAILABLE, text);
}

SDMRESULT sdmUpdateHueKeeperOptions(SDMHANDLE handle, SDMKeyValueList** list) {
    return answerFromRecord(handle, list, "HueKeeper", UpdateHueKeeperOptionsToSDM);
}

SDMRESULT sdmFuncPtrGetCalibration(SDMHANDLE, wchar_t** calibrations, wchar_t** current) {
    return nothing(SDM_NOT_AVAILABLE, calibrations, current);
}

SDMRESULT sdmFuncPtrGetCalibrationEx(SDMHANDLE, wchar_t** calibrations, wchar_t** current) {
    return nothing(SDM_NOT_AVAILABLE, calibrations, current);
}

SDMRESULT sdmFuncPtrGetServerValueFromDict(SDMHANDLE handle, int32_t, wchar_t** value, const wchar_t* key) {
    const std::wstring_view wanted = key ? key : L"";
    if (wanted == L"SPD_MAPPING_ENABLE") {
        return answerFromRecord(handle, value, "ServerValFrmDictspdmapen", wholeText);
    }
    if (wanted == L"QF1_NO_RECORD") {
        return answerFromRecord(handle, value, "ServerValFrmDictqfnorec", wholeText);
    }
    return answerFromRecord(handle, value, "ServerValFrmDict",
                            [&](std::wstring_view text, const ModuleMemory& memory, wchar_t*& out) {
                                return GetServerValueFromDictToSDM(text, memory, wanted, out);
                            });
}

SDMRESULT sdmFuncPtrGetServerPresetNamesList(SDMHANDLE handle, wchar_t*** names, int32_t* count) {
    clear(count);
    return answerFromRecord(handle, names, "PresetsList",
                            [&](std::wstring_view text, const ModuleMemory& memory, wchar_t**& out) {
                                return count && GetServerPresetNamesListToSDM(text, memory, out, *count);
                            });
}

SDMRESULT sdmFuncPtrGetServerPresetDataByName(SDMHANDLE handle, const wchar_t* name,
                                              SDMKeyValueList** jobValues, SDMKeyValueList** tesselValues,
                                              SDMKeyValueList** presetValues) {
    clear(tesselValues, presetValues);
    if (!tesselValues || !presetValues) {
        return nothing(SDM_NOT_AVAILABLE, jobValues);
    }
    return answerFromRecord(handle, jobValues, "PresetsData",
                            [&](std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out) {
                                return GetServerPresetDataByNameToSDM(text, memory, name ? name : L"", out,
                                                                      *tesselValues, *presetValues);
                            });
}

SDMRESULT sdmFuncPtrGetLoclHelpStrings(SDMHANDLE handle, SDMKeyValueList** list) {
    return answerFromRecord(handle, list, "CDIHelpStrings", GetLoclHelpStringsToSDM);
}

SDMRESULT sdmFuncPtrGetAllDeviceLinkProfiles(SDMHANDLE handle, SDMKeyValueList** list) {
    return answerFromRecord(handle, list, "DeviceLinkProfilesList", GetAllDeviceLinkProfilesToSDM);
}

// In both states

SDMRESULT sdmFuncPtrGetDriverVersion(SDMHANDLE handle, int32_t kind, wchar_t** version) {
    constexpr std::size_t blockUnits = 8192 / sizeof(wchar_t);
    if (!version) {
        return SDM_NOT_AVAILABLE;
    }
    *version = nullptr;
    return answer([&] {
        std::string text;
        if (sharedList && kind == SDM_VERSION_DRIVER) {
            // The text is a format without conversions: "%%" means a percent sign. No argument is ever read.
            text = CUtil::__replace(fieldText(sharedList->driverVersion), "%%", "%");
        } else if (sharedList && kind == SDM_VERSION_SYSTEM) {
            text = fieldText(sharedList->osVersion);
        }
        const std::wstring wide = wideFromUtf8(text).substr(0, blockUnits - 1);
        *version = resultMemory(handle).NewText(wide, blockUnits);
        return *version != nullptr;
    });
}

SDMRESULT sdmFuncPtrGetServerInfoAll(SDMHANDLE handle, SDMKeyValueList** list) {
    return answerFromRecord(handle, list, "ServerInfo", GetServerInfoAllToSDM);
}

SDMRESULT sdmFuncPtrGetServerFeaturesAll(SDMHANDLE handle, SDMKeyValueList** list) {
    return answerFromRecord(handle, list, "ServerFeatureSupport", keyValueSet);
}

SDMRESULT sdmFuncPtrGetHoldQueueAttributes(SDMHANDLE handle, SDMKeyValueList** properties,
                                           SDMKeyValueList** lockedKeys) {
    clear(lockedKeys);
    if (!lockedKeys) {
        return nothing(SDM_NOT_AVAILABLE, properties);
    }
    const SDMRESULT result = answerFromRecord(handle, properties, "QueuePropList", QueueDefaultsToSDM);
    if (result == SDM_SUCCESS) {
        answerFromRecord(handle, lockedKeys, "ListLockedKeys", QueueDefaultsToSDM);
    }
    return result;
}

SDMRESULT sdmFuncPtrGetColorKeysFactoryDefaultValues(SDMHANDLE handle, SDMKeyValueList** list) {
    return answerFromRecord(handle, list, "ColorDefaultList", keyValueSet);
}

// With two-way communication off

SDMRESULT sdmFuncPtrGetServerDataNonBidi(SDMHANDLE handle, wchar_t** xml) {
    if (!xml) {
        return SDM_NOT_AVAILABLE;
    }
    *xml = nullptr;
    return answer([&] {
        return sharedList &&
               serverDataNonBidi(*sharedList, gServerLanguage, resultMemory(handle), *xml) == SDM_SUCCESS;
    });
}

SDMRESULT sdmFuncPtrFreeNonBidi(void** pointer) {
    if (!pointer || !*pointer) {
        return SDM_NOT_AVAILABLE;
    }
    std::free(*pointer);
    return SDM_SUCCESS;
}

SDMRESULT pUpdateOutsidePPDOptions(SDMHANDLE, SDMKeyValueList** list) { return nothing(SDM_SUCCESS, list); }

SDMRESULT pGetFontList(SDMHANDLE, SDMFontInfoArray** fonts) { return nothing(SDM_SUCCESS, fonts); }

SDMRESULT pGetFonts(SDMHANDLE, enumSDMFlagFontFormat, SDMFontInfoArray** fonts) {
    return nothing(SDM_SUCCESS, fonts);
}

SDMRESULT pGetDeviceLinkProfile(SDMHANDLE, const wchar_t*, wchar_t** profile) {
    return nothing(SDM_NOT_AVAILABLE, profile);
}

SDMRESULT pGetServerFeatureValue(SDMHANDLE, const wchar_t*, wchar_t** value) {
    return nothing(SDM_SUCCESS, value);
}

SDMRESULT pGetPreviewPageThumbnailPNG(SDMHANDLE, int32_t, uint8_t** png, size_t* size) {
    return nothing(SDM_SUCCESS, png, size);
}

SDMRESULT pGetPreviewPagesCount(SDMHANDLE, int32_t* count) { return nothing(SDM_SUCCESS, count); }

SDMRESULT pPerformJobAction(SDMHANDLE, enumSDMJobAction) { return SDM_SUCCESS; }

SDMRESULT pUpdateHueKeeperOptions(SDMHANDLE, SDMKeyValueList** list) { return nothing(SDM_SUCCESS, list); }

SDMRESULT pGetCalibration(SDMHANDLE, wchar_t** calibrations, wchar_t** current) {
    return nothing(SDM_SUCCESS, calibrations, current);
}

SDMRESULT pGetCalibrationEx(SDMHANDLE, wchar_t** calibrations, wchar_t** current) {
    return nothing(SDM_SUCCESS, calibrations, current);
}

SDMRESULT pGetNonTorkaCalibrationInfo(SDMHANDLE, wchar_t** info) { return nothing(SDM_SUCCESS, info); }

// Not in the table

SDMRESULT sdmFuncPtrGetServerInfo(SDMHANDLE handle, int32_t item, wchar_t** value) {
    return answerFromRecord(handle, value, "ServerInfo",
                            [&](std::wstring_view text, const ModuleMemory& memory, wchar_t*& out) {
                                return GetServerInfoToSDM(text, memory, item, out);
                            });
}

SDMRESULT sdmFuncPtrIsServerFeatureSupported(SDMHANDLE, const wchar_t* name, int32_t* supported) {
    if (!supported) {
        return SDM_NOT_AVAILABLE;
    }
    *supported = 0;
    return answer([&] {
        const std::optional<std::wstring> text = readRecord("ServerFeatureSupport");
        bool isSupported = false;
        if (!text || text->empty() || !IsServerFeatureSupportedToSDM(*text, name ? name : L"", isSupported)) {
            return false;
        }
        *supported = isSupported ? 1 : 0;
        return true;
    });
}

SDMRESULT sdmFuncPtrGetServerFeatureValue(SDMHANDLE handle, const wchar_t* name, wchar_t** value) {
    return answerFromRecord(handle, value, "ServerFeatureSupport",
                            [&](std::wstring_view text, const ModuleMemory& memory, wchar_t*& out) {
                                return GetServerFeatureValueToSDM(text, memory, name ? name : L"", out);
                            });
}

SDMRESULT sdmFuncPtrGetLocalPresetsData(SDMHANDLE handle, wchar_t** presets, int32_t) {
    if (!presets) {
        return SDM_NOT_AVAILABLE;
    }
    *presets = nullptr;
    return answer([&] {
        CPPDMsgHdlr record(destinationPPD(), "localPreset");
        const bool isTwoWay = sharedList && fieldNumber(sharedList->bidiEnabled) == 1;
        const ModuleMemory memory = isTwoWay ? resultMemory(handle) : ModuleMemory();
        return GetLocalPresetsDataToSDM(record.GetStringData(), memory, *presets);
    });
}

SDMRESULT sdmFuncPtrSetLocalPresetsData(SDMHANDLE, const wchar_t* const* data, int32_t count) {
    if (!data || !*data || count < 1) {
        return SDM_NOT_AVAILABLE;
    }
    return answer([&] {
        JobPropertiesHost* host = jobPropertiesHost();
        const std::string text = CUtil::__replace(utf8FromWide(*data), narrowMark, markLetters);
        if (!host) {
            return false;
        }
        const CommandOutcome outcome = sendCommandAndWait(
            host->CurrentPrinter(), text, commandTitle(SpoolerCommand::writePresetData), host->Observer());
        return outcome == CommandOutcome::completed ||
               (outcome == CommandOutcome::ended &&
                CPPDMsgHdlr(destinationPPD(), "localPreset").GetStringData() == wideFromUtf8(text));
    });
}

} // namespace torka
