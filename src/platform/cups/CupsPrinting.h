// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"
#include "platform/cups/FetchedPPD.h"

#include <chrono>
#include <string>

// The printing framework for the system's print server. CUPS_SERVER chooses the server, as for every client.
// Not thread-safe.

namespace torka::platform {

// A queue. Every call asks the server again; kPMGeneralError when it does not answer.
class CupsPrinter final : public Printer {
public:
    explicit CupsPrinter(std::string name)
        : queueName(std::move(name)) {}

    CFStringRef Name() const override { return cfString(queueName); }
    // Asks the server until it has answered once.
    std::shared_ptr<Printer> DescribedMember() const override;
    // Accepts only "PMPPDDescriptionType". The file stays until the end of the printer. It may be the
    // server's own (FetchedPPD).
    OSStatus CopyDescriptionURL(const CFStringRef& type, CFURLRef& url) const override;
    // Of the described member.
    OSStatus CopyDeviceURI(CFURLRef& uri) const override;
    // The host of the print server; "localhost" for a server that is reached through a domain socket.
    OSStatus CopyHostName(CFStringRef& name) const override;
    // Of the described member.
    OSStatus MakeAndModelName(CFStringRef& name) const override;
    OSStatus State(std::uint16_t& state) const override;
    // "printer-state" and "queued-job-count" as numbers, "printer-is-accepting-jobs" as boolean,
    // "printer-state-message" as text,
    // "printer-state-reasons" as an array of texts.
    OSStatus CopyState(CFDictionaryRef& state) const override;
    OSStatus PaperList(std::vector<Paper>& papers) const override;
    // Text options become job options. They override the command job's own: highest priority, and no holding.
    // A job that did not receive its text is cancelled.
    OSStatus SendCommand(const CFStringRef& command, const CFStringRef& title,
                         const CFDictionaryRef& options) override;
    int CommandJob() const override { return commandJob; }

private:
    const std::string& DescribedQueue() const;

    std::string queueName;
    mutable std::string describedName; // "" before the first answer
    mutable std::shared_ptr<Printer> member;
    int commandJob = 0;
    std::shared_ptr<FetchedPPD> description = FetchedPPD::Of(queueName);
};

class CupsSession final : public PrintSession {
public:
    // An empty name means the server's default queue.
    explicit CupsSession(std::string name = {})
        : queueName(std::move(name)) {}
    // Returns the same object while the queue stays the same; kPMGeneralError when the server has no such
    // queue. Believes the server's answer for a second: a panel asks dozens of times while it opens.
    OSStatus CurrentPrinter(PMPrinter& printer) const override;

private:
    std::string queueName;
    mutable PMPrinter current;
    mutable std::chrono::steady_clock::time_point answered; // of `current`
};

} // namespace torka::platform
