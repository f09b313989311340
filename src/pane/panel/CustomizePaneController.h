// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/data/PPDTree.h"
#include "platform/CoreFoundation.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace torka {

class CustomizePaneView;
class PPDXJobNote;
class ZANPPD;

// Draws the controls of the pane through a view. While a person types into a job note, it keeps the text
// within what the declaration of the note allows.
//
// The panel model owns it. It refers to the description and to the view; without a view it draws nothing.
// Characters are UTF-16 units.
class CustomizePaneController {
public:
    // `ppd` may be null; then no note is found.
    explicit CustomizePaneController(ZANPPD* ppd)
        : model(ppd) {}
    CustomizePaneController(const CustomizePaneController&) = delete;
    CustomizePaneController& operator=(const CustomizePaneController&) = delete;

    // Set to null before the view ends.
    void setView(CustomizePaneView* newView) { view = newView; }
    void drawControlsInTree(const PPDTree& tree);
    void greyoutShortcutControls(bool grey);

    static bool IsDigit(UniChar character);
    // Whether the character is allowed in the text of the note.
    static bool IsValidKey(const PPDXJobNote& note, UniChar character);
    // True when the text is longer than the note allows. The note is found by its exact keyword; an unknown
    // keyword allows every text. Also sets the state that isNumericText reads.
    bool LimitTextLengthOfJobNoteControl(std::string_view keyword, const CFStringRef& text);

    // The tag of the field of a note. The same keyword always gives the same tag, never 0.
    std::uint32_t TagOfJobNote(std::string_view keyword);
    // Called after each change by typing. Stores the accepted text in the note and returns it; the field must
    // then show that text.
    CFStringRef controlTextDidChange(std::uint32_t tag, const CFStringRef& text);

    // Forgets the selected server preset, because the settings no longer match it. Does nothing until set.
    void SetServerPresetReset(std::function<void()> forget) { forgetServerPreset = std::move(forget); }
    void resetJPServerpresetKeys() const;

    // Given interface; no caller here
    static bool IsAlpha(UniChar character);
    // The index of the last character that the note of the last LimitTextLengthOfJobNoteControl does not
    // accept when it is numeric, or -1.
    std::int64_t isNumericText(const CFStringRef& text) const;

    // For the tests; no caller here
    std::uint32_t CurrentJobNoteControlTag() const { return currentJobNoteControlTag; }
    std::uint32_t JobNoteClipValue() const { return jobNoteClipValue; }

private:
    PPDXJobNote* FindNote(std::string_view keyword) const;
    bool isLanguageEncodingNonISOLatin() const;

    ZANPPD* model;
    CustomizePaneView* view = nullptr;
    std::uint32_t currentJobNoteControlTag = 0; // the field whose text was accepted last
    std::uint32_t jobNoteClipValue = 0;         // the maximum length when the last text was too long, else 0
    std::uint8_t isNumericVal = 0;              // 1: the last note is numeric without letters
    std::uint8_t isComma = 0;                   // 1: and it allows commas
    std::uint8_t isHypen = 0;                   // 1: and it allows hyphens
    CFStringRef JobNoteString;                  // the text accepted last

    std::unordered_map<std::string, std::uint32_t> tags;
    std::vector<std::string> keywords; // tag - 1 is the index
    std::function<void()> forgetServerPreset;
};

} // namespace torka
