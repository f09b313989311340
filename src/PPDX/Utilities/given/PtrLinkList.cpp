// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/given/PtrLinkList.h"

namespace torka {

PtrLinkList::PtrLinkList(LinkElement_Dual* element) {
    add(element);
    iterator = LinkElementDualIterator(first);
}

PtrLinkList::~PtrLinkList() {
    while (owns != 0 && first != nullptr) {
        LinkElement_Dual* const following = first->next;
        delete first;
        first = following;
    }
}

int PtrLinkList::add(LinkElement_Dual* element) {
    if (element == nullptr) {
        return 0;
    }
    element->prev = last;
    element->next = nullptr;
    (last != nullptr ? last->next : first) = element;
    last = element;
    ++count;
    return 1;
}

LinkElement_Dual* PtrLinkList::index(std::uint16_t n) const {
    if (n > count) {
        return nullptr;
    }
    LinkElement_Dual* element = first;
    while (n-- > 0 && element != nullptr) {
        element = element->next;
    }
    return element;
}

} // namespace torka
