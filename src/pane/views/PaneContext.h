#pragma once

#include "pane/editing/PaneEditor.h"
#include "pane/presentation/GaugeTexts.h"
#include "pane/presentation/PaneTexts.h"
#include "pane/views/PlainTexts.h"

#include <QString>

#include <optional>

namespace torka {

class CustomizePaneController;
class PDEData;
class TorkaFeaturesPDE;

// What the pane's widgets work on. Owned by the interface; widgets and dialogs keep references to it, all of
// them destroyed before it.
struct PaneContext {
    PaneEditor& editor;
    CustomizePaneController& controller;
    PDEData* data = nullptr;           // null in tests without one
    TorkaFeaturesPDE* panel = nullptr; // likewise
    PaneTexts texts;
    std::optional<GaugeSource> gauges = std::nullopt; // none for a pane without a queue

    // A word with names in its places. The names may hold anything, "%1" too.
    template <class... Names>
    QString Say(const PaneWord& word, const Names&... names) const {
        return qText(texts.Say(word, names.toStdString()...));
    }
};

} // namespace torka
