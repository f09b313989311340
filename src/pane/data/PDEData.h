#pragma once

#include "connection/PropertyListStore.h"
#include "output/EmissionSource.h"
#include "output/WatermarkList.h"
#include "output/ZANJobNoteList.h"
#include "pane/data/PPDTree.h"
#include "pane/data/SettingList.h"
#include "platform/Printing.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

// Of an account pair, in wide characters with terminator. The longest key fills its place.
inline constexpr std::size_t accountKeySize = 19;
inline constexpr std::size_t accountValueSize = 512;

class PPDXControl;
class ZANCorvianPrinterPList;
class ZANJobTicket;
enum class EmissionPurpose;

// The pane's data of one panel: what binds the description to the print dialog's session and settings, the
// settings that have no control of their own, the controller's address, and what the administrator's template
// hides or locks.
//
// Refers to the description, which must outlive it; owns everything else. The print settings and the page
// format are set anew before each save, restore and print. Not thread-safe.
class PDEData final : public EmissionSource {
public:
    // Makes the store of the address list, each time that the list is read anew.
    using AddressStoreMaker = std::function<std::unique_ptr<PropertyListStore>()>;

    PDEData(ZANPPD* ppd, CFStringRef printerName, QueueAccess access);
    // With an address list of its own; nobody is asked to save the one of the queue.
    PDEData(ZANPPD* ppd, CFStringRef printerName, QueueAccess access, AddressStoreMaker addressStore);
    ~PDEData() override;

    void SetPrintSettings(PMPrintSettings settings) { mPrintSettings = std::move(settings); }
    void SetPageFormat(PMPageFormat format) { mPageFormat = std::move(format); }
    void SetPageSizeFromOS(bool fromSystem) { mPageSizeFromOS = fromSystem; }
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
    // Back to their keys with the value "-1".
    void ResetAccountPairs();

    // The host of the queue's device URI; "" without one, and for AppleTalk and Bonjour queues.
    CFStringRef GetPrinterAddress() const;
    // The printer's address in the address list, or that of its queue when the list has none. Null without a
    // list. The second form also tells whether two-way communication is on, when there is an entry.
    CFStringRef GetCorvianPrinterAddress();
    CFStringRef GetCorvianPrinterAddress(bool* ipEnabled);
    bool SetCorvianPrinterAddress(const CFStringRef& address, bool ipEnabled);
    // Why the queue did not keep what was saved last, as its filter said; "" when it said nothing.
    std::string AddressListReason() const;
    // Reads the list anew; whether it was loaded.
    bool ResetCorvianPrinterList();
    bool SetIPAddressEnabled(bool enabled);
    // Two-way communication is on exactly when this is true. Refreshes the address last found.
    bool isBIDIEnabled();
    bool isFirstLaunch() const { return mAddressFromQueue; }

    std::uint32_t GetNumCopiesFromOS() const;
    std::uint16_t GetPageOrientationFromOS() const;
    // The input tray chosen in the system's own pane, as UTF-8 in at most `size` bytes; empty when there is
    // none. Always 0: callers look at the buffer.
    std::int32_t GetPrimayPaperFeedFromOS(char* buffer, std::int64_t size);

    bool IsValidBasicPanelControl(const PPDXControl* control);

    // What the administrator's template says of a keyword, up to whose first "*" everything is dropped.
    bool dmtHides(std::string_view keyword);
    bool dmtLocks(std::string_view keyword);
    // Appends "*" and the key for every key that the template shows or hides. False for an empty document or
    // one that is no UTF-8.
    bool fetchHiddenKeysFromDMTXML(std::vector<std::string>& keys) const;
    // Takes the template's control values over: into the lists, the account pairs and the print settings. The
    // counts of mixed media and pad covers start at 0, those of slip sheets and cover pages go on from where
    // they stand.
    bool dmtSetNonPPDKeys();

    // -1 without print settings, else the status of the last write.
    std::int32_t SaveNonPSSettings();
    // -1 without print settings, else 0. The first restore also takes over the template's own keys.
    std::int32_t RestoreNonPSSettings();

    // The quick-access entries of this printer, kept in the address list. False without a printer name.
    bool SetPPDShortcuts(const PPDTree& tree);
    bool GetPPDShortcuts(PPDTree& tree);

    // The watermark definitions of this printer, kept in the address list.
    // Writes nothing while there is no watermark.
    void SaveWatermarksToPreferences();
    // The last one was deleted: none is kept any more.
    void ForgetWatermarkPreferences();
    // False only without a current printer.
    bool GetWatermarksFromPreferences();

    // Adds every chosen setting to the ticket, see FeatureEmission. Always 0.
    std::int32_t OutPostscriptData(ZANJobTicket& ticket, const PMPrintSession& session,
                                   EmissionPurpose purpose);
    // What the last emission left out because it could not be protected.
    const std::vector<ZANJobNoteList::LeftOutNote>& LeftOutNotes() const { return leftOutNotes; }

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

private:
    void CopyDescription();
    bool TemplateSays(std::string_view keyword, std::string_view section, std::string_view value);
    void TakeTemplateKey(const std::wstring& key, const std::wstring& value,
                         std::array<std::size_t, 5>& nextSlots);
    void SaveList(const SettingList& list, const char* countKey, const char* keyStem, const char* valueStem);
    void RestoreList(SettingList& list, const char* countKey, const char* keyStem, const char* valueStem);
    void RestoreWatermarkChoice();
    void RestoreAccountPairs();
    void WriteSetting(const std::string& key, const CFTypeRef& value);
    CFTypeRef ReadSetting(const std::string& key) const;
    std::size_t StoredWatermarkCount() const;
    bool KeepRows(int block, const std::vector<std::string>& texts);
    std::vector<std::string> KeptRows(int block) const;

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
    AddressStoreMaker makeAddressStore; // empty: the queue's
    PMPageFormat mPageFormat;
    std::unique_ptr<ZANCorvianPrinterPList> mCorvianList;
    CFStringRef mPrinterName;
    CFStringRef mPrinterAddress;
    bool mAddressFromQueue = false;

    std::int32_t lastWriteStatus = 0;
    bool twoWayEnabled = false; // as isBIDIEnabled() found it for the emission under way
    bool templateKeysTaken = false;
    enum class CurveAdjust { unknown, absent, present };
    CurveAdjust curveAdjust = CurveAdjust::unknown;
    std::string lastKeywordAsked; // of the template
    bool sectionMissingReported = false;
    std::vector<ZANJobNoteList::LeftOutNote> leftOutNotes;
};

} // namespace torka
