// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/JobNoteFlags.h"
#include "PPDX/PPDObjects/Controls/PPDXControl.h"

namespace torka {

class JobNoteConverter;
class StoredRecord;

// A free-text field of the job. Its text is bytes in the encoding that CString::operator=(CFStringRef)
// selects, or UTF-8 after SetUTF8Notes. Lengths are as declared. This class does not enforce them;
// BrokenRules checks them.
class PPDXJobNote final : public PPDXControl {
public:
    // Does the same with control flags and visibility from the definition.
    PPDXJobNote(const ControlDefinition& definition, const CString* defaultNotes, std::int64_t maxLength,
                std::uint32_t flags, std::int64_t minLength);
    ~PPDXJobNote() override;

    // Omits the text of a note marked for masking or enciphering: it must not be stored in plain.
    void Save(Settings& settings, const int& index) const override;
    // Replaces the current text by a copy of the default text.
    void ResetToDefaultValue() override;
    // Writes 0 bytes without PostScript, else a feature block whose option is the current text. Line breaks
    // become blanks.
    long PostScript(unsigned char* out) const override;
    // Does the same with `text` in place of the current text.
    long PostScriptWith(const char* text, unsigned char* out) const;
    void Restore(Settings& settings, int index) override;
    CFStringRef CopyCurrentControlValueString() const override;
    std::string DefaultText() const override { return utf8Text(CFDefaultNotes()); }
    void SetCurrentControlWithCFString(CFStringRef text) override;

    // Returns the bytes of the current text; "" when unset.
    const char* GetNotes() const;
    void SetNotes(const char* text);
    void SetUTF8Notes(const CFStringRef& text);
    // Tells whether the text was set by SetUTF8Notes.
    bool NotesAreUTF8() const { return notesAreUTF8; }
    CFStringRef CopyNotes() const;
    // Returns null when the note has no default text.
    const char* GetDefaultNotes() const;
    const CFStringRef& CFDefaultNotes() const { return defaultNotesText; }
    void SetDefaultNotes(const char* text);

    std::int64_t MaxLength() const { return maxLength; }
    std::int64_t MinLength() const { return minLength; }
    void SetNotesOnValue(bool on) { notesOn = on ? 1 : 0; }
    bool GetNotesOnValue() const { return notesOn != 0; }

    std::uint32_t NoteFlags() const { return noteFlags; }
    bool IsAlpha() const { return Has(jobNoteAlpha); }
    bool IsNumeric() const { return Has(jobNoteNumeric); }
    bool Remember() const { return Has(jobNoteRemembered); }
    bool IsPassword() const { return Has(jobNotePassword); }
    bool IsOnOffSwitch() const { return Has(jobNoteOnOffSwitch); }
    bool IsLengthReq() const { return Has(jobNoteLengthReq); }
    bool IsEncrypt() const { return Has(jobNoteEncrypt); }
    bool IsMultiComma() const { return Has(jobNoteMultiComma); }
    bool IsHyphen() const { return Has(jobNoteHyphen); }
    bool IsUTF8() const { return Has(jobNoteUTF8); }
    bool IsAESEncrypt() const { return Has(jobNoteAESEncrypt); }
    bool IsPopupJN() const { return Has(jobNotePopupJN); }

    // Return the rules that the current text, or the given one, breaks.
    std::vector<BrokenNoteRule> BrokenRules() const;
    std::vector<BrokenNoteRule> BrokenRules(const CFStringRef& text) const;

    // Given interface; no caller here
    bool IsRequired() const { return Has(jobNoteRequired); }
    // Makes a visible note without control flags. Copies `defaultNotes`, which may be null.
    PPDXJobNote(const char* keyword, CFStringRef translation, UIConstraints* constraints,
                const unsigned char* psData, long psLength, const CString* defaultNotes,
                std::int64_t maxLength, std::uint32_t flags, std::int64_t minLength);
    PPDXJobNote(Settings& settings, int index, const CString* prefix);
    bool IsDecimal() const { return Has(jobNoteDecimal); }
    bool AlwaysDisplay() const { return Has(jobNoteAlwaysDisplay); }
    bool Resume() const { return Has(jobNoteResume); }
    bool IsMember() const { return Has(jobNoteMember); }
    bool IsSecPrint() const { return Has(jobNoteSecPrint); }
    bool IsSpace() const { return Has(jobNoteSpace); }
    bool IsNegative() const { return Has(jobNoteNegative); }
    bool IsMultiSpace() const { return Has(jobNoteMultiSpace); }
    bool IsLCD() const { return Has(jobNoteLCD); }
    bool IsTwoCharFields() const { return Has(jobNoteTwoCharField); }
    bool IsNoComma() const { return Has(jobNoteNoComma); }
    // Returns true when no flag limits the characters.
    bool IsAnyText() const;

    // For the tests; no caller here
    // Returns the number of job notes that share the process's converter.
    static long ConverterUses();

private:
    bool Has(JobNoteFlag flag) const { return (noteFlags & flag) != 0; }
    void RestoreValue(const StoredRecord& record);

    std::int64_t maxLength;
    std::int64_t minLength;
    std::uint32_t noteFlags;
    std::unique_ptr<CString> defaultNotes;
    CFStringRef defaultNotesText; // in the system encoding
    CString notes;
    std::int32_t notesOn = 0;
    std::shared_ptr<JobNoteConverter> converter; // shared by all notes of the process

    bool notesAreUTF8 = false; // set through SetUTF8Notes
};

} // namespace torka
