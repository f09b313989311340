// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/editing/PaneEditor.h"
#include "pane/presentation/PaneTexts.h"
#include "tests/pane/PaneFixture.h"

#include <iomanip>
#include <sstream>

namespace torka::tests {

// A pane that speaks English, without widgets.
struct SpokenPane {
    explicit SpokenPane(const std::string& description)
        : pane(std::make_unique<Pane>(description)) {}
    // The sample's pane.
    SpokenPane()
        : pane(new Pane(Pane::OfFile(TORKA_SOURCE_DIR "/samples/torka-production.ppd"))) {}

    PPDXControl& Control(const char* keyword) { return *editor.FindControl(keyword); }
    const PaneField& Field(const char* keyword) { return *editor.Catalog().Find(keyword); }

    ScopedMemorySystem system;
    std::unique_ptr<Pane> pane;
    PaneEditor editor{*pane->model, pane->data.get()};
    PaneTexts texts{editor,
                    {[](const PaneWord& word) { return std::string(word.english); },
                     [](double number, int decimals) {
                         std::ostringstream text;
                         text << std::fixed << std::setprecision(decimals) << number;
                         return text.str();
                     },
                     true}};
};

} // namespace torka::tests
