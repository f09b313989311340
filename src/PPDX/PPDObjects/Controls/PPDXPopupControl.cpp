#include "PPDX/PPDObjects/Controls/PPDXPopupControl.h"

#include "PPDX/PPDObjects/StoredRecord.h"
#include "TextConverter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace torka {

namespace {

// Popups whose choices the controller may add to at any time.
constexpr std::array<std::string_view, 7> colourKeywords = {
    "*QVSimulation", "*QVOutProfile",   "*QVRGBOverride",  "*QVCurveAdjust",
    "*QVControlBar", "*QVSpotPriority", "*QVGrayOverride",
};

bool equals(const CString& text, const char* other) {
    return text.Buffer() && std::strcmp(text.Buffer(), other) == 0;
}

// The field of item n: "item3.keyword".
std::string itemField(std::size_t number, const char* field) {
    return "item" + std::to_string(number) + "." + field;
}

} // namespace

_PopupItem::_PopupItem(const char* optionKeyword, CFStringRef name, const unsigned char* ps, long length)
    : keyword(optionKeyword ? optionKeyword : "")
    , localName(std::move(name))
    , psData(ps)
    , psLength(length) {}

_PopupItem::~_PopupItem() = default;

const char* _PopupItem::displayName() {
    if (!displayNameCache) {
        const std::size_t size = 4 * static_cast<std::size_t>(CFStringGetLength(localName)) + 1;
        auto name = std::make_unique<char[]>(size);
        if (size > 1) {
            TextConverter::CFStringToCstring(localName, name.get(), static_cast<long>(size));
        }
        displayNameCache = std::move(name);
    }
    return displayNameCache.get();
}

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
        stored.push_back(std::make_unique<_PopupItem>(
            optionKeyword->c_str(), cfString(record.Text(itemField(number, "name")).value_or(*optionKeyword)),
            ps ? KeepBytes(*ps) : nullptr, ps ? static_cast<long>(ps->size()) : 0));
    }
    const auto storedDefault = record.Text("default");
    TakeItems(std::move(stored), storedDefault ? storedDefault->c_str() : nullptr);
    defaultIndexOverride = record.Index("defaultIndex");
    ResetToDefaultValue();
    RestoreSelection(record);
}

PPDXPopupControl::~PPDXPopupControl() { DeleteItems(); }

void PPDXPopupControl::Save(Settings& settings, const int& index) const {
    PPDXControl::Save(settings, index);
    StoredRecord record(settings, "Control", index);
    record.SetInteger("multiSelect", multiSelect);
    record.SetInteger("installable", installable ? 1 : 0);
    record.SetText("default", GetDefaultKeyword());
    record.SetInteger("defaultIndex", defaultIndexOverride);
    std::size_t number = 0;
    std::size_t currentNumber = 0;
    std::string selected;
    for (auto place = items.Begin(); place != items.End(); ++place) {
        const auto* item = static_cast<const _PopupItem*>(*place);
        ++number;
        record.SetText(itemField(number, "keyword"), item->keyword.Buffer());
        record.SetText(itemField(number, "name"), std::string_view(utf8Text(item->localName)));
        if (item->psLength > 0) {
            record.SetText(itemField(number, "ps"), bytesView(item->psData, item->psLength));
        }
        if (item->selected != 0) {
            selected += selected.empty() ? "" : " ";
            selected += std::to_string(number);
        }
        if (item == *current) {
            currentNumber = number;
        }
    }
    record.SetText("selected", std::string_view(selected));
    record.SetInteger("current", static_cast<std::int64_t>(currentNumber));
}

