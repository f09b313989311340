// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/views/PaneContext.h"

#include <QObject>
#include <QSize>

#include <memory>

class QLabel;
class QString;
class QToolButton;
class QWidget;

namespace torka {

// The widgets of one field: a label, a control for its kind, and two small buttons at the end of the row,
// which tell why choices are forbidden and reset the field. A change goes to the editor at once.
//
// The page owns the row and tells it when to update. The widgets belong to their parent and end before the
// row. A field may have rows on several pages.
class FieldRow {
public:
    virtual ~FieldRow();
    FieldRow(const FieldRow&) = delete;
    FieldRow& operator=(const FieldRow&) = delete;

    const PaneField& Field() const { return field; }
    // Null for a check box, which shows the name itself.
    QLabel* Label() const { return label; }
    QWidget* Body() const { return body; } // the row without its label
    QWidget* Focus() const { return focus; }

    // Updates the value and the widgets that depend on it. Fast when nothing changed.
    void ShowValue();
    // Updates which choices are forbidden.
    void ShowAllowed();

protected:
    FieldRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent);
    // Puts the control into the row; every constructor of a derived class calls it. `named`: the control
    // shows the name of the field.
    void Take(QWidget* control, QWidget* focusWidget, bool named);

    virtual void UpdateValue() = 0;
    // Returns whether a choice of the field is forbidden now.
    virtual bool UpdateAllowed() = 0;
    // The reasons, one a line.
    virtual QString Reasons() const;
    virtual QString Description() const { return {}; } // for tooltip and assistive technology
    void Set(const std::string& value);

    PaneContext& context;
    PaneField field; // a copy: a row may live longer than the catalogue

private:
    void ShowLock();
    QSize SmallButtonSize() const;
    void PutIn(QToolButton* button, int place);
    void MakeInformation();
    void MakeReset();
    void ShowReasons(QToolButton& button);
    void ShowReset();

    QWidget* body = nullptr;
    QWidget* focus = nullptr;
    QLabel* label = nullptr;
    QToolButton* information = nullptr; // null until it is first needed; the row has room for it
    QToolButton* reset = nullptr;       // likewise
    std::unique_ptr<QObject> wheelGuard;
};

// Makes the row for the kind of control.
std::unique_ptr<FieldRow> makeFieldRow(PaneContext& context, const PaneField& field, QWidget* parent);

} // namespace torka
