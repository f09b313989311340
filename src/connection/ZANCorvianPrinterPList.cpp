// SPDX-License-Identifier: Apache-2.0
#include "connection/ZANCorvianPrinterPList.h"

#include "platform/Log.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>
#include <utility>

namespace torka {

namespace {

constexpr std::u16string_view endMark = u"----- Data End -----";

// Positions of an entry's values relative to its name.
constexpr std::size_t addressPlace = 1;
constexpr std::size_t enabledPlace = 2;
constexpr std::size_t formatPlace = 3;
constexpr std::size_t blocksPlace = 4;

CFStringRef endMarkString() { return CFStringCreateWithCharacters(endMark); }

// The text that identifies a block's header. The header of block 11 also holds the text of block 1, and a row
// may hold it too.
std::u16string headerText(int blockId) { return cfString(std::to_string(blockId) + ":")->units; }

std::size_t countIn(const CFStringRef& text) {
    return static_cast<std::size_t>(std::max(CFStringGetIntValue(text), 0));
}

// Null when the row is not UTF-8.
CFStringRef rowString(const DataRow& row) {
    const std::size_t length = strnlen(row.data(), row.size() - 1);
    return CFStringCreateWithBytes(row.data(), static_cast<CFIndex>(length), kCFStringEncodingUTF8);
}

} // namespace

ZANCorvianPrinterPList::ZANCorvianPrinterPList(QueueAccess queue)
    : ZANCorvianPrinterPList(makePropertyListStore(addressListPath, std::move(queue))) {}

ZANCorvianPrinterPList::ZANCorvianPrinterPList(std::unique_ptr<PropertyListStore> listStore)
    : PropertyListFile(std::move(listStore)) {
    if (List()) {
        elements = List()->values;
    }
    if (LoadError() != noErr) {
        myNSLogC("The printer's addresses could not be read, and stay as they are.");
    }
}

ZANCorvianPrinterPList::~ZANCorvianPrinterPList() = default;

CFStringRef ZANCorvianPrinterPList::StringAt(std::size_t position) const {
    return position < elements.size() ? cfCast<CFString>(elements[position]) : nullptr;
}

bool ZANCorvianPrinterPList::IsEndMark(std::size_t position) const {
    const CFStringRef text = StringAt(position);
    return text && text->units == endMark;
}

// REQUIRES: position <= elements.size().
void ZANCorvianPrinterPList::SetAt(std::size_t position, CFTypeRef value) {
    if (position < elements.size()) {
        elements[position] = std::move(value);
    } else {
        elements.push_back(std::move(value));
    }
}

void ZANCorvianPrinterPList::Remove(std::size_t position, std::size_t count) {
    const std::size_t first = std::min(position, elements.size());
    const std::size_t last = first + std::min(count, elements.size() - first);
    elements.erase(std::next(elements.begin(), static_cast<std::ptrdiff_t>(first)),
                   std::next(elements.begin(), static_cast<std::ptrdiff_t>(last)));
}

std::optional<std::size_t> ZANCorvianPrinterPList::FindEntry(const CFStringRef& name) const {
    for (std::size_t i = 0; name && i < elements.size(); ++i) {
        const CFStringRef text = StringAt(i);
        const bool beforeBoolean = i + 1 < elements.size() && cfCast<CFBoolean>(elements[i + 1]);
        if (text && !beforeBoolean && CFStringCompare(text, name, kCFCompareCaseInsensitive) == 0) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> ZANCorvianPrinterPList::FindBlock(std::size_t from, int blockId) const {
    const std::u16string wanted = headerText(blockId);
    for (std::size_t i = from; i < elements.size() && !IsEndMark(i); ++i) {
        const CFStringRef text = StringAt(i);
        if (text && text->units.find(wanted) != std::u16string::npos) {
            return i;
        }
    }
    return std::nullopt;
}

std::size_t ZANCorvianPrinterPList::RowCount(std::size_t header, int blockId) const {
    const std::u16string& text = StringAt(header)->units;
    const std::u16string wanted = headerText(blockId);
    return countIn(
        CFStringCreateWithCharacters(std::u16string_view(text).substr(text.find(wanted) + wanted.size())));
}

CFIndex ZANCorvianPrinterPList::Exists(const CFStringRef& name, bool& found) const {
    const auto entry = FindEntry(name);
    found = entry.has_value();
    return entry ? static_cast<CFIndex>(*entry) : -1;
}

CFStringRef ZANCorvianPrinterPList::Find(const CFStringRef& name) const {
    const auto entry = FindEntry(name);
    const CFStringRef address = entry ? StringAt(*entry + addressPlace) : nullptr;
    return address ? address : CFStringCreateWithCharacters(u"");
}

bool ZANCorvianPrinterPList::getIPEnabled(const CFStringRef& name) const {
    const auto entry = FindEntry(name);
    const bool whole = entry && *entry + enabledPlace < elements.size();
    return whole && CFBooleanGetValue(cfCast<CFBoolean>(elements[*entry + enabledPlace]));
}

bool ZANCorvianPrinterPList::setIPEnabled(const CFStringRef& name, bool on) {
    const auto entry = FindEntry(name);
    if (!entry || *entry + enabledPlace >= elements.size()) {
        return false;
    }
    const CFArrayRef before = CFArrayCreate(elements);
    elements[*entry + enabledPlace] = CFBooleanCreate(on);
    changed = true;
    Record(before, [this, name, on] { PutEntry(name, Find(name), on); });
    return true;
}

int ZANCorvianPrinterPList::Add(const CFStringRef& name, const CFStringRef& address, bool ipEnabled) {
    if (!name || !address) {
        return 0;
    }
    const bool isNew = !FindEntry(name);
    const bool keepsAddress = isNew || CFEqual(Find(name), address);
    const bool keepsSwitch = isNew || getIPEnabled(name) == ipEnabled;
    const CFArrayRef before = CFArrayCreate(elements);
    PutEntry(name, address, ipEnabled);
    changed = true;
    // A new entry begins with its queue's address. An address or switch that somebody has stored meanwhile
    // was chosen, and stays.
    Record(before, [=, this] {
        const bool isStored = FindEntry(name).has_value();
        PutEntry(name, isStored && keepsAddress ? Find(name) : address,
                 isStored && keepsSwitch ? getIPEnabled(name) : ipEnabled);
    });
    return 1;
}

void ZANCorvianPrinterPList::PutEntry(const CFStringRef& name, const CFStringRef& address, bool ipEnabled) {
    if (const auto entry = FindEntry(name)) {
        SetAt(*entry + addressPlace, address);
        SetAt(*entry + enabledPlace, CFBooleanCreate(ipEnabled));
        BringToFormat2(*entry);
    } else {
        elements.insert(elements.end(),
                        {name, address, CFBooleanCreate(ipEnabled), cfString("2"), endMarkString()});
    }
}

void ZANCorvianPrinterPList::BringToFormat2(std::size_t entry) {
    const std::size_t formatAt = entry + formatPlace;
    const std::size_t blocksAt = entry + blocksPlace;
    const CFStringRef format = StringAt(formatAt);
    const bool cutShort = formatAt >= elements.size();
    const bool hasOldRows = format && format->units == u"1";
    if (hasOldRows) {
        Remove(blocksAt + 1, countIn(StringAt(blocksAt)));
        Remove(blocksAt, 1);
    }
    if (cutShort || hasOldRows || (format && format->units == u"0")) {
        SetAt(formatAt, cfString("2"));
        SetAt(blocksAt, endMarkString());
    }
}

int ZANCorvianPrinterPList::AddDataBlob(const CFStringRef& name, int rowCount, int blockId,
                                        std::span<const DataRow> rows) {
    std::vector<CFTypeRef> block{cfString(std::to_string(blockId) + ":" + std::to_string(rowCount))};
    for (const DataRow& row :
         rows.first(std::min(rows.size(), static_cast<std::size_t>(std::max(rowCount, 0))))) {
        if (CFStringRef text = rowString(row)) {
            block.push_back(std::move(text));
        }
    }
    const CFArrayRef before = CFArrayCreate(elements);
    if (PutBlock(name, blockId, block)) {
        changed = true;
        Record(before, [this, name, blockId, block] {
            if (!FindEntry(name)) {
                PutEntry(name, cfString(""), false); // its printer has the address of its queue
            }
            PutBlock(name, blockId, block);
        });
    }
    return 1;
}

bool ZANCorvianPrinterPList::PutBlock(const CFStringRef& name, int blockId,
                                      const std::vector<CFTypeRef>& block) {
    const auto entry = FindEntry(name);
    if (!entry || *entry + formatPlace >= elements.size()) {
        return false;
    }
    if (const auto header = FindBlock(*entry + formatPlace, blockId)) {
        Remove(*header + 1, RowCount(*header, blockId));
        Remove(*header, 1);
    }
    const std::size_t place = std::min(*entry + blocksPlace, elements.size());
    elements.insert(std::next(elements.begin(), static_cast<std::ptrdiff_t>(place)), block.begin(),
                    block.end());
    return true;
}

bool ZANCorvianPrinterPList::GetDataBlob(const CFStringRef& name, int blockId,
                                         std::vector<CFStringRef>& out) const {
    const auto entry = FindEntry(name);
    if (!entry) {
        return false;
    }
    const CFStringRef format = StringAt(*entry + formatPlace);
    if (format && (format->units == u"0" || format->units == u"1")) {
        return false;
    }
    const auto header = FindBlock(*entry + blocksPlace, blockId);
    if (!header) {
        return false;
    }
    const std::size_t first = *header + 1;
    const std::size_t last = first + std::min(RowCount(*header, blockId), elements.size() - first);
    for (std::size_t i = first; i < last; ++i) {
        if (CFStringRef row = StringAt(i)) {
            out.push_back(std::move(row));
        }
    }
    return true;
}

void ZANCorvianPrinterPList::Record(const CFArrayRef& before, std::function<void()> change) {
    if (!CFEqual(before, CFArrayCreate(elements))) {
        changes.push_back(std::move(change));
    }
}

CFArrayRef ZANCorvianPrinterPList::WithOwnChanges(const CFArrayRef& stored) {
    std::vector<CFTypeRef> own = std::exchange(elements, stored->values);
    for (const auto& change : changes) {
        change();
    }
    return CFArrayCreate(std::exchange(elements, std::move(own)));
}

bool ZANCorvianPrinterPList::Save() {
    const CFArrayRef own = CFArrayCreate(elements);
    const bool saved =
        PropertyListFile::Save(own, [this](const CFArrayRef& stored) { return WithOwnChanges(stored); });
    if (IsSaved(own)) {
        changes.clear();
    }
    changed = changed && !saved;
    if (!saved) {
        myNSLogC("The printer's addresses could not be stored (error %d).", static_cast<int>(Error()));
    }
    return saved;
}

} // namespace torka
