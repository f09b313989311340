// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <iterator>

// A doubly linked list of untyped pointers.
//
// Owns its nodes but not the elements: the owner of the elements deletes them before it empties the list.
// Copies are shallow. An iterator stays valid until its own node is erased.
//
// Invariants:
//
// (1) `head` and `tail` are sentinels of every list, without data; `head->next` is the first element or
// `tail`.
//
// (2) `count` is the number of nodes between them.

namespace torka {

class PNode {
public:
    explicit PNode(void* element)
        : data(element) {}
    PNode(const PNode&) = delete;
    PNode& operator=(const PNode&) = delete;
    virtual ~PNode() { prev = next = nullptr; }

    void* data;
    PNode* prev = nullptr;
    PNode* next = nullptr;
};

// A null iterator returns null and does not move.
class PointerListItr {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = void*;
    using difference_type = std::ptrdiff_t;
    using pointer = void**;
    using reference = void*;

    PointerListItr() = default;
    explicit PointerListItr(PNode* start)
        : node(start) {}

    PointerListItr& operator++();
    bool operator==(const PointerListItr& other) const { return node == other.node; }

    PNode* Node() const { return node; }

    // Given interface; no caller here
    void* operator*() const { return node != nullptr ? node->data : nullptr; }
    PointerListItr operator++(int);
    PointerListItr& operator--();
    PointerListItr operator--(int);

private:
    PNode* node = nullptr;
};

// An iterator that cannot change the list. The elements are not const.
class ConstPointerListItr {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = void*;
    using difference_type = std::ptrdiff_t;
    using pointer = void**;
    using reference = void*;

    ConstPointerListItr() = default;
    explicit ConstPointerListItr(const PNode* start)
        : node(start) {}

    void* operator*() const { return node != nullptr ? node->data : nullptr; }
    ConstPointerListItr& operator++();
    bool operator==(const ConstPointerListItr& other) const { return node == other.node; }

    // Given interface; no caller here
    ConstPointerListItr(const PointerListItr& other)
        : node(other.Node()) {}
    ConstPointerListItr operator++(int);
    ConstPointerListItr& operator--();
    ConstPointerListItr operator--(int);

private:
    const PNode* node = nullptr;
};

class PointerList {
public:
    PointerList();
    PointerList(const PointerList& other);
    PointerList& operator=(const PointerList& other);
    ~PointerList();

    PointerListItr Begin() { return PointerListItr(head->next); }
    PointerListItr End() { return PointerListItr(tail); }
    ConstPointerListItr Begin() const { return ConstPointerListItr(head->next); }
    ConstPointerListItr End() const { return ConstPointerListItr(tail); }
    // For range-based loops: for (void* element : list).
    ConstPointerListItr begin() const { return Begin(); }
    ConstPointerListItr end() const { return End(); }

    // Adding throws std::bad_alloc when memory runs out and then changes nothing.
    void PushBack(const void* element);
    // Inserts at the front when `place` is a null iterator or the head. Returns the new node's place.
    PointerListItr InsertBefore(PointerListItr place, const void* element);
    // Returns the following place. For a null iterator or a sentinel, erases nothing and returns Begin().
    PointerListItr Erase(PointerListItr place);
    // No effect on an empty list.
    void PopFront();
    bool Empty() const { return count == 0; }
    void MakeEmpty();

    // Given interface; no caller here
    std::size_t Size() const { return count; }
    void PushFront(const void* element);
    // Erases up to but not including `last`, or to the end when `last` does not follow. Returns `last`.
    PointerListItr Erase(PointerListItr first, PointerListItr last);
    void PopBack();
    // Null when empty.
    void* Front() const { return head->next->data; }
    void* Back() const { return tail->prev->data; }

private:
    std::size_t count = 0;
    PNode* head = &headNode;
    PNode* tail = &tailNode;
    // The sentinels are members, because most lists of a description are short, and two heap blocks for each
    // list would cost noticeable memory.
    PNode headNode{nullptr};
    PNode tailNode{nullptr};
};

} // namespace torka
