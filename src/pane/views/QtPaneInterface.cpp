// SPDX-License-Identifier: Apache-2.0
#include "pane/views/QtPaneInterface.h"

#include "pane/panel/CustomizePaneController.h"
#include "pane/panel/TorkaFeaturesPDE.h"
#include "pane/presentation/NoteRules.h"
#include "pane/views/BrokenNotesDialog.h"
#include "pane/views/ConflictDialog.h"
#include "pane/views/CustomizePaneWidget.h"
#include "pane/views/PaneColors.h"
#include "pane/views/PaneRoot.h"
#include "pane/views/PlainTexts.h"
#include "pane/views/PopupJobNoteDialog.h"
#include "pane/views/QuickAccessDialog.h"
#include "pane/views/TabOrder.h"
#include "pane/views/TwoWaySign.h"
#include "platform/qt/PersonsTexts.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QUiLoader>
#include <QVBoxLayout>

#include <array>

namespace torka {
namespace {

struct OutletName {
    PaneOutlet outlet;
    const char* name;
    const PaneWord* word; // null for a widget without text of its own
};

constexpr std::array outletNames{
    OutletName{PaneOutlet::outputBinsView, "outputBinsView", nullptr},
    OutletName{PaneOutlet::customizePane, "customizePane", nullptr},
    OutletName{PaneOutlet::printerName, "printerName", nullptr},
    OutletName{PaneOutlet::printerNameStaticText, "printerNameStaticText", &words::printerLabel},
    OutletName{PaneOutlet::printerAddress, "printerAddress", nullptr},
    OutletName{PaneOutlet::printerAddressStaticText, "printerAddressStaticText", &words::addressLabel},
    OutletName{PaneOutlet::bidiCheckBox, "bidiCheckBox", &words::twoWayCheckBox},
    OutletName{PaneOutlet::configureButton, "configureButton", &words::configure},
    OutletName{PaneOutlet::fullPropertiesButton, "fullPropertiesButton", &words::fullProperties},
    OutletName{PaneOutlet::defaultsButton, "defaultsButton", &words::defaults},
    OutletName{PaneOutlet::customizeQuickAccessButton, "customizeQuickAccessButton", &words::customize},
    OutletName{PaneOutlet::quickaccessStaticText, "quickaccessStaticText", &words::quickAccessLabel},
    OutletName{PaneOutlet::horizontalLine, "horizontalLine", nullptr},
    OutletName{PaneOutlet::horizontalLine2, "horizontalLine2", nullptr},
};

// Hides the folders of plug-ins from the loader: the file needs no widgets of plug-ins, and the loader would
// load all their libraries into the process of the host.
std::unique_ptr<QUiLoader> loaderWithoutPlugins() {
    const QStringList paths = QCoreApplication::libraryPaths();
    QCoreApplication::setLibraryPaths({});
    auto loader = std::make_unique<QUiLoader>();
    QCoreApplication::setLibraryPaths(paths);
    return loader;
}

std::string shownNumber(double number, int decimals) {
    return QLocale().toString(number, 'f', decimals).toStdString();
}

std::string saidMessage(const std::string& english) {
    return QCoreApplication::translate(messageContext, english.c_str()).toStdString();
}

} // namespace

QtPaneInterface::QtPaneInterface(PaneSetup paneSetup)
    : setup(std::move(paneSetup))
    , editor(setup.model, setup.data)
    , context{editor,
              setup.controller,
              setup.data,
              setup.panel,
              {editor, {setup.text, shownNumber, setup.metric, saidMessage}},
              setup.gauges,
              setup.beganWithLastJob,
              [this] { UseDefaults(); }} {}

QtPaneInterface::~QtPaneInterface() {
    if (root != nullptr) {
        static_cast<PaneRoot*>(root.data())->WhenGone({});
        static_cast<PaneRoot*>(root.data())->WhenFirstPainted({});
    }
    delete pane.data(); // refers to the editor
}

std::unique_ptr<QtPaneInterface> QtPaneInterface::Load(const QString& uiFile, PaneSetup setup,
                                                       std::string& problem) {
    std::unique_ptr<QtPaneInterface> loaded(new QtPaneInterface(std::move(setup)));
    if (!loaded->LoadFile(uiFile, problem)) {
        return nullptr;
    }
    loaded->Translate();
    loaded->MakePane();
    loaded->MakeDialogs();
    loaded->Connect();
    return loaded;
}

bool QtPaneInterface::LoadFile(const QString& uiFile, std::string& problem) {
    QFile file(uiFile);
    if (!file.open(QIODevice::ReadOnly)) {
        problem = uiFile.toStdString() + ": " + file.errorString().toStdString();
        return false;
    }
    const std::unique_ptr<QUiLoader> loader = loaderWithoutPlugins();
    std::unique_ptr<QWidget> loaded(loader->load(&file));
    if (loaded == nullptr) {
        problem = uiFile.toStdString() + ": " + loader->errorString().toStdString();
        return false;
    }
    for (const OutletName& entry : outletNames) {
        const QString name = QString::fromLatin1(entry.name);
        QWidget* widget = loaded->objectName() == name ? loaded.get() : loaded->findChild<QWidget*>(name);
        if (widget == nullptr) {
            problem = uiFile.toStdString() + ": no widget is named " + entry.name;
            return false;
        }
        outlets[entry.outlet] = widget;
    }
    auto* paneRoot = new PaneRoot;
    root = paneRoot;
    view = std::make_shared<QtView>(paneRoot);
    paneRoot->setObjectName(QStringLiteral("paneRoot"));
    paneRoot->resize(loaded->size());
    auto* layout = new QVBoxLayout(paneRoot);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(loaded.release());
    paneRoot->WhenGone([this] { RootGone(); });
    return true;
}

void QtPaneInterface::Translate() {
    for (const OutletName& entry : outletNames) {
        if (entry.word == nullptr) {
            continue;
        }
        const QString text = context.Say(*entry.word);
        if (auto* label = qobject_cast<QLabel*>(outlets[entry.outlet])) {
            label->setText(text);
        } else if (auto* button = qobject_cast<QAbstractButton*>(outlets[entry.outlet])) {
            button->setText(text);
        }
    }
    for (const auto& [label, named] :
         {std::pair{PaneOutlet::printerNameStaticText, PaneOutlet::printerName},
          std::pair{PaneOutlet::printerAddressStaticText, PaneOutlet::printerAddress}}) {
        auto* name = qobject_cast<QLabel*>(outlets[label]);
        auto* value = qobject_cast<QLabel*>(outlets[named]);
        if (name != nullptr && value != nullptr) {
            name->setBuddy(value); // assistive technology tells both
            alignLeading(*value);
        }
    }
}

void QtPaneInterface::MakePane() {
    QWidget* place = outlets[PaneOutlet::customizePane];
    auto* layout = new QVBoxLayout(place);
    layout->setContentsMargins(0, 0, 0, 0);
    pane = new CustomizePaneWidget(context, place);
    layout->addWidget(pane);
    chainInTabOrder(outlets[PaneOutlet::configureButton], *pane);
    if (auto* signPlace = root->findChild<QWidget*>(QStringLiteral("twoWaySign"))) {
        auto* signLayout = new QVBoxLayout(signPlace);
        signLayout->setContentsMargins(0, 0, 0, 0);
        sign = new TwoWaySign(context, signPlace);
        signLayout->addWidget(sign);
    }
    shareColorsBelow(*root);
}

void QtPaneInterface::MakeDialogs() {
    quickAccessDialog = std::make_unique<QuickAccessSheet>(context, root);
    popupNotesDialog = std::make_unique<PopupJobNoteDialog>(context, root);
    auto sheet = std::make_unique<AddressSheet>(root, setup.bidiText);
    sheet->setKeepAlive(setup.keepAlive);
    sheet->attachPaneWidgets(qobject_cast<QCheckBox*>(outlets[PaneOutlet::bidiCheckBox]),
                             qobject_cast<QPushButton*>(outlets[PaneOutlet::configureButton]));
    addressDialog = std::move(sheet);
}

void QtPaneInterface::Connect() {
    const auto onClick = [this](PaneOutlet outlet, std::function<void()> action) {
        if (auto* button = qobject_cast<QAbstractButton*>(outlets[outlet])) {
            QObject::connect(
                button, &QAbstractButton::clicked, &connections, [this, act = std::move(action)] {
                    const std::shared_ptr<void> alive = setup.keepAlive ? setup.keepAlive() : nullptr;
                    act();
                });
        }
    };
    // The changes of the module and of the Defaults button can be undone as one step.
    onClick(PaneOutlet::fullPropertiesButton, [this] {
        if (setup.openFullProperties) {
            editor.EditAll(setup.openFullProperties, ServerPresetChoice::keep);
        }
    });
    onClick(PaneOutlet::defaultsButton, [this] { UseDefaults(); });
    onClick(PaneOutlet::customizeQuickAccessButton, [this] {
        if (setup.customizeQuickAccess) {
            setup.customizeQuickAccess();
        }
    });
    if (auto* box = qobject_cast<QCheckBox*>(outlets[PaneOutlet::bidiCheckBox])) {
        QObject::connect(box, &QCheckBox::toggled, &connections, [this] { ShowTwoWay(); });
    }
    QObject::connect(qApp, &QGuiApplication::applicationStateChanged, &connections,
                     [this](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive && setup.applicationDidBecomeActive) {
                             setup.applicationDidBecomeActive();
                         }
                     });
    QObject::connect(qApp, &QApplication::focusChanged, &connections,
                     [this](QWidget* /*before*/, QWidget* now) { TakeFocus(now); });
    if (setup.panel != nullptr) {
        setup.panel->Server().AddListener([this, alive = QPointer<QObject>(&connections)] {
            if (alive != nullptr) {
                ShowTwoWay();
            }
        });
    }
}

