// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/NoteCipher.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace torka {

class PPDXControl;
class PPDXJobNote;
class ZANPPD;

// Indexes, in the map of special keywords, of the notes that have a line of their own in the job.
inline constexpr short specialNoteUserName = 6;
inline constexpr short specialNotePassword = 7;

// Prepares one job note of a description for a job. Refers to the note and the description, owns neither.
// Shares the field keys; with null keys nothing can be enciphered.
class ZANJobNote {
public:
    ZANJobNote(PPDXJobNote* note, const ZANPPD* description, std::shared_ptr<const FieldKeys> keys);

    // Returns whether the note is in the map of special keywords. `index` gets its index there, else -1.
    bool specialKeyword(short& index) const;
    // Returns the beginning of a special note's line, "" for any other index.
    static std::string_view commentPrefix(short index);

    // Tells whether the description marks the note for enciphering.
    bool IsProtected() const;
    // Returns AES for a note that asks for it, DES otherwise. The description's "*UseSpecialAlgorithm"
    // overrides the notes: AES for "2", DES for any other value.
    NoteAlgorithm Algorithm() const;
    // Returns the value of the description's "*UseSpecialKey", "" when there is none.
    std::string_view SpecialKey() const;
    // Returns the same digits as a string, "" for false.
    std::string Encrypted(const char* text) const;

    // Converts the text to UTF-8 when the note is sent as UTF-8 and its text is in the application's encoding
    // (a level below 5, or Japanese popup job notes).
    void ConvertTextFromApplicationToUTF8();

    PPDXJobNote& Note() const { return *note; }

    // Given interface; no caller here
    // With an empty buffer, returns the size of the text with its terminator, 0 for an empty text. Otherwise
    // copies as much of the text as fits, with a terminator, and returns the same size.
    long getUserData(std::span<char> buffer = {}) const;
    // Does the same for the displayed name, in UTF-8.
    long getTitle(std::span<char> buffer = {}) const;
    // Copies as much of the keyword as fits, with a terminator.
    void getKeyword(std::span<char> buffer) const;
    // Tells whether the text is valid for a note of two-character fields, by isTwoCharacterRanges. Any text
    // is valid for every other note.
    bool checkRangeValues(std::string_view text) const;
    // Writes the cipher text's digits into `out256`, which is zeroed first and not terminated when full.
    // Returns false, with zeros, when no description is loaded or there are no field keys.
    bool encryptNote(long reserved, const char* text, std::span<char, noteHexSize> out256) const;

private:
    PPDXJobNote* note;
    const ZANPPD* description;
    std::shared_ptr<const FieldKeys> keys;
};

// Tells whether the control's content may leave the process only enciphered: a note marked for protection,
// the user's sign-in password, and the sign-in name where it is packed with the password.
bool leavesEncipheredOnly(const ZANPPD& description, const PPDXControl* control);
// Tells whether a note's text is never shown and never stored: a password, or a note marked for protection. A
// note whose keyword contains "Password" is a password even when the description does not flag it.
bool isMaskedNote(const PPDXControl* control);
// Tells whether the control's content is never stored in a file or sent with a job's options: true when
// either of the two functions above is.
bool isSecretNote(const ZANPPD& description, const PPDXControl* control);

} // namespace torka
