#pragma once

#include "pane/views/PaneContext.h"

#include <QObject>

#include <memory>

class QLabel;
class QString;
class QToolButton;
class QWidget;

namespace torka {

// One field as widgets: a label, the control by its kind, and at the end of the row two small buttons: why
// some choices cannot be had, and back to the default. A person's changes go to the editor at once.
//
// The row belongs to the page that made it, which also tells it when to show something anew; its widgets
// belong to their parent and must not outlive the row. One field may have rows on several pages.
class FieldRow {
public:
    virtual ~FieldRow();
    FieldRow(const FieldRow&) = delete;
    FieldRow& operator=(const FieldRow&) = delete;

    const PaneField& Field() const { return field; }
    // Null for a check box, which bears its name itself.
    QLabel* Label() const { return label; }
    QWidget* Body() const { return body; } // everything but the label
    QWidget* Focus() const { return focus; }

    // The value and what goes by it; cheap when nothing changed.
    void ShowValue();
    // What the other settings forbid.
    void ShowAllowed();

protected:
    FieldRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent);
    // To be called by each constructor: puts the control into the row. `named`: it bears the field's name.
    void Take(QWidget* control, QWidget* focusWidget, bool named);

    virtual void UpdateValue() = 0;
    // Returns whether some of the field's choices cannot be had now.
    virtual bool UpdateAllowed() = 0;
    // Why, one a line.
    virtual QString Reasons() const;
    virtual QString Description() const { return {}; } // for tooltip and assistive technology
    void Set(const std::string& value);

    PaneContext& context;
    PaneField field; // a copy: the catalogue may be made anew while the row waits for its end

private:
    void ShowLock();
    void ShowReset();

    QWidget* body = nullptr;
    QWidget* focus = nullptr;
    QLabel* label = nullptr;
    QToolButton* information = nullptr;
    QToolButton* reset = nullptr;
    std::unique_ptr<QObject> wheelGuard;
    QString resetTip;
};

// The row for the field's kind of control.
std::unique_ptr<FieldRow> makeFieldRow(PaneContext& context, const PaneField& field, QWidget* parent);

} // namespace torka
