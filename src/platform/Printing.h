// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The printing framework: session, printer, print settings and page format of one print dialog.
//
// Adapters implement the interfaces: memory/ for tests and the command line, cups/ for a real queue. The
// system calls the free functions below, which have the framework's names and forward to the handle. For a
// null handle they return kPMInvalidParameter and leave their out-parameter empty.

namespace torka::platform {

inline constexpr OSStatus kPMInvalidParameter = -50;
inline constexpr OSStatus kPMKeyNotFound = -9589;
inline constexpr OSStatus kPMGeneralError = -30870;

inline constexpr std::uint16_t kPMPortrait = 1;
inline constexpr std::uint16_t kPMLandscape = 2;
inline constexpr std::uint16_t kPMReversePortrait = 3;
inline constexpr std::uint16_t kPMReverseLandscape = 4;

inline constexpr std::uint16_t kPMPrinterIdle = 3;
inline constexpr std::uint16_t kPMPrinterProcessing = 4;
inline constexpr std::uint16_t kPMPrinterStopped = 5;

// The settings of one job: keys with property-list values.
class PrintSettings {
public:
    PrintSettings() = default;
    PrintSettings(const PrintSettings&) = delete;
    PrintSettings& operator=(const PrintSettings&) = delete;
    virtual ~PrintSettings();
    virtual CFTypeRef Value(const CFStringRef& key) const = 0; // null when absent
    virtual OSStatus SetValue(const CFStringRef& key, const CFTypeRef& value,
                              bool locked) = 0; // null removes
    virtual CFDictionaryRef CopyAsDictionary() const = 0;
    virtual std::uint32_t Copies() const = 0;
    virtual OSStatus SetCopies(std::uint32_t copies) = 0;
};

class PageFormat {
public:
    PageFormat() = default;
    PageFormat(const PageFormat&) = delete;
    PageFormat& operator=(const PageFormat&) = delete;
    virtual ~PageFormat();
    virtual std::uint16_t Orientation() const = 0; // kPMPortrait to kPMReverseLandscape
};

// One paper that a printer offers.
struct Paper {
    std::string name;         // for people
    std::string ppdPaperName; // option keyword of "*PageSize"
    double width = 0.0;       // points
    double height = 0.0;      // points
};

// One queue of the spooler.
class Printer {
public:
    Printer() = default;
    Printer(const Printer&) = delete;
    Printer& operator=(const Printer&) = delete;
    virtual ~Printer();
    virtual CFStringRef Name() const = 0;
    virtual OSStatus CopyDescriptionURL(const CFStringRef& type, CFURLRef& url) const = 0;
    virtual OSStatus CopyDeviceURI(CFURLRef& uri) const = 0;
    virtual OSStatus CopyHostName(CFStringRef& name) const = 0;
    virtual OSStatus MakeAndModelName(CFStringRef& name) const = 0;
    virtual OSStatus State(std::uint16_t& state) const = 0;
    // Keys such as "printer-state-message".
    virtual OSStatus CopyState(CFDictionaryRef& state) const = 0;
    virtual OSStatus PaperList(std::vector<Paper>& papers) const = 0;
    // Sends a command job with the text `command`. `options` become options of the job; null for none.
    virtual OSStatus SendCommand(const CFStringRef& command, const CFStringRef& title,
                                 const CFDictionaryRef& options) = 0;
    // The printer whose description and records these are; null for this printer itself. A class of printers
    // has those of one member.
    virtual std::shared_ptr<Printer> DescribedMember() const { return nullptr; }
    // Number of the last command's job; 0 before the first command, or when it is unknown.
    virtual int CommandJob() const { return 0; }
};

using PMPrintSettings = std::shared_ptr<PrintSettings>;
using PMPageFormat = std::shared_ptr<PageFormat>;
using PMPrinter = std::shared_ptr<Printer>;

class PrintSession {
public:
    PrintSession() = default;
    PrintSession(const PrintSession&) = delete;
    PrintSession& operator=(const PrintSession&) = delete;
    virtual ~PrintSession();
    virtual OSStatus CurrentPrinter(PMPrinter& printer) const = 0;
};
using PMPrintSession = std::shared_ptr<PrintSession>;

OSStatus PMPrintSettingsGetValue(const PMPrintSettings& settings, const CFStringRef& key, CFTypeRef& value);
// Logs the key of a value that the settings do not take.
OSStatus PMPrintSettingsSetValue(const PMPrintSettings& settings, const CFStringRef& key,
                                 const CFTypeRef& value, bool locked);
OSStatus PMPrintSettingsCopyAsDictionary(const PMPrintSettings& settings, CFDictionaryRef& dictionary);
OSStatus PMGetCopies(const PMPrintSettings& settings, std::uint32_t& copies);
OSStatus PMGetOrientation(const PMPageFormat& format, std::uint16_t& orientation);

OSStatus PMSessionGetCurrentPrinter(const PMPrintSession& session, PMPrinter& printer);
CFStringRef PMPrinterGetName(const PMPrinter& printer);
// The printer that commands about records and the controller go to: a member for a class of printers. A
// command for a print job goes to the printer that gets the job.
PMPrinter describedPrinter(const PMPrinter& printer);
OSStatus PMPrinterCopyDescriptionURL(const PMPrinter& printer, const CFStringRef& type, CFURLRef& url);
OSStatus PMPrinterCopyDeviceURI(const PMPrinter& printer, CFURLRef& uri);
OSStatus PMPrinterGetMakeAndModelName(const PMPrinter& printer, CFStringRef& name);
OSStatus PMPrinterGetState(const PMPrinter& printer, std::uint16_t& state);
OSStatus PMPrinterCopyState(const PMPrinter& printer, CFDictionaryRef& state);
OSStatus PMPrinterGetPaperList(const PMPrinter& printer, std::vector<Paper>& papers);
OSStatus PMPrinterSendCommand(const PMPrinter& printer, const CFStringRef& command, const CFStringRef& title,
                              const CFDictionaryRef& options);

// Given interface; no caller here
OSStatus PMPrinterCopyHostName(const PMPrinter& printer, CFStringRef& name);

} // namespace torka::platform
