// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/module/ExchangeLists.h"
#include "connection/BonjourModuleController.h"
#include "pane/data/PPDTree.h"
#include "pane/panel/CustomizePaneController.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

class PDEData;
class PanelServices;
class PPDXControl;
class ZANPPD;

// Why the Job Properties module is launched. The buttons pass any other value; only these two are told apart.
using JP_ACTIONS = std::int32_t;
inline constexpr JP_ACTIONS kJPOpenAgain = 1;      // after the person chose to continue without two-way
inline constexpr JP_ACTIONS kJPInvalidAddress = 4; // shows the alert of an invalid address, starts no module

// The model of the pane: the tree of quick-access controls and groups, the reset to the defaults, and the
// exchange of all settings with the Job Properties module (docs/job-properties-module.md).
//
// Each panel has one. It refers to the data of the pane, the discovery controller and the services of the
// panel, which outlive it. It owns the drawing controller and the exchange record. Main thread of the host
// only.
class UI_Panel final : public BonjourModuleOwner {
public:
    // `services` may be null: then there are no buttons and no module, and texts are English.
    explicit UI_Panel(PDEData* pdeData, PanelServices* services = nullptr);
    ~UI_Panel() override;

    // Makes this panel the one that the process-wide variables of the panel model name: description, tree,
    // record, and the receiver of the module's answer.
    void Publish();
    // Keeps the tree for the next Publish, before another panel takes these variables.
    void KeepTree();
    void PopulatePPDTreeStructure();
    void DrawUserPane();
    void Show();
    void ResetControlsToDefault();
    // When two-way communication is on, makes a job note with the value of each special colour control and of
    // the control bar.
    void makeJobNotesForSpecialControls();

    // True when the system's page setup has a custom paper. Another paper becomes the choice of "*PageSize"
    // when that control has it.
    bool GetOSPageSize();

    // Writes the watermarks into a record, and reads them back. Watermarks for which the record had no room
    // are kept.
    void GetWatermarks(SharedMemoryList& record);
    void UpdateWatermarks(const SharedMemoryList& record);

    // Fills the list of settings for the module. Also clears and fills the list of installable options in the
    // record.
    void GetDefaultSettings(KeyValueList& list);
    // Applies the settings that the module returned. Unknown keys are ignored. Values are limited to what the
    // pane can keep.
    void SetUpdatedSettings(const SDMKeyValueList& list);
    static void FreeSDMList(KeyValueList& list) { list.Clear(); }

    void LoadHelperModule();
    // Runs the module and applies its answer before it returns. Does nothing while a module runs.
    void LaunchJobProperties(JP_ACTIONS action);
    void OnJPReturn();
    // Whether the library of the module can be loaded. With `tell` an alert tells when it cannot.
    bool isModuleInstalled(bool tell);

    // The job notes that name a preset of the server: back to what they were at the last launch; whether they
    // still are.
    void revertBackJPServerPresets();
    bool compareJPServerPresets() const;
    // Empties these notes.
    void resetJPServerpresetKeys();
    // The person's account name into the job note "*QVUserAuthName"; nothing without such a note.
    void GetOSAccountName();
    // Sends the module's local presets file to the queue, if there is one.
    void writeLocalJPPresetsToDynamicPPD();

    CustomizePaneController& GetCustomizePane() const { return *mCustomizePane; }
    SharedMemoryList& Record() const { return *mSharedList; }

    // BonjourModuleOwner
    BonjourModuleController* GetsBonjourModuleController() const override { return mBonjourModuleController; }
    void setsBonjourModuleController(BonjourModuleController* controller) override;
    CFStringRef storedPrinterAddress() override;
    CFStringRef queueServiceName() override;
    CFStringRef foundPrinterAddress() override;
    bool storePrinterAddress(const CFStringRef& address, bool twoWay) override;
    void showPrinterAddress(const CFStringRef& address) override;
    CFStringRef bidiString(std::string_view key, std::string_view english) override;

    // The description of the newest panel; null once that panel has ended.
    static ZANPPD* mPPD;
    // The tree of the newest panel.
    static PPDTree Tree;

