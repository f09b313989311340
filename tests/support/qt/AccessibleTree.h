// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAbstractItemView>
#include <QAccessible>
#include <QMetaEnum>
#include <QWidget>

#include <string>

namespace torka::tests {

inline void addAccessible(QAccessibleInterface* one, const std::string& indent, std::string& out) {
    if (one == nullptr || one->state().invisible) {
        return;
    }
    const QAccessible::State state = one->state();
    const auto* widget = qobject_cast<const QWidget*>(one->object());
    const auto add = [&out](const char* before, const QString& text) {
        out += text.isEmpty() ? "" : before + QString(text).replace('\n', " / ").toStdString();
    };
    out += indent + QMetaEnum::fromType<QAccessible::Role>().valueToKey(one->role());
    // A combo box's interface may tell its text in the place of its name.
    const bool hasName = widget != nullptr && !widget->accessibleName().isEmpty();
    add(" ", hasName ? widget->accessibleName() : one->text(QAccessible::Name));
    add(" = ", state.passwordEdit ? QString() : one->text(QAccessible::Value));
    add(" | ", one->text(QAccessible::Description));
    add(" ? ", widget == nullptr ? QString() : widget->toolTip());
    for (const auto& [is, word] : {std::pair{state.checked, " checked"},
                                   {state.selected, " selected"},
                                   {state.disabled, " disabled"},
                                   {state.focused, " focused"},
                                   {state.passwordEdit, " secret"},
                                   {state.readOnly, " readonly"}}) {
        out += is ? word : "";
    }
    out += "\n";
    if (const auto* view = qobject_cast<const QAbstractItemView*>(widget)) {
        // The interfaces of items outlive them where no assistive program listens.
        for (int row = 0; row < view->model()->rowCount(); ++row) {
            const QModelIndex item = view->model()->index(row, 0);
            out += indent + "  " + item.data().toString().toStdString();
            out += view->selectionModel()->isSelected(item) ? " selected\n" : "\n";
        }
        return;
    }
    const bool isClosed = one->role() == QAccessible::ComboBox || one->role() == QAccessible::SpinBox;
    for (int i = 0; !isClosed && i < one->childCount(); ++i) {
        addAccessible(one->child(i), indent + "  ", out);
    }
}

// What a screen reader finds in a window: a line for each element that is shown.
inline std::string accessibleTree(QWidget& window) {
    std::string out;
    addAccessible(QAccessible::queryAccessibleInterface(&window), "", out);
    return out;
}

} // namespace torka::tests
