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

} // namespace

ChoiceKeyword::ChoiceKeyword(const char* text)
    : length(orEmpty(text).size())
    , own(std::make_unique_for_overwrite<char[]>(length + 1)) {
    *std::copy_n(orEmpty(text).data(), length, own.get()) = '\0';
    bytes = own.get();
}

const CFStringRef& ChoiceName::Get() const {
    if (!converted && bytes != nullptr) {
        TextConverter converter(encoding, nullptr);
        converted = converter.ConvertToCFString(std::string_view(bytes, length));
    }
    return converted;
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
