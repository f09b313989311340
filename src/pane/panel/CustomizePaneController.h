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

// Draws the pane's controls through a view, and keeps a job note's text within what the note's declaration
// allows while a person types.
//
// The panel model owns it; it refers to the description and to the view. Without a view nothing is drawn.
// Characters are UTF-16 units.
class CustomizePaneController {
public:
    // `ppd` may be null: no text then belongs to a note.
    explicit CustomizePaneController(ZANPPD* ppd)
        : model(ppd) {}
    CustomizePaneController(const CustomizePaneController&) = delete;
    CustomizePaneController& operator=(const CustomizePaneController&) = delete;

    // Null once the view goes.
    void setView(CustomizePaneView* newView) { view = newView; }
    CustomizePaneView* View() const { return view; }
    void drawControlsInTree(const PPDTree& tree);
    void greyoutShortcutControls(bool grey);

    static bool IsAlpha(UniChar character);
    static bool IsDigit(UniChar character);
    // Whether the character may stand in the note's text.
    static bool IsValidKey(const PPDXJobNote& note, UniChar character);
    // True when the text is longer than the note allows; the note is found by its exact keyword, and an
    // unknown one allows every text. Takes up what isNumericText goes by.
    bool LimitTextLengthOfJobNoteControl(std::string_view keyword, const CFStringRef& text);
    // Index of the last character that the numeric note asked about last does not accept, or -1.
    std::int64_t isNumericText(const CFStringRef& text) const;

    // The tag of a note's field: the same for the same keyword, never 0.
    std::uint32_t TagOfJobNote(std::string_view keyword);
    // A field's text was changed by typing. Stores what it may hold in the note and returns it: the field
    // must then show that text.
    CFStringRef controlTextDidChange(std::uint32_t tag, const CFStringRef& text);

    std::uint32_t CurrentJobNoteControlTag() const { return currentJobNoteControlTag; }
    std::uint32_t JobNoteClipValue() const { return jobNoteClipValue; }

    // Forgets the selected server preset, which the settings no longer match. Does nothing until set.
    void SetServerPresetReset(std::function<void()> forget) { forgetServerPreset = std::move(forget); }
    void resetJPServerpresetKeys() const;

private:
    PPDXJobNote* FindNote(std::string_view keyword) const;
    bool isLanguageEncodingNonISOLatin() const;

    ZANPPD* model;
    CustomizePaneView* view = nullptr;
    std::uint32_t currentJobNoteControlTag = 0; // of the field whose text was accepted last
    std::uint32_t jobNoteClipValue = 0;         // the longest length when the last text was too long, else 0
    std::uint8_t isNumericVal = 0;              // of the note asked about last: digits without letters,
    std::uint8_t isComma = 0;                   // commas and
    std::uint8_t isHypen = 0;                   // hyphens allowed
    CFStringRef JobNoteString;                  // the text accepted last

    std::unordered_map<std::string, std::uint32_t> tags;
    std::vector<std::string> keywords; // tag - 1 is the index
    std::function<void()> forgetServerPreset;
};

} // namespace torka
