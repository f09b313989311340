#pragma once

#include "pane/presentation/PaneTexts.h"
#include "platform/CoreFoundation.h"

#include <string>
#include <vector>

// What the flags of a job note ask of its text, in a person's words.

namespace torka {

class PPDXControl;
class PPDXJobNote;

// Which characters a job note admits, and the rules of its finished text; "" for other controls and for
// on/off switches.
std::string noteRules(const PaneTexts& texts, const PPDXControl& control);

// The rules that a finished text breaks: "“Account” must have exactly 6 characters."; "" when it breaks none.
std::string brokenRules(const PaneTexts& texts, const PPDXJobNote& note, const CFStringRef& text);

// The counter behind a note's field. Lengths are in UTF-16 units. A locked field breaks no rule.
struct NoteCounter {
    std::string shown;  // "3 / 6", or "required"
    std::string spoken; // "3 of 6 characters"
    std::string broken; // the rules that the text breaks; "" for none
};
NoteCounter noteCounter(const PaneTexts& texts, const PPDXJobNote& note, const CFStringRef& text,
                        bool isLocked = false);

// A field whose present text breaks rules.
struct BrokenNote {
    std::string keyword;
    std::string sentence;
};
// The fields of the pages that a person can change, in the order of the pages. Notes that the popup dialog
// asks for are not among them: that dialog names their rules itself.
std::vector<BrokenNote> brokenNotes(const PaneTexts& texts);

} // namespace torka
