// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDoubleSpinBox>

#include <functional>
#include <utility>

namespace torka {

// A number box that lets a person type a number outside its bounds to the end. It then returns to the number
// that it held and tells the typed one.
class BoundedBox final : public QDoubleSpinBox {
public:
    using QDoubleSpinBox::QDoubleSpinBox;
    void WhenOutside(std::function<void(const QString& typed)> tell) { whenOutside = std::move(tell); }

    QValidator::State validate(QString& typed, int& position) const override;
    void fixup(QString& typed) const override;

private:
    bool IsOutside(const QString& typed) const;

    std::function<void(const QString& typed)> whenOutside;
};

} // namespace torka
