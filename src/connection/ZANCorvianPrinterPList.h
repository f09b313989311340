// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection/PropertyListFile.h"

#include <array>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace torka {

// The list's path below the home folder, for system versions that keep the list in a file.
inline constexpr std::string_view addressListPath = "/Library/Preferences/ZAN.CorvianPrinterV2.plist";

// A row of a data block: UTF-8 text with a NUL, cut after 1,023 bytes.
using DataRow = std::array<char, 1024>;

// One entry in parsed form, for people to read.
struct PrinterAddressEntry {
    struct Block {
        int id = 0;
        std::vector<CFStringRef> rows;
    };
    CFStringRef name;
    CFStringRef address;
    bool ipEnabled = false;
    CFStringRef format;        // null when missing
    std::vector<Block> blocks; // for format "2"
};

// Stores for each printer its controller's address, its two-way flag, and numbered blocks of text rows (block
// 0: quick-access keywords, block 1: watermark names).
//
// The list is flat. A printer's entry consists of name, address, two-way flag (boolean), format ("2"; "0" and
// "1" are older), data blocks and an end mark. A data block is a header "BLOCK:ROWS" followed by its rows. A
// search for a name ignores letter case and matches any string that is not followed by a boolean, so that it
// can match a data row. Values of a wrong kind count as absent. A row count that exceeds the list ends with
// the list.
class ZANCorvianPrinterPList final : public PropertyListFile {
public:
    // Loads "/Library/Preferences/ZAN.CorvianPrinterV2.plist" of the home folder, or the queue's record.
    explicit ZANCorvianPrinterPList(QueueAccess queue);
    explicit ZANCorvianPrinterPList(std::unique_ptr<PropertyListStore> listStore);
    ~ZANCorvianPrinterPList() override;

    // The entry's position; -1 without an entry.
    CFIndex Exists(const CFStringRef& name, bool& found) const;
    // The entry's address; "" without an entry. Never null.
    CFStringRef Find(const CFStringRef& name) const;
    bool getIPEnabled(const CFStringRef& name) const;
    // False without an entry.
    bool setIPEnabled(const CFStringRef& name, bool on);
    // Adds an entry, or changes the existing one and converts it to format "2". 0 for a null string, else 1.
    int Add(const CFStringRef& name, const CFStringRef& address, bool ipEnabled);
    // Removes the first block whose header holds "BLOCK:", and inserts the new block before the others.
    // Leaves out rows that are not UTF-8. Does nothing without an entry. Always returns 1.
    int AddDataBlob(const CFStringRef& name, int rowCount, int blockId, std::span<const DataRow> rows);
    // Appends the block's rows to `out`. False when there is no such block.
    bool GetDataBlob(const CFStringRef& name, int blockId, std::vector<CFStringRef>& out) const;
    // Stores the changes since the last Save. When another writer has stored a list since this one was
    // loaded, only the changed addresses, switches and blocks are put into that list: all else stays as the
    // other writer has left it, and this object goes on with its own values.
    bool Save();

    // Every sequence of text, text and boolean begins an entry.
    std::vector<PrinterAddressEntry> Entries() const;
    // Removes an entry up to its end mark, or up to the next entry. False without an entry.
    bool RemoveEntry(const CFStringRef& name);

    const std::vector<CFTypeRef>& Elements() const { return elements; }

    // For the tests; no caller here
    bool Changed() const { return changed; } // since the list was loaded or saved

private:
    CFStringRef StringAt(std::size_t position) const; // null when the element is no string
    bool IsEndMark(std::size_t position) const;
    std::optional<std::size_t> FindEntry(const CFStringRef& name) const;
    // The first element from `from` to the end mark that holds the block's header text.
    std::optional<std::size_t> FindBlock(std::size_t from, int blockId) const;
    // The first place at or after `from` at which an entry begins; the list's end without one.
    std::size_t NextEntry(std::size_t from) const;
    // The place of the first end mark at or after `from`, at most `limit`.
    std::size_t NextEndMark(std::size_t from, std::size_t limit) const;
    std::vector<PrinterAddressEntry::Block> Blocks(std::size_t first, std::size_t last) const;
    std::size_t RowCount(std::size_t header, int blockId) const;
    void SetAt(std::size_t position, CFTypeRef value);
    void Remove(std::size_t position, std::size_t count);
    void BringToFormat2(std::size_t entry);
    void PutEntry(const CFStringRef& name, const CFStringRef& address, bool ipEnabled);
    bool PutBlock(const CFStringRef& name, int blockId, const std::vector<CFTypeRef>& block);
    bool TakeEntry(const CFStringRef& name);
    // Keeps the change for Save when the elements differ from `before`.
    void Record(const CFArrayRef& before, std::function<void()> change);
    CFArrayRef WithOwnChanges(const CFArrayRef& stored);

    std::vector<CFTypeRef> elements;
    std::vector<std::function<void()>> changes; // each makes one change of `elements`; not yet saved
    bool changed = false;
};

} // namespace torka
