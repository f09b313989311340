// SPDX-License-Identifier: Apache-2.0
// Decodes hexadecimal substrings and converts translations. The first byte of the input chooses the encoding.

#include "PPDX/PPDObjects/Interface/PPDX.h"
#include "TextConverter.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

using namespace torka;

void require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "wrong: %s\n", what);
        std::abort();
    }
}

std::unique_ptr<PPDX> describedIn(const char* encoding) {
    auto description = std::make_unique<PPDX>();
    PPDStream language(std::string_view(" English")), name{std::string_view(encoding)};
    description->ParsePSKeywords(language, "*LanguageVersion");
    description->ParsePSKeywords(name, "*LanguageEncoding");
    return description;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const char* const encodings[] = {"ISOLatin1",   "ISOLatin2",   "ISOLatin5", "JIS83-RKSJ",
                                            "MacStandard", "WindowsANSI", "UTF-8",     "EBCDIC"};
    static std::unique_ptr<PPDX> descriptions[8];
    if (size < 1) {
        return 0;
    }
    const std::size_t index = data[0] % 8;
    if (!descriptions[index]) {
        descriptions[index] = describedIn(encodings[index]);
    }
    TextConverter* const converter = descriptions[index]->Converter();
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);

    const std::unique_ptr<char[]> out(new char[text.size()]); // exact size, for the sanitizer
    const std::size_t length = TextConverter::DehexBufferFill(text, out.get());
    require(length <= text.size(), "length");
    const std::size_t opening = text.find('<');
    require(text.substr(0, std::min(opening, length)) ==
                std::string_view(out.get(), std::min(opening, length)),
            "text before the first run");
    if (opening == std::string_view::npos || text.find('>', opening) == std::string_view::npos) {
        require(text == std::string_view(out.get(), length), "text without a run");
    }

    const std::string terminated(text);
    const CFStringRef limited = converter->ConvertToCFString(terminated.c_str(), 256);
    const CFStringRef whole = converter->ConvertToCFString(text);
    require(limited != nullptr && whole != nullptr, "null");
    char narrow[64];
    converter->Convert(terminated.c_str(), narrow, sizeof narrow);
    CString copy(terminated.c_str());
    converter->ppdStringConvert(copy);
    require(copy.Buffer() != nullptr, "unset");
    return 0;
}
