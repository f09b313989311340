// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/views/PaneContext.h"

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

class QLabel;
class QLineEdit;
class QPushButton;

namespace torka {

// Asks for the name of a new preset, or for the new name of a preset. A new preset may replace another after
// a warning.
class PresetNameDialog final : public QDialog {
public:
    // `renamed`: the present name, or "" for saving. `take` is called with the new name.
    PresetNameDialog(const PaneContext& context, const std::string& renamed, std::vector<std::string> taken,
                     std::function<void(const std::string&)> take, QWidget* parent);
    void accept() override;

    // For the tests; no caller here
    QLineEdit* Field() const { return field; }
    QPushButton* AcceptButton() const { return acceptButton; }

private:
    void Check();
    std::string Name() const;

    const PaneContext& context;
    std::string oldName;
    std::vector<std::string> takenNames;
    std::function<void(const std::string&)> takeName;
    QLineEdit* field;
    QLabel* hint;
    QPushButton* acceptButton = nullptr;
};

} // namespace torka
