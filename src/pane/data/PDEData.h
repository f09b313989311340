// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection/PropertyListStore.h"
#include "output/EmissionSource.h"
#include "output/LeftOutSetting.h"
#include "output/WatermarkList.h"
#include "output/ZANJobNoteList.h"
#include "pane/data/MergedRows.h"
#include "pane/data/PPDTree.h"
#include "pane/data/SettingList.h"
#include "platform/Bundle.h"
#include "platform/Printing.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

// Sizes of an account pair, in wide characters with terminator. The longest key fills its size.
inline constexpr std::size_t accountKeySize = 19;
inline constexpr std::size_t accountValueSize = 512;

class PPDXControl;
class ZANCorvianPrinterPList;
class ZANJobTicket;
enum class EmissionPurpose;

// The data of one panel. It joins the description with the session and the print settings of the print
// dialog. It keeps the settings that have no control, the address of the controller, and what the management
// template hides or locks.
//
// Refers to the description, which must outlive it, and owns everything else. The caller sets the print
// settings and the page format before each save, restore and print. Not thread-safe.
class PDEData final : public EmissionSource {
public:
    // Makes the store of the address list, each time that the list is read.
    using AddressStoreMaker = std::function<std::unique_ptr<PropertyListStore>()>;

    // With another store for the address list than that of the queue.
    PDEData(ZANPPD* ppd, CFStringRef printerName, QueueAccess access, AddressStoreMaker addressStore);
    ~PDEData() override;

    void SetPrintSettings(PMPrintSettings settings) { mPrintSettings = std::move(settings); }
    void SetPageFormat(PMPageFormat format) { mPageFormat = std::move(format); }
    void SetPageSizeFromOS(bool fromSystem) { mPageSizeFromOS = fromSystem; }
    void SetBundle(platform::BundleRef bundle) { mBundle = std::move(bundle); }
    void SetPageOrientation(std::uint16_t orientation) { mPageOrientation = orientation; }
    ZANPPD* PPDModel() const { return mPPDModel; }
    const CFStringRef& PrinterName() const { return mPrinterName; }
    // Path of the private copy of the description, at most 511 bytes.
    const std::string& PPDCopyPath() const { return mPPDCopyPath; }
    WatermarkList& Watermarks() { return mWatermarks; }
    SettingList& MixedMediaList() { return mMixedMedia; }
    SettingList& PadCoverList() { return mPadCover; }
    SettingList& CoverPageList() { return mCoverPage; }
    SettingList& SlipSheetList() { return mSlipSheet; }
    // In the order in which they are emitted.
    std::array<SettingList*, 4> SideLists() { return {&mMixedMedia, &mPadCover, &mSlipSheet, &mCoverPage}; }
    std::span<WideSetting> AccountPairs() { return mAccountPairs; }
    // Resets the account pairs to their keys and the value "-1".
    void ResetAccountPairs();

    // The host of the queue's device URI; "" without one, and for AppleTalk and Bonjour queues.
    CFStringRef GetPrinterAddress() const;
    // The printer's address: that of the address list, or that of its queue when the list has none. Null
    // without a list. The second form also tells whether two-way communication is on, when the list has an
    // entry.
    CFStringRef GetCorvianPrinterAddress();
    CFStringRef GetCorvianPrinterAddress(bool* ipEnabled);
    bool SetCorvianPrinterAddress(const CFStringRef& address, bool ipEnabled);
    // Why the queue did not keep what was saved last, in the words of its filter; "" for none.
    std::string AddressListReason() const;
    // Reads the list again. Returns whether it was loaded.
    bool ResetCorvianPrinterList();
    bool SetIPAddressEnabled(bool enabled);
    // Whether two-way communication is on. Also refreshes the address that was found last.
    bool isBIDIEnabled();

    std::uint32_t GetNumCopiesFromOS() const;
    std::uint16_t GetPageOrientationFromOS() const;
    // The input tray of the system's own pane, as UTF-8 in at most `size` bytes; empty for none. Always
    // returns 0: callers look at the buffer.
    std::int32_t GetPrimayPaperFeedFromOS(char* buffer, std::int64_t size);

    bool IsValidBasicPanelControl(const PPDXControl* control);

    // What the management template says about a keyword. The part of the keyword before its first "*" is
    // dropped.
    bool dmtHides(std::string_view keyword);
    bool dmtLocks(std::string_view keyword);

    // Returns -1 without print settings, else the status of the last write.
    std::int32_t SaveNonPSSettings();
    // Returns -1 without print settings, else 0.
    std::int32_t RestoreNonPSSettings();
    // What the print settings hold belongs to another queue: none of it is restored, now or later.
    void DropNonPSSettings();
    // Takes the template's own keys over, once: in place of what an earlier taking left in the lists, and job
    // notes and the custom size into the description. Other slip sheets and cover pages follow the
    // template's.
    void TakeTemplate();

    // The quick-access entries: the person's own, else the queue's. False when nothing could be kept. Only
    // the changes since the last reading are kept, so that another dialog's changes stay.
    bool SetPPDShortcuts(const PPDTree& tree);
    bool GetPPDShortcuts(PPDTree& tree);

