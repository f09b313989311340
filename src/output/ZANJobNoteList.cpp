// SPDX-License-Identifier: Apache-2.0
#include "output/ZANJobNoteList.h"

#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "PPDX/Utilities/MemoryShortage.h"
#include "PPDX/Utilities/ModelState.h"
#include "PPDX/Utilities/PostScriptText.h"
#include "output/ZANJobTicket.h"
#include "platform/Log.h"
#include "platform/System.h"

#include <array>
#include <cstring>
#include <new>
#include <utility>

namespace torka {

namespace {

constexpr OSStatus noTicket = -50;
constexpr OSStatus noMemory = -108;
constexpr std::size_t featureBufferSize = 5120;
constexpr int credentialDomainType = 2;

// Returns the setting as a 32-bit integer, `otherwise` when there is none.
std::int32_t integerSetting(const PMPrintSettings& settings, const char* key, std::int32_t otherwise) {
    CFTypeRef value;
    std::int32_t number = otherwise;
    if (PMPrintSettingsGetValue(settings, cfString(key), value) == noErr) {
        if (const auto stored = cfCast<CFNumber>(value)) {
            CFNumberGetValue(stored, number);
        }
    }
    return number;
}

bool isLayoutNUp(const PMPrintSettings& settings) {
    CFTypeRef value;
    if (PMPrintSettingsGetValue(settings, cfString("com.apple.print.PrintSettings.PMLayoutNUp"), value) !=
        noErr) {
        return false;
    }
    const auto flag = cfCast<CFBoolean>(value);
    const auto number = cfCast<CFNumber>(value);
    return flag ? flag->value : number && number->integer != 0;
}

bool isTrue(const ZANPPD& description, const char* keyword) {
    const PPDXSpecialOption* option = description.GetControls()->FindSpecialOption(keyword, true);
    return option != nullptr && std::strcmp(option->GetValue(), "True") == 0;
}

void replaceEach(std::string& text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from)) {
        text.replace(at, from.size(), to);
    }
}

} // namespace

std::string collapsedUserName(std::string name) {
    // Each replacement shortens the text, so this ends.
    replaceEach(name, "/:", "/");
    replaceEach(name, "//", "/");
    return name;
}

std::string packedCredentials(std::string_view name, std::string_view password) {
    std::string packed;
    // Reserves all memory first: a reallocation would leave the password in a block that nobody wipes.
    packed.reserve(name.size() + password.size() + 32);
    packed += std::to_string(credentialDomainType) + ":" + std::to_string(name.size()) + ":";
    packed += name;
    packed += password;
    return packed;
}

ZANJobNoteList::ZANJobNoteList(ZANPPD& ppd, const std::shared_ptr<const FieldKeys>& keys)
    : description(ppd) {
    PPDXControls& controls = *description.GetControls();
    for (PPDXJobNote* note = controls.FirstJobNote(); note != nullptr; note = controls.NextJobNote()) {
        notes.emplace_back(note, &description, keys);
    }
}

ZANJobNote* ZANJobNoteList::find(std::string_view keyword) {
    for (ZANJobNote& note : notes) {
        if (note.Note().Keyword() != nullptr && keyword == note.Note().Keyword()) {
            return &note;
        }
    }
    return nullptr;
}

PageGrid layoutGrid(const PMPrintSettings& settings) {
    if (!isLayoutNUp(settings)) {
        return {};
    }
    return {integerSetting(settings, "com.apple.print.PrintSettings.PMLayoutRows", 1),
            integerSetting(settings, "com.apple.print.PrintSettings.PMLayoutColumns", 1)};
}

OSStatus ZANJobNoteList::outInjectionData(ZANJobTicket* ticket, const PMPrintSettings& settings) {
    leftOut.clear();
    if (ticket == nullptr) {
        return noTicket;
    }
    AddLayoutComments(*ticket, settings);
    // Converts all notes before the first is added, because name and password may leave together.
    for (ZANJobNote& note : notes) {
        note.ConvertTextFromApplicationToUTF8();
    }
    OSStatus status = noErr;
    for (ZANJobNote& note : notes) {
        status = AddNote(*ticket, note);
        if (status != noErr) {
            break;
        }
    }
    isUserNameFilledIn = false;
    filledInUserName.clear();
    return status;
}

