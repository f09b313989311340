// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"
#include "platform/TextEncoding.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace torka {

// The keyword of a choice: its own copy, or a text that another object keeps as long as the choice lives.
class ChoiceKeyword {
public:
    // Copies up to the first NUL; null counts as "".
    explicit ChoiceKeyword(const char* text);
    // Refers to the text. REQUIRES: a NUL follows it, and it contains none.
    explicit ChoiceKeyword(std::string_view kept)
        : text(kept.data(), {static_cast<std::uint32_t>(kept.size()), false}) {}

    const char* Buffer() const { return text.get(); }
    std::size_t Size() const { return text.get_deleter().length; }
    std::string_view View() const { return {Buffer(), Size()}; }

private:
    struct Keeper {
        std::uint32_t length;
        bool isOwn;

        void operator()(const char* bytes) const {
            if (isOwn) {
                delete[] bytes;
            }
        }
    };
    std::unique_ptr<const char[], Keeper> text;
};

// The local name of a choice. Most choices of a large description are never shown. A name can therefore be
// given as bytes of the description and is converted at the first request.
class ChoiceName {
public:
    explicit ChoiceName(CFStringRef string)
        : converted(std::make_unique<const CFStringRef>(std::move(string))) {}
    // Another object keeps the bytes as long as the choice lives. REQUIRES: not empty.
    ChoiceName(std::string_view kept, CFStringEncoding encodingOfBytes)
        : bytes(kept.data())
        , length(static_cast<std::uint32_t>(kept.size()))
        , encoding(encodingOfBytes) {}

    // Converts at the first call and keeps the result.
    const CFStringRef& Get() const;
    // The same without keeping it. A view copies the names of all choices that it shows.
    CFStringRef Copy() const;

private:
    mutable std::unique_ptr<const CFStringRef> converted;
    const char* bytes = nullptr;
    std::uint32_t length = 0;
    CFStringEncoding encoding = kCFStringEncodingUnknown;
};

// One choice of a popup. The parser owns the PostScript bytes.
struct _PopupItem {
    _PopupItem(const char* optionKeyword, CFStringRef name, const unsigned char* ps, long length);
    _PopupItem(ChoiceKeyword optionKeyword, ChoiceName name, const unsigned char* ps, long length);

    const CFStringRef& LocalName() const { return localName.Get(); }
    // Returns the local name in the system encoding. Valid as long as the item's list, also after items are
    // appended.
    const char* displayName() const;

    ChoiceKeyword keyword;
    ChoiceName localName;
    const unsigned char* psData;
    std::int32_t psLength; // a value in a description has at most 65,536 bytes
    std::int32_t selected = 0;
    mutable std::unique_ptr<char[]> displayNameCache;
};
static_assert(sizeof(_PopupItem) == 64); // a description may have tens of thousands

// Takes the memory of a list of choices from the heap, or from an object that outlives the list. The memory
// moves with the list.
template <typename Value>
class ChoiceAllocator {
public:
    using value_type = Value;
    using propagate_on_container_move_assignment = std::true_type;

    ChoiceAllocator() = default;
    explicit ChoiceAllocator(std::pmr::memory_resource& from)
        : memory(&from) {}
    Value* allocate(std::size_t count) {
        return memory == nullptr
                   ? std::allocator<Value>().allocate(count)
                   : static_cast<Value*>(memory->allocate(count * sizeof(Value), alignof(Value)));
    }
    void deallocate(Value* list, std::size_t count) {
        if (memory == nullptr) {
            std::allocator<Value>().deallocate(list, count);
        } else {
            memory->deallocate(list, count * sizeof(Value), alignof(Value));
        }
    }
    bool operator==(const ChoiceAllocator&) const = default;

private:
    std::pmr::memory_resource* memory = nullptr; // null for the heap
};

using PopupItems = std::vector<_PopupItem, ChoiceAllocator<_PopupItem>>;

} // namespace torka
