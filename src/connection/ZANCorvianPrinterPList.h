#pragma once

#include "connection/PropertyListFile.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace torka {

// Below the home folder, where the running system version keeps the list in a file.
inline constexpr std::string_view addressListPath = "/Library/Preferences/ZAN.CorvianPrinterV2.plist";

// A row of a data block as its writers hold it: UTF-8 text with a NUL, cut after 1,023 bytes.
using DataRow = std::array<char, 1024>;

// One entry, taken apart for people to read.
struct PrinterAddressEntry {
    struct Block {
        int id = 0;
        std::vector<CFStringRef> rows;
    };
    CFStringRef name;
    CFStringRef address;
    bool ipEnabled = false;
    CFStringRef format;        // null when it is none
    std::vector<Block> blocks; // of format "2"
};

// What is remembered of each printer: its controller's address, whether two-way communication goes there, and
// small blocks of text rows by number (0 quick-access keywords, 1 watermark names).
//
// The list is flat. A printer's entry is: name, address, two-way flag (boolean), format ("2"; "0" and "1" are
// older), data blocks, each a header "BLOCK:ROWS" followed by its rows, and an end mark. Names are found
// without regard to case, at any string that is not followed by a boolean: a data row can be taken for a
// name. Values of a wrong kind count as absent, row counts end with the list.
class ZANCorvianPrinterPList final : public PropertyListFile {
public:
    // Loads "/Library/Preferences/ZAN.CorvianPrinterV2.plist" of the home folder, or the queue's record.
    explicit ZANCorvianPrinterPList(QueueAccess queue);
    explicit ZANCorvianPrinterPList(std::unique_ptr<PropertyListStore> listStore);
    ~ZANCorvianPrinterPList() override;

    // The entry's position, -1 when there is none.
    CFIndex Exists(const CFStringRef& name, bool& found) const;
    // The entry's address, "" when there is none; never null.
    CFStringRef Find(const CFStringRef& name) const;
    bool getIPEnabled(const CFStringRef& name) const;
    // False when there is no entry.
    bool setIPEnabled(const CFStringRef& name, bool on);
    // Adds an entry, or changes the one that is there and brings it to format "2". 0 for a null string,
    // else 1.
    int Add(const CFStringRef& name, const CFStringRef& address, bool ipEnabled);
    // Puts a block in the place of the first one whose header holds "BLOCK:". Always 1; without an entry
    // nothing is kept. A row that is not UTF-8 is left out.
    int AddDataBlob(const CFStringRef& name, int rowCount, int blockId, std::span<const DataRow> rows);
    // Appends the block's rows to `out`. False when there is no such block.
    bool GetDataBlob(const CFStringRef& name, int blockId, std::vector<CFStringRef>& out) const;
    bool Save();

    // Every text, text and boolean in a row begins an entry.
    std::vector<PrinterAddressEntry> Entries() const;
    // Takes out an entry up to its end mark, or up to the next entry. False when there is none.
    bool RemoveEntry(const CFStringRef& name);

    const std::vector<CFTypeRef>& Elements() const { return elements; }
    bool Changed() const { return changed; } // since it was loaded or saved

private:
    CFStringRef StringAt(std::size_t position) const; // null for anything else
    bool IsEndMark(std::size_t position) const;
    std::optional<std::size_t> FindEntry(const CFStringRef& name) const;
    // The first element from there to the end mark that holds the block's header text.
    std::optional<std::size_t> FindBlock(std::size_t from, int blockId) const;
    // The first place from there on at which an entry begins, the list's end when there is none.
    std::size_t NextEntry(std::size_t from) const;
    // The place of the end mark from there on, at most `limit`.
    std::size_t NextEndMark(std::size_t from, std::size_t limit) const;
    std::vector<PrinterAddressEntry::Block> Blocks(std::size_t first, std::size_t last) const;
    std::size_t RowCount(std::size_t header, int blockId) const;
    void SetAt(std::size_t position, CFTypeRef value);
    void Remove(std::size_t position, std::size_t count);
    void BringToFormat2(std::size_t entry);

    std::vector<CFTypeRef> elements;
    bool changed = false;
};

} // namespace torka
