// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

// The interface of the address controller to its widgets: the address sheet, the pane's two-way check box and
// its configure button. A view shows every text as plain text, because names come from the network.

namespace torka {

enum class ControllerColumn { name, addresses };

enum class SortIndicator { none, NSAscendingSortIndicator, NSDescendingSortIndicator };

struct ControllerRow {
    CFStringRef name;
    CFStringRef addresses; // separated by ", "; "" while unknown
    bool operator==(const ControllerRow& other) const {
        return CFEqual(name, other.name) && CFEqual(addresses, other.addresses);
    }
};

// Receives the person's actions. The controller implements it.
class BonjourModuleViewDelegate {
public:
    BonjourModuleViewDelegate() = default;
    BonjourModuleViewDelegate(const BonjourModuleViewDelegate&) = delete;
    BonjourModuleViewDelegate& operator=(const BonjourModuleViewDelegate&) = delete;
    virtual ~BonjourModuleViewDelegate();
    virtual void OKClicked() = 0;
    virtual void clickedCancel() = 0;          // also when the person closes the sheet in another way
    virtual void configureButtonClicked() = 0; // opens the sheet
    // The person has changed the check box of the sheet or of the pane.
    virtual void BIDICheckBoxClicked() = 0;
    // The person has selected another row, by mouse or keys.
    virtual void UpOrDownArrowKeySelection() = 0;
    // The person has clicked a column's header.
    virtual void didClickTableColumn(ControllerColumn column) = 0;
};

// The widgets. REQUIRES: the view outlives its controller, and these calls never notify the delegate.
class BonjourModuleView {
public:
    BonjourModuleView() = default;
    BonjourModuleView(const BonjourModuleView&) = delete;
    BonjourModuleView& operator=(const BonjourModuleView&) = delete;
    virtual ~BonjourModuleView();
    // Null ends the notifications.
    virtual void setDelegate(BonjourModuleViewDelegate* delegate) = 0;

    // The sheet is modal for its window. openSheet returns at once.
    virtual void openSheet() = 0;
    virtual void closeSheet() = 0;
    virtual bool isSheetVisible() const = 0;

    virtual CFStringRef addressField() const = 0; // never null
    virtual void setAddressField(const CFStringRef& text) = 0;
    virtual void focusAddressField() = 0; // and selects its text

    // Replaces the rows and selects the row `selected`, or none.
    virtual void setRows(std::span<const ControllerRow> rows, std::optional<std::size_t> selected) = 0;
    virtual std::optional<std::size_t> selectedRow() const = 0;
    virtual void setIndicatorImage(ControllerColumn column, SortIndicator indicator) = 0;
    // Shows and animates the progress indicator, or hides it.
    virtual void setProgress(bool running) = 0;
    // Shows a line below the table: the reason why the list is empty or incomplete; "" for none.
    virtual void setStatus(const CFStringRef& text) = 0;

    // The check boxes of the sheet and of the pane show the same state.
    virtual bool bidiState() const = 0;
    virtual void setBidiState(bool on) = 0;
    virtual void setBidiCheckBoxEnabled(bool enabled) = 0; // for the pane's check box
    virtual void setConfigureButtonEnabled(bool enabled) = 0;
};

} // namespace torka