void ZANJobNoteList::AddLayoutComments(ZANJobTicket& ticket, const PMPrintSettings& settings) const {
    const PageGrid grid = layoutGrid(settings);
    const auto isUpright = [](std::uint16_t turn) {
        return turn == kPMPortrait || turn == kPMReversePortrait;
    };
    std::uint16_t turned = orientation;
    // Two or six pages on a sheet are turned by 90 degrees.
    if (const std::int64_t pages = std::int64_t{grid.rows} * grid.columns; pages == 2 || pages == 6) {
        turned = isUpright(orientation) ? kPMReverseLandscape : kPMPortrait;
    }
    ticket.Add(siteLayoutComment, std::string_view("%%MacCoreNUp: true\n"));
    ticket.Add(siteLayoutComment, std::string_view(isUpright(turned) ? "%%Orientation: Portrait\n"
                                                                     : "%%Orientation: Landscape\n"));
}

OSStatus ZANJobNoteList::AddNote(ZANJobTicket& ticket, const ZANJobNote& note) {
    short index = -1;
    const bool isSpecial = note.specialKeyword(index);
    const bool isAuthentication = index == specialNoteUserName || index == specialNotePassword;
    if (!isAuthentication && *note.Note().GetNotes() == '\0') {
        return noErr;
    }
    if (isAuthentication && PacksCredentials()) {
        return AddCredentials(ticket, note);
    }
    if (index == specialNoteUserName) {
        return AddUserName(ticket, note);
    }
    if (index == specialNotePassword) {
        return AddPassword(ticket, note);
    }
    Outgoing outgoing{note.Note().GetNotes(), false};
    if (note.IsProtected() && !Protect(note, note.Note().GetNotes(), outgoing)) {
        return noErr;
    }
    // Without the prefix of a comment the text would run as PostScript.
    if (isSpecial) {
        AddLine(ticket, ZANJobNote::commentPrefix(index), outgoing);
    }
    return AddFeatureCode(ticket, note, outgoing);
}

// The name has no prefix for a line, so only its feature code carries it.
OSStatus ZANJobNoteList::AddUserName(ZANJobTicket& ticket, const ZANJobNote& note) {
    const std::string name = UserName();
    Outgoing outgoing{name, false};
    if (!name.empty() && note.IsProtected() && !Protect(note, name.c_str(), outgoing)) {
        return noErr;
    }
    return AddFeatureCode(ticket, note, outgoing);
}

// Enciphers the password even when the description does not mark it.
OSStatus ZANJobNoteList::AddPassword(ZANJobTicket& ticket, const ZANJobNote& note) {
    const char* password = note.Note().GetNotes();
    Outgoing outgoing;
    if (*password != '\0' && !Protect(note, password, outgoing)) {
        return noErr;
    }
    AddLine(ticket, ZANJobNote::commentPrefix(specialNotePassword), outgoing);
    return AddFeatureCode(ticket, note, outgoing, true);
}

// Sends name and password as one cipher text in place of the password note, or of the name when there is no
// password note.
OSStatus ZANJobNoteList::AddCredentials(ZANJobTicket& ticket, const ZANJobNote& carrier) {
    ZANJobNote* passwordNote = find("*QVUserAuthPwd");
    if (passwordNote != nullptr && &carrier.Note() != &passwordNote->Note()) {
        return noErr;
    }
    const char* password = passwordNote == nullptr ? "" : passwordNote->Note().GetNotes();
    std::string packed = packedCredentials(UserName(), password);
    Outgoing outgoing;
    bool isReady = false;
    if (noteCipherLength(packed.size(), carrier.Algorithm()) * 2 > noteHexSize) {
        // The controller would take a cut text for a complete one.
        LeaveOut(carrier, LeftOutReason::tooLong);
    } else {
        isReady = Protect(carrier, packed.c_str(), outgoing);
    }
    wipe(packed.data(), packed.size());
    if (!isReady) {
        return noErr;
    }
    AddLine(ticket, ZANJobNote::commentPrefix(specialNotePassword), outgoing);
    return AddFeatureCode(ticket, carrier, outgoing, true);
}

