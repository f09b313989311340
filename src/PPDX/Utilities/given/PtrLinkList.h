// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

// A list of elements that carry their own links. Owns its elements and deletes them at its end.

namespace torka {

class LinkElement_Dual {
public:
    LinkElement_Dual() = default;
    LinkElement_Dual(const LinkElement_Dual&) = delete;
    LinkElement_Dual& operator=(const LinkElement_Dual&) = delete;
    virtual ~LinkElement_Dual() = default;

    LinkElement_Dual* next = nullptr;
    LinkElement_Dual* prev = nullptr;
};

// Becomes null behind either end and stays null.
class LinkElementDualIterator {
public:
    LinkElementDualIterator() = default;
    explicit LinkElementDualIterator(LinkElement_Dual* start)
        : element(start) {}

    LinkElement_Dual* operator*() const { return element; }
    LinkElementDualIterator& operator++() {
        element = element != nullptr ? element->next : nullptr;
        return *this;
    }
    LinkElementDualIterator& operator--() {
        element = element != nullptr ? element->prev : nullptr;
        return *this;
    }
    bool operator==(const LinkElementDualIterator& other) const { return element == other.element; }

private:
    LinkElement_Dual* element = nullptr;
};

class PtrLinkList {
public:
    explicit PtrLinkList(LinkElement_Dual* element = nullptr);
    PtrLinkList(const PtrLinkList&) = delete;
    PtrLinkList& operator=(const PtrLinkList&) = delete;
    virtual ~PtrLinkList();

    // Appends. 0 for null, else 1. REQUIRES: the element is in no list.
    int add(LinkElement_Dual* element);
    // The element `n` links after the first; null beyond the last.
    LinkElement_Dual* index(std::uint16_t n) const;

    std::uint32_t Count() const { return count; }
    LinkElement_Dual* First() const { return first; }
    LinkElement_Dual* Last() const { return last; }
    // An iterator at the element given to the list's constructor.
    LinkElementDualIterator Iterator() const { return iterator; }

private:
    LinkElement_Dual* first = nullptr;
    LinkElement_Dual* last = nullptr;
    std::uint32_t count = 0;
    LinkElementDualIterator iterator;
    std::uint8_t owns = 1;
};

} // namespace torka
