#pragma once

#include "platform/CoreFoundation.h"
#include "platform/TextEncoding.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace torka {

// The keyword of a choice: a copy of its own, or a text that someone else keeps for as long as the choice.
class ChoiceKeyword {
public:
    // Copies up to the first NUL; null counts as "".
    explicit ChoiceKeyword(const char* text);
    // Refers to the text. REQUIRES: a NUL behind it and none in it.
    explicit ChoiceKeyword(std::string_view kept)
        : bytes(kept.data())
        , length(kept.size()) {}

    const char* Buffer() const { return bytes; }
    std::size_t Size() const { return length; }
    std::string_view View() const { return {bytes, length}; }

private:
    const char* bytes;
    std::size_t length;
    std::unique_ptr<char[]> own;
};

// The local name of a choice. Most choices of a large description are never shown, so a name may be given as
// the bytes of the description and is converted when it is first asked for.
class ChoiceName {
public:
    explicit ChoiceName(CFStringRef string)
        : converted(std::move(string)) {}
    // The bytes are someone else's, who keeps them for as long as the choice; not empty.
    ChoiceName(std::string_view kept, CFStringEncoding encodingOfBytes)
        : bytes(kept.data())
        , length(static_cast<std::uint32_t>(kept.size()))
        , encoding(encodingOfBytes) {}

    const CFStringRef& Get() const;

private:
    mutable CFStringRef converted;
    const char* bytes = nullptr;
    std::uint32_t length = 0;
    CFStringEncoding encoding = kCFStringEncodingUnknown;
};

// One choice of a popup. The PostScript bytes belong to the parser.
struct _PopupItem {
    _PopupItem(const char* optionKeyword, CFStringRef name, const unsigned char* ps, long length);
    _PopupItem(ChoiceKeyword optionKeyword, ChoiceName name, const unsigned char* ps, long length);

    const CFStringRef& LocalName() const { return localName.Get(); }
    // The local name in the system encoding; valid as long as the item's list, whatever is appended to that.
    const char* displayName() const;

    ChoiceKeyword keyword;
    ChoiceName localName;
    const unsigned char* psData;
    std::int32_t psLength; // a description's value has at most 65,536 bytes
    std::int32_t selected = 0;
    mutable std::unique_ptr<char[]> displayNameCache;
};

using PopupItems = std::vector<_PopupItem>;

} // namespace torka