void ZANJobNoteList::AddLine(ZANJobTicket& ticket, std::string_view prefix, const Outgoing& outgoing) {
    std::string line(prefix);
    line += withoutLineBreaks(outgoing.text); // a line break would end the comment
    line += '\n';
    if (outgoing.isProtected) {
        ticket.AddProtected(siteJobNote, line);
    } else {
        ticket.Add(siteJobNote, line);
    }
}

OSStatus ZANJobNoteList::AddFeatureCode(ZANJobTicket& ticket, const ZANJobNote& note,
                                        const Outgoing& outgoing, bool evenWhenEmpty) const {
    const PPDXJobNote& definition = note.Note();
    const long needed = definition.PostScriptWith(outgoing.text.c_str(), nullptr);
    const std::size_t size = needed > 0 ? static_cast<std::size_t>(needed) : 0;
    if (size == 0 && !evenWhenEmpty) {
        return noErr;
    }
    std::array<unsigned char, featureBufferSize> buffer;
    std::unique_ptr<unsigned char[]> allocated;
    unsigned char* out = buffer.data();
    if (size > buffer.size()) {
        allocated.reset(new (std::nothrow) unsigned char[size]);
        out = allocated.get();
    }
    if (out == nullptr) {
        ++gMemoryShortages;
        return noMemory;
    }
    if (size > 0) {
        definition.PostScriptWith(outgoing.text.c_str(), out);
    }
    const std::string_view code(reinterpret_cast<const char*>(out), size);
    if (outgoing.isProtected) {
        ticket.AddProtected(siteDocumentSetup, code);
    } else {
        ticket.Add(siteDocumentSetup, code);
    }
    return noErr;
}

// Returns false when the note is omitted.
bool ZANJobNoteList::Protect(const ZANJobNote& note, const char* text, Outgoing& outgoing) {
    outgoing = {note.Encrypted(text), true};
    if (outgoing.text.empty()) {
        LeaveOut(note, LeftOutReason::noFieldKeys);
        return false;
    }
    return true;
}

void ZANJobNoteList::LeaveOut(const ZANJobNote& note, LeftOutReason reason) {
    const char* keyword = note.Note().Keyword() == nullptr ? "" : note.Note().Keyword();
    leftOut.push_back({keyword, utf8Text(note.Note().CFStringUserName()), reason});
    myNSLogC("The field %s is left out of the job: %s", keyword,
             reason == LeftOutReason::noFieldKeys
                 ? "it must be enciphered and no field keys are installed"
                 : "name and password are too long to be enciphered together");
}

// Returns the text of the name note. When it is empty and the controller asks a directory, returns the login
// name.
std::string ZANJobNoteList::UserName() {
    const ZANJobNote* note = find("*QVUserAuthName");
    if (note == nullptr) {
        return {};
    }
    std::string text = note->Note().GetNotes();
    if (!text.empty() || !isTrue(description, "*ZANAuthenticateWithLDAP")) {
        return text;
    }
    if (!isUserNameFilledIn) {
        filledInUserName = collapsedUserName(system().UserName());
        isUserNameFilledIn = true;
    }
    return filledInUserName;
}

bool ZANJobNoteList::PacksCredentials() {
    if (!isTrue(description, "*CopierUserAuth")) {
        return false;
    }
    const ZANJobNote* password = find("*QVUserAuthPwd");
    return !UserName().empty() || (password != nullptr && *password->Note().GetNotes() != '\0');
}

} // namespace torka
