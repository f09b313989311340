// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/QueueHealth.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/Interface/PPDLintTexts.h"
#include "ZANUtils/FieldKeys.h"
#include "apps/torka/Applications.h"
#include "apps/torka/ClassHealth.h"
#include "apps/torka/Command.h"
#include "apps/torka/Description.h"
#include "apps/torka/Echo.h"
#include "apps/torka/FilterLines.h"
#include "apps/torka/QueueAddresses.h"
#include "apps/torka/QueueServerData.h"
#include "apps/torka/ServerFiles.h"
#include "bidi/commands/BidiFilePaths.h"
#include "bidi/module/JobPropertiesLibrary.h"
#include "bidi/records/RecordText.h"
#include "connection/AddressText.h"
#include "connection/ConnectionType.h"
#include "connection/RequestAddress.h"
#include "platform/Spooler.h"
#include "platform/System.h"
#include "platform/cups/CupsPrinting.h"
#include "platform/cups/CupsQueue.h"
#include "platform/posix/InstalledSystem.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <system_error>

namespace torka::tool {

namespace {

QueueFinding good(std::string what, std::string text) {
    return {std::move(what), CheckState::good, std::move(text)};
}

QueueFinding fault(std::string what, std::string text, std::string remedy) {
    return {std::move(what), CheckState::fault, std::move(text), std::move(remedy)};
}

QueueFinding unknown(std::string what, std::string text, std::string remedy = {}) {
    return {std::move(what), CheckState::unknown, std::move(text), std::move(remedy)};
}

bool hasMissingFilter(const platform::QueueState& queue) {
    return std::ranges::any_of(queue.reasons, [](const std::string& reason) {
        return reason.starts_with("cups-missing-filter") || reason.starts_with("cups-insecure-filter");
    });
}

// The queue whose health is in question, and what the checks share.
class Patient {
public:
    Patient(std::string name, std::string bundleFolder)
        : queue(std::move(name))
        , bundle(std::move(bundleFolder))
        , session(std::make_shared<CupsSession>(queue)) {
        PMSessionGetCurrentPrinter(session, printer);
        members = platform::printersOfClass(queue).value_or(std::vector<std::string>());
        asked = members.empty() ? queue : members.front();
        state = platform::queueState(queue).value_or(platform::QueueState());
        askedState = members.empty() ? state : platform::queueState(asked).value_or(platform::QueueState());
    }

    std::vector<QueueFinding> Check() {
        std::vector<QueueFinding> findings{CheckQueue(), CheckDescription()};
        const auto add = [&findings](std::vector<QueueFinding> more) {
            std::ranges::move(more, std::back_inserter(findings));
        };
        if (!members.empty()) {
            add(checkClass(queue, members, description.get()));
        }
        add(CheckFilter());
        findings.push_back(CheckKeys());
        findings.push_back(CheckAddress());
        const bool hasFault = std::ranges::any_of(findings, [](const QueueFinding& finding) {
            return finding.state == CheckState::fault &&
                   (finding.what == "state" || finding.what.starts_with("filter"));
        });
        findings.push_back(
            CheckTwoWay(hasFault || stateFinding(asked, askedState).state == CheckState::fault));
        findings.push_back(CheckModule());
        findings.push_back(applicationsFinding(platform::programFolder()));
        return findings;
    }

private:
    QueueFinding CheckQueue() const {
        QueueFinding finding = stateFinding(queue, state);
        const auto standsStill = [](const std::string& member) {
            const auto memberState = platform::queueState(member);
            return memberState && stateFinding(member, *memberState).state == CheckState::fault;
        };
        if (finding.state == CheckState::good && !members.empty() &&
            std::ranges::all_of(members, standsStill)) {
            return fault("state", "no printer of the class prints jobs",
                         stateFinding(asked, askedState).remedy);
        }
        return finding;
    }

