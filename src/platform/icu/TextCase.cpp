#include "platform/TextCase.h"

#include "platform/CoreFoundation.h"

#include <unicode/locid.h>
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

} // namespace torka::platform
