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

// The notes that have a line of their own in the job, by their place in the map of special keywords.
inline constexpr short specialNoteUserName = 6;
inline constexpr short specialNotePassword = 7;

// One job note of a description on its way into a job. Refers to the note and the description, owns neither;
// shares the field keys (null: there are none, and nothing can be enciphered).
class ZANJobNote {
public:
    ZANJobNote(PPDXJobNote* note, const ZANPPD* description, std::shared_ptr<const FieldKeys> keys);

    // The note's place in the map of special keywords, -1 when it is not there; whether it is.
    bool specialKeyword(short& index) const;
    // What the line of a special note begins with. Empty for any other index.
    static std::string_view commentPrefix(short index);

    // With an empty buffer the length of the text and its terminator, 0 for an empty text. Otherwise copies
    // the text as far as it fits, with a terminator, and gives the same count.
    long getUserData(std::span<char> buffer = {}) const;
    // The name shown to people, as UTF-8; otherwise as getUserData.
    long getTitle(std::span<char> buffer = {}) const;
    // Copies the keyword as far as it fits, with a terminator.
    void getKeyword(std::span<char> buffer) const;

    // Whether the text will do for a note of two-character fields, as isTwoCharacterRanges says. For every
    // other note it will.
    bool checkRangeValues(std::string_view text) const;

    // Whether the description marks the note for enciphering.
    bool IsProtected() const;
    // AES for a note that asks for it, DES otherwise; the description's "*UseSpecialAlgorithm" overrides the
    // notes: AES for "2", DES for any other value.
    NoteAlgorithm Algorithm() const;
    // The value of the description's "*UseSpecialKey", "" when there is none.
    std::string_view SpecialKey() const;
    // Writes the cipher text's digits into `out256`, zeroed first and not terminated when full. False, with
    // zeros, when no description is loaded or there are no field keys.
    bool encryptNote(long reserved, const char* text, std::span<char, noteHexSize> out256) const;
    // The same as a string, "" for false.
    std::string Encrypted(const char* text) const;

    // A note whose text is sent as UTF-8 holds it as UTF-8 from here on, when it was kept in the
    // application's encoding (a level below 5, or Japanese popup job notes).
    void ConvertTextFromApplicationToUTF8();

    PPDXJobNote& Note() const { return *note; }

private:
    PPDXJobNote* note;
    const ZANPPD* description;
    std::shared_ptr<const FieldKeys> keys;
};

// Whether what the control holds may leave the process enciphered only: a note marked for protection, the
// user's sign-in password, and the sign-in name where it is packed with the password.
bool leavesEncipheredOnly(const ZANPPD& description, const PPDXControl* control);
// A note whose text is never shown, and kept nowhere: a password, or one marked for protection. A note that
// is called a password is one, even where its description does not flag it.
bool isMaskedNote(const PPDXControl* control);
// What is never kept in a file or sent with a job's options: a control of either kind.
bool isSecretNote(const ZANPPD& description, const PPDXControl* control);

} // namespace torka
