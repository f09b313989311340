// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The printing framework in memory, for tests and for commands that print to no queue. Its public members are
// settings that may be changed at any time. Not thread-safe.

namespace torka::platform {

class MemoryPrintSettings : public PrintSettings {
public:
    CFTypeRef Value(const CFStringRef& key) const override;
    OSStatus SetValue(const CFStringRef& key, const CFTypeRef& value, bool locked) override;
    // The pairs in the order in which their keys were first set.
    CFDictionaryRef CopyAsDictionary() const override;
    std::uint32_t Copies() const override { return copies; }
    OSStatus SetCopies(std::uint32_t newCopies) override;
    bool IsLocked(const CFStringRef& key) const;

    OSStatus setResult = noErr; // result of SetValue; an error leaves the settings unchanged

private:
    struct Entry {
        CFStringRef key;
        CFTypeRef value;
        bool locked = false;
    };
    std::vector<Entry>::const_iterator Find(const CFStringRef& key) const;

    std::vector<Entry> entries;
    std::unordered_map<std::u16string_view, std::size_t> places; // views into the entries' keys
    std::uint32_t copies = 1;
};

class MemoryPageFormat final : public PageFormat {
public:
    explicit MemoryPageFormat(std::uint16_t pageOrientation = kPMPortrait)
        : orientation(pageOrientation) {}
    std::uint16_t Orientation() const override { return orientation; }

    std::uint16_t orientation;
};

class MemoryPrinter : public Printer {
public:
    struct SentCommand {
        CFStringRef command;
        CFStringRef title;
        CFDictionaryRef options;
    };

    CFStringRef Name() const override { return cfString(name); }
    std::shared_ptr<Printer> DescribedMember() const override { return member; }
    // Accepts only "PMPPDDescriptionType".
    OSStatus CopyDescriptionURL(const CFStringRef& type, CFURLRef& url) const override;
    OSStatus CopyDeviceURI(CFURLRef& uri) const override;
    OSStatus CopyHostName(CFStringRef& host) const override;
    OSStatus MakeAndModelName(CFStringRef& text) const override;
    OSStatus State(std::uint16_t& answer) const override;
    OSStatus CopyState(CFDictionaryRef& answer) const override;
    OSStatus PaperList(std::vector<Paper>& list) const override;
    OSStatus SendCommand(const CFStringRef& command, const CFStringRef& title,
                         const CFDictionaryRef& options) override;
    int CommandJob() const override { return commandJob; }

    std::shared_ptr<Printer> member; // of a class
    int commandJob = 0;
    std::string name = "Printer";
    std::string ppdPath;   // empty when the queue has no description
    std::string deviceUri; // empty when the queue has none
    std::string hostName = "localhost";
    std::string makeAndModel;
    std::vector<Paper> papers;
    std::uint16_t state = kPMPrinterIdle;
    CFDictionaryRef stateAttributes = CFDictionaryCreate({});

    // The result of each call; an error leaves its out-parameter empty.
    OSStatus descriptionResult = noErr;
    OSStatus deviceUriResult = noErr;
    OSStatus hostNameResult = noErr;
    OSStatus makeAndModelResult = noErr;
    OSStatus stateResult = noErr;
    OSStatus paperListResult = noErr;
    OSStatus sendResult = noErr;

    std::vector<SentCommand> sent; // including commands that sendResult refused
    // Called for each command after it is recorded; does the work of a queue's filter.
    std::function<void(const SentCommand&)> onSend;
    // Called before each state is returned; can change the printer's state.
    std::function<void()> onStateAsked;
};

class MemorySession : public PrintSession {
public:
    explicit MemorySession(PMPrinter currentPrinter = nullptr)
        : printer(std::move(currentPrinter)) {}
    // kPMGeneralError without a printer.
    OSStatus CurrentPrinter(PMPrinter& answer) const override;

    PMPrinter printer;
};

} // namespace torka::platform
