// SPDX-License-Identifier: Apache-2.0
#include "pane/panel/PrinterListFile.h"

namespace torka {

PrinterListFile::PrinterListFile(const CFURLRef& contents)
    : PropertyListFile(std::make_unique<FilePropertyListStore>(
          contents ? std::filesystem::path(CFURLCopyFileSystemPath(contents)) / "PrinterList.plist"
                   : std::filesystem::path())) {
    const auto dictionary = cfCast<CFDictionary>(Root());
    pcFileNames = cfCast<CFArray>(CFDictionaryGetValue(dictionary, u"PCFILENAME"));
}

} // namespace torka
