#include "pane/SettingList.h"

#include "platform/Log.h"

#include <algorithm>
#include <utility>

namespace torka {

void SettingList::SetCount(std::int64_t count) {
    const auto most = static_cast<std::int64_t>(capacity);
    if (count > most) {
        myNSLogC("A list of %s claims %lld entries; %zu are kept.", name, static_cast<long long>(count),
                 capacity);
    }
    slots.resize(static_cast<std::size_t>(std::clamp<std::int64_t>(count, 0, most)));
}

bool SettingList::Append(WideSetting setting) {
    if (slots.size() >= capacity) {
        Refuse();
        return false;
    }
    slots.push_back(std::move(setting));
    return true;
}

bool SettingList::FillSlot(std::size_t index, WideSetting setting) {
    if (index >= capacity || slots.size() >= capacity) {
        Refuse();
        return false;
    }
    slots.emplace_back();
    slots[std::min(index, slots.size() - 1)] = std::move(setting);
    return true;
}

void SettingList::Refuse() const {
    myNSLogC("The list of %s holds %zu entries and takes no more.", name, capacity);
}

} // namespace torka
