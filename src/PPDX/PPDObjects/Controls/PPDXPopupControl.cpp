// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXPopupControl.h"

#include "PPDX/PPDObjects/Controls/ColourKeywords.h"
#include "PPDX/PPDObjects/StoredRecord.h"
#include "TextConverter.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace torka {

namespace {

// Returns the field of item n, such as "item3.keyword".
std::string itemField(std::size_t number, const char* field) {
    return "item" + std::to_string(number) + "." + field;
}

} // namespace

PPDXPopupControl::PPDXPopupControl(const ControlDefinition& definition, bool isMultiSelect,
                                   bool isInstallable, PopupItems newItems, const char* newDefault)
    : PPDXControl(CNTL_TYPE::popup, definition)
    , multiSelect(isMultiSelect ? 1 : 0)
    , installable(isInstallable) {
    TakeItems(std::move(newItems), newDefault);
    ResetToDefaultValue();
}

PPDXPopupControl::PPDXPopupControl(Settings& settings, int index, const CString* prefix)
    : PPDXControl(CNTL_TYPE::popup, settings, index, prefix) {
    const StoredRecord record(settings, prefix && prefix->Buffer() ? prefix->Buffer() : "Control", index);
    multiSelect = record.Integer("multiSelect") != 0 ? 1 : 0;
    installable = record.Integer("installable") != 0;
    PopupItems stored;
    while (const auto optionKeyword = record.Text(itemField(stored.size() + 1, "keyword"))) {
        const std::size_t number = stored.size() + 1;
        const auto ps = record.Text(itemField(number, "ps"));
        stored.emplace_back(optionKeyword->c_str(),
                            cfString(record.Text(itemField(number, "name")).value_or(*optionKeyword)),
                            ps ? KeepBytes(*ps) : nullptr, ps ? static_cast<long>(ps->size()) : 0);
    }
    const auto storedDefault = record.Text("default");
    TakeItems(std::move(stored), storedDefault ? storedDefault->c_str() : nullptr);
    defaultIndexOverride = record.Index("defaultIndex");
    ResetToDefaultValue();
    RestoreSelection(record);
}

void PPDXPopupControl::Save(Settings& settings, const int& index) const {
    PPDXControl::Save(settings, index);
    StoredRecord record(settings, "Control", index);
    record.SetInteger("multiSelect", multiSelect);
    record.SetInteger("installable", installable ? 1 : 0);
    record.SetText("default", GetDefaultKeyword());
    record.SetInteger("defaultIndex", defaultIndexOverride);
    std::size_t number = 0;
    std::string selected;
    for (const _PopupItem& item : items) {
        ++number;
        record.SetText(itemField(number, "keyword"), item.keyword.Buffer());
        record.SetText(itemField(number, "name"), std::string_view(utf8Text(item.LocalName())));
        if (item.psLength > 0) {
            record.SetText(itemField(number, "ps"), bytesView(item.psData, item.psLength));
        }
        if (item.selected != 0) {
            selected += selected.empty() ? "" : " ";
            selected += std::to_string(number);
        }
    }
    record.SetText("selected", std::string_view(selected));
    record.SetInteger("current", current == none ? 0 : static_cast<std::int64_t>(current) + 1);
}

void PPDXPopupControl::RestoreSelection(const StoredRecord& record) {
    const auto numbers = record.Text("selected");
    if (!numbers) {
        return;
    }
    const int currentNumber = record.Index("current");
    std::string_view rest = *numbers;
    int number = 0;
    for (_PopupItem& item : items) {
        const std::string text = std::to_string(++number);
        const std::string_view word = rest.substr(0, rest.find(' '));
        item.selected = word == text ? 1 : 0;
        if (item.selected != 0) {
            rest.remove_prefix(std::min(word.size() + 1, rest.size()));
        }
        if (number == currentNumber) {
            current = static_cast<std::size_t>(number) - 1;
        }
    }
    emitted = none;
    ReportValue();
}