// A process may show several print dialogs at once. A widget belongs to this panel when the pane's window is
// among its parents and no other pane's window lies between.
void QtPaneInterface::TakeFocus(const QWidget* focused) {
    if (root == nullptr || !setup.becomeCurrent) {
        return;
    }
    for (const QWidget* window = focused; window != nullptr; window = window->parentWidget()) {
        if (window == root->window()) {
            setup.becomeCurrent();
            return;
        }
        if (window->isWindow() && window->findChild<QWidget*>(QStringLiteral("paneRoot")) != nullptr) {
            return;
        }
    }
}

void QtPaneInterface::UseDefaults() {
    if (setup.resetToDefaults) {
        editor.EditAll(setup.resetToDefaults);
    }
}

void QtPaneInterface::ShowTwoWay() {
    const auto* box = qobject_cast<QCheckBox*>(outlets[PaneOutlet::bidiCheckBox]);
    if (sign == nullptr || box == nullptr) {
        return;
    }
    sign->Show(twoWayState(box->isChecked(), setup.twoWayFailed && setup.twoWayFailed()));
}

// The dialog deletes the root view. Dialogs of the pane are taken out of it first, because the interface owns
// them.
void QtPaneInterface::RootGone() {
    for (QWidget* dialog : root->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (dialog->isWindow()) {
            dialog->setParent(nullptr);
        }
    }
}

