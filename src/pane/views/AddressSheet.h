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

// The text of a key in the person's language, from the bundle's table "BidiStrings"; the English one when the
// table has none.
using BidiTranslator = std::function<QString(const char* key, const char* english)>;

// The sheet in which a person chooses the controller's address: a field, the controllers of the local net,
// and the two-way check box. The pane's own check box and configure button belong to the same controller and
// are attached.
//
// Names from the network are drawn as plain text everywhere. Everything can be reached by keys; the table is
// sorted by its headers, or from its context menu.
// The widgets' dialog is a child of the parent, which may be gone before this is: then nothing is shown any
// more.
class AddressSheet final : public BonjourModuleView {
public:
    static constexpr int longestAddress = 255; // characters

    AddressSheet(QWidget* parent, const BidiTranslator& translate);
    ~AddressSheet() override;
    // The pane's widgets; either may be null. They stay the pane's.
    void attachPaneWidgets(QCheckBox* twoWay, QPushButton* configure);
    // What owns the sheet and its controller, held while an alert of theirs waits: the host may let go of it
    // meanwhile.
    void setKeepAlive(std::function<std::shared_ptr<void>()> hold) { keepAlive = std::move(hold); }
    // Null once the parent is gone.
    QDialog* Window() const { return dialog; }

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

private:
    class Dialog;
    class Rows;

    void MakeTable(const BidiTranslator& translate);
    void LayOut(const BidiTranslator& translate);
    void BidiClicked(bool on);
    void ShowTableMenu(const QPoint& place);
    void SortBy(ControllerColumn column);
    bool SelectFirst(int key);

    BonjourModuleViewDelegate* delegate = nullptr;
    std::function<std::shared_ptr<void>()> keepAlive;
    QPointer<QDialog> dialog;
    Rows* model; // these are owned by the dialog
    QLineEdit* field;
    QTreeView* table;
    QLabel* status;
    QProgressBar* progress;
    QCheckBox* bidiCheckBox;
    QPointer<QCheckBox> paneCheckBox;
    QPointer<QPushButton> paneConfigureButton;
    QString sortByName;
    QString sortByAddresses;
    bool isBidiOn = false;
    bool isSetting = false; // the selection changes, and not by a person
};

} // namespace torka
