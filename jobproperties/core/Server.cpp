// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/core/Server.h"

#include "jobproperties/core/Text.h"

#include <algorithm>

namespace torka::jobproperties {

namespace {

bool isCredible(std::size_t count, const void* items) {
    return count == 0 || (items != nullptr && count <= maximumListLength);
}

} // namespace

bool readList(const SDMKeyValueList* list, KeyValues& values) {
    if (list == nullptr || !isCredible(list->count, list->items)) {
        return false;
    }
    values.clear();
    values.reserve(list->count);
    for (std::size_t i = 0; i < list->count; ++i) {
        if (const SDMKeyValue& entry = list->items[i]; entry.szKey != nullptr && *entry.szKey != L'\0') {
            values.push_back({fromWide(entry.szKey), fromWide(entry.szValue)});
        }
    }
    return true;
}

Server::Server(const SDMCallbackSlot* table, SDMHANDLE givenHandle)
    : handle(givenHandle) {
    std::copy_n(table, slots.size(), slots.begin());
}

bool Server::IsTwoWay() const { return slots[SDM_SLOT_TWO_WAY].number == 1; }

void Server::Free(void* block) const {
    if (const auto proc = Slot<SDMFreeProc>(SDM_SLOT_FREE); proc != nullptr && block != nullptr) {
        proc(&block);
    }
}

std::string Server::TakeText(wchar_t* text) const {
    std::string taken = fromWide(text);
    Free(text);
    return taken;
}

KeyValues Server::TakeList(SDMKeyValueList* list) const {
    KeyValues values;
    if (list == nullptr) {
        return values;
    }
    if (readList(list, values)) {
        for (std::size_t i = 0; i < list->count; ++i) {
            Free(list->items[i].szKey);
            Free(list->items[i].szValue);
        }
    }
    Free(list->items);
    Free(list);
    return values;
}

Answer<KeyValues> Server::List(int slot) const {
    Answer<KeyValues> answer;
    const auto proc = Slot<SDMGetListProc>(slot);
    answer.offered = proc != nullptr;
    SDMKeyValueList* list = nullptr;
    if (proc != nullptr) {
        answer.result = proc(handle, &list);
    }
    if (answer) {
        answer.value = TakeList(list);
    }
    return answer;
}

Answer<std::string> Server::Data() const {
    Answer<std::string> answer;
    const auto proc = Slot<SDMGetTextProc>(SDM_SLOT_GET_SERVER_DATA);
    answer.offered = proc != nullptr;
    wchar_t* text = nullptr;
    if (proc != nullptr) {
        answer.result = proc(handle, &text);
    }
    if (answer) {
        answer.value = TakeText(text);
    }
    return answer;
}

Answer<std::vector<Tray>> Server::Trays() const {
    Answer<std::vector<Tray>> answer;
    const auto proc = Slot<SDMGetTrayInfoProc>(SDM_SLOT_GET_TRAY_INFO);
    answer.offered = proc != nullptr;
    SDMTrayInfoArray* trays = nullptr;
    if (proc != nullptr) {
        answer.result = proc(handle, &trays);
    }
    if (!answer || trays == nullptr) {
        return answer;
    }
    for (std::size_t i = 0; isCredible(trays->count, trays->items) && i < trays->count; ++i) {
        const SDMTrayInfo& tray = trays->items[i];
        answer.value.push_back({TakeText(tray.name), TakeText(tray.key), TakeText(tray.mediaName),
                                TakeText(tray.mediaSize), TakeText(tray.mediaType), TakeText(tray.mediaColor),
                                tray.level, tray.capacity});
    }
    Free(trays->items);
    Free(trays);
    return answer;
}

Answer<std::vector<Toner>> Server::Toners() const {
    Answer<std::vector<Toner>> answer;
    const auto proc = Slot<SDMGetTonerInfoProc>(SDM_SLOT_GET_TONER_INFO);
    answer.offered = proc != nullptr;
    SDMTonerInfoArray* toners = nullptr;
    if (proc != nullptr) {
        answer.result = proc(handle, &toners);
    }
    if (!answer || toners == nullptr) {
        return answer;
    }
    for (std::size_t i = 0; isCredible(toners->count, toners->items) && i < toners->count; ++i) {
        const SDMTonerInfo& toner = toners->items[i];
        answer.value.push_back({TakeText(toner.name), toner.level, toner.lowLevel, TakeText(toner.color),
                                toner.highLevel, toner.capacity, toner.kind});
    }
    Free(toners->items);
    Free(toners);
    return answer;
}

Answer<std::vector<std::string>> Server::PresetNames() const {
    Answer<std::vector<std::string>> answer;
    const auto proc = Slot<SDMGetNamesProc>(SDM_SLOT_GET_SERVER_PRESET_NAMES_LIST);
    answer.offered = proc != nullptr;
    wchar_t** names = nullptr;
    std::int32_t count = 0;
    if (proc != nullptr) {
        answer.result = proc(handle, &names, &count);
    }
    if (!answer || names == nullptr) {
        return answer;
    }
    const std::size_t length = count > 0 ? static_cast<std::size_t>(count) : 0;
    for (std::size_t i = 0; length <= maximumListLength && i < length; ++i) {
        answer.value.push_back(TakeText(names[i]));
    }
    Free(static_cast<void*>(names));
    return answer;
}

Answer<Preset> Server::PresetByName(const std::string& name) const {
    Answer<Preset> answer;
    const auto proc = Slot<SDMGetPresetProc>(SDM_SLOT_GET_SERVER_PRESET_DATA_BY_NAME);
    answer.offered = proc != nullptr;
    SDMKeyValueList* job = nullptr;
    SDMKeyValueList* tessel = nullptr;
    SDMKeyValueList* preset = nullptr;
    if (proc != nullptr) {
        answer.result = proc(handle, toWide(name).c_str(), &job, &tessel, &preset);
    }
    if (answer) {
        answer.value = {TakeList(job), TakeList(tessel), TakeList(preset)};
    }
    return answer;
}

Answer<KeyValues> Server::Information() const { return List(SDM_SLOT_GET_SERVER_INFO_ALL); }

Answer<KeyValues> Server::Features() const { return List(SDM_SLOT_GET_SERVER_FEATURES_ALL); }

Answer<KeyValues> Server::Help() const { return List(SDM_SLOT_GET_LOCL_HELP_STRINGS); }

Answer<KeyValues> Server::Defaults() const { return List(SDM_SLOT_GET_PPD_DEFAULTS); }

Answer<KeyValues> Server::LockedKeys() const {
    Answer<KeyValues> answer;
    const auto proc = Slot<SDMGetTwoListsProc>(SDM_SLOT_GET_HOLD_QUEUE_ATTRIBUTES);
    answer.offered = proc != nullptr;
    SDMKeyValueList* defaults = nullptr;
    SDMKeyValueList* locked = nullptr;
    if (proc != nullptr) {
        answer.result = proc(handle, &defaults, &locked);
    }
    if (answer) {
        TakeList(defaults);
        answer.value = TakeList(locked);
    }
    return answer;
}

Answer<std::string> Server::Version(enumVersionInfo kind) const {
    Answer<std::string> answer;
    const auto proc = Slot<SDMGetDriverVersionProc>(SDM_SLOT_GET_DRIVER_VERSION);
    answer.offered = proc != nullptr;
    wchar_t* text = nullptr;
    if (proc != nullptr) {
        answer.result = proc(handle, kind, &text);
    }
    if (answer) {
        answer.value = TakeText(text);
    }
    return answer;
}

std::string attributeOf(const std::string& xml, const std::string& name) {
    std::size_t at = xml.find(" " + name + "=\"");
    if (at == std::string::npos) {
        return {};
    }
    at += name.size() + 3;
    std::string value = xml.substr(at, xml.find('"', at) - at);
    static constexpr std::array<std::pair<std::string_view, char>, 5> entities{
        {{"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}, {"&amp;", '&'}}};
    for (std::size_t i = 0; (i = value.find('&', i)) != std::string::npos; ++i) {
        for (const auto& [entity, character] : entities) {
            if (value.compare(i, entity.size(), entity) == 0) {
                value.replace(i, entity.size(), 1, character);
                break;
            }
        }
    }
    return value;
}

} // namespace torka::jobproperties
