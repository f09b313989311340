// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLabel>

namespace torka {

// A line of words below a field: what it did not take, and what it takes. Hidden while there is nothing to
// say. Assistive technology reads it when it appears.
class FieldMessage final : public QLabel {
public:
    explicit FieldMessage(QWidget* parent)
        : QLabel(parent) {
        setObjectName(QStringLiteral("fieldMessage"));
        setTextFormat(Qt::PlainText);
        setWordWrap(true);
        hide();
    }
    void Tell(const QString& words);
};

} // namespace torka
