// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/presentation/NoteRules.h"
#include "pane/views/PaneContext.h"

#include <QDialog>

#include <string>
#include <vector>

class QListWidget;

namespace torka {

// Names the fields whose texts break a rule, before a job is printed. Accepted: the person prints all the
// same. Rejected: the person cancelled or goes to a field.
class BrokenNotesDialog final : public QDialog {
public:
    BrokenNotesDialog(const PaneContext& context, const std::vector<BrokenNote>& notes, QWidget* parent);

    // The keyword of the field that the person goes to; "" for none.
    const std::string& FieldToShow() const { return fieldToShow; }

private:
    void GoToField();

    QListWidget* list;
    std::string fieldToShow;
};

} // namespace torka
