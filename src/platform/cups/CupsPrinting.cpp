// SPDX-License-Identifier: Apache-2.0
#include "platform/cups/CupsPrinting.h"

#include "platform/SecretMemory.h"
#include "platform/System.h"
#include "platform/cups/CupsHandles.h"
#include "platform/cups/CupsQueue.h"

#include <cups/ppd.h>

#include <memory>
#include <utility>

// libcups marks its PPD functions as deprecated and offers no others for a queue with a description.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace torka::platform {

namespace {

struct ClosePPD {
    void operator()(ppd_file_t* ppd) const { ppdClose(ppd); }
};

} // namespace

const std::string& CupsPrinter::DescribedQueue() const {
    if (describedName.empty()) {
        describedName = describedQueue(queueName).value_or("");
    }
    return describedName.empty() ? queueName : describedName;
}

std::shared_ptr<Printer> CupsPrinter::DescribedMember() const {
    if (!member && DescribedQueue() != queueName) {
        member = std::make_shared<CupsPrinter>(DescribedQueue());
    }
    return member;
}

OSStatus CupsPrinter::CopyDescriptionURL(const CFStringRef& type, CFURLRef& url) const {
    url = nullptr;
    if (utf8Text(type) != "PMPPDDescriptionType") {
        return kPMInvalidParameter;
    }
    const std::string path = description->Fetch(queueName);
    if (path.empty()) {
        return kPMGeneralError;
    }
    url = CFURLCreateWithFileSystemPath(path);
    return noErr;
}

OSStatus CupsPrinter::CopyDeviceURI(CFURLRef& uri) const {
    uri = nullptr;
    const IppMessage answer = printerAttributes(DescribedQueue(), {"device-uri"});
    const std::vector<std::string> texts = attributeTexts(answer.get(), "device-uri");
    if (!texts.empty()) {
        uri = CFURLCreateWithString(cfString(texts.front()));
    }
    return uri ? noErr : kPMGeneralError;
}

OSStatus CupsPrinter::CopyHostName(CFStringRef& name) const {
    const std::string server = cupsServer();
    name = cfString(server.starts_with('/') ? std::string("localhost") : server);
    return noErr;
}

OSStatus CupsPrinter::MakeAndModelName(CFStringRef& name) const {
    name = nullptr;
    const IppMessage answer = printerAttributes(DescribedQueue(), {"printer-make-and-model"});
    const std::vector<std::string> texts = attributeTexts(answer.get(), "printer-make-and-model");
    if (!texts.empty()) {
        name = cfString(texts.front());
    }
    return name ? noErr : kPMGeneralError;
}

OSStatus CupsPrinter::State(std::uint16_t& state) const {
    const IppMessage answer = printerAttributes(queueName, {"printer-state"});
    const int number = attributeInteger(answer.get(), "printer-state");
    state = number < 0 ? std::uint16_t{0} : static_cast<std::uint16_t>(number);
    return number < 0 ? kPMGeneralError : noErr;
}

OSStatus CupsPrinter::CopyState(CFDictionaryRef& state) const {
    state = nullptr;
    const IppMessage answer =
        printerAttributes(queueName, {"printer-state", "printer-state-message", "printer-state-reasons",
                                      "printer-is-accepting-jobs", "queued-job-count"});
    if (!answer) {
        return kPMGeneralError;
    }
    std::vector<CFTypeRef> reasons;
    for (const std::string& reason : attributeTexts(answer.get(), "printer-state-reasons")) {
        reasons.push_back(cfString(reason));
    }
    const std::vector<std::string> message = attributeTexts(answer.get(), "printer-state-message");
    state = CFDictionaryCreate({
        {cfString("printer-state"), CFNumberCreate(attributeInteger(answer.get(), "printer-state"))},
        {cfString("queued-job-count"), CFNumberCreate(attributeInteger(answer.get(), "queued-job-count"))},
        {cfString("printer-state-message"), cfString(message.empty() ? std::string() : message.front())},
        {cfString("printer-state-reasons"), CFArrayCreate(std::move(reasons))},
        {cfString("printer-is-accepting-jobs"),
         CFBooleanCreate(attributeInteger(answer.get(), "printer-is-accepting-jobs") == 1)},
    });
    return noErr;
}

