// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/PointerList.h"

namespace torka {

PointerListItr& PointerListItr::operator++() {
    node = node != nullptr ? node->next : nullptr;
    return *this;
}

PointerListItr PointerListItr::operator++(int) {
    const PointerListItr before = *this;
    ++*this;
    return before;
}

PointerListItr& PointerListItr::operator--() {
    node = node != nullptr ? node->prev : nullptr;
    return *this;
}

PointerListItr PointerListItr::operator--(int) {
    const PointerListItr before = *this;
    --*this;
    return before;
}

ConstPointerListItr& ConstPointerListItr::operator++() {
    node = node != nullptr ? node->next : nullptr;
    return *this;
}

ConstPointerListItr ConstPointerListItr::operator++(int) {
    const ConstPointerListItr before = *this;
    ++*this;
    return before;
}

ConstPointerListItr& ConstPointerListItr::operator--() {
    node = node != nullptr ? node->prev : nullptr;
    return *this;
}

ConstPointerListItr ConstPointerListItr::operator--(int) {
    const ConstPointerListItr before = *this;
    --*this;
    return before;
}

PointerList::PointerList() {
    head->next = tail;
    tail->prev = head;
}

PointerList::PointerList(const PointerList& other)
    : PointerList() {
    for (void* element : other) {
        PushBack(element);
    }
}

PointerList& PointerList::operator=(const PointerList& other) {
    if (this != &other) {
        MakeEmpty();
        for (void* element : other) {
            PushBack(element);
        }
    }
    return *this;
}

PointerList::~PointerList() { MakeEmpty(); }

void PointerList::PushBack(const void* element) { InsertBefore(End(), element); }

void PointerList::PushFront(const void* element) { InsertBefore(Begin(), element); }

PointerListItr PointerList::InsertBefore(PointerListItr place, const void* element) {
    PNode* const after = place.Node() == nullptr || place.Node() == head ? head->next : place.Node();
    auto* const node = new PNode(const_cast<void*>(element));
    node->prev = after->prev;
    node->next = after;
    node->prev->next = node;
    after->prev = node;
    ++count;
    return PointerListItr(node);
}

PointerListItr PointerList::Erase(PointerListItr place) {
    PNode* const node = place.Node();
    if (node == nullptr || node == head || node == tail) {
        return Begin();
    }
    PNode* const following = node->next;
    node->prev->next = following;
    following->prev = node->prev;
    delete node;
    --count;
    return PointerListItr(following);
}

PointerListItr PointerList::Erase(PointerListItr first, PointerListItr last) {
    while (first.Node() != nullptr && first != last && first != End()) {
        first = Erase(first);
    }
    return last;
}

void PointerList::PopFront() {
    if (!Empty()) {
        Erase(Begin());
    }
}

void PointerList::PopBack() {
    if (!Empty()) {
        Erase(PointerListItr(tail->prev));
    }
}

void PointerList::MakeEmpty() {
    while (!Empty()) {
        PopFront();
    }
}

} // namespace torka
