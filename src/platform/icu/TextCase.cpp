// SPDX-License-Identifier: Apache-2.0
#include "platform/TextCase.h"

#include "platform/CoreFoundation.h"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace torka::platform {

std::u16string upperCase(std::u16string_view text) {
    icu::UnicodeString result(text.data(), static_cast<std::int32_t>(text.size()));
    result.toUpper(icu::Locale::getRoot());
    return {result.getBuffer(), static_cast<std::size_t>(result.length())};
}

std::string upperCaseUtf8(std::string_view text) {
    const CFStringRef units = cfString(text);
    return utf8Text(CFStringCreateWithCharacters(upperCase(units->units)));
}

char32_t foldCase(char32_t point) {
    return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(point), U_FOLD_CASE_DEFAULT));
}

bool isWhiteSpace(char16_t unit) { return u_isUWhiteSpace(unit) != 0; }

} // namespace torka::platform
