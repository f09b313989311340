// SPDX-License-Identifier: Apache-2.0
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

// Why a job lacks a protected field, or a part that would hold it in plain.
enum class LeftOutReason {
    noFieldKeys,      // no keys are installed
    tooLong,          // name and password together exceed one cipher text
    plainDestination, // a file destination would be named after it
};

// The pages on a sheet that the system's own layout asks for, as stored; 1 x 1 without it.
struct PageGrid {
    std::int32_t rows = 1;
    std::int32_t columns = 1;
};
PageGrid layoutGrid(const PMPrintSettings& settings);

// The job notes of a description, in its order, prepared for one job.
//
// Refers to the description, which must outlive it. A protected note, and the user's password in any case,
// leaves enciphered or not at all. LeftOut() and the log name the notes that were omitted.
class ZANJobNoteList {
public:
    struct LeftOutNote {
        std::string keyword;
        std::string title; // the displayed name
        LeftOutReason reason;
    };

    explicit ZANJobNoteList(ZANPPD& description,
                            const std::shared_ptr<const FieldKeys>& keys = installedFieldKeys());

    // Takes kPMPortrait to kPMReverseLandscape; portrait until it is called.
    void SetPageOrientation(std::uint16_t newOrientation) { orientation = newOrientation; }
    // Matches the keyword exactly; returns null when there is none.
    ZANJobNote* find(std::string_view keyword);

    // Adds the layout comments, then each note's line and feature code. Returns 0; -50 without a ticket; -108
    // when memory for a long feature text is missing, with the remaining notes not added.
    OSStatus outInjectionData(ZANJobTicket* ticket, const PMPrintSettings& settings);
    // The notes omitted by the last outInjectionData, in their order.
    const std::vector<LeftOutNote>& LeftOut() const { return leftOut; }

private:
    // The text that a note sends: plain or cipher text.
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
    // The user-authentication name of this job after it was filled in from the login name.
    bool isUserNameFilledIn = false;
    std::string filledInUserName;
};

// Returns a user's login name in the controller's form: one "/" between the parts of a path-like name, in
// place of "/:" or "//".
std::string collapsedUserName(std::string name);

// Packs name and password for the controller into one text: the domain type (2), the name's length in bytes,
// and the two themselves, as in "2:5:alicesecret".
std::string packedCredentials(std::string_view name, std::string_view password);

} // namespace torka
