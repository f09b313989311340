// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/UTF8Level.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "PPDX/PPDObjects/NumberText.h"
#include "pane/data/ControlTables.h"
#include "pane/data/ControlValueText.h"
#include "pane/data/CutText.h"
#include "pane/data/PDEData.h"
#include "pane/data/SpecialControls.h"
#include "pane/data/SystemPaper.h"
#include "pane/panel/UI_Panel.h"
#include "platform/Log.h"

#include <algorithm>
#include <array>
#include <limits>

// The page size of the system's page setup, and the settings that the Job Properties module gets.

namespace torka {

namespace {

constexpr std::size_t valueSize = 1025;       // bytes with terminator
constexpr std::size_t savedPageSizeSize = 64; // bytes with terminator

std::string sSavedOSPageSize; // the paper name of the system's page setup

std::string pointsText(double width, double height) {
    const NumberText left(nearestFloat(width), 6);
    const NumberText right(nearestFloat(height), 6);
    return std::string(left.View()) + " " + std::string(right.View());
}

// The key of a keyword has no asterisk.
std::string_view keyOf(std::string_view keyword) { return keyword.substr(keyword.starts_with('*') ? 1 : 0); }

bool isInstallable(const PPDXControl& control) {
    const PPDXElement* group = control.GetParent();
    return group && *group == "QVPPInstallableOptions";
}

bool isAtDefault(PPDXControl& control, const std::string& value) {
    const char* standard = static_cast<PPDXPopupControl&>(control).GetDefaultKeyword();
    return standard && value == standard;
}

CFTypeRef printSetting(const PDEData& data, const char* key) {
    CFTypeRef value;
    return PMPrintSettingsGetValue(data.Settings(), cfString(key), value) == noErr ? value : nullptr;
}

} // namespace

bool UI_Panel::GetOSPageSize() {
    const SystemPaper paper = systemPaper(mPDEData->Settings());
    if (!paper.ticket) {
        return false;
    }
    auto name =
        cfCast<CFString>(CFDictionaryGetValue(paper.ticket, u"com.apple.print.PaperInfo.ppd.PMPaperName"));
    if (!name) {
        name = cfString(Text("DocumentSizeCustom", "Custom", "Localizable"));
    }
    if (CFStringGetLength(name) == 0) {
        return false;
    }
    std::string ascii = utf8Text(name);
    const bool isAscii = std::ranges::all_of(ascii, [](unsigned char c) { return c < 0x80; });
    sSavedOSPageSize = isAscii ? cutText(std::move(ascii), savedPageSizeSize) : std::string();

    PPDXPopupControl* pageSize = model->GetControls()->FindPopup("*PageSize", true);
    if (!pageSize) {
        return false;
    }
    pageSize->ResetToDefaultValue();
    pageSize->SetCurrentControlWithCFString(name);
    if (CFStringCompare(pageSize->CopyCurrentControlValueString(), name, kCFCompareCaseInsensitive) == 0) {
        return false;
    }
    for (const auto& [systemName, choice] : {std::pair{"US Letter", "Letter"}, {"US Legal", "Legal"}}) {
        if (CFEqual(name, cfString(systemName))) {
            pageSize->SetCurrentControlWithCFString(cfString(choice));
            return false;
        }
    }
    mCustomPaperName = utf8Text(name);
    mCustomSize = pointsText(paper.width, paper.height);
    mPDEData->SetPageSizeFromOS(true);
    return true;
}

void UI_Panel::GetDefaultSettings(KeyValueList& list) {
    list.Clear();
    const std::size_t maximumSettings = model->GetControls()->ControlCount() +
                                        mPDEData->MixedMediaList().Count() +
                                        mPDEData->PadCoverList().Count() + mPDEData->SlipSheetList().Count() +
                                        mPDEData->CoverPageList().Count() + 12;
    constexpr std::size_t usualCharacters = 40; // of a key and its value
    list.Reserve(maximumSettings, maximumSettings * usualCharacters);
    refreshUTF8Level(model->GetControls());
    const bool twoWay = mPDEData->isBIDIEnabled();
    ListControls(list, twoWay);
    ListPageSize(list);
    ListColourNotes(list);
    ListWatermarkChoice(list);
    for (const WideSetting& pair : mPDEData->AccountPairs()) {
        const std::wstring_view key = std::wstring_view(pair.key).substr(pair.key.starts_with(L'*') ? 1 : 0);
        list.Append(key, twoWay ? std::wstring_view(pair.value) : L"-1");
    }
    handed.copies = std::to_string(std::min(mPDEData->GetNumCopiesFromOS(), maximumCopies));
    list.AppendNarrow("*QV_COPIES", handed.copies);
    list.AppendNarrow("num copies", handed.copies);
    CNTL_TYPE type{};
    if (!model->GetControls()->Find("*QVOrientation", type, true)) {
        const std::uint16_t orientation = mPDEData->GetPageOrientationFromOS();
        const bool isLandscape = orientation == kPMLandscape || orientation == kPMReverseLandscape;
        list.AppendNarrow("*QVOrientation", isLandscape ? "Landscape" : "Portrait");
    }
    ListSideLists(list);
}

bool UI_Panel::HasSystemPageSize() const { return mPDEData->IsPageSizeSuppressed() && !mCustomSize.empty(); }

void UI_Panel::ListControls(KeyValueList& list, bool twoWay) {
    std::string installable;
    model->GetControls()->ForEach([&](PPDXControl* control) {
        if (!control->Keyword() || *control == controlBarKeyword || *control == "*CustomPrintSize" ||
            (HasSystemPageSize() && *control == "*PageSize")) {
            return;
        }
        if (twoWay && control->Type() == CNTL_TYPE::jobNote &&
            isSpecialHueKeeperControl(control->Keyword())) {
            return;
        }
        std::string value = cutText(controlValueText(*control), valueSize);
        if (twoWay && control->Type() == CNTL_TYPE::popup && control->IsDynamic() &&
            isAtDefault(*control, value)) {
            return;
        }
        if (isInstallable(*control)) {
            const std::string index = std::to_string(list.Count()) + ",";
            // Adds only whole indexes, and none of an entry for which the record has no place.
            if (list.Count() < exchangeEntryLimit &&
                installable.size() + index.size() < mSharedList->installableOptions.size()) {
                installable += index;
            } else {
                myNSLogC("The installable option %s is not told to the module: there are too many.",
                         control->Keyword());
            }
        }
        list.AppendNarrow(keyOf(control->Keyword()), value);
    });
    setField(mSharedList->installableOptions, installable);
}

void UI_Panel::ListPageSize(KeyValueList& list) {
    PPDXControls& controls = *model->GetControls();
    if (PPDXCustomPageSizeControl* custom = controls.FindCustomPageSizeControl("*CustomPrintSize", true)) {
        PPDXControl* printSize = settingControl(controls, "*QVPrintSize");
        const bool isChosen = printSize && controlValueText(*printSize) == "CustomPrintSize";
        list.AppendNarrow("CustomPrintSize", isChosen ? controlValueText(*custom) : "False");
    }
    if (HasSystemPageSize()) {
        list.AppendNarrow("PageSize", "Custom");
        list.AppendNarrow("CustomPageSize", mCustomSize);
    }
}

void UI_Panel::ListColourNotes(KeyValueList& list) {
    PPDXControls& controls = *model->GetControls();
    PPDXControl* bar = settingControl(controls, controlBarKeyword);
    PPDXJobNote* barNote = controls.FindJobNote(controlBarKeyword, true);
    if (bar || barNote) {
        // The text of the note takes precedence over the control.
        std::string value = barNote ? controlValueText(*barNote) : std::string();
        if (value.empty() && bar) {
            value = controlValueText(*bar);
        }
        list.AppendNarrow(keyOf(controlBarKeyword), cutText(std::move(value), valueSize));
    }
    for (const char* keyword : dynamicColourKeywords) {
        if (PPDXJobNote* note = controls.FindJobNote(keyword, true)) {
            list.AppendNarrow(keyOf(keyword), cutText(controlValueText(*note), valueSize));
        }
    }
}

void UI_Panel::ListWatermarkChoice(KeyValueList& list) {
    handed.watermarkIndex = std::to_string(mPDEData->Watermarks().SelectedIndex());
    const auto stored = cfCast<CFNumber>(printSetting(*mPDEData, "WatermarkFirstPageInfo"));
    const ZANWatermark* selected = mPDEData->Watermarks().Selected();
    std::int32_t number = selected && selected->IsFirstPageOnly() ? 1 : 0;
    CFNumberGetValue(stored, number);
    handed.firstPageOnly = number != 0 ? "True" : "False";
    list.AppendNarrow("*QV_WATERMARK", handed.watermarkIndex);
    list.AppendNarrow("*QV_WATERMARK_FIRSTPAGEONLY", handed.firstPageOnly);
}

void UI_Panel::ListSideLists(KeyValueList& list) {
    std::size_t index = 0;
    for (const SettingList* entries : mPDEData->SideLists()) {
        // The module does not get entries for which the record has no place.
        handed.sideListEntries[index++] =
            std::min(entries->Count(), exchangeEntryLimit - std::min(list.Count(), exchangeEntryLimit));
        for (const WideSetting& setting : entries->Entries()) {
            list.Append(setting.key, setting.value);
        }
    }
}

void UI_Panel::GetWatermarks(SharedMemoryList& record) {
    std::vector<std::string> definitions;
    const WatermarkList& watermarks = mPDEData->Watermarks();
    for (std::size_t i = 0; i < watermarks.Count(); ++i) {
        definitions.push_back(watermarks.At(i)->Definition());
    }
    handed.watermarks = setWatermarkDefinitions(record, definitions);
}

} // namespace torka
