#pragma once

#include "pane/views/PaneWords.h"

#include <array>

// The texts of the popup job-note dialog and of the gauges; like those of PaneWords.h.

namespace torka::words {

inline constexpr PaneWord gaugeAttention{"GAUGE_ATTENTION", "%1, needs attention"};
inline constexpr PaneWord gaugeLevel{"GAUGE_LEVEL", "%1: %2 %"};
inline constexpr PaneWord gaugeSome{"GAUGE_SOME", "%1: not empty"};
inline constexpr PaneWord gaugeUnknown{"GAUGE_UNKNOWN", "%1: level not known"};
inline constexpr PaneWord gauges{"GAUGES", "Trays and supplies"};
inline constexpr PaneWord gaugesFailed{"GAUGES_FAILED", "Trays and supplies could not be read."};
inline constexpr PaneWord gaugesReadAgain{"GAUGES_READ_AGAIN", "Read trays and supplies again"};
inline constexpr PaneWord popupAsk{"POPUP_ASK", "&Ask before every job"};
inline constexpr PaneWord popupAskHint{
    "POPUP_ASK_HINT",
    "When off, you are asked only if something is missing. The Defaults button switches it on again."};
inline constexpr PaneWord popupCancel{"POPUP_CANCEL", "Cancel"};
inline constexpr PaneWord popupIntroduction{"POPUP_INTRODUCTION",
                                            "This printer asks for the following with each job."};
inline constexpr PaneWord popupLast{"POPUP_LAST", "Begin with the &last values"};
inline constexpr PaneWord popupLastHint{"POPUP_LAST_HINT",
                                        "The values are kept in the printer’s queue. Passwords and protected "
                                        "fields never are."};
inline constexpr PaneWord popupMissing{"POPUP_MISSING", "“%1” must be filled in."};
inline constexpr PaneWord popupPrint{"POPUP_PRINT", "&Print"};
inline constexpr PaneWord popupTitle{"POPUP_TITLE", "Job Information"};
inline constexpr PaneWord popupWrong{"POPUP_WRONG", "“%1” has the wrong length. %2"};

} // namespace torka::words

namespace torka {

// Every word above, for checking the tables.
inline constexpr std::array liveWords{
    words::gaugeAttention, words::gaugeLevel,   words::gaugeSome,         words::gaugeUnknown,
    words::gauges,         words::gaugesFailed, words::gaugesReadAgain,   words::popupAsk,
    words::popupAskHint,   words::popupCancel,  words::popupIntroduction, words::popupLast,
    words::popupLastHint,  words::popupMissing, words::popupPrint,        words::popupTitle,
    words::popupWrong};

} // namespace torka