bool QtPaneInterface::confirmConflicts() {
    editor.Refresh();
    if (editor.Conflicts().empty()) {
        return true;
    }
    // Watched: the print dialog may go while the person is asked, and take the window along.
    const QPointer<ConflictDialog> dialog =
        new ConflictDialog(context, root != nullptr ? root->window() : nullptr);
    const bool accepted = dialog->exec() == QDialog::Accepted && dialog != nullptr;
    const bool resolves = accepted && dialog->IsToResolve();
    delete dialog.data();
    return resolves ? editor.Resolve() && editor.Conflicts().empty() : accepted;
}

bool QtPaneInterface::confirmBrokenNotes() {
    editor.Refresh();
    const std::vector<BrokenNote> notes = brokenNotes(context.texts);
    if (notes.empty()) {
        return true;
    }
    // The print dialog may end during exec() and delete this dialog.
    const QPointer<BrokenNotesDialog> dialog =
        new BrokenNotesDialog(context, notes, root != nullptr ? root->window() : nullptr);
    const bool accepted = dialog->exec() == QDialog::Accepted;
    const std::string keyword = dialog != nullptr ? dialog->FieldToShow() : std::string();
    const bool goesOn = accepted && dialog != nullptr;
    delete dialog.data();
    if (pane != nullptr && !keyword.empty()) {
        pane->ShowField(keyword);
    }
    return goesOn;
}

