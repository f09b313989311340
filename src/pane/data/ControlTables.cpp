// SPDX-License-Identifier: Apache-2.0
#include "pane/data/ControlTables.h"

#include "PPDX/PPDObjects/Controls/ColourKeywords.h"
#include "PPDX/PPDObjects/Controls/PPDXControl.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_set>

namespace torka {

namespace {

using namespace std::string_view_literals;

constexpr std::array<std::string_view, 14> expertHueKeeperControls = {
    "*QVRGBOverride",  "*QVColorRendDict", "*QVRGBSep",       "*QVSimulation",  "*QVSimSpeed",
    "*QVOutProfile",   "*QVSpotColors",    "*QVPureBlack",    "*QVBlkOvpCtrl",  "*QVKOnlyGrayCMYK",
    "*QVKOnlyGrayRGB", "*QVPaperSim",      "*QVSpotPriority", "*QVGrayOverride"};

// The table keeps its two names that stand twice and its two names without asterisk: settings that other
// versions stored are compared with it.
constexpr std::array<std::string_view, 96> hiddenControls = {"*QVMMInUse",
                                                             "*QVMMInsType",
                                                             "*QVMMCover",
                                                             "*QVImageUnit",
                                                             "*QVImageFlag",
                                                             "*QVImageAlign",
                                                             "*QVRIPBooklet",
                                                             "*QVBookCoverEnabled",
                                                             "*QVBookCoverTray",
                                                             "*QVBookFrCover",
                                                             "*QVBookBkCover",
                                                             "*QVBookCoverInType",
                                                             "*QVBookletCreep",
                                                             "*QVBookletReduce",
                                                             "*QVBookAutoSpine",
                                                             "*QVBookNumSheetPerSubset",
                                                             "*QVBookCentering",
                                                             "*QVNUpOption",
                                                             "*ZANPrintTime",
                                                             "*QVEmbeddedRGB",
                                                             "*QVNUpBoundingBox",
                                                             "*QVClearCoat",
                                                             "*QVTextClearCoat",
                                                             "*QVGraphicClearCoat",
                                                             "*QVImageClearCoat",
                                                             "*QVSpotColorClearCoat",
                                                             "*QVImageWiseRange",
                                                             "*QVImageWise_RangeType",
                                                             "*QVImageWise_RangeValue",
                                                             "*QVEmbeddedCMYK",
                                                             "*QVSubsetFinishingInUse",
                                                             "*QVEnhancedFF",
                                                             "*QVClearDryInk_RangeType",
                                                             "*QVClearDryInk_RangeValue",
                                                             "*QVMMTabShift",
                                                             "*QVControlBar",
                                                             "*QVPostFlight",
                                                             "*QVProgressives",
                                                             "*QVDocServer",
                                                             "*QVDSUserName",
                                                             "*QVDSPassword",
                                                             "*QVDSFileName",
                                                             "*QVHTScreen",
                                                             "*QVBookSpineContentType",
                                                             "*QVBookScaling",
                                                             "*QVBookTrimType",
                                                             "*QVBookFaceTrimOnly",
                                                             "*QVColorant_NoTonerLimit",
                                                             "*QVColorant1Area",
                                                             "*QVColorant1Text",
                                                             "*QVColorant1Graphic",
                                                             "*QVColorant1Image",
                                                             "*QVColorant1Spot",
                                                             "*QVColorant1Pass",
                                                             "*QVColorant1_RangeType",
                                                             "*QVColorant1_RangeValue",
                                                             "*QVDisplayJobTracking",
                                                             "*QVAccountSetting",
                                                             "*QVAccountShowLast",
                                                             "*PageSize",
                                                             "*QVCurveAdjust",
                                                             "QVSlipSheetPaperCatalog",
                                                             "QVCoverPagePaperCatalog",
                                                             "*QVBlackPointCompCMYK",
                                                             "*QVColorant1Rip",
                                                             "*QVColorant2Rip",
                                                             "*QVColorant2Area",
                                                             "*QVColorant2Text",
                                                             "*QVColorant1Image",
                                                             "*QVColorant2Graphic",
                                                             "*QVColorant1Spot",
                                                             "*QVColorant2Image",
                                                             "*QVColorant1Pass",
                                                             "*QVColorant2Pass",
                                                             "*QVColorant1_LimitCoverage",
                                                             "*QVColorant1_RangeType",
                                                             "*QVColorant2_LimitCoverage",
                                                             "*QVColorant2_RangeType",
                                                             "*QVColorant1_RangeValue",
                                                             "*QVColorant1Text",
                                                             "*QVColorant2_RangeValue",
                                                             "*QVColorant2Spot",
                                                             "*QVProcessNColorants",
                                                             "*QVProcessColorantsSpotOnly",
                                                             "*QVMltClrPrntMap",
                                                             "*QVSubstColors",
                                                             "*QVEmbeddedGray",
                                                             "*QVGrayColorRendDict",
                                                             "*QVKOnlyGray",
                                                             "*QVCMYKColorRendDict",
                                                             "*QVColorant1Enable",
                                                             "*QVSlipsheetOffs",
                                                             "*QVInterlvMedia",
                                                             "*QVColorant2Enable",
                                                             "*QVColorant2Optimised",
                                                             "*QVColorant1Optimised"};

// Every opening of the pane asks for each control of the description.
using Names = std::unordered_set<std::string_view>;

bool holds(const Names& names, const char* keyword) { return keyword != nullptr && names.contains(keyword); }

} // namespace

bool isExpertHueKeeperControl(const char* keyword) {
    static const Names names(expertHueKeeperControls.begin(), expertHueKeeperControls.end());
    return holds(names, keyword);
}

bool isSpecialHueKeeperControl(const char* keyword) {
    return keyword != nullptr &&
           std::ranges::any_of(dynamicColourKeywords, [keyword](std::string_view colour) {
               return std::string_view(keyword).find(colour) != std::string_view::npos;
           });
}

bool isHiddenFromBasicPanel(const char* keyword) {
    static const Names names(hiddenControls.begin(), hiddenControls.end());
    return holds(names, keyword);
}

bool isChosenBySystem(const PPDXControl& control) {
    return control == "*PageSize" || control == "*QVOrientation" || control == "*Collate";
}

} // namespace torka
