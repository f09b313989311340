#pragma once

#include "platform/CoreFoundation.h"

#include <string>
#include <string_view>

namespace torka {

class PPDXControl;
class PPDXJobNote;

// A control's value as the text that the Job Properties module gets and gives back, in UTF-8 and the C locale
// (docs/job-properties-module.md). A text that comes back as it went out changes nothing.

// Of a popup the selected choice, of one that takes several all selected ones, joined by commas; "True" or
// "False"; a whole number; a decimal number that reads back as the same float; a note's text; "WIDTH HEIGHT"
// of a custom size, in points. "" for none.
std::string controlValueText(const PPDXControl& control);

// Sets what a text says. False, with nothing changed, for a text that is no value of that kind of control: a
// choice that is not offered (the colour popups take any, for the controller may add to them at any time), a
// number that is none, a control that nobody may set. Numbers and sizes are held to their bounds, notes to
// their length.
bool setControlValueText(PPDXControl& control, const std::string& text);

// A text as far as the note's declaration has room for it.
CFStringRef cutToNote(const PPDXJobNote& note, const std::string& text);

// Whether a value that came back is the one that is there now, as it was or as the way through the exchange
// record leaves it: cut to its field, "EFBBBF" at its start read as a byte-order mark.
bool isUnchanged(std::string_view returned, std::string_view now);
// What the record leaves of a key.
std::string keyThroughRecord(std::string_view key);

} // namespace torka
