#pragma once

#include "connection/PropertyListFile.h"

#include <memory>

namespace torka {

// The bundle's list of supported printers, "PrinterList.plist": a dictionary whose key "PCFILENAME" holds the
// "*PCFileName" values of their descriptions.
class PrinterListFile final : public PropertyListFile {
public:
    // `contents` is the bundle's "Contents" folder; null for none.
    explicit PrinterListFile(const CFURLRef& contents);

    // The file is there, can be read and has the key.
    bool IsValid() const { return pcFileNames != nullptr; }
    const CFArrayRef& PCFileNames() const { return pcFileNames; }

private:
    CFArrayRef pcFileNames;
};

} // namespace torka
