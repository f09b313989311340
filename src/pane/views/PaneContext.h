// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/editing/PaneEditor.h"
#include "pane/presentation/GaugeTexts.h"
#include "pane/presentation/PaneTexts.h"
#include "pane/views/PlainTexts.h"

#include <QString>

#include <functional>
#include <optional>

namespace torka {

class CustomizePaneController;
class PDEData;
class TorkaFeaturesPDE;

// The objects that the widgets of the pane work on. The interface owns it. All widgets and dialogs that refer
// to it end before it.
struct PaneContext {
    PaneEditor& editor;
    CustomizePaneController& controller;
    PDEData* data = nullptr;           // may be null in tests
    TorkaFeaturesPDE* panel = nullptr; // may be null in tests
    PaneTexts texts;
    std::optional<GaugeSource> gauges = std::nullopt; // none for a pane without a queue
    std::function<bool()> beganWithLastJob{};         // may be empty in tests
    std::function<void()> useDefaults{};              // one step; may be empty in tests

    // A word with the names put in its places. A name may hold any text, also "%1".
    template <class... Names>
    QString Say(const PaneWord& word, const Names&... names) const {
        return qText(texts.Say(word, names.toStdString()...));
    }
};

} // namespace torka
