// SPDX-License-Identifier: Apache-2.0
#include "bidi/module/JobPropertiesCallbacks.h"
#include "bidi/module/JobPropertiesState.h"

namespace torka {

namespace {

// Callers name the slot's type as Proc, so that the compiler checks the function against it.
template <typename Proc>
void setSlot(int slot, Proc callback) {
    mFuncList[static_cast<std::size_t>(slot)].function = reinterpret_cast<void (*)()>(callback);
}

void fillForBoth() {
    setSlot<SDMGetDriverVersionProc>(SDM_SLOT_GET_DRIVER_VERSION, sdmFuncPtrGetDriverVersion);
    setSlot<SDMGetListProc>(SDM_SLOT_GET_SERVER_INFO_ALL, sdmFuncPtrGetServerInfoAll);
    setSlot<SDMGetListProc>(SDM_SLOT_GET_SERVER_FEATURES_ALL, sdmFuncPtrGetServerFeaturesAll);
    setSlot<SDMGetTwoListsProc>(SDM_SLOT_GET_HOLD_QUEUE_ATTRIBUTES, sdmFuncPtrGetHoldQueueAttributes);
    setSlot<SDMGetListProc>(SDM_SLOT_GET_COLOR_KEYS_FACTORY_DEFAULTS,
                            sdmFuncPtrGetColorKeysFactoryDefaultValues);
}

void fillForTwoWay() {
    setSlot<SDMGetTextProc>(SDM_SLOT_GET_SERVER_DATA, sdmFuncPtrGetServerData);
    setSlot<SDMGetListProc>(SDM_SLOT_GET_PPD_DEFAULTS, sdmGetPPDDefaults);
    setSlot<SDMGetCountProc>(SDM_SLOT_GET_PREVIEW_PAGES_COUNT, sdmGetPreviewPagesCount);
    setSlot<SDMFreeProc>(SDM_SLOT_FREE, sdmFuncPtrFree);
    setSlot<SDMGetTrayInfoProc>(SDM_SLOT_GET_TRAY_INFO, sdmFuncPtrGetTrayInfo);
    setSlot<SDMGetTonerInfoProc>(SDM_SLOT_GET_TONER_INFO, sdmFuncPtrGetTonerInfo);
    setSlot<SDMGetTextProc>(SDM_SLOT_UPDATE_QUILLFORM_MASTERS, sdmFuncPtrUpdateQuillformMasters);
    setSlot<SDMGetListProc>(SDM_SLOT_UPDATE_HUE_KEEPER_OPTIONS, sdmUpdateHueKeeperOptions);
    setSlot<SDMGetTwoTextsProc>(SDM_SLOT_GET_CALIBRATION, sdmFuncPtrGetCalibration);
    setSlot<SDMGetServerValueProc>(SDM_SLOT_GET_SERVER_VALUE_FROM_DICT, sdmFuncPtrGetServerValueFromDict);
    setSlot<SDMGetNamesProc>(SDM_SLOT_GET_SERVER_PRESET_NAMES_LIST, sdmFuncPtrGetServerPresetNamesList);
    setSlot<SDMGetPresetProc>(SDM_SLOT_GET_SERVER_PRESET_DATA_BY_NAME, sdmFuncPtrGetServerPresetDataByName);
    setSlot<SDMGetTwoTextsProc>(SDM_SLOT_GET_CALIBRATION_EX, sdmFuncPtrGetCalibrationEx);
    setSlot<SDMGetListProc>(SDM_SLOT_GET_LOCL_HELP_STRINGS, sdmFuncPtrGetLoclHelpStrings);
    setSlot<SDMGetListProc>(SDM_SLOT_GET_ALL_DEVICE_LINK_PROFILES, sdmFuncPtrGetAllDeviceLinkProfiles);
}

void fillForOneWay() {
    setSlot<SDMGetTextProc>(SDM_SLOT_GET_SERVER_DATA, sdmFuncPtrGetServerDataNonBidi);
    setSlot<SDMGetListProc>(SDM_SLOT_UPDATE_OUTSIDE_PPD_OPTIONS, pUpdateOutsidePPDOptions);
    setSlot<SDMGetFontListProc>(SDM_SLOT_GET_FONT_LIST, pGetFontList);
    setSlot<SDMGetFontsProc>(SDM_SLOT_GET_FONTS, pGetFonts);
    setSlot<SDMGetTextByNameProc>(SDM_SLOT_GET_DEVICE_LINK_PROFILE, pGetDeviceLinkProfile);
    setSlot<SDMGetTextByNameProc>(SDM_SLOT_GET_SERVER_FEATURE_VALUE, pGetServerFeatureValue);
    setSlot<SDMGetThumbnailProc>(SDM_SLOT_GET_PREVIEW_PAGE_THUMBNAIL_PNG, pGetPreviewPageThumbnailPNG);
    setSlot<SDMGetCountProc>(SDM_SLOT_GET_PREVIEW_PAGES_COUNT, pGetPreviewPagesCount);
    setSlot<SDMPerformJobActionProc>(SDM_SLOT_PERFORM_JOB_ACTION, pPerformJobAction);
    setSlot<SDMFreeProc>(SDM_SLOT_FREE, sdmFuncPtrFreeNonBidi);
    setSlot<SDMGetListProc>(SDM_SLOT_UPDATE_HUE_KEEPER_OPTIONS, pUpdateHueKeeperOptions);
    setSlot<SDMGetTwoTextsProc>(SDM_SLOT_GET_CALIBRATION, pGetCalibration);
    setSlot<SDMGetTwoTextsProc>(SDM_SLOT_GET_CALIBRATION_EX, pGetCalibrationEx);
    setSlot<SDMGetTextProc>(SDM_SLOT_GET_NON_TORKA_CALIBRATION_INFO, pGetNonTorkaCalibrationInfo);
}

} // namespace

void fillCallbackTable(bool twoWay) {
    mFuncList.fill(SDMCallbackSlot{.asPointer = nullptr});
    mFuncList[SDM_SLOT_VERSION].number = SDM_CALLBACK_VERSION;
    mFuncList[SDM_SLOT_TWO_WAY].number = twoWay ? 1 : 0;
    fillForBoth();
    if (twoWay) {
        fillForTwoWay();
    } else {
        fillForOneWay();
    }
}

} // namespace torka
