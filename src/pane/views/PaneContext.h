#pragma once

#include "pane/editing/PaneEditor.h"
#include "pane/views/PaneWords.h"

#include <QString>

#include <string_view>

namespace torka {

class CustomizePaneController;
class PDEData;
class TorkaFeaturesPDE;

// Two-way communication with the controller, as the sign shows it.
enum class TwoWayState { off, on, failed };

// What the pane's widgets work on. Owned by the interface; widgets and dialogs keep references to it, all of
// them destroyed before it.
struct PaneContext {
    PaneEditor& editor;
    CustomizePaneController& controller;
    PDEData* data = nullptr;           // null in tests without one
    TorkaFeaturesPDE* panel = nullptr; // likewise
    PaneText text;
    bool metric = true; // of the person's country

    // A word with names in its places. The names may hold anything, "%1" too.
    QString Say(const PaneWord& word) const { return text(word); }
    template <class... Names>
    QString Say(const PaneWord& word, const Names&... names) const {
        return text(word).arg(names...);
    }
};

inline QString qText(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

} // namespace torka
