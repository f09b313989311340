// SPDX-License-Identifier: Apache-2.0
// Calls every operation of the address list on an arbitrary property list. Added entries and blocks are found
// again.
//
// Input: the first line names a printer, the rest is the list.

#include "connection/ZANCorvianPrinterPList.h"
#include "platform/memory/MemorySystem.h"

#include <cstdlib>
#include <cstring>

namespace {

using namespace torka;

void check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

class TextStore final : public PropertyListStore {
public:
    explicit TextStore(std::string& text)
        : xml(text) {}
    std::string Load() override { return xml; }
    SaveResult Save(std::string_view text) override {
        xml = text;
        return {noErr, true};
    }

private:
    std::string& xml;
};

void checkBlocks(ZANCorvianPrinterPList& list, const CFStringRef& name, CFIndex entry) {
    const auto format = cfCast<CFString>(list.Elements()[static_cast<std::size_t>(entry) + 3]);
    std::vector<DataRow> rows(2);
    std::strcpy(rows[0].data(), "first");
    std::strcpy(rows[1].data(), "second");
    for (const int block : {0, 1, 11, -1}) {
        check(list.AddDataBlob(name, 2, block, rows) == 1);
        std::vector<CFStringRef> read;
        // In an unknown format, the place of the blocks is unknown, too.
        if (list.GetDataBlob(name, block, read) && format && format->units == u"2") {
            check(read.size() == 2 && utf8Text(read[0]) == "first" && utf8Text(read[1]) == "second");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setSystem(std::make_unique<MemorySystem>());
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t lineEnd = std::min(input.find('\n'), size);
    const CFStringRef name = cfString(input.substr(0, lineEnd));
    std::string xml = lineEnd < size ? input.substr(lineEnd + 1) : std::string();

    ZANCorvianPrinterPList list(std::make_unique<TextStore>(xml));
    bool found = false;
    const CFIndex before = list.Exists(name, found);
    check(found == (before >= 0));
    list.Find(name);
    list.getIPEnabled(name);
    std::vector<CFStringRef> rows;
    list.GetDataBlob(name, 1, rows);
    list.setIPEnabled(name, true);
    for (const PrinterAddressEntry& entry : list.Entries()) {
        check(entry.name && entry.address);
    }

    const CFStringRef address = cfString("192.0.2.1");
    check(list.Add(name, address, true) == 1);
    const CFIndex entry = list.Exists(name, found);
    check(found && (before < 0 || entry == before));
    check(CFEqual(list.Find(name), address) && list.getIPEnabled(name));
    checkBlocks(list, name, entry);
    if (list.Save()) {
        const ZANCorvianPrinterPList again(std::make_unique<TextStore>(xml));
        check(again.Loaded() && CFEqual(again.List(), CFArrayCreate(list.Elements())));
    }
    const std::size_t whole = list.Elements().size();
    check(list.RemoveEntry(name) && list.Elements().size() < whole);
    return 0;
}
