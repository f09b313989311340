// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/views/FieldRow.h"

#include <vector>

class QCheckBox;
class QComboBox;

namespace torka {

class ChoiceModel;
class TickBox;

// A popup: one choice of a list. Forbidden choices are disabled and tell why.
class PopupRow final : public FieldRow {
public:
    PopupRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent);

private:
    void UpdateValue() override;
    bool UpdateAllowed() override;

    QComboBox* box;
    ChoiceModel* choices;
};

// A check box. It is disabled and tells why while its other state is forbidden.
class CheckRow final : public FieldRow {
public:
    CheckRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent);

private:
    void UpdateValue() override;
    bool UpdateAllowed() override;

    QCheckBox* box;
};

// Any number of choices: a box that opens a list of check boxes and shows the names of the ticked choices.
class SeveralChoicesRow final : public FieldRow {
public:
    SeveralChoicesRow(PaneContext& paneContext, const PaneField& shownField, QWidget* parent);

private:
    void UpdateValue() override;
    bool UpdateAllowed() override;
    void MakeItems();
    void TakeTicks();

    TickBox* box;
    std::vector<PaneChoice> choices;
    bool updating = false;
};

} // namespace torka
