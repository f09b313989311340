// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/views/FieldRow.h"

#include <cstdint>

class QCheckBox;
class QLabel;
class QLineEdit;

namespace torka {

class FieldMessage;
class PPDXJobNote;
struct NoteCounter;

// Shows the accepted part of the text `typed` in the field of a note. The cursor stays behind the last
// accepted character.
void showAcceptedText(QLineEdit& line, const QString& typed, const CFStringRef& accepted);

// Marks a field that did not take a typed text: a sign at its end, with the words as tooltip. "" removes the
// mark.
void markRefusal(QLineEdit& line, const std::string& refusal);

// Shows the counter of a note. While the text breaks a rule, the counter is bold and its tooltip names the
// broken rules; otherwise the tooltip names all rules.
void showCounter(QLabel& label, const NoteCounter& counter, const std::string& rules);

// A job note: a line of text that takes only what the note allows, with a counter of its length.
class NoteRow final : public FieldRow {
public:
    NoteRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent);

private:
    void UpdateValue() override;
    bool UpdateAllowed() override { return false; }
    QString Description() const override;
    const PPDXJobNote& Note() const;
    void Typed(const QString& text);
    void Refuse(const std::string& refusal);
    void ShowLength();

    QLineEdit* line;
    QLabel* counter;
    FieldMessage* message;
    std::uint32_t tag;
    bool typing = false;
};

// An on/off note: a check box that writes "True" or "False".
class SwitchNoteRow final : public FieldRow {
public:
    SwitchNoteRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent);

private:
    void UpdateValue() override;
    bool UpdateAllowed() override { return false; }

    QCheckBox* box;
    std::uint32_t tag;
};

} // namespace torka
