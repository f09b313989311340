// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/PositionTable.h"
#include "PPDX/KVEngine/TextHash.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace torka {

// A place in a list of elements; at first behind the end.
using ElementCursor = std::uint32_t;
inline constexpr ElementCursor noElement = 0xffffffffU;

// A list of elements in order of addition, with a cursor and an index by keyword. Does not own the elements.
// REQUIRES: an element outlives the list and keeps its keyword.
//
// Look-up by whole keyword returns the first element in list order. It is hashed in a list that is not short:
// most lists of a description hold few elements, and an index for each would cost noticeable memory. Look-up
// by part of a keyword scans the list.
template <class T>
class ElementList {
public:
    void Add(T* element) {
        elements.push_back(element);
        if (index) {
            AddToIndex(elements.size() - 1);
        } else if (elements.size() > longestScan) {
            index = std::make_unique<Index>();
            for (std::size_t place = 0; place < elements.size(); ++place) {
                AddToIndex(place);
            }
        }
    }

    std::size_t Size() const { return elements.size(); }
    bool Empty() const { return elements.empty(); }

    // Return the next element that `accept` takes; null at the end and from then on.
    template <class Accept>
    T* First(Accept accept) {
        return First(cursor, accept);
    }
    template <class Accept>
    T* Next(Accept accept) {
        return Next(cursor, accept);
    }
    // Do the same with a cursor of the caller.
    template <class Accept>
    T* First(ElementCursor& place, Accept accept) const {
        place = 0;
        return Next(place, accept);
    }
    template <class Accept>
    T* Next(ElementCursor& place, Accept accept) const {
        while (place < elements.size()) {
            T* element = elements[place++];
            if (accept(element)) {
                return element;
            }
        }
        place = noElement;
        return nullptr;
    }

    template <class Visit>
    void ForEach(Visit visit) const {
        for (std::size_t place = 0; place < elements.size(); ++place) { // a visit may add elements
            visit(elements[place]);
        }
    }

    // Returns null for a null keyword.
    T* Find(const char* keyword, bool exact) const {
        return Find(keyword, exact, [](const T*) { return true; });
    }
    // Returns the first element in list order whose keyword equals `keyword` (exact) or contains it, and that
    // `accept` takes.
    template <class Accept>
    T* Find(const char* keyword, bool exact, Accept accept) const {
        if (!keyword) {
            return nullptr;
        }
        if (!exact) {
            return Scan([&](T* element) {
                return element->Keyword() && std::strstr(element->Keyword(), keyword) && accept(element);
            });
        }
        const std::string_view sought(keyword);
        if (!index) {
            return Scan([&](T* element) { return IsNamed(element, sought) && accept(element); });
        }
        return FindInIndex(sought, accept);
    }

private:
    static constexpr std::size_t longestScan = 8;

    struct Index {
        PositionTable firsts; // the first element of each keyword
        // The further elements of a keyword, by the place of the first.
        std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> others;
    };

    static std::string_view KeywordOf(const T* element) {
        return {element->Keyword(), element->KeywordLength()};
    }
    static bool IsNamed(const T* element, std::string_view keyword) {
        return element->Keyword() && KeywordOf(element) == keyword;
    }

    template <class Accept>
    T* Scan(Accept accept) const {
        for (T* element : elements) {
            if (accept(element)) {
                return element;
            }
        }
        return nullptr;
    }

    std::uint32_t FirstNamed(std::string_view keyword, std::uint64_t hash) const {
        return index->firsts.Find(hash, [&](std::uint32_t at) { return IsNamed(elements[at], keyword); });
    }

    template <class Accept>
    T* FindInIndex(std::string_view keyword, Accept accept) const {
        const std::uint32_t first = FirstNamed(keyword, hashText(keyword));
        if (first == PositionTable::none || accept(elements[first])) {
            return first == PositionTable::none ? nullptr : elements[first];
        }
        if (const auto others = index->others.find(first); others != index->others.end()) {
            for (const std::uint32_t place : others->second) {
                if (accept(elements[place])) {
                    return elements[place];
                }
            }
        }
        return nullptr;
    }

    void AddToIndex(std::size_t added) {
        const auto place = static_cast<std::uint32_t>(added);
        if (!elements[place]->Keyword()) {
            return;
        }
        const std::string_view keyword = KeywordOf(elements[place]);
        const std::uint64_t hash = hashText(keyword);
        if (const std::uint32_t first = FirstNamed(keyword, hash); first != PositionTable::none) {
            index->others[first].push_back(place);
            return;
        }
        if (index->firsts.Full()) {
            index->firsts.Grow([this](std::uint32_t at) { return hashText(KeywordOf(elements[at])); });
        }
        index->firsts.Add(hash, place);
    }

    std::vector<T*> elements;
    std::unique_ptr<Index> index; // none in a short list
    ElementCursor cursor = noElement;
};

} // namespace torka
