#pragma once

#include "output/ZANJobNote.h"
#include "platform/Printing.h"

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

class ZANJobTicket;
class ZANPPD;

// What a protected field needs and did not get.
enum class LeftOutReason {
    noFieldKeys, // none are installed
    tooLong,     // name and password together pass what one cipher text holds
};

// The job notes of a description, in its order, on their way into one job.
//
// Refers to the description, which must outlive it. A protected note, and the user's password whether marked
// or not, leaves enciphered or not at all; what was left out is told by LeftOut() and in the log.
class ZANJobNoteList {
public:
    struct LeftOutNote {
        std::string keyword;
        std::string title; // for people
        LeftOutReason reason;
    };

    explicit ZANJobNoteList(ZANPPD& description,
                            const std::shared_ptr<const FieldKeys>& keys = installedFieldKeys());

    // kPMPortrait to kPMReverseLandscape; portrait until it is called.
    void SetPageOrientation(std::uint16_t newOrientation) { orientation = newOrientation; }
    // Exact; null for none.
    ZANJobNote* find(std::string_view keyword);

    // Adds the layout comments, then each note's line and feature code. 0; -50 without a ticket; -108, with
    // the rest of the notes not added, when there is no memory for a long feature text.
    OSStatus outInjectionData(ZANJobTicket* ticket, const PMPrintSettings& settings);
    // Of the last outInjectionData, in the order of the notes.
    const std::vector<LeftOutNote>& LeftOut() const { return leftOut; }

private:
    // What a note sends: its text in plain or its cipher text.
    struct Outgoing {
        std::string text;
        bool isProtected = false;
    };

    void AddLayoutComments(ZANJobTicket& ticket, const PMPrintSettings& settings) const;
    OSStatus AddNote(ZANJobTicket& ticket, const ZANJobNote& note);
    OSStatus AddUserName(ZANJobTicket& ticket, const ZANJobNote& note);
    OSStatus AddPassword(ZANJobTicket& ticket, const ZANJobNote& note);
    OSStatus AddCredentials(ZANJobTicket& ticket, const ZANJobNote& carrier);
    OSStatus AddFeatureCode(ZANJobTicket& ticket, const ZANJobNote& note, const Outgoing& outgoing,
                            bool evenWhenEmpty = false) const;
    static void AddLine(ZANJobTicket& ticket, std::string_view prefix, const Outgoing& outgoing);
    bool Protect(const ZANJobNote& note, const char* text, Outgoing& outgoing);
    void LeaveOut(const ZANJobNote& note, LeftOutReason reason);
    std::string UserName();
    bool PacksCredentials();

    ZANPPD& description;
    std::list<ZANJobNote> notes;
    std::uint16_t orientation = kPMPortrait;
    std::vector<LeftOutNote> leftOut;
    // The user-authentication name of this job, once it was filled in from the login name.
    bool isUserNameFilledIn = false;
    std::string filledInUserName;
};

// A user's login name as the controller takes it: the parts of a path-like name are separated by one "/"
// each, whether
// "/:" or "//" stood there.
std::string collapsedUserName(std::string name);

// Name and password for the controller in one text: the domain type (2), the name's length in bytes and the
// two themselves, as in "2:5:alicesecret".
std::string packedCredentials(std::string_view name, std::string_view password);

} // namespace torka
