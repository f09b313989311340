// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection/BonjourModuleView.h"

#include <QDialog>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>
#include <utility>

class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTreeView;

namespace torka {

// Returns the text of a key in the person's language, from the table "BidiStrings" of the bundle; the English
// text for a missing key.
using BidiTranslator = std::function<QString(const char* key, const char* english)>;

// The sheet in which a person chooses the address of the controller. It has a field, the controllers of the
// local network, and the two-way check box. The check box and the configure button of the pane belong to the
// same controller and are attached.
//
// Names from the network are drawn as plain text. All functions are reachable by keys. The headers or the
// context menu of the table sort it. The dialog is made when it is first needed, because few people open it.
// The parent of the dialog may end before this object; then every call does nothing.
class AddressSheet final : public BonjourModuleView {
public:
    static constexpr int maximumAddress = 255; // characters

    AddressSheet(QWidget* parent, BidiTranslator translate);
    ~AddressSheet() override;
    // The widgets of the pane, which owns them; either may be null.
    void attachPaneWidgets(QCheckBox* twoWay, QPushButton* configure);
    // Returns the owner of the sheet and its controller. It is held during an alert of theirs, in which the
    // host may release it.
    void setKeepAlive(std::function<std::shared_ptr<void>()> hold) { keepAlive = std::move(hold); }

    void setDelegate(BonjourModuleViewDelegate* newDelegate) override { delegate = newDelegate; }
    void openSheet() override;
    void closeSheet() override;
    bool isSheetVisible() const override;
    CFStringRef addressField() const override;
    void setAddressField(const CFStringRef& text) override;
    void focusAddressField() override;
    void setRows(std::span<const ControllerRow> rows, std::optional<std::size_t> selected) override;
    std::optional<std::size_t> selectedRow() const override;
    void setIndicatorImage(ControllerColumn column, SortIndicator indicator) override;
    void setProgress(bool running) override;
    void setStatus(const CFStringRef& text) override;
    bool bidiState() const override { return isBidiOn; }
    void setBidiState(bool on) override;
    void setBidiCheckBoxEnabled(bool enabled) override;
    void setConfigureButtonEnabled(bool enabled) override;

    // For the tests; no caller here
    // The dialog, which this makes. Null after the end of the parent.
    QDialog* Window();

private:
    class Dialog;
    class Rows;

    // Makes the dialog unless it exists. False after the end of the parent.
    bool HasDialog();
    void MakeDialog();
    void ShowAddress();
    void MakeTable();
    void LayOut();
    void BidiClicked(bool on);
    void ShowTableMenu(const QPoint& place);
    void SortBy(ControllerColumn column);
    bool SelectFirst(int key);

    BonjourModuleViewDelegate* delegate = nullptr;
    std::function<std::shared_ptr<void>()> keepAlive;
    BidiTranslator translate;
    QPointer<QWidget> parent;
    bool hasParent;
    QString address; // for the field, until there is a dialog
    QPointer<QDialog> dialog;
    Rows* model = nullptr; // the dialog owns this and the following
    QLineEdit* field = nullptr;
    QTreeView* table = nullptr;
    QLabel* status = nullptr;
    QProgressBar* progress = nullptr;
    QCheckBox* bidiCheckBox = nullptr;
    QPointer<QCheckBox> paneCheckBox;
    QPointer<QPushButton> paneConfigureButton;
    QObject connections; // with the widgets of the pane; they end with this object
    bool isBidiOn = false;
    bool isSetting = false; // the code, not the person, changes the selection
};

} // namespace torka
