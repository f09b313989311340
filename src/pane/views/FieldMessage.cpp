// SPDX-License-Identifier: Apache-2.0
#include "pane/views/FieldMessage.h"

#include <QAccessible>

namespace torka {

void FieldMessage::Tell(const QString& words) {
    if (words == text()) {
        return;
    }
    setText(words);
    setHidden(words.isEmpty());
    if (!words.isEmpty()) {
        QAccessibleEvent event(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
}

} // namespace torka
