// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"

#include "PPDX/PPDObjects/StoredRecord.h"
#include "platform/TextEncoding.h"

#include <array>

namespace torka {

// Converts a note's bytes to text.
class JobNoteConverter {
public:
    // Uses the first encoding in which the bytes are valid. If none is, invalid bytes become U+FFFD.
    CFStringRef Convert(std::string_view bytes, std::initializer_list<CFStringEncoding> encodings) const {
        for (const CFStringEncoding encoding : encodings) {
            if (const auto units = decodeText(bytes, encoding)) {
                return CFStringCreateWithCharacters(*units);
            }
        }
        return cfString(bytes);
    }
};

namespace {

// Lives as long as a note uses it. Only for the host's main thread.
std::weak_ptr<JobNoteConverter> sharedConverter;

std::shared_ptr<JobNoteConverter> useConverter() {
    std::shared_ptr<JobNoteConverter> converter = sharedConverter.lock();
    if (!converter) {
        converter = std::make_shared<JobNoteConverter>();
        sharedConverter = converter;
    }
    return converter;
}

ControlDefinition noteDefinition(const char* keyword, CFStringRef name, UIConstraints* constraints,
                                 const unsigned char* psData, long psLength) {
    ControlDefinition definition;
    definition.keyword = keyword;
    definition.localName = std::move(name);
    definition.constraints = constraints;
    definition.psData = psData;
    definition.psLength = psLength;
    return definition;
}

std::string_view viewOf(const CString& text) {
    return text.Buffer() ? std::string_view(text.Buffer()) : std::string_view();
}

} // namespace

PPDXJobNote::PPDXJobNote(const char* noteKeyword, CFStringRef translation, UIConstraints* store,
                         const unsigned char* ps, long length, const CString* defaultText,
                         std::int64_t longest, std::uint32_t flagBits, std::int64_t shortest)
    : PPDXJobNote(noteDefinition(noteKeyword, std::move(translation), store, ps, length), defaultText,
                  longest, flagBits, shortest) {}

PPDXJobNote::PPDXJobNote(const ControlDefinition& definition, const CString* defaultText,
                         std::int64_t longest, std::uint32_t flagBits, std::int64_t shortest)
    : PPDXControl(CNTL_TYPE::jobNote, definition)
    , maxLength(longest)
    , minLength(shortest)
    , noteFlags(flagBits)
    , converter(useConverter()) {
    SetDefaultNotes(defaultText ? defaultText->Buffer() : nullptr);
    ResetToDefaultValue();
}

PPDXJobNote::PPDXJobNote(Settings& settings, int index, const CString* prefix)
    : PPDXControl(CNTL_TYPE::jobNote, settings, index, prefix)
    , converter(useConverter()) {
    const StoredRecord record(settings, prefix && prefix->Buffer() ? prefix->Buffer() : "Control", index);
    maxLength = record.Integer("maxLength");
    minLength = record.Integer("minLength");
    noteFlags = static_cast<std::uint32_t>(record.Integer("noteFlags") & 0xFFFFFFFF);
    const auto defaultText = record.Text("default");
    SetDefaultNotes(defaultText ? defaultText->c_str() : nullptr);
    ResetToDefaultValue();
    RestoreValue(record);
}

PPDXJobNote::~PPDXJobNote() = default;

void PPDXJobNote::Save(Settings& settings, const int& index) const {
    PPDXControl::Save(settings, index);
    StoredRecord record(settings, "Control", index);
    record.SetInteger("maxLength", maxLength);
    record.SetInteger("minLength", minLength);
    record.SetInteger("noteFlags", noteFlags);
    record.SetText("default", GetDefaultNotes());
    // Protected text is never written in plain.
    if (!IsPassword() && !IsEncrypt() && !IsAESEncrypt()) {
        record.SetText("value", notes.Buffer());
        record.SetInteger("valueIsUTF8", notesAreUTF8 ? 1 : 0);
    }
    record.SetInteger("on", notesOn);
}

void PPDXJobNote::ResetToDefaultValue() {
    notes = defaultNotes ? defaultNotes->Buffer() : nullptr;
    notesAreUTF8 = false;
}

long PPDXJobNote::PostScript(unsigned char* out) const { return PostScriptWith(GetNotes(), out); }

long PPDXJobNote::PostScriptWith(const char* text, unsigned char* out) const {
    if (PSLength() <= 0) {
        return 0;
    }
    std::string injected;
    const long length = Inject(Keyword(), PSData(), PSLength(), text, injected);
    return GeneratePSOutputData(out, bytesOf(injected), length, text, true);
}

void PPDXJobNote::Restore(Settings& settings, int index) {
    RestoreValue(StoredRecord(settings, "Control", index));
}

void PPDXJobNote::RestoreValue(const StoredRecord& record) {
    if (const auto text = record.Text("value")) {
        notes = text->c_str();
        notesAreUTF8 = record.Integer("valueIsUTF8") != 0;
    }
    notesOn = record.Integer("on", notesOn) != 0 ? 1 : 0;
}

CFStringRef PPDXJobNote::CopyCurrentControlValueString() const { return CopyNotes(); }

void PPDXJobNote::SetCurrentControlWithCFString(CFStringRef text) {
    if (text) {
        notes = text;
        notesAreUTF8 = false;
    }
}

const char* PPDXJobNote::GetNotes() const { return notes.Buffer() ? notes.Buffer() : ""; }

void PPDXJobNote::SetNotes(const char* text) {
    notes = text;
    notesAreUTF8 = false;
}

void PPDXJobNote::SetUTF8Notes(const CFStringRef& text) {
    notes = utf8Text(text).c_str();
    notesAreUTF8 = true;
}

CFStringRef PPDXJobNote::CopyNotes() const {
    if (notesAreUTF8) {
        return cfString(viewOf(notes));
    }
    // The UTF-8 level does not apply to a default text: it is in the description's encoding.
    return converter->Convert(viewOf(notes), {narrowTextEncoding(), GetApplicationTextEncoding()});
}

const char* PPDXJobNote::GetDefaultNotes() const { return defaultNotes ? defaultNotes->Buffer() : nullptr; }

void PPDXJobNote::SetDefaultNotes(const char* text) {
    defaultNotes = text ? std::make_unique<CString>(text) : nullptr;
    defaultNotesText =
        text ? converter->Convert(text, {CFStringGetSystemEncoding(), GetApplicationTextEncoding()})
             : nullptr;
}

bool PPDXJobNote::IsAnyText() const { return (noteFlags & limitingNoteFlags()) == 0; }

std::vector<BrokenNoteRule> PPDXJobNote::BrokenRules() const { return BrokenRules(CopyNotes()); }

std::vector<BrokenNoteRule> PPDXJobNote::BrokenRules(const CFStringRef& text) const {
    return brokenNoteRules({noteFlags, maxLength, minLength},
                           text ? std::u16string_view(text->units) : std::u16string_view());
}

long PPDXJobNote::ConverterUses() { return sharedConverter.use_count(); }

} // namespace torka
