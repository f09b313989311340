#pragma once

namespace torka {

// Tests of keywords against the pane's fixed tables.

// One of the 14 expert colour controls, compared whole. False for null.
bool isExpertHueKeeperControl(const char* keyword);
// Contains one of the five colour keywords that the controller supplies choices for. False for null.
bool isSpecialHueKeeperControl(const char* keyword);
// One of the 96 entries of the controls that never appear on the basic panel, compared whole. False for null.
bool isHiddenFromBasicPanel(const char* keyword);
// Ends in "Bidi" and is longer than that. False for null.
bool isBidiKeyword(const char* keyword);

} // namespace torka
