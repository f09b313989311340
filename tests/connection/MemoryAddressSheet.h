// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection/BonjourModuleView.h"

#include <string>
#include <utility>
#include <vector>

namespace torka::tests {

// The address sheet without widgets. It keeps the values set; a test plays the person.
class MemoryAddressSheet final : public BonjourModuleView {
public:
    void setDelegate(BonjourModuleViewDelegate* newDelegate) override { delegate = newDelegate; }
    void openSheet() override { isOpen = true; }
    void closeSheet() override { isOpen = false; }
    bool isSheetVisible() const override { return isOpen; }
    CFStringRef addressField() const override { return cfString(field); }
    void setAddressField(const CFStringRef& text) override { field = utf8Text(text); }
    void focusAddressField() override { ++focused; }
    void setRows(std::span<const ControllerRow> newRows, std::optional<std::size_t> newSelection) override {
        rows.clear();
        for (const ControllerRow& row : newRows) {
            rows.emplace_back(utf8Text(row.name), utf8Text(row.addresses));
        }
        selected = newSelection;
        ++reloads;
    }
    std::optional<std::size_t> selectedRow() const override { return selected; }
    void setIndicatorImage(ControllerColumn, SortIndicator) override {}
    void setProgress(bool running) override { progress = running; }
    void setStatus(const CFStringRef& text) override { status = utf8Text(text); }
    bool bidiState() const override { return bidi; }
    void setBidiState(bool on) override { bidi = on; }
    void setBidiCheckBoxEnabled(bool enabled) override { bidiEnabled = enabled; }
    void setConfigureButtonEnabled(bool enabled) override { configureEnabled = enabled; }

    void ClickBidi(bool on) {
        bidi = on;
        delegate->BIDICheckBoxClicked();
    }
    void SelectRow(std::size_t row) {
        selected = row;
        delegate->UpOrDownArrowKeySelection();
    }

    BonjourModuleViewDelegate* delegate = nullptr;
    bool isOpen = false;
    std::string field;
    int focused = 0;
    std::vector<std::pair<std::string, std::string>> rows;
    std::optional<std::size_t> selected;
    int reloads = 0;
    bool progress = false;
    std::string status;
    bool bidi = false;
    bool bidiEnabled = false;
    bool configureEnabled = false;
};

} // namespace torka::tests
