#pragma once

#include "pane/views/PaneContext.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QCheckBox;
class QPushButton;

// Where pages, small widgets and dialogs are added to the pane without the pane knowing them. Everything is
// registered once, at start, before the first pane is made, and stays.

namespace torka {

class CustomizeQuickAccessView;
class PopupJobNoteView;

// A page beside those of the description.
class ExtraPageWidget : public QWidget {
public:
    using QWidget::QWidget;
    // Called before the page is seen, and after each change while it is.
    virtual void Update() = 0;
};

struct ExtraPage {
    std::string identifier;
    PaneWord title;
    // Made when the page is first chosen. May answer null: then the page is not shown.
    std::function<ExtraPageWidget*(PaneContext&, QWidget* parent)> make;
    // Whether this printer has the page at all; empty means yes.
    std::function<bool(const PaneContext&)> applies;
};

enum class PanePlace {
    presets, // in the line of the search field, at its far end
    gauges,  // under the list of pages
};

struct ExtraWidget {
    PanePlace place;
    // May answer null. Widgets that follow the settings add a listener to the context's editor.
    std::function<QWidget*(PaneContext&, QWidget* parent)> make;
};

// The pane's own widgets that a dialog works with.
struct PaneOutletWidgets {
    QWidget* root = nullptr;
    QCheckBox* bidiCheckBox = nullptr;
    QPushButton* configureButton = nullptr;
};

struct PaneDialogs {
    std::function<std::unique_ptr<CustomizeQuickAccessView>(PaneContext&, const PaneOutletWidgets&)>
        quickAccess;
    std::function<std::unique_ptr<PopupJobNoteView>(PaneContext&, const PaneOutletWidgets&)> popupJobNotes;
};

struct PaneRegistry {
    std::vector<ExtraPage> pages; // in the order in which they stand in the list, after the description's
    std::vector<ExtraWidget> widgets;
    PaneDialogs dialogs;
};

// The one of the process.
PaneRegistry& paneRegistry();

} // namespace torka
