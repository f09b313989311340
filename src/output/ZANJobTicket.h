// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/InjectionSite.h"
#include "platform/CoreFoundation.h"
#include "platform/Printing.h"

#include <cstdint>
#include <string_view>
#include <system_error>
#include <vector>

namespace torka {

class PPDXControl;
class ZANPPD;

// Access to the print session and the print settings of one job. Owns neither.
class JobTicket {
public:
    JobTicket(PMPrintSession printSession, PMPrintSettings printSettings);
    JobTicket(const JobTicket&) = delete;
    JobTicket& operator=(const JobTicket&) = delete;
    virtual ~JobTicket();

    // Writes every entry of the dictionary into the print settings under its own key; the two key arguments
    // are ignored. "*QVSpotPriority" and "*QVGrayOverride", in any letter case, are never written.
    void Set(const CFStringRef& ignored, const CFStringRef& alsoIgnored, const CFDictionaryRef& values);

    // Given interface; no caller here
    // Returns the read's error status when it fails; otherwise 1 when the value converts to a 32-bit integer,
    // else 0.
    OSStatus Get(const CFStringRef& key, int& value) const;

protected:
    PMPrintSession session;
    PMPrintSettings settings;
};

// Writes whole dictionaries of values to the print settings.
class PrintSettingsTicket : public JobTicket {
public:
    using JobTicket::JobTicket;
};

// Maximum length of a control's text in the ticket, in bytes.
inline constexpr std::size_t maximumControlText = 1024;

// The print-time list of (injection site, bytes) entries. It is saved as an XML property list for the
// spooler-side filter: an array that alternates site numbers and data, in the order of the Add calls.
//
// One object exists per print action. It does not own the dictionary ticket.
class ZANJobTicket : public JobTicket {
public:
    // `key` names the print setting that will hold the path of the saved list.
    ZANJobTicket(PrintSettingsTicket* ticket, PMPrintSettings printSettings, CFStringRef key);
    ~ZANJobTicket() override;

    // Adds exactly `length` bytes without a terminator.
    void Add(PostScriptInjectionSite site, const void* bytes, std::size_t length);
    void Add(PostScriptInjectionSite site, std::string_view text) { Add(site, text.data(), text.size()); }
    // Adds a control's PostScript; "*PageSize" goes to the page-size site, whatever `site` is. A control
    // whose text is longer than maximumControlText adds nothing. Returns the length of such a text, else 0.
    std::size_t Add(PostScriptInjectionSite site, PPDXControl* control);
    // Adds the text and records that the entry carries an enciphered field.
    void AddProtected(PostScriptInjectionSite site, std::string_view text);

    // Removes every entry of this site with exactly this text.
    void Withdraw(PostScriptInjectionSite site, std::string_view text);

    // Writes all keyword/value pairs of the description into the print settings, which stay in the process.
    // Code that writes the settings out must omit the controls of isSecretNote (ZANJobNote.h).
    void SavePPDForAllKeys(ZANPPD* description, const CFStringRef& key);

    // Serialises the list and stores the ticket file's path in the print settings. Below minor version 7 of
    // the system, writes the file here (mode 0666). From 7 on, only keeps the name; the filter writes the
    // file. Returns the XML, null for a list that exceeds a file's maximum. A failed write is logged, sets
    // SaveError() and leaves no file. PathStatus() tells whether the print settings took the path: without it
    // the job has no ticket.
    CFDataRef Save();
    std::error_code SaveError() const { return saveError; }
    OSStatus PathStatus() const { return pathStatus; }

    // Returns the prefix followed by a new UUID. `buffer` may be null; else it holds 256 bytes and gets the
    // name as UTF-8, cut to fit.
    static CFStringRef CreateRandomFileName(std::string_view prefix, char* buffer = nullptr);
    // Set by Save() from minor version 7 of the system on, else null.
    CFStringRef FileName() const { return fileName; }

    struct Entry {
        PostScriptInjectionSite site = 0;
        std::string_view bytes; // valid until the ticket ends or Create() is called
        bool isProtected = false;
    };
    std::vector<Entry> Entries() const;

    // Given interface; no caller here
    // Starts again with an empty list.
    void Create();
    void InjectTempFileToPSStream(const CFStringRef& key, const CFStringRef& value);

private:
    PrintSettingsTicket* dictionaryTicket;
    CFStringRef pathKey;
    std::vector<CFTypeRef> entries; // alternates site and data
    CFStringRef fileName;
    CFDataRef xmlData;
    std::vector<std::size_t> protectedEntries; // indexes of entries, ascending
    std::error_code saveError;
    OSStatus pathStatus = noErr;
};

} // namespace torka
