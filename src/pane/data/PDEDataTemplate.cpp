// SPDX-License-Identifier: Apache-2.0
#include "pane/data/PDEData.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "bidi/serverdata/CUtil.h"
#include "platform/Log.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <iterator>
#include <vector>

// Reads the management template. The template is searched as text, so that a document with a defect elsewhere
// still hides and locks the controls that it names.

namespace torka {

namespace {

constexpr std::string_view categoryStart = "<Category name=\"UI-Modification\">";
constexpr std::string_view categoryEnd = "</Category>";

std::string_view afterAsterisk(std::string_view keyword) {
    const std::size_t asterisk = keyword.find('*');
    return asterisk == std::string_view::npos ? keyword : keyword.substr(asterisk + 1);
}

// The text of the section within the category; empty when either is missing.
std::string_view sectionText(std::string_view xml, std::string_view section) {
    const std::size_t category = xml.find(categoryStart);
    if (category == std::string_view::npos) {
        return {};
    }
    const std::size_t end = xml.find(categoryEnd, category);
    const std::string openTag = "<" + std::string(section) + ">";
    const std::string closeTag = "</" + std::string(section) + ">";
    const std::size_t open = xml.find(openTag, category);
    if (end == std::string_view::npos || open == std::string_view::npos) {
        return {};
    }
    const std::size_t close = xml.find(closeTag, open);
    if (close == std::string_view::npos || close > end) {
        return {};
    }
    return xml.substr(open + openTag.size(), close - open - openTag.size());
}

} // namespace

bool PDEData::dmtHides(std::string_view keyword) { return TemplateSays(keyword, "Show", "value=\"False\""); }

bool PDEData::dmtLocks(std::string_view keyword) { return TemplateSays(keyword, "Lock", "value=\"True\""); }

bool PDEData::TemplateSays(std::string_view keyword, std::string_view section, std::string_view value) {
    const std::string_view xml = mPPDModel->DMTXmlData();
    const std::string_view name = afterAsterisk(keyword);
    lastKeywordAsked = name;
    const std::string_view text = sectionText(xml, section);
    if (text.empty()) {
        if (!xml.empty() && !sectionMissingReported) {
            sectionMissingReported = true;
            myNSLogC("The management template has no section that shows or locks options.");
        }
        return false;
    }
    const std::size_t entry = text.find("\"" + std::string(name) + "\"");
    if (entry == std::string_view::npos) {
        return false;
    }
    // The search for the end of the entry covers the whole document, as the search for its value does.
    const std::size_t from = static_cast<std::size_t>(text.data() - xml.data()) + entry;
    const std::size_t end = xml.find("/>", from);
    const std::size_t found = xml.find(value, from);
    return end != std::string_view::npos && found != std::string_view::npos && found < end;
}

bool PDEData::fetchHiddenKeysFromDMTXML(std::vector<std::string>& keys) const {
    const std::string& xml = mPPDModel->DMTXmlData();
    if (xml.empty() || !decodeText(xml, kCFStringEncodingUTF8)) {
        return false;
    }
    CUtil::KeyValues hidden;
    CUtil::GetHiddenKeyValFromDMTXmlData(wideFromUtf8(xml), hidden);
    for (const auto& [key, value] : hidden) {
        keys.push_back("*" + utf8FromWide(key));
    }
    return true;
}

// False without print settings, for an empty document and for one that is no UTF-8.
bool PDEData::ReadTemplate(std::map<std::wstring, std::wstring>& values) const {
    const std::string& xml = mPPDModel->DMTXmlData();
    return mPrintSettings && !xml.empty() && decodeText(xml, kCFStringEncodingUTF8) &&
           CUtil::GetControlKeyValFromDMTXmlData(wideFromUtf8(xml), values);
}

bool PDEData::dmtSetNonPPDKeys() {
    CUtil::KeyValues values;
    if (!ReadTemplate(values)) {
        return false;
    }
    TakeTemplateValues(values);
    return true;
}

void PDEData::TakeTemplateValues(const std::map<std::wstring, std::wstring>& values) {
    mMixedMedia.SetCount(0);
    mPadCover.SetCount(0);
    std::array<std::size_t, 5> nextSlots{};
    for (const auto& [key, value] : values) {
        TakeTemplateKey(key, value, nextSlots);
    }
    WriteSetting(".MMKey", CFNumberCreate(static_cast<std::int32_t>(mMixedMedia.Count())));
    WriteSetting(".PadCov", CFNumberCreate(static_cast<std::int32_t>(mPadCover.Count())));
}

// The slots of slip sheets and cover pages are filled from 0 while their counts go on, so the lists are
// emptied first: no entry of an earlier taking stays, and the person's own ones come behind.
void PDEData::TakeTemplate() {
    CUtil::KeyValues values;
    if (templateTaken || !ReadTemplate(values)) {
        return;
    }
    templateTaken = true;
    std::array<std::vector<WideSetting>, 2> own;
    const std::array<SettingList*, 2> lists{&mSlipSheet, &mCoverPage};
    for (std::size_t i = 0; i < lists.size(); ++i) {
        std::ranges::copy_if(lists[i]->Entries(), std::back_inserter(own[i]),
                             [&](const WideSetting& entry) { return !values.contains(entry.key); });
    }
    for (SettingList* list : SideLists()) {
        list->Clear();
    }
    TakeTemplateValues(values);
    for (std::size_t i = 0; i < lists.size(); ++i) {
        for (WideSetting& entry : own[i]) {
            lists[i]->Append(std::move(entry));
        }
    }
    for (const auto& [key, value] : values) {
        const std::string keyword = "*" + utf8FromWide(key);
        PPDXControl* control = mPPDModel->GetControls()->FindJobNote(keyword.c_str(), true);
        if (control == nullptr && keyword == "*CustomPrintSize") {
            control = mPPDModel->GetControls()->FindCustomPageSizeControl(keyword.c_str(), true);
        }
        if (control != nullptr) {
            control->SetCurrentControlWithCFString(cfString(utf8FromWide(value)));
        }
    }
}

void PDEData::TakeTemplateKey(const std::wstring& key, const std::wstring& value,
                              std::array<std::size_t, 5>& nextSlots) {
    const KeyKind kind = keyKind(key);
    const std::string narrowKey = utf8FromWide(key);
    const CFStringRef text = cfString(utf8FromWide(value));
    if (kind != KeyKind::other) {
        std::size_t& slot = nextSlots[static_cast<std::size_t>(kind)];
        switch (kind) {
        case KeyKind::mixedMedia:
            mMixedMedia.FillSlot(slot, {L"*" + key, value});
            break;
        case KeyKind::padCover:
            mPadCover.FillSlot(slot, {key, value});
            break;
        case KeyKind::slipSheet:
            mSlipSheet.FillSlot(slot, {key, value});
            break;
        case KeyKind::coverPage:
            mCoverPage.FillSlot(slot, {key, value});
            break;
        case KeyKind::account:
            if (slot < mAccountPairs.size() && key.size() + 1 < accountKeySize) {
                mAccountPairs[slot] = {L"*" + key, value.substr(0, accountValueSize - 1)};
            } else {
                myNSLogC("The account identifiers have no room for %s.", narrowKey.c_str());
            }
            WriteSetting("*" + narrowKey, text);
            break;
        case KeyKind::other:
            break;
        }
        ++slot;
        WriteSetting(narrowKey, text);
    }
    const std::string keyword = "*" + narrowKey;
    if (mPPDModel->GetControls()->FindJobNote(keyword.c_str(), true) != nullptr ||
        narrowKey == "CustomPrintSize") {
        WriteSetting(keyword, text);
    }
}

} // namespace torka
