#pragma once

#include "PPDX/PPDObjects/Controls/JobNoteFlags.h"
#include "PPDX/PPDObjects/Controls/PPDXControl.h"

namespace torka {

class JobNoteConverter;
class StoredRecord;

// A free-text field of the job. The text is kept as bytes in the encoding that
// CString::operator=(CFStringRef) chooses, or in UTF-8 when it came through SetUTF8Notes. Lengths are as
// declared; nothing here holds a text to them: BrokenRules tells.
class PPDXJobNote final : public PPDXControl {
public:
    // A job note is visible and has no control flags. `defaultNotes` may be null and is copied.
    PPDXJobNote(const char* keyword, CFStringRef translation, UIConstraints* constraints,
                const unsigned char* psData, long psLength, const CString* defaultNotes,
                std::int64_t maxLength, std::uint32_t flags, std::int64_t minLength);
    // As above, with control flags and visibility from the definition.
    PPDXJobNote(const ControlDefinition& definition, const CString* defaultNotes, std::int64_t maxLength,
                std::uint32_t flags, std::int64_t minLength);
    PPDXJobNote(Settings& settings, int index, const CString* prefix);
    ~PPDXJobNote() override;

    // Without the text of a note marked for masking or enciphering: it is not to lie about in plain.
    void Save(Settings& settings, const int& index) const override;
    // The current text becomes a copy of the default text.
    void ResetToDefaultValue() override;
    // 0 bytes without PostScript; otherwise a feature block whose option is the current text, line breaks as
    // blanks.
    long PostScript(unsigned char* out) override;
    // As PostScript, with another text in the place of the current one.
    long PostScriptWith(const char* text, unsigned char* out) const;
    void Restore(Settings& settings, int index) override;
    CFStringRef CopyCurrentControlValueString() override;
    void SetCurrentControlWithCFString(CFStringRef text) override;

    // The current text's bytes; "" when unset.
    const char* GetNotes() const;
    void SetNotes(const char* text);
    void SetUTF8Notes(const CFStringRef& text);
    // Whether the text came through SetUTF8Notes.
    bool NotesAreUTF8() const { return notesAreUTF8; }
    CFStringRef CopyNotes() const;
    // Null when the note has no default text.
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
    bool IsDecimal() const { return Has(jobNoteDecimal); }
    bool IsRequired() const { return Has(jobNoteRequired); }
    bool Remember() const { return Has(jobNoteRemembered); }
    bool IsPassword() const { return Has(jobNotePassword); }
    bool AlwaysDisplay() const { return Has(jobNoteAlwaysDisplay); }
    bool Resume() const { return Has(jobNoteResume); }
    bool IsMember() const { return Has(jobNoteMember); }
    bool IsOnOffSwitch() const { return Has(jobNoteOnOffSwitch); }
    bool IsLengthReq() const { return Has(jobNoteLengthReq); }
    bool IsSecPrint() const { return Has(jobNoteSecPrint); }
    bool IsSpace() const { return Has(jobNoteSpace); }
    bool IsNegative() const { return Has(jobNoteNegative); }
    bool IsEncrypt() const { return Has(jobNoteEncrypt); }
    bool IsMultiSpace() const { return Has(jobNoteMultiSpace); }
    bool IsMultiComma() const { return Has(jobNoteMultiComma); }
    bool IsLCD() const { return Has(jobNoteLCD); }
    bool IsHyphen() const { return Has(jobNoteHyphen); }
    bool IsTwoCharFields() const { return Has(jobNoteTwoCharField); }
    bool IsNoComma() const { return Has(jobNoteNoComma); }
    bool IsUTF8() const { return Has(jobNoteUTF8); }
    bool IsAESEncrypt() const { return Has(jobNoteAESEncrypt); }
    bool IsPopupJN() const { return Has(jobNotePopupJN); }
    // None of the flags that limit the characters is set.
    bool IsAnyText() const;

    // The rules that the current text breaks, and those that another one would break.
    std::vector<BrokenNoteRule> BrokenRules() const;
    std::vector<BrokenNoteRule> BrokenRules(const CFStringRef& text) const;

    // How many job notes share the process's converter now.
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
    std::shared_ptr<JobNoteConverter> converter; // one for all notes of the process

    bool notesAreUTF8 = false; // set through SetUTF8Notes
};

} // namespace torka
