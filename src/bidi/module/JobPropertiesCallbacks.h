// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/JobPropertiesModule.h"

// The callbacks that a Job Properties module may call. They answer from the two-way data that the pane read
// last and from the exchange record of the launch. The module owns what they return.

namespace torka {

// Fills mFuncList for a state of two-way communication.
void fillCallbackTable(bool twoWay);

// Callbacks with two-way communication on.
SDMRESULT sdmFuncPtrGetServerData(SDMHANDLE handle, wchar_t** xml);
SDMRESULT sdmGetPPDDefaults(SDMHANDLE handle, SDMKeyValueList** list);
SDMRESULT sdmGetPreviewPagesCount(SDMHANDLE handle, int32_t* count);
SDMRESULT sdmFuncPtrFree(void** pointer);
SDMRESULT sdmFuncPtrGetTrayInfo(SDMHANDLE handle, SDMTrayInfoArray** trays);
// Sets do_not_poll_for_Toner_Info_File when the record exists and is empty.
SDMRESULT sdmFuncPtrGetTonerInfo(SDMHANDLE handle, SDMTonerInfoArray** toners);
SDMRESULT sdmFuncPtrUpdateQuillformMasters(SDMHANDLE handle, wchar_t** text);
SDMRESULT sdmUpdateHueKeeperOptions(SDMHANDLE handle, SDMKeyValueList** list);
SDMRESULT sdmFuncPtrGetCalibration(SDMHANDLE handle, wchar_t** calibrations, wchar_t** current);
SDMRESULT sdmFuncPtrGetCalibrationEx(SDMHANDLE handle, wchar_t** calibrations, wchar_t** current);
SDMRESULT sdmFuncPtrGetServerValueFromDict(SDMHANDLE handle, int32_t index, wchar_t** value,
                                           const wchar_t* key);
SDMRESULT sdmFuncPtrGetServerPresetNamesList(SDMHANDLE handle, wchar_t*** names, int32_t* count);
SDMRESULT sdmFuncPtrGetServerPresetDataByName(SDMHANDLE handle, const wchar_t* name,
                                              SDMKeyValueList** jobValues, SDMKeyValueList** tesselValues,
                                              SDMKeyValueList** presetValues);
SDMRESULT sdmFuncPtrGetLoclHelpStrings(SDMHANDLE handle, SDMKeyValueList** list);
SDMRESULT sdmFuncPtrGetAllDeviceLinkProfiles(SDMHANDLE handle, SDMKeyValueList** list);

// Callbacks in both states.
SDMRESULT sdmFuncPtrGetDriverVersion(SDMHANDLE handle, int32_t kind, wchar_t** version);
SDMRESULT sdmFuncPtrGetServerInfoAll(SDMHANDLE handle, SDMKeyValueList** list);
SDMRESULT sdmFuncPtrGetServerFeaturesAll(SDMHANDLE handle, SDMKeyValueList** list);
// SDM_SUCCESS when the record of the queue's properties exists. The locked keys are null without their
// record.
SDMRESULT sdmFuncPtrGetHoldQueueAttributes(SDMHANDLE handle, SDMKeyValueList** properties,
                                           SDMKeyValueList** lockedKeys);
SDMRESULT sdmFuncPtrGetColorKeysFactoryDefaultValues(SDMHANDLE handle, SDMKeyValueList** list);

// Callbacks with two-way communication off.
SDMRESULT sdmFuncPtrGetServerDataNonBidi(SDMHANDLE handle, wchar_t** xml);
SDMRESULT sdmFuncPtrFreeNonBidi(void** pointer);
SDMRESULT pUpdateOutsidePPDOptions(SDMHANDLE handle, SDMKeyValueList** list);
SDMRESULT pGetFontList(SDMHANDLE handle, SDMFontInfoArray** fonts);
SDMRESULT pGetFonts(SDMHANDLE handle, enumSDMFlagFontFormat format, SDMFontInfoArray** fonts);
SDMRESULT pGetDeviceLinkProfile(SDMHANDLE handle, const wchar_t* name, wchar_t** profile);
SDMRESULT pGetServerFeatureValue(SDMHANDLE handle, const wchar_t* name, wchar_t** value);
SDMRESULT pGetPreviewPageThumbnailPNG(SDMHANDLE handle, int32_t page, uint8_t** png, size_t* size);
SDMRESULT pGetPreviewPagesCount(SDMHANDLE handle, int32_t* count);
SDMRESULT pPerformJobAction(SDMHANDLE handle, enumSDMJobAction action);
SDMRESULT pUpdateHueKeeperOptions(SDMHANDLE handle, SDMKeyValueList** list);
SDMRESULT pGetCalibration(SDMHANDLE handle, wchar_t** calibrations, wchar_t** current);
SDMRESULT pGetCalibrationEx(SDMHANDLE handle, wchar_t** calibrations, wchar_t** current);
SDMRESULT pGetNonTorkaCalibrationInfo(SDMHANDLE handle, wchar_t** info);

// Given interface; no caller here
// Functions that are not in the table.
SDMRESULT sdmFuncPtrGetServerInfo(SDMHANDLE handle, int32_t item, wchar_t** value);
SDMRESULT sdmFuncPtrIsServerFeatureSupported(SDMHANDLE handle, const wchar_t* name, int32_t* supported);
SDMRESULT sdmFuncPtrGetServerFeatureValue(SDMHANDLE handle, const wchar_t* name, wchar_t** value);
// Returns the presets that the queue's description keeps for this computer. Ignores `flag`.
SDMRESULT sdmFuncPtrGetLocalPresetsData(SDMHANDLE handle, wchar_t** presets, int32_t flag);
// Sends the first of `count` texts to the queue and waits until the queue has stored it.
SDMRESULT sdmFuncPtrSetLocalPresetsData(SDMHANDLE handle, const wchar_t* const* data, int32_t count);

} // namespace torka