    QueueFinding CheckDescription() {
        CFURLRef url;
        if (!printer ||
            PMPrinterCopyDescriptionURL(printer, cfString("PMPPDDescriptionType"), url) != noErr) {
            return fault("description", "the queue has no description",
                         "torka queue add " + asked + " " + askedState.deviceUri + " FILE.ppd");
        }
        const std::string path = CFURLCopyFileSystemPath(url);
        if (const std::error_code error = platform::system().ReadFile(path, maximumDescription, text)) {
            return fault("description", path + ": cannot be read: " + error.message(),
                         "let everybody read the file");
        }
        PPDLint lint;
        description = readDescription(path, &lint);
        const std::size_t errors = description->Errors()->Count();
        const std::string counts =
            std::to_string(errors) + " errors and " + std::to_string(lint.Notes().size()) + " warnings";
        const std::string remedy = "torka lint " + path + " lists them";
        if (const Result<void> usable = checkUsable(*description, path); !usable) {
            description.reset();
            return fault("description", usable.Why().Line(), "add the queue with an extended PPD");
        }
        const auto hiding = std::ranges::find_if(lint.Notes(), [](const PPDLintNote& note) {
            return note.kind == PPDLintKind::noMakerVersion || note.kind == PPDLintKind::noFileName;
        });
        if (hiding != lint.Notes().end()) {
            return fault("description", ppdLintMessage(*hiding), ppdLintRemedy(*hiding));
        }
        return errors > 0 ? fault("description", "it has " + counts, remedy)
                          : QueueFinding{"description", CheckState::good, "it has " + counts,
                                         lint.Notes().empty() ? "" : remedy};
    }

    // The lines of the description, the program, and its folders.
    std::vector<QueueFinding> CheckFilter() const {
        std::vector<QueueFinding> findings;
        const std::vector<FilterLine> faults = filterLineFaults(text);
        findings.reserve(faults.size());
        for (const FilterLine& line : faults) {
            const std::string way = line.program.empty() ? " has no line that the print server takes"
                                    : line.CallsNone()   ? " goes through no filter"
                                                         : " goes through " + line.program;
            findings.push_back(fault("filter-lines", line.type + way,
                                     "torka queue add " + asked + " " + askedState.deviceUri +
                                         " FILE.ppd writes both lines of torkafilter"));
        }
        if (faults.empty()) {
            findings.push_back(good("filter-lines", "documents and commands go through torkafilter"));
        }
        if (hasMissingFilter(askedState)) {
            findings.push_back(
                fault("filter", "the print server finds no filter that it may run: " + askedState.message,
                      "install torkafilter in the server's folder of filters, owned by root"));
        }
        if (!platform::isServerLocal()) {
            findings.push_back(unknown("filter", "the files of a remote print server cannot be seen",
                                       "run torka queue check on the server"));
            return findings;
        }
        const ServerSetup setup = serverSetup();
        const std::filesystem::path filter = filterPath(setup);
        const std::string problem = filterProblem(filter, setup.user);
        findings.push_back(problem.empty() ? good("filter", filter.string() + " can be run by " + setup.user)
                                           : fault("filter", problem,
                                                   "install -o root -m 0755 torkafilter " + filter.string()));
        AddFolders(setup.user, findings);
        return findings;
    }

    static void AddFolders(const std::string& user, std::vector<QueueFinding>& findings) {
        constexpr FolderRule rules[] = {{cachesFolder.substr(0, cachesFolder.size() - 1), 0711, true},
                                        {twoWayFolder, 0755, true},
                                        {"/etc/torka/controllers", 0755, false}};
        bool areGood = true;
        for (const FolderRule& rule : rules) {
            std::string remedy;
            const std::string problem = folderProblem(rule, user, remedy);
            if (!problem.empty()) {
                areGood = false;
                findings.push_back(fault("folders", problem, remedy));
            }
        }
        if (areGood) {
            findings.push_back(good("folders", "the filter's folders have their owner and modes"));
        }
    }

    QueueFinding CheckKeys() const {
        bool needsKeys = false;
        if (description) {
            description->GetControls()->ForEach([&needsKeys](const PPDXControl* control) {
                const auto* note = dynamic_cast<const PPDXJobNote*>(control);
                needsKeys = needsKeys || (note != nullptr && (note->IsEncrypt() || note->IsAESEncrypt()));
            });
        }
        const std::string path = platform::system().Resolve(FieldKeys::installedPath).string();
        const auto keys = FieldKeys::LoadInstalled();
        if (!keys) {
            return fault("keys", keys.Why().Line(),
                         "correct the file, or its owner and mode (docs/field-protection.md)");
        }
        if (*keys) {
            return good("keys", path + " can be used");
        }
        return needsKeys
                   ? fault("keys", path + " is missing: protected fields are left out of jobs",
                           "install the site's keys (docs/field-protection.md)")
                   : good("keys", "no field of the description is protected, and no keys are installed");
    }