void PPDXPopupControl::Restore(Settings& settings, int index) {
    // Restores by keyword, because a newer description may list its choices in another order.
    const StoredRecord record(settings, "Control", index);
    const auto numbers = record.Text("selected");
    if (!numbers) {
        return;
    }
    std::vector<std::string> keywords;
    for (std::size_t from = 0; from < numbers->size();) {
        const std::size_t end = std::min(numbers->find(' ', from), numbers->size());
        if (auto option = record.Text("item" + numbers->substr(from, end - from) + ".keyword")) {
            keywords.push_back(std::move(*option));
        }
        from = end + 1;
    }
    if (multiSelect != 0 || numbers->empty()) {
        for (_PopupItem& item : items) {
            item.selected = 0;
        }
    }
    for (const std::string& option : keywords) {
        SetCurrentControlWithText(option, multiSelect != 0);
    }
    if (const auto last =
            record.Text(itemField(static_cast<std::size_t>(record.Index("current")), "keyword"))) {
        if (IsKeywordSelected(last->c_str())) {
            SetKeywordSelect(last->c_str(), true);
        }
    }
}

void PPDXPopupControl::ResetToDefaultValue() {
    const int number = DefaultValue();
    SelectNumber(number, number != defaultIndexOverride);
}

long PPDXPopupControl::PostScript(unsigned char* out) const {
    if (current == none) {
        return 0;
    }
    if (emitted == none) {
        emitted = PlaceOf(items[current].keyword.View());
    }
    return ItemPostScript(&items[emitted], out);
}

std::string_view PPDXPopupControl::EmittedKeyword() const {
    return current == none ? std::string_view() : items[current].keyword.View();
}

CFStringRef PPDXPopupControl::CopyCurrentControlValueString() const {
    return CopyCurrentControlValueStringUTF8();
}

CFStringRef PPDXPopupControl::CopyCurrentControlValueStringUTF8() const {
    const _PopupItem* item = ItemAt(GetValue());
    return cfString(item ? item->keyword.View() : std::string_view());
}

void PPDXPopupControl::SetCurrentControlWithCFString(CFStringRef text) {
    if (text) {
        SetCurrentControlWithText(utf8Text(text), false);
    }
}

void PPDXPopupControl::SetCurrentControlWithText(const std::string& text, bool keepOthers) {
    const std::size_t place = PlaceOf(text.c_str());
    if (place != none) {
        if (keepOthers) {
            SetKeywordSelect(text.c_str(), true);
        } else {
            SelectNumber(static_cast<int>(place) + 1, true);
        }
        return;
    }
    if (!isOpenColourPopup(Keyword() ? Keyword() : "")) {
        return;
    }
    // A choice needs a keyword, which cannot contain NUL.
    if (text.empty() || text.find('\0') != std::string::npos) {
        ResetToDefaultValue();
        return;
    }
    AppendPopupItem(_PopupItem(text.c_str(), cfString(text), nullptr, 0));
    SelectNumber(static_cast<int>(items.size()), true);
}

_PopupItem* PPDXPopupControl::FirstItem() {
    cursor = 0;
    return NextItem();
}

_PopupItem* PPDXPopupControl::NextItem() { return cursor < items.size() ? &items[cursor++] : nullptr; }

int PPDXPopupControl::GetValue() const {
    int number = 0;
    for (const _PopupItem& item : items) {
        ++number;
        if (item.selected != 0) {
            return number;
        }
    }
    return 0;
}

void PPDXPopupControl::SetValue(int index) { SelectNumber(index, false); }

void PPDXPopupControl::SelectNumber(int index, bool isFirstOfKeyword) {
    for (_PopupItem& item : items) {
        item.selected = 0;
    }
    if (index > 0 && static_cast<std::size_t>(index) <= items.size()) {
        current = static_cast<std::size_t>(index) - 1;
        emitted = isFirstOfKeyword ? current : none;
        items[current].selected = 1;
    }
    ReportValue();
}

int PPDXPopupControl::DefaultValue() const {
    const bool overrideCounts = !gPopupJobNotesDoneInitializing || gPopupJobNotesFoundOne;
    if (defaultIndexOverride != 0 && overrideCounts) {
        return defaultIndexOverride;
    }
    if (defaultItem != none) {
        return static_cast<int>(defaultItem) + 1;
    }
    const std::size_t place = strayDefault ? PlaceOf(strayDefault->Buffer()) : none;
    return place == none ? 0 : static_cast<int>(place) + 1;
}