    // Given interface; no caller here
    bool isPylon3() const; // the controller system is of version 4.2 or 4.3
    std::int32_t getReturnFromJP() const { return mReturnFromJP; }
    void setReturnFromJP(std::int32_t returned) { mReturnFromJP = returned; }
    std::int32_t getfromCustomizepanel() const { return mFromCustomizePanel; }
    void setfromCustomizepanel(std::int32_t from) { mFromCustomizePanel = from; }

    // For the tests; no caller here
    const std::string& CustomSize() const { return mCustomSize; } // "%f %f", points; "" before any
    const std::string& CustomPaperName() const { return mCustomPaperName; }

private:
    PDEData* mPDEData;
    std::unique_ptr<CustomizePaneController> mCustomizePane;
    BonjourModuleController* mBonjourModuleController = nullptr;
    std::int32_t mReturnFromJP = 0;
    std::int32_t mFromCustomizePanel = 0;
    std::string mCustomSize;
    std::string mCustomPaperName;
    std::optional<PPDTree> mKeptTree;              // of the panel while another one is published
    std::shared_ptr<SharedMemoryList> mSharedList; // shared with a running launch
    std::shared_ptr<const bool> life = std::make_shared<const bool>(true); // ends with the panel

    // What the module got at the last launch beside the values of the controls, and how much of each list
    // fitted the record. The module can neither change nor remove what it did not get.
    struct HandedOver {
        std::array<std::size_t, 4> sideListEntries; // of mixed media, pad covers, slip sheets, cover pages
        std::size_t watermarks = 0;
        std::string watermarkIndex;
        std::string firstPageOnly;
        std::string copies;
    };
    struct ServerPreset {
        std::array<std::string, 3> notes;
    };
    class Returned;

    void AddGroups();
    void AddControls();
    bool HasSystemPageSize() const; // a custom one, which the module is handed in the place of "*PageSize"
    void ListControls(KeyValueList& list, bool twoWay);
    void ListPageSize(KeyValueList& list);
    void ListColourNotes(KeyValueList& list);
    void ListWatermarkChoice(KeyValueList& list);
    void ListSideLists(KeyValueList& list);
    void ApplySideLists(const Returned& returned);
    void ApplyWatermarkChoice(const Returned& returned);
    bool ApplyAccount(std::string_view key, const std::string& value);
    void ApplyCopies(const std::string& value);
    bool ApplyToModel(const std::string& keyword, const std::vector<std::string>& values);

    void BecomeCurrent();
    void ShowInvalidAddress();
    bool WriteTwoWayState(bool twoWay, const CFStringRef& address);
    void EnableLaunching(bool on);
    void TakeAnswer();
    bool LaunchAgainWithoutTwoWay();
    std::string Text(std::string_view key, std::string_view english, std::string_view table) const;
    // Shows an alert with one button. Does nothing without a presenter of alerts.
    void TellPerson(const std::string& title, const std::string& information) const;
    void TellPresetsTooLarge();
    ServerPreset CurrentServerPreset() const;

    PanelServices* panel;
    ZANPPD* model;
    HandedOver handed;
    ServerPreset presetAtLaunch;
    bool toldPresetsTooLarge = false; // once a panel
};

// The panel that receives the answer of the module, and its record; null for none. Written by UI_Panel.
extern UI_Panel* sUiPanelOnJPReturn;
extern SharedMemoryList* sSharedList;
// The module is running: the pane's buttons do nothing. Written by UI_Panel and its timer.
extern bool gIgnoreButtonEvents;

// Given state; nothing here reads it.
// The record lies in the process's own memory: -1.
extern int gSharedMemoryFileDescriptor;
// The helper module's particulars were written, and when. Written by LoadHelperModule.
extern bool sLoadingHelper;
extern std::chrono::steady_clock::time_point sLoadingTime;

// The entry of UI_Panel::Tree with that keyword; null when there is none.
PPDTreeQuickAccess* GetShortcutFromKeyword(std::string_view keyword);

// Given interface; no caller here
// Whether the module can speak with the controller itself: two-way communication is on and the record of the
// panel made last has an address.
bool CheckRemote(bool twoWay);
// The watch on a module that runs in a window of its own: looks at the record's status every 0.01 s, without
// limit, and calls OnJPReturn once it is no longer "-1".
void TimerCheckForJPReturn(const EventLoopTimerRef& timer, void* data);
void SetTimerCheckForJPReturn();

} // namespace torka