    // The watermark definitions of this printer, kept like quick access.
    // Writes nothing while there is no watermark.
    void SaveWatermarksToPreferences();
    // Removes the definitions that this dialog knows, after the last watermark was deleted.
    void ForgetWatermarkPreferences();
    // False without a current printer, else true.
    bool GetWatermarksFromPreferences();

    // Adds every chosen setting to the ticket; see FeatureEmission. Always returns 0.
    std::int32_t OutPostscriptData(ZANJobTicket& ticket, const PMPrintSession& session,
                                   EmissionPurpose purpose);
    // The notes that the last emission left out because it could not protect them.
    const std::vector<ZANJobNoteList::LeftOutNote>& LeftOutNotes() const { return leftOutNotes; }
    const std::vector<LeftOutSetting>& LeftOutSettings() const { return leftOutSettings; }

    // EmissionSource
    ZANPPD* Description() const override { return mPPDModel; }
    PMPrintSettings Settings() const override { return mPrintSettings; }
    std::uint16_t PageOrientation() const override { return GetPageOrientationFromOS(); }
    bool IsPageSizeSuppressed() const override { return mPageSizeFromOS; }
    bool IsTwoWayEnabled() const override { return twoWayEnabled; }
    std::span<const WideSetting> MixedMedia() const override { return mMixedMedia.Entries(); }
    std::span<const WideSetting> PadCovers() const override { return mPadCover.Entries(); }
    std::span<const WideSetting> SlipSheets() const override { return mSlipSheet.Entries(); }
    std::span<const WideSetting> CoverPages() const override { return mCoverPage.Entries(); }
    std::span<const WideSetting> PaperCatalogue() const override { return mAccountPairs; }
    ZANWatermark* SelectedWatermark() const override { return mWatermarks.Selected(); }

    // Given interface; no caller here
    // Takes over the template's control values: into the lists, the account pairs and the print settings. The
    // counts of mixed media and pad covers begin at 0. The counts of slip sheets and cover pages continue
    // from their present values.
    bool dmtSetNonPPDKeys();
    PDEData(ZANPPD* ppd, CFStringRef printerName, QueueAccess access);
    bool isFirstLaunch() const { return mAddressFromQueue; }
    // Appends "*" and the key for every key that the template shows or hides. False for an empty document and
    // for one that is not UTF-8.
    bool fetchHiddenKeysFromDMTXML(std::vector<std::string>& keys) const;

private:
    void CopyDescription();
    bool TemplateSays(std::string_view keyword, std::string_view section, std::string_view value);
    bool ReadTemplate(std::map<std::wstring, std::wstring>& values) const;
    void TakeTemplateValues(const std::map<std::wstring, std::wstring>& values);
    void TakeTemplateKey(const std::wstring& key, const std::wstring& value,
                         std::array<std::size_t, 5>& nextSlots);
    void SaveList(const SettingList& list, const char* countKey, const char* keyStem, const char* valueStem);
    void RestoreList(SettingList& list, const char* countKey, const char* keyStem, const char* valueStem);
    void RestoreWatermarkChoice();
    void RestoreAccountPairs();
    void WriteSetting(const std::string& key, const CFTypeRef& value);
    CFTypeRef ReadSetting(const std::string& key) const;
    std::size_t StoredWatermarkCount() const;
    TextRows WatermarkRows() const;
    bool KeepRows(std::size_t block, const TextRows& texts);
    // Returns KeptRows and remembers them: the next KeepRows saves only what differs from them.
    TextRows ReadRows(std::size_t block);
    TextRows KeptRows(std::size_t block) const;

    ZANPPD* mPPDModel;
    bool mPageSizeFromOS = false;
    SettingList mMixedMedia{"mixed-media settings", 2048};
    SettingList mPadCover{"pad-cover settings", 16};
    SettingList mCoverPage{"cover-page settings", 16};
    SettingList mSlipSheet{"slip-sheet settings", 16};
    std::array<char, 64> mPrimaryPaperFeed{};
    std::array<WideSetting, 4> mAccountPairs;
    WatermarkList mWatermarks;
    std::string mPPDCopyPath;
    PMPrintSettings mPrintSettings;
    QueueAccess queue;
    AddressStoreMaker makeAddressStore; // empty: the store of the queue
    PMPageFormat mPageFormat;
    // Given state; nothing here reads it: the bundle of the plug-in, and the orientation at the panel's start
    platform::BundleRef mBundle;
    std::uint16_t mPageOrientation = kPMPortrait;
    std::unique_ptr<ZANCorvianPrinterPList> mCorvianList;
    // By block: the rows that this dialog read or saved last. Another dialog may have stored others since.
    std::array<std::optional<TextRows>, 2> mKnownRows;
    CFStringRef mPrinterName;
    CFStringRef mPrinterAddress;
    bool mAddressFromQueue = false;

    std::int32_t lastWriteStatus = 0;
    bool twoWayEnabled = false; // during an emission, as isBIDIEnabled() found it
    bool templateTaken = false;
    enum class CurveAdjust { unknown, absent, present };
    CurveAdjust curveAdjust = CurveAdjust::unknown;
    std::string lastKeywordAsked; // of the template
    bool sectionMissingReported = false;
    std::vector<ZANJobNoteList::LeftOutNote> leftOutNotes;
    std::vector<LeftOutSetting> leftOutSettings;
};

} // namespace torka