OSStatus CupsPrinter::PaperList(std::vector<Paper>& papers) const {
    papers.clear();
    FetchedPPD fetched; // separate from the member, whose file a caller may still read
    const std::unique_ptr<ppd_file_t, ClosePPD> ppd(ppdOpenFile(fetched.Fetch(queueName).c_str()));
    if (!ppd) {
        return kPMGeneralError;
    }
    ppd_option_t* option = ppdFindOption(ppd.get(), "PageSize");
    for (int i = 0; i < ppd->num_sizes; ++i) {
        const ppd_size_t& size = ppd->sizes[i];
        const std::string keyword = size.name;
        if (keyword == "Custom") {
            continue;
        }
        const ppd_choice_t* choice = option == nullptr ? nullptr : ppdFindChoice(option, size.name);
        Paper paper;
        paper.name = choice == nullptr ? keyword : choice->text;
        paper.ppdPaperName = keyword;
        paper.width = static_cast<double>(size.width);
        paper.height = static_cast<double>(size.length);
        papers.push_back(std::move(paper));
    }
    return noErr;
}

OSStatus CupsPrinter::SendCommand(const CFStringRef& command, const CFStringRef& title,
                                  const CFDictionaryRef& options) {
    // A command prepares later jobs. The priority keeps them from overtaking it, and "no-hold" keeps a queue
    // that holds its jobs from holding it. Without sheets the queue's banner pages do not print. The caller's
    // options override these.
    CupsOptions jobOptions({{"job-priority", "100"}, {"job-hold-until", "no-hold"}, {"job-sheets", "none"}});
    if (options) {
        for (const auto& [key, value] : options->Pairs()) {
            if (const auto text = cfCast<CFString>(value)) {
                jobOptions.Add(utf8Text(key), utf8Text(text));
            }
        }
    }
    const std::string jobTitle = utf8Text(title);
    std::string text = utf8Text(command);
    const WipeGuard<std::string> guard(text); // a ticket may hold a password
    const int job = cupsCreateJob(CUPS_HTTP_DEFAULT, queueName.c_str(), jobTitle.c_str(), jobOptions.Count(),
                                  jobOptions.Data());
    if (job == 0) {
        return kPMGeneralError;
    }
    const bool sent = cupsStartDocument(CUPS_HTTP_DEFAULT, queueName.c_str(), job, jobTitle.c_str(),
                                        CUPS_FORMAT_COMMAND, 1) == HTTP_STATUS_CONTINUE &&
                      (text.empty() || cupsWriteRequestData(CUPS_HTTP_DEFAULT, text.data(), text.size()) ==
                                           HTTP_STATUS_CONTINUE);
    // Always finishes the request; otherwise the connection would be unusable.
    if (cupsFinishDocument(CUPS_HTTP_DEFAULT, queueName.c_str()) > IPP_STATUS_OK_CONFLICTING || !sent) {
        cupsCancelJob2(CUPS_HTTP_DEFAULT, queueName.c_str(), job, 0);
        return kPMGeneralError;
    }
    commandJob = job;
    return noErr;
}

OSStatus CupsSession::CurrentPrinter(PMPrinter& printer) const {
    printer = nullptr;
    std::string name = queueName;
    if (name.empty()) {
        const char* standard = cupsGetDefault();
        name = standard == nullptr ? "" : standard;
    }
    constexpr std::chrono::seconds believed{1};
    const bool isSame = current && utf8Text(current->Name()) == name;
    const auto now = system().Now();
    if (!isSame || now - answered >= believed) {
        if (!printerAttributes(name, {"printer-name"})) {
            return kPMGeneralError;
        }
        answered = now;
    }
    if (!isSame) {
        current = std::make_shared<CupsPrinter>(name);
    }
    printer = current;
    return noErr;
}

} // namespace torka::platform
