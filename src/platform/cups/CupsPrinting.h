#pragma once

#include "platform/Printing.h"
#include "platform/cups/FetchedPPD.h"

#include <string>

// The printing framework over the system's print server. CUPS_SERVER chooses the server, as for every client.
// Not thread-safe.

namespace torka::platform {

// A queue. Every question goes to the server anew; kPMGeneralError when it does not answer.
class CupsPrinter final : public Printer {
public:
    explicit CupsPrinter(std::string name)
        : queueName(std::move(name)) {}

    CFStringRef Name() const override { return cfString(queueName); }
    // Knows "PMPPDDescriptionType" only. The file stays until the description is asked for again or the
    // printer ends; it may be the server's own.
    OSStatus CopyDescriptionURL(const CFStringRef& type, CFURLRef& url) const override;
    OSStatus CopyDeviceURI(CFURLRef& uri) const override;
    // The host of the print server, "localhost" for one that is reached through a socket file.
    OSStatus CopyHostName(CFStringRef& name) const override;
    OSStatus MakeAndModelName(CFStringRef& name) const override;
    OSStatus State(std::uint16_t& state) const override;
    // "printer-state" and "printer-is-accepting-jobs" as numbers and truth values, "printer-state-message" as
    // text, "printer-state-reasons" as an array of texts.
    OSStatus CopyState(CFDictionaryRef& state) const override;
    OSStatus PaperList(std::vector<Paper>& papers) const override;
    // Text options become job options, beside the highest priority and no holding. A job that could not be
    // given its text is cancelled.
    OSStatus SendCommand(const CFStringRef& command, const CFStringRef& title,
                         const CFDictionaryRef& options) override;
    int CommandJob() const override { return commandJob; }

private:
    std::string queueName;
    int commandJob = 0;
    mutable FetchedPPD description;
};

class CupsSession final : public PrintSession {
public:
    // An empty name means the server's default queue.
    explicit CupsSession(std::string name = {})
        : queueName(std::move(name)) {}
    // The same object while the queue stays the same; kPMGeneralError when the server knows no such queue.
    OSStatus CurrentPrinter(PMPrinter& printer) const override;
    void SetCurrentPrinter(const std::string& name);

private:
    std::string queueName;
    mutable PMPrinter current;
};

} // namespace torka::platform
