// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/views/PaneContext.h"

#include <QWidget>

#include <functional>
#include <string>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace torka {

// The settings that differ from their defaults: name, value, default. From here a person goes to a setting or
// resets it.
class SummaryPage final : public QWidget {
public:
    // `showField` goes to the field of a keyword.
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