void PPDXPopupControl::RestoreSelection(const StoredRecord& record) {
    const auto numbers = record.Text("selected");
    if (!numbers) {
        return;
    }
    const int currentNumber = record.Index("current");
    std::string_view rest = *numbers;
    int number = 0;
    for (auto place = items.Begin(); place != items.End(); ++place) {
        auto* item = static_cast<_PopupItem*>(*place);
        const std::string text = std::to_string(++number);
        const std::string_view word = rest.substr(0, rest.find(' '));
        item->selected = word == text ? 1 : 0;
        if (item->selected != 0) {
            rest.remove_prefix(std::min(word.size() + 1, rest.size()));
        }
        if (number == currentNumber) {
            current = place;
        }
    }
    emitted = nullptr;
    ReportValue();
}

void PPDXPopupControl::Restore(Settings& settings, int index) {
    // By keyword rather than by number, since a newer description may list its choices in another order.
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
        for (void* item : items) {
            static_cast<_PopupItem*>(item)->selected = 0;
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

long PPDXPopupControl::PostScript(unsigned char* out) {
    const auto* item = static_cast<const _PopupItem*>(*current);
    if (!item) {
        return 0;
    }
    if (!emitted) {
        emitted = FindItem(item->keyword.Buffer());
    }
    return ItemPostScript(emitted, out);
}

CFStringRef PPDXPopupControl::CopyCurrentControlValueString() { return CopyCurrentControlValueStringUTF8(); }

CFStringRef PPDXPopupControl::CopyCurrentControlValueStringUTF8() {
    const _PopupItem* item = ItemAt(GetValue());
    return cfString(item ? std::string_view(item->keyword.Buffer(), item->keyword.Size())
                         : std::string_view());
}

void PPDXPopupControl::SetCurrentControlWithCFString(CFStringRef text) {
    if (text) {
        SetCurrentControlWithText(utf8Text(text), false);
    }
}

void PPDXPopupControl::SetCurrentControlWithText(const std::string& text, bool keepOthers) {
    int number = 0;
    for (const void* element : items) {
        ++number;
        if (equals(static_cast<const _PopupItem*>(element)->keyword, text.c_str())) {
            if (keepOthers) {
                SetKeywordSelect(text.c_str(), true);
            } else {
                SelectNumber(number, true);
            }
            return;
        }
    }
    if (std::ranges::find(colourKeywords, std::string_view(Keyword() ? Keyword() : "")) ==
        colourKeywords.end()) {
        return;
    }
    // A choice needs a keyword; a NUL cannot stand in one.
    if (text.empty() || text.find('\0') != std::string::npos) {
        ResetToDefaultValue();
        return;
    }
    AppendPopupItem(std::make_unique<_PopupItem>(text.c_str(), cfString(text), nullptr, 0));
    SelectNumber(number + 1, true);
}

_PopupItem* PPDXPopupControl::FirstItem() {
    cursor = items.Begin();
    return NextItem();
}

_PopupItem* PPDXPopupControl::NextItem() {
    if (cursor == items.End()) {
        return nullptr;
    }
    auto* item = static_cast<_PopupItem*>(*cursor);
    ++cursor;
    return item;
}

int PPDXPopupControl::GetValue() const {
    int number = 0;
    for (const void* item : items) {
        ++number;
        if (static_cast<const _PopupItem*>(item)->selected != 0) {
            return number;
        }
    }
    return 0;
}

void PPDXPopupControl::SetValue(int index) { SelectNumber(index, false); }

void PPDXPopupControl::SelectNumber(int index, bool isFirstOfKeyword) {
    int number = 0;
    for (auto place = items.Begin(); place != items.End(); ++place) {
        auto* item = static_cast<_PopupItem*>(*place);
        item->selected = ++number == index ? 1 : 0;
        if (number == index) {
            current = place;
            emitted = isFirstOfKeyword ? item : nullptr;
        }
    }
    ReportValue();
}

int PPDXPopupControl::DefaultValue() const {
    const bool overrideCounts = !gPopupJobNotesDoneInitializing || gPopupJobNotesFoundOne;
    if (defaultIndexOverride != 0 && overrideCounts) {
        return defaultIndexOverride;
    }
    if (!defaultKeyword || !defaultKeyword->Buffer()) {
        return 0;
    }
    int number = 0;
    for (const void* item : items) {
        ++number;
        if (equals(static_cast<const _PopupItem*>(item)->keyword, defaultKeyword->Buffer())) {
            return number;
        }
    }
    return 0;
}

const char* PPDXPopupControl::GetDefaultKeyword() const {
    return defaultKeyword ? defaultKeyword->Buffer() : nullptr;
}

long PPDXPopupControl::GetKeywordPSData(const char* option, unsigned char* out) {
    return ItemPostScript(FindItem(option), out);
}

long PPDXPopupControl::ItemPostScript(const _PopupItem* item, unsigned char* out) const {
    if (!item) {
        return 0;
    }
    const std::string_view option(item->keyword.Buffer(), item->keyword.Size());
    return GeneratePSOutputData(out, item->psData, std::max(item->psLength, 0L), option, true);
}

const char* PPDXPopupControl::GetKeywordLocalName(const char* option) const {
    _PopupItem* item = FindItem(option);
    return item ? item->displayName() : nullptr;
}

CFStringRef PPDXPopupControl::GetKeywordCFLocalName(const char* option) const {
    const _PopupItem* item = FindItem(option);
    return item ? item->localName : nullptr;
}

const char* PPDXPopupControl::GetKeywordLocalNameAtIndex(int index) const {
    _PopupItem* item = ItemAt(index);
    return item ? item->displayName() : nullptr;
}

void PPDXPopupControl::AppendPopupItem(std::unique_ptr<_PopupItem> item) {
    if (item) {
        items.PushBack(item.get());
        static_cast<void>(item.release()); // the list's now, deleted by DeleteItems
    }
}

bool PPDXPopupControl::IsKeywordSelected(const char* option) const {
    const _PopupItem* item = FindItem(option);
    return item && item->selected != 0;
}

bool PPDXPopupControl::SetKeywordSelect(const char* option, bool select) {
    if (!option || items.Empty()) {
        return false;
    }
    bool found = false;
    for (auto place = items.Begin(); place != items.End(); ++place) {
        auto* item = static_cast<_PopupItem*>(*place);
        if (equals(item->keyword, option)) {
            emitted = found ? emitted : item;
            found = true;
            item->selected = select ? 1 : 0;
            current = place;
            if (multiSelect != 0) {
                break;
            }
        } else if (multiSelect == 0) {
            item->selected = 0;
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
    if (const auto* item = static_cast<const _PopupItem*>(*current)) {
        UpdateKVCache(Keyword(), item->keyword.Buffer());
    }
}

_PopupItem* PPDXPopupControl::FindItem(const char* option) const {
    if (!option) {
        return nullptr;
    }
    for (void* element : items) {
        auto* item = static_cast<_PopupItem*>(element);
        if (equals(item->keyword, option)) {
            return item;
        }
    }
    return nullptr;
}

_PopupItem* PPDXPopupControl::ItemAt(int index) const {
    int number = 0;
    for (void* item : items) {
        if (++number == index) {
            return static_cast<_PopupItem*>(item);
        }
    }
    return nullptr;
}

void PPDXPopupControl::TakeItems(PopupItems newItems, const char* newDefault) {
    // The default's text may be one of the old items'.
    auto wanted = newDefault ? std::make_unique<CString>(newDefault) : nullptr;
    DeleteItems();
    for (auto& item : newItems) {
        AppendPopupItem(std::move(item));
    }
    defaultIndexOverride = 0;
    const _PopupItem* item = wanted ? FindItem(wanted->Buffer()) : nullptr;
    strayDefault = item ? nullptr : std::move(wanted);
    defaultKeyword = item ? &item->keyword : strayDefault.get();
}

void PPDXPopupControl::DeleteItems() {
    for (void* item : items) {
        const std::unique_ptr<_PopupItem> owned(static_cast<_PopupItem*>(item));
    }
    items.MakeEmpty();
    cursor = current = PointerListItr();
    emitted = nullptr;
    defaultKeyword = nullptr;
}

} // namespace torka
