// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/presentation/PaneTexts.h"
#include "platform/CoreFoundation.h"

#include <cstdint>
#include <string>
#include <vector>

// The rules that the flags of a job note give its text, in words.

namespace torka {

class CustomizePaneController;
class PPDXControl;
class PPDXJobNote;

// The characters that a job note admits, and the rules of its finished text. "" for other controls and for
// on/off switches.
std::string noteRules(const PaneTexts& texts, const PPDXControl& control);

// The rules that a text breaks: "“Account” must have exactly 6 characters."; "" for none.
std::string brokenRules(const PaneTexts& texts, const PPDXJobNote& note, const CFStringRef& text);

// The counter behind a note's field. Lengths are in UTF-16 units. A locked field breaks no rule.
struct NoteCounter {
    std::string shown;  // "3 / 6", or "required"
    std::string spoken; // "3 of 6 characters"
    std::string broken; // the rules that the text breaks; "" for none
};
NoteCounter noteCounter(const PaneTexts& texts, const PPDXJobNote& note, const CFStringRef& text,
                        bool isLocked = false);

// What became of a typed text.
struct TypedNote {
    CFStringRef shown;   // what the note holds now; the field must show it
    std::string refusal; // what is not allowed, and what is; "" for a text that was taken whole
};
// Gives the note the typed text without the characters that the encoding of narrow text lacks: with one of
// them the note would leave empty. `isChecked`: the note's flags limit characters and length. Characters of
// secret notes are not named.
TypedNote takeTypedText(const PaneTexts& texts, CustomizePaneController& controller, std::uint32_t tag,
                        PPDXJobNote& note, const CFStringRef& typed, bool isChecked = true);

// A field whose present text breaks rules.
struct BrokenNote {
    std::string keyword;
    std::string sentence;
};
// All such fields of the pages, in their order. Locked fields are left out. Notes that the popup dialog asks
// for are left out, because that dialog names their rules.
std::vector<BrokenNote> brokenNotes(const PaneTexts& texts);

} // namespace torka
