// SPDX-License-Identifier: Apache-2.0
#include "output/ZANJobNote.h"

#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "PPDX/Utilities/ModelState.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace torka {

namespace {

struct SpecialNote {
    std::string_view keyword;
    std::string_view prefix;
};

constexpr SpecialNote specialNotes[] = {
    {"*Notes1", "%%ZANCustom1: "}, {"*Notes2", "%%ZANCustom2: "},      {"*Instruct", "%%ZANCustom3: "},
    {"*Notes3", "%%ZANCustom4: "}, {"*Resume", "%%PersPassword: "},    {"*DeptPassword", "%%DeptPassword: "},
    {"*QVUserAuthName", ""},       {"*QVUserAuthPwd", "%%ZANUATag: "}, {"*ZANPrintTime", "%%ZANPrintTime: "},
};
static_assert(specialNotes[specialNoteUserName].keyword == "*QVUserAuthName");
static_assert(specialNotes[specialNotePassword].keyword == "*QVUserAuthPwd");

constexpr int firstLevelWithUTF8Notes = 5;

long copyText(std::string_view text, std::span<char> buffer) {
    if (!buffer.empty()) {
        const std::size_t length = std::min(text.size(), buffer.size() - 1);
        std::copy_n(text.begin(), length, buffer.begin());
        buffer[length] = '\0';
    }
    return text.empty() ? 0 : static_cast<long>(text.size() + 1);
}

// Returns null without a description or the option.
const PPDXSpecialOption* specialOption(const ZANPPD* description, const char* keyword) {
    const PPDXControls* controls = description == nullptr ? nullptr : description->GetControls();
    return controls == nullptr ? nullptr : controls->FindSpecialOption(keyword, true);
}

} // namespace

ZANJobNote::ZANJobNote(PPDXJobNote* jobNote, const ZANPPD* ppd, std::shared_ptr<const FieldKeys> fieldKeys)
    : note(jobNote)
    , description(ppd)
    , keys(std::move(fieldKeys)) {}

bool ZANJobNote::specialKeyword(short& index) const {
    const char* keyword = note->Keyword();
    const auto* found =
        std::find_if(std::begin(specialNotes), std::end(specialNotes),
                     [keyword](const auto& row) { return keyword != nullptr && row.keyword == keyword; });
    const bool isSpecial = found != std::end(specialNotes);
    index = isSpecial ? static_cast<short>(found - std::begin(specialNotes)) : short{-1};
    return isSpecial;
}

std::string_view ZANJobNote::commentPrefix(short index) {
    return index >= 0 && static_cast<std::size_t>(index) < std::size(specialNotes)
               ? specialNotes[static_cast<std::size_t>(index)].prefix
               : std::string_view();
}

long ZANJobNote::getUserData(std::span<char> buffer) const { return copyText(note->GetNotes(), buffer); }

long ZANJobNote::getTitle(std::span<char> buffer) const {
    return copyText(utf8Text(note->CFStringUserName()), buffer);
}

void ZANJobNote::getKeyword(std::span<char> buffer) const {
    copyText(note->Keyword() == nullptr ? "" : note->Keyword(), buffer);
}

bool ZANJobNote::checkRangeValues(std::string_view text) const {
    // An item may hold only ASCII characters, so each byte can be checked as one character.
    return !note->IsTwoCharFields() || isTwoCharacterRanges(std::u16string(text.begin(), text.end()));
}

bool ZANJobNote::IsProtected() const { return note->IsEncrypt() || note->IsAESEncrypt(); }

NoteAlgorithm ZANJobNote::Algorithm() const {
    const PPDXSpecialOption* option = specialOption(description, "*UseSpecialAlgorithm");
    const bool isAes = option == nullptr ? note->IsAESEncrypt() : std::strcmp(option->GetValue(), "2") == 0;
    return isAes ? NoteAlgorithm::aes : NoteAlgorithm::des;
}

std::string_view ZANJobNote::SpecialKey() const {
    const PPDXSpecialOption* option = specialOption(description, "*UseSpecialKey");
    return option == nullptr ? std::string_view() : option->GetValue();
}

std::string ZANJobNote::Encrypted(const char* text) const {
    return description == nullptr || !keys || text == nullptr
               ? std::string()
               : encipherNote(*keys, SpecialKey(), Algorithm(), text);
}

bool ZANJobNote::encryptNote(long /*reserved*/, const char* text, std::span<char, noteHexSize> out256) const {
    std::fill(out256.begin(), out256.end(), '\0');
    const std::string hex = Encrypted(text);
    std::copy(hex.begin(), hex.end(), out256.begin());
    return !hex.empty();
}

void ZANJobNote::ConvertTextFromApplicationToUTF8() {
    if (!note->IsUTF8() || note->NotesAreUTF8() ||
        (gQVUTF8Version >= firstLevelWithUTF8Notes && !gPopupJobNotesLangIsJapanese)) {
        return;
    }
    if (const auto units = decodeTextLossy(note->GetNotes(), GetApplicationTextEncoding())) {
        note->SetUTF8Notes(CFStringCreateWithCharacters(*units));
    }
}

bool leavesEncipheredOnly(const ZANPPD& description, const PPDXControl* control) {
    const auto* note = dynamic_cast<const PPDXJobNote*>(control);
    if (note == nullptr || note->Keyword() == nullptr) {
        return false;
    }
    if (note->IsEncrypt() || note->IsAESEncrypt() ||
        *note == specialNotes[specialNotePassword].keyword.data()) {
        return true;
    }
    const PPDXSpecialOption* packs = specialOption(&description, "*CopierUserAuth");
    return packs != nullptr && std::strcmp(packs->GetValue(), "True") == 0 &&
           *note == specialNotes[specialNoteUserName].keyword.data();
}

bool isMaskedNote(const PPDXControl* control) {
    const auto* note = dynamic_cast<const PPDXJobNote*>(control);
    if (note == nullptr) {
        return false;
    }
    const std::string_view keyword = note->Keyword() != nullptr ? note->Keyword() : "";
    return note->IsPassword() || note->IsEncrypt() || note->IsAESEncrypt() ||
           keyword.find("Password") != std::string_view::npos ||
           keyword == specialNotes[specialNotePassword].keyword;
}

bool isSecretNote(const ZANPPD& description, const PPDXControl* control) {
    return isMaskedNote(control) || leavesEncipheredOnly(description, control);
}

} // namespace torka
