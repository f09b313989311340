#pragma once

#include "platform/CoreFoundation.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

// What the discovery and address controller sees of its widgets: the address sheet, and the pane's two-way
// check box and configure button. All texts are shown as plain text: names come from the network.

namespace torka {

enum class ControllerColumn { name, addresses };

enum class SortIndicator { none, NSAscendingSortIndicator, NSDescendingSortIndicator };

struct ControllerRow {
    CFStringRef name;
    CFStringRef addresses; // separated by ", "; "" while none is known
    bool operator==(const ControllerRow& other) const {
        return CFEqual(name, other.name) && CFEqual(addresses, other.addresses);
    }
};

// What a person does with the widgets. Implemented by the controller.
class BonjourModuleViewDelegate {
public:
    BonjourModuleViewDelegate() = default;
    BonjourModuleViewDelegate(const BonjourModuleViewDelegate&) = delete;
    BonjourModuleViewDelegate& operator=(const BonjourModuleViewDelegate&) = delete;
    virtual ~BonjourModuleViewDelegate();
    virtual void OKClicked() = 0;
    virtual void clickedCancel() = 0;          // also when the sheet is closed otherwise
    virtual void configureButtonClicked() = 0; // opens the sheet
    // After the state of the check box, the sheet's or the pane's, was changed by a person.
    virtual void BIDICheckBoxClicked() = 0;
    // After a person chose another row, by mouse or keys.
    virtual void UpOrDownArrowKeySelection() = 0;
    // A click on a column's header.
    virtual void didClickTableColumn(ControllerColumn column) = 0;
};

// Lives longer than the controller that it was given to. What is set by these calls is never told back to the
// delegate.
class BonjourModuleView {
public:
    BonjourModuleView() = default;
    BonjourModuleView(const BonjourModuleView&) = delete;
    BonjourModuleView& operator=(const BonjourModuleView&) = delete;
    virtual ~BonjourModuleView();
    // Null: nobody listens any more.
    virtual void setDelegate(BonjourModuleViewDelegate* delegate) = 0;

    // The sheet is modal for its window, and opening it returns at once.
    virtual void openSheet() = 0;
    virtual void closeSheet() = 0;
    virtual bool isSheetVisible() const = 0;

    virtual CFStringRef addressField() const = 0; // never null
    virtual void setAddressField(const CFStringRef& text) = 0;
    virtual void focusAddressField() = 0; // its text selected, ready to be typed over

    // Replaces the rows; the selection goes to `selected`, or to none.
    virtual void setRows(std::span<const ControllerRow> rows, std::optional<std::size_t> selected) = 0;
    virtual std::optional<std::size_t> selectedRow() const = 0;
    virtual void setIndicatorImage(ControllerColumn column, SortIndicator indicator) = 0;
    // Shown and animated, or hidden.
    virtual void setProgress(bool running) = 0;
    // A quiet line below the table: why the list is empty or not whole, "" for nothing to say.
    virtual void setStatus(const CFStringRef& text) = 0;

    // One state: the sheet's check box and the pane's show the same.
    virtual bool bidiState() const = 0;
    virtual void setBidiState(bool on) = 0;
    virtual void setBidiCheckBoxEnabled(bool enabled) = 0; // the pane's
    virtual void setConfigureButtonEnabled(bool enabled) = 0;
};

} // namespace torka
