#pragma once

#include "pane/views/FieldRow.h"

#include <QScrollArea>

#include <memory>
#include <string>
#include <vector>

class QFormLayout;

namespace torka {

class RollDown;

// A scrolling page of fields, in roll-downs or without. Rows are made when their roll-down first opens, and
// are brought up to date only while the page is seen.
class FieldPage final : public QScrollArea {
public:
    explicit FieldPage(PaneContext& paneContext, QWidget* parent = nullptr);
    ~FieldPage() override;

    // In words above everything else; "" hides them.
    void SetHint(const QString& text);
    // In one roll-down. It is open when `open`, or once a field of it is shown by ShowField.
    void AddGroup(const QString& title, const std::vector<PaneField>& fields, bool open);
    // Without a header.
    void AddFields(const std::vector<PaneField>& fields);
    // A heading of its own between fields.
    void AddHeading(const QString& text);
    void Finish(); // everything was added
    void Clear();

    // The values of these controls, or of all (null), changed; forbidden choices are swept anew.
    void Update(const std::vector<PPDXControl*>* controls);
    // Opens the field's roll-down, scrolls there and gives it the focus. False when it is not here.
    bool ShowField(std::string_view keyword);
    // The first field that can be used gets the focus.
    void FocusFirst();
    // A field's row; null when it is not here or its roll-down was never open.
    FieldRow* RowOf(std::string_view keyword) const;
    std::size_t RowCount() const { return rows.size(); }

private:
    struct Group {
        RollDown* rollDown;
        std::vector<std::string> keywords;
    };

    void Fill(QWidget& content, const std::vector<PaneField>& fields);
    int LabelWidth(const std::vector<PaneField>& fields) const;

    PaneContext& context;
    QWidget* column = nullptr;
    std::vector<std::unique_ptr<FieldRow>> rows;
    std::vector<Group> groups;
    int labelWidth = 0; // of all groups, so that their columns stand in line
};

} // namespace torka
