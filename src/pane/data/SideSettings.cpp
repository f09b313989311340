// SPDX-License-Identifier: Apache-2.0
#include "pane/data/SideSettings.h"

#include "pane/data/PDEData.h"

#include <algorithm>

namespace torka {

SideSettings SideSettings::Of(PDEData& data) {
    SideSettings settings;
    const auto lists = data.SideLists();
    for (std::size_t i = 0; i < lists.size(); ++i) {
        const auto entries = lists[i]->Entries();
        settings.lists[i].assign(entries.begin(), entries.end());
    }
    const auto accounts = data.AccountPairs();
    std::copy(accounts.begin(), accounts.end(), settings.accounts.begin());
    if (const ZANWatermark* chosen = data.Watermarks().Selected()) {
        settings.watermark = chosen->Definition();
        settings.firstPageOnly = chosen->IsFirstPageOnly();
    }
    return settings;
}

void SideSettings::PutInto(PDEData& data) const {
    const auto places = data.SideLists();
    for (std::size_t i = 0; i < places.size(); ++i) {
        places[i]->Clear();
        for (const WideSetting& entry : lists[i]) {
            places[i]->Append(entry);
        }
    }
    std::copy(accounts.begin(), accounts.end(), data.AccountPairs().begin());
    data.Watermarks().SelectDefinition(watermark, firstPageOnly);
}

} // namespace torka
