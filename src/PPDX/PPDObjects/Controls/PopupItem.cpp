// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PopupItem.h"

#include "TextConverter.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace torka {

namespace {

std::string_view orEmpty(const char* text) { return text != nullptr ? text : ""; }

std::int32_t byteCount(long length) {
    constexpr long most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(length, -1L, most));
}

const char* terminatedCopy(std::string_view text) {
    auto copy = std::make_unique_for_overwrite<char[]>(text.size() + 1);
    *std::copy(text.begin(), text.end(), copy.get()) = '\0';
    return copy.release();
}

} // namespace

ChoiceKeyword::ChoiceKeyword(const char* given)
    : text(terminatedCopy(orEmpty(given)), {static_cast<std::uint32_t>(orEmpty(given).size()), true}) {}

const CFStringRef& ChoiceName::Get() const {
    if (!converted) {
        converted = std::make_unique<const CFStringRef>(Copy());
    }
    return *converted;
}

CFStringRef ChoiceName::Copy() const {
    if (converted) {
        return *converted;
    }
    TextConverter converter(encoding, nullptr);
    return converter.ConvertToCFString({bytes, length});
}

_PopupItem::_PopupItem(const char* optionKeyword, CFStringRef name, const unsigned char* ps, long length)
    : _PopupItem(ChoiceKeyword(optionKeyword), ChoiceName(std::move(name)), ps, length) {}

_PopupItem::_PopupItem(ChoiceKeyword optionKeyword, ChoiceName name, const unsigned char* ps, long length)
    : keyword(std::move(optionKeyword))
    , localName(std::move(name))
    , psData(ps)
    , psLength(byteCount(length)) {}

const char* _PopupItem::displayName() const {
    if (!displayNameCache) {
        const std::size_t size = 4 * static_cast<std::size_t>(CFStringGetLength(LocalName())) + 1;
        auto name = std::make_unique<char[]>(size);
        if (size > 1) {
            TextConverter::CFStringToCstring(LocalName(), name.get(), static_cast<long>(size));
        }
        displayNameCache = std::move(name);
    }
    return displayNameCache.get();
}

} // namespace torka