std::string PPDXPopupControl::DefaultText() const {
    const _PopupItem* item = ItemAt(DefaultValue());
    return std::string(item ? item->keyword.View() : std::string_view());
}

const char* PPDXPopupControl::GetDefaultKeyword() const {
    if (defaultItem != none) {
        return items[defaultItem].keyword.Buffer();
    }
    return strayDefault ? strayDefault->Buffer() : nullptr;
}

long PPDXPopupControl::GetKeywordPSData(const char* option, unsigned char* out) const {
    return ItemPostScript(FindItem(option), out);
}

long PPDXPopupControl::ItemPostScript(const _PopupItem* item, unsigned char* out) const {
    if (!item) {
        return 0;
    }
    return GeneratePSOutputData(out, item->psData, std::max(item->psLength, 0), item->keyword.View(), true);
}

const char* PPDXPopupControl::GetKeywordLocalName(const char* option) const {
    const _PopupItem* item = FindItem(option);
    return item ? item->displayName() : nullptr;
}

CFStringRef PPDXPopupControl::GetKeywordCFLocalName(const char* option) const {
    const _PopupItem* item = FindItem(option);
    return item ? item->LocalName() : nullptr;
}

const char* PPDXPopupControl::GetKeywordLocalNameAtIndex(int index) const {
    const _PopupItem* item = ItemAt(index);
    return item ? item->displayName() : nullptr;
}

void PPDXPopupControl::AppendPopupItem(_PopupItem item) { items.push_back(std::move(item)); }

bool PPDXPopupControl::IsKeywordSelected(const char* option) const {
    const _PopupItem* item = FindItem(option);
    return item && item->selected != 0;
}

bool PPDXPopupControl::SetKeywordSelect(const char* option, bool select) {
    if (!option || items.empty()) {
        return false;
    }
    bool found = false;
    for (std::size_t place = 0; place < items.size(); ++place) {
        _PopupItem& item = items[place];
        if (item.keyword.View() == option) {
            emitted = found ? emitted : place;
            found = true;
            item.selected = select ? 1 : 0;
            current = place;
            if (multiSelect != 0) {
                break;
            }
        } else if (multiSelect == 0) {
            item.selected = 0;
        }
    }
    UpdateKVCache(Keyword(), option);
    return found;
}

bool PPDXPopupControl::Rebuild(const char* option, PopupItems newItems, const char* newDefault) {
    if (!(*this == option) || newItems.empty()) {
        return false;
    }
    TakeItems(std::move(newItems), newDefault);
    ResetToDefaultValue();
    return true;
}

void PPDXPopupControl::ReportValue() const {
    if (current != none) {
        UpdateKVCache(Keyword(), items[current].keyword.Buffer());
    }
}

std::size_t PPDXPopupControl::PlaceOf(std::string_view option) const {
    const auto isNamed = [option](const _PopupItem& item) { return item.keyword.View() == option; };
    const auto found = std::ranges::find_if(items, isNamed);
    return found == items.end() ? none : static_cast<std::size_t>(found - items.begin());
}

const _PopupItem* PPDXPopupControl::FindItem(const char* option) const {
    const std::size_t place = option ? PlaceOf(option) : none;
    return place == none ? nullptr : &items[place];
}

const _PopupItem* PPDXPopupControl::ItemAt(int index) const {
    const bool isThere = index > 0 && static_cast<std::size_t>(index) <= items.size();
    return isThere ? &items[static_cast<std::size_t>(index) - 1] : nullptr;
}

void PPDXPopupControl::TakeItems(PopupItems newItems, const char* newDefault) {
    // Copies the default first: its text may belong to one of the old items.
    auto wanted = newDefault ? std::make_unique<CString>(newDefault) : nullptr;
    items = std::move(newItems);
    cursor = 0;
    current = emitted = none;
    defaultIndexOverride = 0;
    const bool isCopied = wanted && wanted->Buffer(); // memory may be short
    defaultItem = isCopied ? PlaceOf(wanted->Buffer()) : none;
    strayDefault = isCopied && defaultItem == none ? std::move(wanted) : nullptr;
}

} // namespace torka
