// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/views/FieldRow.h"

#include <QScrollArea>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QFormLayout;

namespace torka {

class RollDown;

// A scrolling page of fields, with or without roll-downs. A row is made when its roll-down first opens, in a
// long group when it comes near the visible part, and updated only while the page is visible.
class FieldPage final : public QScrollArea {
public:
    explicit FieldPage(PaneContext& paneContext, QWidget* parent = nullptr);
    ~FieldPage() override;

    // Adds a hint as a line of text.
    void SetHint(const QString& text);
    // Adds fields in a roll-down. It is open when `open`, or after ShowField for one of its fields.
    void AddGroup(const QString& title, const std::vector<PaneField>& fields, bool open);
    // A row that is no field of the description.
    struct ExtraRow {
        QString name;
        QWidget* widget = nullptr;
        std::function<void()> update; // the widget's; called with each update of the page
    };
    // Adds fields without a header, below the extra rows.
    void AddFields(const std::vector<PaneField>& fields, const std::vector<ExtraRow>& extraRows = {});
    // Adds a button that goes elsewhere.
    void AddLink(const QString& text, const std::function<void()>& go);
    // Adds a heading between fields.
    void AddHeading(const QString& text);
    void Finish(); // after everything was added
    void Clear();

    // Shows the changed values of these controls, or of all for null, and updates the forbidden choices.
    void Update(const std::vector<PPDXControl*>* controls);
    // Opens the roll-down of the field, scrolls to the field and gives it the focus. False when the page does
    // not have it.
    bool ShowField(std::string_view keyword);
    // Gives the focus to the first enabled field.
    void FocusFirst();
    // The row of a field; null when the page does not have it or the row is not made yet.
    FieldRow* RowOf(std::string_view keyword) const;

    // For the tests; no caller here
    std::size_t RowCount() const { return rows.size(); }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    struct Group {
        RollDown* rollDown;
        std::vector<std::string> keywords;
    };
    // A group of which only the first rows are made.
    struct LongGroup {
        QFormLayout* form;
        std::vector<PaneField> fields;
        std::size_t made = 0;
        QWidget* room = nullptr; // about as high as the rows that are not made
    };

    void Fill(QWidget& content, const std::vector<PaneField>& fields,
              const std::vector<ExtraRow>& extraRows = {});
    void MakeRow(QFormLayout& form, int place, const PaneField& field);
    void MakeRows(LongGroup& group, std::size_t count);
    void MakeVisibleRows();
    int LabelWidth(const std::vector<PaneField>& fields) const;

    PaneContext& context;
    QWidget* column = nullptr;
    std::vector<std::unique_ptr<FieldRow>> rows;
    std::vector<Group> groups;
    std::vector<LongGroup> longGroups;
    bool isMakingRows = false; // which changes the height, and with it what is visible
    std::vector<std::function<void()>> extraUpdates;
    int labelWidth = 0; // the same for all groups, which aligns their columns
};

} // namespace torka
