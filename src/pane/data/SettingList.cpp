// SPDX-License-Identifier: Apache-2.0
#include "pane/data/SettingList.h"

#include "platform/Log.h"

#include <algorithm>
#include <utility>

namespace torka {

KeyKind keyKind(std::wstring_view key) {
    for (const std::wstring_view prefix :
         {L"RangeProp", L"RangeNum", L"Chapters", L"SubsetFinishing", L"MM_A"}) {
        if (key.starts_with(prefix)) {
            return KeyKind::mixedMedia;
        }
    }
    if (key.starts_with(L"PadCover")) {
        return KeyKind::padCover;
    }
    if (key.starts_with(L"SlipSheet_")) {
        return KeyKind::slipSheet;
    }
    if (key.starts_with(L"CoverPage_")) {
        return KeyKind::coverPage;
    }
    for (const std::wstring_view account :
         {L"QVPCMID", L"QVPCName", L"QVCoverSizePCMID", L"QVCoverSizePCName"}) {
        if (key.starts_with(account)) {
            return KeyKind::account;
        }
    }
    return KeyKind::other;
}

std::wstring settledKey(std::wstring_view key) {
    const std::wstring bare(key.substr(key.starts_with(L'*') ? 1 : 0));
    return keyKind(bare) == KeyKind::mixedMedia ? L"*" + bare : bare;
}

void SettingList::SetCount(std::int64_t newCount) {
    const auto maximum = static_cast<std::int64_t>(capacity);
    if (newCount > maximum) {
        myNSLogC("A list of %s claims %lld entries; %zu are kept.", name, static_cast<long long>(newCount),
                 capacity);
    }
    count = static_cast<std::size_t>(std::clamp<std::int64_t>(newCount, 0, maximum));
    slots.resize(std::max(slots.size(), count));
}

bool SettingList::FillSlot(std::size_t index, WideSetting setting) {
    if (index >= capacity || count >= capacity) {
        myNSLogC("The list of %s holds %zu entries and takes no more.", name, capacity);
        return false;
    }
    ++count;
    slots.resize(std::max({slots.size(), count, index + 1}));
    slots[index] = std::move(setting);
    return true;
}

void SettingList::Clear() {
    slots.clear();
    count = 0;
}

} // namespace torka