CustomizePaneWidget* QtPaneInterface::Pane() const { return pane; }

QWidget* QtPaneInterface::Outlet(PaneOutlet outlet) const {
    const auto place = outlets.find(outlet);
    return place == outlets.end() ? nullptr : place->second.data();
}

CFStringRef QtPaneInterface::stringValue(PaneOutlet outlet) const {
    QString text;
    if (const auto* label = qobject_cast<QLabel*>(Outlet(outlet))) {
        text = label->text();
    } else if (const auto* line = qobject_cast<QLineEdit*>(Outlet(outlet))) {
        text = line->text();
    } else if (const auto* button = qobject_cast<QAbstractButton*>(Outlet(outlet))) {
        text = button->text();
    }
    return cfText(text);
}

void QtPaneInterface::setStringValue(PaneOutlet outlet, const CFStringRef& text) {
    const QString shown = qText(text);
    if (auto* label = qobject_cast<QLabel*>(Outlet(outlet))) {
        label->setTextFormat(Qt::PlainText);
        label->setText(shown);
        label->setToolTip(plainToolTip(shown)); // a long text is cut in the label
    } else if (auto* line = qobject_cast<QLineEdit*>(Outlet(outlet))) {
        line->setText(shown);
    } else if (auto* button = qobject_cast<QAbstractButton*>(Outlet(outlet))) {
        button->setText(labelText(shown));
    }
}

void QtPaneInterface::setHidden(PaneOutlet outlet, bool hidden) {
    if (QWidget* widget = Outlet(outlet)) {
        widget->setHidden(hidden);
    }
}

void QtPaneInterface::setEnabled(PaneOutlet outlet, bool enabled) {
    if (QWidget* widget = Outlet(outlet)) {
        widget->setEnabled(enabled);
    }
}

PaneFrame QtPaneInterface::frame(PaneOutlet outlet) const {
    if (const auto asked = askedFrames.find(outlet); asked != askedFrames.end()) {
        return asked->second;
    }
    const QWidget* widget = Outlet(outlet);
    const QWidget* all = Outlet(PaneOutlet::outputBinsView);
    if (widget == nullptr || all == nullptr) {
        return {};
    }
    const QPoint corner = widget->mapTo(all, QPoint(0, widget->height()));
    return {static_cast<double>(corner.x()), static_cast<double>(all->height() - corner.y()),
            static_cast<double>(widget->width()), static_cast<double>(widget->height())};
}

void QtPaneInterface::setFrame(PaneOutlet outlet, const PaneFrame& frame) { askedFrames[outlet] = frame; }

void QtPaneInterface::whenFirstPainted(std::function<void()> action) {
    if (root != nullptr) {
        static_cast<PaneRoot*>(root.data())->WhenFirstPainted(std::move(action));
    }
}

void QtPaneInterface::bringToFront() {
    QWidget* window = QApplication::activeModalWidget();
    if (window == nullptr && root != nullptr) {
        window = root->window();
    }
    if (window != nullptr && window->isVisible()) {
        window->raise();
        window->activateWindow();
    }
}

void QtPaneInterface::Drawer::drawControlsInTree(const PPDTree& tree) {
    if (owner.pane != nullptr) {
        owner.pane->drawControlsInTree(tree);
        owner.ShowTwoWay();
    }
}

void QtPaneInterface::Drawer::greyoutShortcutControls(bool grey) {
    if (owner.pane != nullptr) {
        owner.pane->greyoutShortcutControls(grey);
    }
}

} // namespace torka
