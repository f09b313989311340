// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <string>
#include <string_view>

namespace torka {

class PPDXControl;
class PPDXJobNote;

// A control's value as the text that the Job Properties module gets and returns, in UTF-8 and the C locale
// (docs/job-properties-module.md). A text that returns as it was sent changes nothing.

// "" for none. The text depends on the kind of control:
// - popup: the selected choice, or all selected choices joined by commas;
// - check box: "True" or "False";
// - range: a whole number, or a decimal number that reads back as the same float;
// - note: its text;
// - custom size: "WIDTH HEIGHT" in points.
std::string controlValueText(const PPDXControl& control);
// The text of a decimal number: the model's three decimals when they read back as the same float, else the
// shortest text without exponent that does.
std::string floatText(float value);

// Sets the value that a text names. Returns false and changes nothing when the text is no value of that kind
// of control: a choice that is not offered, no number, or a control that nobody may set. The colour popups
// take any choice, because the controller may add choices at any time. Numbers and sizes are held to their
// bounds, notes to their length.
bool setControlValueText(PPDXControl& control, const std::string& text);

// The part of a text that fits the note's maximum length.
CFStringRef cutToNote(const PPDXJobNote& note, const std::string& text);

// Whether a returned value is the present one. It may have changed on its way through the exchange record:
// the record cuts it to the size of its field and reads "EFBBBF" at its start as a byte-order mark.
bool isUnchanged(std::string_view returned, std::string_view now);
// The key as the record keeps it.
std::string keyThroughRecord(std::string_view key);

} // namespace torka
