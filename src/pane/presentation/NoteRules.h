#pragma once

#include "pane/presentation/PaneTexts.h"

#include <cstdint>
#include <string>

namespace torka {

class PPDXControl;
class PPDXJobNote;

// What a job note's text may hold and how long it may be; "" for other controls.
std::string noteRules(const PaneTexts& texts, const PPDXControl& control);

// The counter behind a note's field, for a text of that length in UTF-16 units. A locked field is never
// wrong.
struct NoteCounter {
    std::string shown;    // "3 / 6", or "required"
    std::string spoken;   // "3 of 6 characters"
    bool isWrong = false; // the text cannot go with a job
};
NoteCounter noteCounter(const PaneTexts& texts, const PPDXJobNote& note, std::int64_t length,
                        bool isLocked = false);

// Why a text of that length cannot go with a job; "" when it can.
std::string whyNoteCannotGo(const PaneTexts& texts, const PPDXJobNote& note, std::int64_t length);

} // namespace torka
