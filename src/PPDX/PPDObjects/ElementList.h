// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/Utilities/PointerList.h"

#include <cstddef>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace torka {

// A list of elements in order of addition, with a cursor and an index by keyword. Does not own the elements.
// REQUIRES: an element outlives the list and keeps its keyword.
//
// Look-up by whole keyword is hashed and returns the first element in list order. Look-up by part of a
// keyword scans the list.
template <class T>
class ElementList {
public:
    void Add(T* element) {
        elements.PushBack(element);
        if (const char* keyword = element->Keyword()) {
            auto [place, isNew] = index.try_emplace(std::string_view(keyword, element->KeywordLength()));
            if (isNew) {
                place->second.first = element;
            } else {
                place->second.others.push_back(element);
            }
        }
    }

    std::size_t Size() const { return elements.Size(); }
    bool Empty() const { return elements.Empty(); }

    // Return the next element that `accept` takes; null at the end and from then on.
    template <class Accept>
    T* First(Accept accept) {
        cursor = elements.Begin();
        return AtCursor(accept);
    }
    template <class Accept>
    T* Next(Accept accept) {
        return AtCursor(accept);
    }

    template <class Visit>
    void ForEach(Visit visit) const {
        for (auto place = elements.Begin(); place != elements.End(); ++place) {
            visit(static_cast<T*>(*place));
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
        return exact ? FindWhole(keyword, accept) : FindPart(keyword, accept);
    }

private:
    struct SameKeyword {
        T* first = nullptr;
        std::vector<T*> others;
    };

    template <class Accept>
    T* AtCursor(Accept accept) {
        while (cursor != PointerListItr() && cursor != elements.End()) {
            T* element = static_cast<T*>(*cursor);
            ++cursor;
            if (accept(element)) {
                return element;
            }
        }
        return nullptr;
    }

    template <class Accept>
    T* FindWhole(const char* keyword, Accept accept) const {
        const auto place = index.find(std::string_view(keyword));
        if (place == index.end()) {
            return nullptr;
        }
        if (accept(place->second.first)) {
            return place->second.first;
        }
        for (T* element : place->second.others) {
            if (accept(element)) {
                return element;
            }
        }
        return nullptr;
    }

    template <class Accept>
    T* FindPart(const char* part, Accept accept) const {
        for (auto place = elements.Begin(); place != elements.End(); ++place) {
            T* element = static_cast<T*>(*place);
            const char* keyword = element->Keyword();
            if (keyword && std::strstr(keyword, part) && accept(element)) {
                return element;
            }
        }
        return nullptr;
    }

    PointerList elements;
    PointerListItr cursor;
    std::unordered_map<std::string_view, SameKeyword> index; // views into the elements' keywords
};

} // namespace torka
