// SPDX-License-Identifier: Apache-2.0
// Parses a list into entries for people and tools, and removes entries.

#include "connection/ZANCorvianPrinterPList.h"

#include <algorithm>
#include <charconv>

namespace torka {

namespace {

// A header consists of two numbers and a colon between them.
struct BlockHeader {
    int id = 0;
    std::size_t rows = 0;
};

std::optional<BlockHeader> blockHeader(const CFStringRef& text) {
    const std::string plain = utf8Text(text);
    const char* const end = plain.data() + plain.size();
    int id = 0;
    int rows = 0;
    const auto idEnd = std::from_chars(plain.data(), end, id);
    if (idEnd.ec != std::errc() || idEnd.ptr == end || *idEnd.ptr != ':') {
        return std::nullopt;
    }
    const auto rowsEnd = std::from_chars(idEnd.ptr + 1, end, rows);
    if (rowsEnd.ec != std::errc() || rowsEnd.ptr != end) {
        return std::nullopt;
    }
    return BlockHeader{id, static_cast<std::size_t>(std::max(rows, 0))};
}

} // namespace

std::size_t ZANCorvianPrinterPList::NextEntry(std::size_t from) const {
    for (std::size_t i = from; i + 2 < elements.size(); ++i) {
        if (StringAt(i) && StringAt(i + 1) && cfCast<CFBoolean>(elements[i + 2])) {
            return i;
        }
    }
    return elements.size();
}

std::size_t ZANCorvianPrinterPList::NextEndMark(std::size_t from, std::size_t limit) const {
    std::size_t place = std::min(from, limit);
    while (place < limit && !IsEndMark(place)) {
        ++place;
    }
    return place;
}

std::vector<PrinterAddressEntry::Block> ZANCorvianPrinterPList::Blocks(std::size_t first,
                                                                       std::size_t last) const {
    std::vector<PrinterAddressEntry::Block> blocks;
    std::size_t place = first;
    while (place < last) {
        const auto header = blockHeader(StringAt(place++));
        if (!header) {
            continue;
        }
        PrinterAddressEntry::Block& block = blocks.emplace_back();
        block.id = header->id;
        const std::size_t blockEnd = place + std::min(header->rows, last - place);
        for (; place < blockEnd; ++place) {
            if (CFStringRef row = StringAt(place)) {
                block.rows.push_back(std::move(row));
            }
        }
    }
    return blocks;
}

std::vector<PrinterAddressEntry> ZANCorvianPrinterPList::Entries() const {
    std::vector<PrinterAddressEntry> entries;
    for (std::size_t place = NextEntry(0); place < elements.size();) {
        const std::size_t next = NextEntry(place + 3);
        PrinterAddressEntry& entry = entries.emplace_back();
        entry.name = StringAt(place);
        entry.address = StringAt(place + 1);
        entry.ipEnabled = CFBooleanGetValue(cfCast<CFBoolean>(elements[place + 2]));
        entry.format = place + 3 < next ? StringAt(place + 3) : nullptr;
        if (entry.format && entry.format->units == u"2") {
            entry.blocks = Blocks(place + 4, NextEndMark(place + 4, next));
        }
        place = next;
    }
    return entries;
}

bool ZANCorvianPrinterPList::RemoveEntry(const CFStringRef& name) {
    if (!TakeEntry(name)) {
        return false;
    }
    changed = true;
    changes.emplace_back([this, name] { TakeEntry(name); });
    return true;
}

bool ZANCorvianPrinterPList::TakeEntry(const CFStringRef& name) {
    const auto entry = FindEntry(name);
    if (!entry) {
        return false;
    }
    BringToFormat2(*entry);
    const std::size_t next = NextEntry(*entry + 1);
    const std::size_t mark = NextEndMark(*entry, next);
    Remove(*entry, mark - *entry + (mark < next ? 1 : 0));
    return true;
}

} // namespace torka
