#include "pane/SettingList.h"

#include "platform/Log.h"

#include <algorithm>
#include <utility>

namespace torka {

void SettingList::SetCount(std::int64_t newCount) {
    const auto most = static_cast<std::int64_t>(capacity);
    if (newCount > most) {
        myNSLogC("A list of %s claims %lld entries; %zu are kept.", name, static_cast<long long>(newCount),
                 capacity);
    }
    count = static_cast<std::size_t>(std::clamp<std::int64_t>(newCount, 0, most));
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
