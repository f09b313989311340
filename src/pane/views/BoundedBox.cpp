// SPDX-License-Identifier: Apache-2.0
#include "pane/views/BoundedBox.h"

namespace torka {

namespace {

QString withoutSuffix(QString typed, const QString& suffix) {
    if (typed.endsWith(suffix)) {
        typed.chop(suffix.size());
    }
    return typed.trimmed();
}

} // namespace

bool BoundedBox::IsOutside(const QString& typed) const {
    bool isNumber = false;
    const double number = locale().toDouble(withoutSuffix(typed, suffix()), &isNumber);
    return isNumber && (number < minimum() || number > maximum());
}

QValidator::State BoundedBox::validate(QString& typed, int& position) const {
    const QValidator::State state = QDoubleSpinBox::validate(typed, position);
    return state == QValidator::Invalid && IsOutside(typed) ? QValidator::Intermediate : state;
}

// Leaves a number outside the bounds as it is: Qt then returns to the number that the box holds.
void BoundedBox::fixup(QString& typed) const {
    if (!IsOutside(typed)) {
        QDoubleSpinBox::fixup(typed);
    } else if (whenOutside) {
        whenOutside(withoutSuffix(typed, suffix()));
    }
}

} // namespace torka