    QueueFinding CheckAddress() {
        CFURLRef uri;
        if (const auto opened = QueueAddresses::Open(queue)) {
            ZANCorvianPrinterPList& list = (*opened)->List();
            address = utf8Text(list.Find(cfString(queue)));
            isTwoWay = list.getIPEnabled(cfString(queue));
        }
        if (!address.empty() && isTwoWay && !addressProblem(cfString(address)).key.empty()) {
            return fault("address", "'" + address + "' is no IP address and no DNS name", AddressRemedy());
        }
        std::string host = address;
        BidiFilePaths paths;
        if (host.empty() && printer && PMPrinterCopyDeviceURI(printer, uri) == noErr) {
            const bool isService = isDiscoveredServiceConnection(session);
            host = isService ? (fillBidiFilePaths("", paths, asked) ? bonjourAddress(paths) : "")
                             : utf8Text(CFURLCopyHostName(uri));
            if (host.empty()) {
                return unknown("address",
                               isService ? "the device is a discovered service whose address is not found yet"
                                         : "the device " + askedState.deviceUri + " names no host",
                               AddressRemedy());
            }
        }
        return CheckReachable(host);
    }

    std::string AddressRemedy() const {
        return "torka address set -d " + queue + " " + queue + " ADDRESS --two-way";
    }

    QueueFinding CheckReachable(const std::string& host) const {
        HostAddress target;
        if (LookupHostAddress(host.c_str(), &target) != 0) {
            return fault("address", host + ": the host is not known", AddressRemedy());
        }
        std::unique_ptr<IcmpSocket> socket;
        constexpr int seconds = 2;
        int replied = 0;
        int error = CreateSocketForCommunicationWithHost(socket);
        if (error == 0) {
            error = exchangeEcho(*socket, target, 0, seconds, replied);
        }
        const std::string place = host + " (" + addressText(target) + ")";
        if (error == pingNotPermitted || error == pingNoProtocol) {
            return unknown("address", place + ": " + pingFailure(error), "widen net.ipv4.ping_group_range");
        }
        if (error != 0) {
            return fault("address", place + ": " + pingFailure(error),
                         "correct the network, or " + AddressRemedy());
        }
        return replied > 0
                   ? good("address", place + " answers an echo request")
                   : fault("address", place + " answers no echo request",
                           "switch the controller on, let a firewall pass ICMP echo, or " + AddressRemedy());
    }

    QueueFinding CheckTwoWay(bool hasFault) const {
        if (!isTwoWay) {
            return good("two-way", "two-way communication is off for this queue");
        }
        if (hasFault) {
            return unknown("two-way", "nothing is asked, because of the faults above", "mend them first");
        }
        const Result<std::string> answer = queueServerData(queue, address);
        if (!answer) {
            return fault("two-way", answer.Why().text, AddressRemedy() + "; the server's error log has more");
        }
        std::string names;
        for (const std::string& name : RecordText(*answer).Names()) {
            names += (names.empty() ? "" : ", ") + name;
        }
        return good("two-way", "the controller's data arrive: " + names);
    }

    QueueFinding CheckModule() const {
        const std::filesystem::path path = moduleBesideBundle(bundle);
        const ModuleAvailability module = loadJobPropertiesLibrary(path);
        unloadJobPropertiesLibrary();
        switch (module.status) {
        case ModuleStatus::loaded:
            return good("module", path.string() + " can be used");
        case ModuleStatus::notInstalled:
            return unknown("module", path.string() + " is not installed: the pane shows no full properties",
                           "install the module beside the bundle, or name the bundle with --bundle");
        case ModuleStatus::doesNotLoad:
            break;
        }
        return fault("module", module.reason,
                     "install a module for this system (docs/job-properties-module.md)");
    }

    std::string queue;
    std::string bundle;
    PMPrintSession session;
    PMPrinter printer;
    platform::QueueState state;
    std::vector<std::string> members; // of a class
    std::string asked; // the queue with the description and the records: the first member of a class
    platform::QueueState askedState;
    std::string text; // of the description
    std::unique_ptr<ZANPPD> description;
    std::string address; // of the queue's list; "" for the device's host
    bool isTwoWay = false;
};

} // namespace

std::vector<QueueFinding> checkQueueHealth(const std::string& queueName, const std::string& bundle) {
    return Patient(queueName, bundle).Check();
}

} // namespace torka::tool
