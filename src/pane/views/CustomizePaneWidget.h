// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/data/PPDTree.h"
#include "pane/panel/PaneInterface.h"
#include "pane/presentation/FieldSearch.h"
#include "pane/presentation/PageList.h"
#include "pane/views/PaneContext.h"

#include <QTimer>
#include <QWidget>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QStackedWidget;
class QToolButton;

namespace torka {

class ConflictBar;
class FieldPage;
class GaugePanel;
class JobPicture;
class LastJobLine;
class PresetBar;
class RoomyRows;
class SummaryPage;

// The controls of the pane: the search field, the list of pages, the chosen page, the bar that names
// conflicts, and in a wide pane the picture of the job.
//
// A page is made when it is first chosen. Only the visible page follows a change at once; other pages are
// updated when they are chosen.
class CustomizePaneWidget final : public QWidget, public CustomizePaneView {
public:
    CustomizePaneWidget(PaneContext& paneContext, QWidget* parent);
    ~CustomizePaneWidget() override;

    void drawControlsInTree(const PPDTree& tree) override;
    void greyoutShortcutControls(bool grey) override;

    // Shows the page with that PageEntry::identifier. False when there is none.
    bool ShowPage(const std::string& identifier);
    // Goes to a field on its page; before the first drawing, goes there when the pane is drawn. False when no
    // page shows the field.
    bool ShowField(const std::string& keyword);
    // The visible page when it is a page of fields, else null.
    FieldPage* CurrentFieldPage() const;
    // Shows the result of the search without waiting for a pause in typing.
    void SearchNow();

    // For the tests; no caller here
    QLineEdit* SearchField() const { return search; }
    std::vector<std::string> PageIdentifiers() const;
    QListWidget* PageList() const { return list; }
    ConflictBar* Bar() const { return bar; }
    JobPicture* Picture() const { return picture; }
    QToolButton* PictureButton() const { return pictureButton; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Entry {
        PageEntry described;
        QWidget* widget = nullptr;
        bool isStale = false;
        QListWidgetItem* item = nullptr;
    };

    void MakeWidgets();
    void MakeHeader(QWidget* header);
    QToolButton* MakeButton(QWidget* parent, bool isUndo);
    void MakeEntries();
    void RemovePages();
    QWidget* MakePage(Entry& entry);
    FieldPage* MakeFieldPage(const PageEntry& entry);
    FieldPage* MakeQuickAccessPage();
    void FollowChange(const PaneChange& change);
    void ShowEntry(std::size_t index);
    void UpdateEntry(Entry& entry, const std::vector<PPDXControl*>* controls);
    void UpdateSurroundings(const PaneChange* change);
    void MarkConflicts();
    void EndSearch();
    void ShowPicture();
    void LeaveRoomForPages();
    void PutRowsCloser();
    std::optional<std::size_t> IndexOf(const std::string& identifier) const;

    PaneContext& context;
    FieldSearch fieldSearch;
    QLineEdit* search = nullptr;
    QListWidget* list = nullptr;
    RoomyRows* rowsOfList = nullptr;
    QWidget* besideList = nullptr;
    QStackedWidget* stack = nullptr;
    FieldPage* results = nullptr;
    ConflictBar* bar = nullptr;
    PresetBar* presets = nullptr; // null without pane data
    LastJobLine* lastJob = nullptr;
    QToolButton* undo = nullptr;
    QToolButton* redo = nullptr;
    QToolButton* pictureButton = nullptr;
    JobPicture* picture = nullptr;
    GaugePanel* gauges = nullptr; // null without a queue
    QWidget* area = nullptr;      // disabled while the module runs
    QTimer searchPause;
    std::vector<Entry> entries;
    std::optional<std::size_t> current;
    std::vector<std::string> quickAccess; // keywords
    std::string fieldToShow;              // keyword; shown at the first drawing
    bool isDrawn = false;
};

} // namespace torka
