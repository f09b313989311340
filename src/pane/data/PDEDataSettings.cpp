// SPDX-License-Identifier: Apache-2.0
#include "pane/data/PDEData.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "connection/ZANCorvianPrinterPList.h"
#include "pane/data/ControlTables.h"
#include "pane/data/CutText.h"
#include "pane/data/MergedRows.h"
#include "pane/data/PersonalFile.h"
#include "platform/Log.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <iterator>

// What the pane keeps between dialogs. Settings without a control go into the print settings; quick access
// and watermarks go into the printer's entry of the address list, and into the person's own lists once that
// person has changed them.

namespace torka {

namespace {

constexpr std::size_t settingTextSize = 256; // bytes with terminator
constexpr std::size_t rowSize = 1024;        // bytes with terminator, of the address list
constexpr std::size_t quickAccessBlock = 0;
constexpr std::size_t watermarkBlock = 1;

std::u16string_view personalList(std::size_t block) {
    return block == quickAccessBlock ? PersonalLists::quickAccess : PersonalLists::watermarks;
}

CFStringRef settingText(const std::wstring& wide) {
    return cfString(cutText(utf8FromWide(wide), settingTextSize));
}

std::string numbered(const char* stem, std::size_t index) { return stem + std::to_string(index); }

} // namespace

void PDEData::WriteSetting(const std::string& key, const CFTypeRef& value) {
    lastWriteStatus = PMPrintSettingsSetValue(mPrintSettings, cfString(key), value, false);
}

CFTypeRef PDEData::ReadSetting(const std::string& key) const {
    CFTypeRef value;
    return PMPrintSettingsGetValue(mPrintSettings, cfString(key), value) == noErr ? value : nullptr;
}

std::int32_t PDEData::SaveNonPSSettings() {
    if (!mPrintSettings) {
        return -1;
    }
    const ZANWatermark* watermark = mWatermarks.Selected();
    const bool isFirstPageOnly = watermark != nullptr && watermark->IsFirstPageOnly();
    WriteSetting("WatermarkFirstPageInfo", CFNumberCreate(std::int32_t{isFirstPageOnly ? 1 : 0}));
    WriteSetting(".SelectedWatermarkKey", CFNumberCreate(std::int32_t{mWatermarks.SelectedIndex()}));
    SaveList(mMixedMedia, ".MMKey", "MMKey", "MMValue");
    SaveList(mPadCover, ".PadCov", "PCovKey", "PCovValue");
    SaveList(mCoverPage, ".CovPag", "CovPagKey", "CovPagValue");
    SaveList(mSlipSheet, ".SlpSht", "SlpShtKey", "SlpShtValue");
    return lastWriteStatus;
}

void PDEData::SaveList(const SettingList& list, const char* countKey, const char* keyStem,
                       const char* valueStem) {
    WriteSetting(countKey, CFNumberCreate(static_cast<std::int32_t>(list.Count())));
    std::size_t index = 0;
    for (const WideSetting& setting : list.Entries()) {
        WriteSetting(numbered(keyStem, index), settingText(setting.key));
        WriteSetting(numbered(valueStem, index), settingText(setting.value));
        ++index;
    }
}

std::int32_t PDEData::RestoreNonPSSettings() {
    if (!mPrintSettings) {
        return -1;
    }
    RestoreWatermarkChoice();
    RestoreAccountPairs();
    RestoreList(mMixedMedia, ".MMKey", "MMKey", "MMValue");
    RestoreList(mPadCover, ".PadCov", "PCovKey", "PCovValue");
    RestoreList(mCoverPage, ".CovPag", "CovPagKey", "CovPagValue");
    RestoreList(mSlipSheet, ".SlpSht", "SlpShtKey", "SlpShtValue");
    return 0;
}

void PDEData::DropNonPSSettings() {
    mWatermarks.Select(WatermarkList::noSelection);
    for (SettingList* list : SideLists()) {
        list->Clear();
    }
    for (const WideSetting& pair : mAccountPairs) {
        WriteSetting((pair.key.starts_with(L'*') ? "" : "*") + utf8FromWide(pair.key), nullptr);
    }
    ResetAccountPairs();
    SaveNonPSSettings();
}

void PDEData::RestoreWatermarkChoice() {
    std::int32_t index = WatermarkList::noSelection;
    CFNumberGetValue(cfCast<CFNumber>(ReadSetting(".SelectedWatermarkKey")), index);
    const bool isStored = index >= 0 && static_cast<std::size_t>(index) < StoredWatermarkCount();
    mWatermarks.Select(isStored ? index : WatermarkList::noSelection);
    // Any present value sets the flag, whatever its number.
    if (ReadSetting("WatermarkFirstPageInfo") && mWatermarks.Selected() != nullptr) {
        mWatermarks.Selected()->SetFirstPageOnly("True");
    }
}

void PDEData::RestoreAccountPairs() {
    for (WideSetting& pair : mAccountPairs) {
        // A key in the print settings always has an asterisk. The pair has none once the module has named it.
        const std::string key = (pair.key.starts_with(L'*') ? "" : "*") + utf8FromWide(pair.key);
        const auto text = cfCast<CFString>(ReadSetting(key));
        pair.value = text ? wideFromUtf8(utf8Text(text)).substr(0, accountValueSize - 1) : L"-1";
    }
}

void PDEData::RestoreList(SettingList& list, const char* countKey, const char* keyStem,
                          const char* valueStem) {
    const CFTypeRef stored = ReadSetting(countKey);
    if (!stored) {
        list.SetCount(0);
    } else if (const auto number = cfCast<CFNumber>(stored)) {
        std::int32_t count = 0;
        CFNumberGetValue(number, count);
        list.SetCount(count);
    }
    for (std::size_t i = 0; i < list.Count(); ++i) {
        if (const auto key = cfCast<CFString>(ReadSetting(numbered(keyStem, i)))) {
            list.At(i).key = wideFromUtf8(cutText(utf8Text(key), settingTextSize));
        }
        if (const auto value = cfCast<CFString>(ReadSetting(numbered(valueStem, i)))) {
            list.At(i).value = wideFromUtf8(cutText(utf8Text(value), settingTextSize));
        }
    }
}

bool PDEData::SetPPDShortcuts(const PPDTree& tree) {
    if (!mPrinterName || !mCorvianList) {
        return false;
    }
    std::vector<std::string> keywords;
    for (const PPDTreeQuickAccess& entry : tree.quickAccess) {
        keywords.push_back(entry.keyword);
    }
    return KeepRows(quickAccessBlock, keywords);
}

bool PDEData::GetPPDShortcuts(PPDTree& tree) {
    if (!mPrinterName || !mCorvianList) {
        return false;
    }
    const TextRows keywords = ReadRows(quickAccessBlock);
    if (keywords.empty()) { // the description's own entries, which a person may now change
        TextRows& known = mKnownRows[quickAccessBlock].emplace();
        std::ranges::transform(tree.quickAccess, std::back_inserter(known), &PPDTreeQuickAccess::keyword);
        return true;
    }
    tree.quickAccess.clear();
    for (const std::string& stored : keywords) {
        if (!std::ranges::all_of(stored, [](unsigned char c) { return c < 0x80; })) {
            continue;
        }
        const std::string keyword = cutText(stored, treeKeywordSize);
        const PPDXControl* control = mPPDModel->GetPPDXControlForKey(cfString(keyword));
        if (!IsValidBasicPanelControl(control) || dmtHides(keyword)) {
            continue;
        }
        if (tree.quickAccess.size() >= maximumQuickAccess) {
            myNSLogC("The quick-access area holds %zu entries and takes no more.", maximumQuickAccess);
            break;
        }
        tree.quickAccess.push_back({utf8Text(control->CFStringUserName()), keyword, 0});
    }
    return true;
}

void PDEData::SaveWatermarksToPreferences() {
    if (!mPrinterName || !mCorvianList || mWatermarks.Count() == 0) {
        return;
    }
    KeepRows(watermarkBlock, WatermarkRows());
}

void PDEData::ForgetWatermarkPreferences() {
    if (mPrinterName && mCorvianList && StoredWatermarkCount() > 0) {
        KeepRows(watermarkBlock, {});
    }
}

bool PDEData::GetWatermarksFromPreferences() {
    if (!mPrinterName || !mCorvianList) {
        return false;
    }
    const TextRows definitions = ReadRows(watermarkBlock);
    if (!definitions.empty()) {
        mWatermarks.Clear();
        for (const std::string& definition : definitions) {
            mWatermarks.Append(std::make_unique<ZANWatermark>(definition.c_str()));
        }
    }
    return true;
}

TextRows PDEData::WatermarkRows() const {
    TextRows rows;
    for (std::size_t i = 0; i < mWatermarks.Count(); ++i) {
        rows.push_back(cutText(mWatermarks.At(i)->Definition(), rowSize));
    }
    return rows;
}

std::size_t PDEData::StoredWatermarkCount() const {
    return mPrinterName && mCorvianList ? KeptRows(watermarkBlock).size() : 0;
}

// Writes this dialog's changes of a block of rows into the printer's entry and saves the list. The person
// gets an own list with the first change, and keeps it. True when the next dialog of this person begins with
// these rows.
bool PDEData::KeepRows(std::size_t block, const TextRows& texts) {
    TextRows own(texts.size());
    std::ranges::transform(texts, own.begin(), [](const std::string& row) { return cutText(row, rowSize); });
    const PersonalLists lists(mPrinterName);
    const bool hadOwn = lists.Read(personalList(block)).has_value();
    const TextRows stored = KeptRows(block);
    // Without a stored quick access, that of the description is in force, whoever has removed the stored one.
    const bool isDescriptions = block == quickAccessBlock && stored.empty();
    const TextRows kept = isDescriptions ? own : mergedRows(mKnownRows[block].value_or(stored), own, stored);
    std::vector<DataRow> rows(kept.size());
    for (std::size_t i = 0; i < kept.size(); ++i) {
        std::copy_n(kept[i].c_str(), kept[i].size() + 1, rows[i].data());
    }
    const bool isOwn = kept != stored ? lists.Write(personalList(block), kept) : hadOwn;
    const bool isStored = mCorvianList->AddDataBlob(mPrinterName, static_cast<int>(rows.size()),
                                                    static_cast<int>(block), rows) != 0 &&
                          mCorvianList->Save();
    const bool isKept = isOwn || (isStored && !hadOwn);
    if (isKept) {
        mKnownRows[block] = std::move(own);
    }
    return isKept;
}

TextRows PDEData::ReadRows(std::size_t block) {
    mKnownRows[block] = KeptRows(block);
    return *mKnownRows[block];
}

// The list in force: the person's own, else that of the queue.
TextRows PDEData::KeptRows(std::size_t block) const {
    TextRows texts;
    if (auto own = PersonalLists(mPrinterName).Read(personalList(block))) {
        texts = *std::move(own);
    } else {
        std::vector<CFStringRef> rows;
        mCorvianList->GetDataBlob(mPrinterName, static_cast<int>(block), rows);
        std::ranges::transform(rows, std::back_inserter(texts), utf8Text);
    }
    std::ranges::transform(texts, texts.begin(),
                           [](const std::string& row) { return cutText(row, rowSize); });
    return texts;
}

} // namespace torka
