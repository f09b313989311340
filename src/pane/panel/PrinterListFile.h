// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection/PropertyListFile.h"

#include <memory>

namespace torka {

// The list of supported printers in the bundle, "PrinterList.plist". It is a dictionary; its key "PCFILENAME"
// holds the "*PCFileName" values of the descriptions.
class PrinterListFile final : public PropertyListFile {
public:
    // `contents` is the bundle's "Contents" folder; null for none.
    explicit PrinterListFile(const CFURLRef& contents);

    // True when the file can be read and has the key.
    bool IsValid() const { return pcFileNames != nullptr; }
    const CFArrayRef& PCFileNames() const { return pcFileNames; }

private:
    CFArrayRef pcFileNames;
};

} // namespace torka
