#pragma once

#include "pane/views/PaneContext.h"

#include <QWidget>

#include <functional>
#include <string>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace torka {

// What differs from the defaults, as a list: setting, value, default. From here a person goes to a setting or
// sets it back.
class SummaryPage final : public QWidget {
public:
    // `show`: goes to the field of that keyword.
    SummaryPage(PaneContext& paneContext, std::function<void(const std::string&)> showField,
                QWidget* parent = nullptr);
    void Update();

private:
    void ResetSelected();
    void ShowSelected();

    PaneContext& context;
    std::function<void(const std::string&)> show;
    QLabel* count;
    QTreeWidget* list;
    QPushButton* showButton;
    QPushButton* resetButton;
};

} // namespace torka
