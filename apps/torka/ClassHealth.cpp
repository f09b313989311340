// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/ClassHealth.h"

#include "PPDX/PPDObjects/Controls/FixedControls.h"
#include "apps/torka/Description.h"
#include "apps/torka/DescriptionDiff.h"
#include "apps/torka/FilterLines.h"
#include "connection/ZANCorvianPrinterPList.h"
#include "platform/Spooler.h"
#include "platform/System.h"
#include "platform/cups/CupsPrinting.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

namespace torka::tool {

namespace {

QueueFinding memberFault(std::string text, std::string remedy) {
    return {"members", CheckState::fault, std::move(text), std::move(remedy)};
}

// What differs between two descriptions, the first difference only; "" for descriptions of one kind. The
// server and the administrator set defaults for each queue; only those that tell the printer's hardware
// count.
std::string firstDifference(const ZANPPD& first, const ZANPPD& other) {
    const auto isInstallable = [&first](const std::string& keyword) {
        bool isFound = false;
        first.GetControls()->ForEach([&](const PPDXControl* control) {
            isFound = isFound || (keyword == control->Keyword() && isInstallableOption(*control));
        });
        return isFound;
    };
    for (const DescriptionChange& change : compareDescriptions(first, other)) {
        if (change.what != "default" || isInstallable(change.subject)) {
            return change.what + (change.subject.empty() ? "" : " " + change.subject);
        }
    }
    return {};
}

// Why a job for the class cannot print at a printer as its settings say; "" when it can. `description` is the
// first printer's, or null.
std::string descriptionFault(const std::string& member, const ZANPPD* description) {
    PMPrinter printer;
    CFURLRef url;
    const auto session = std::make_shared<CupsSession>(member);
    std::string text;
    if (PMSessionGetCurrentPrinter(session, printer) != noErr ||
        PMPrinterCopyDescriptionURL(printer, cfString("PMPPDDescriptionType"), url) != noErr ||
        platform::system().ReadFile(CFURLCopyFileSystemPath(url), maximumDescription, text)) {
        return member + " has no description";
    }
    if (!filterLineFaults(text).empty()) {
        return member + " prints without torkafilter, so that a job for the class loses its settings there";
    }
    const std::string difference =
        description == nullptr
            ? ""
            : firstDifference(*description, *readDescription(CFURLCopyFileSystemPath(url)));
    return difference.empty() ? ""
                              : member + " has another description (" + difference +
                                    "), for which settings of the class may have no meaning";
}

bool hasEntry(const std::string& queue, const std::string& entry) {
    const ZANCorvianPrinterPList list(
        std::make_unique<QueuePropertyListStore>(QueueAccess{std::make_shared<CupsSession>(queue), {}}));
    bool isThere = false;
    list.Exists(cfString(entry), isThere);
    return isThere;
}

// An entry of the class stays behind at a printer that is no longer the first one of the class.
void addFormerLists(const std::string& name, const std::string& first, std::vector<QueueFinding>& findings) {
    const bool isSet = hasEntry(first, name);
    for (const platform::QueueState& queue :
         platform::listQueues().value_or(std::vector<platform::QueueState>())) {
        // A class shows the list of its first printer.
        if (queue.name != first && hasEntry(queue.name, name) &&
            platform::describedQueue(queue.name) == queue.name) {
            std::string remedy("torka address ");
            remedy.append(isSet ? "remove -d " + queue.name : "set -d " + name).append(" ").append(name);
            findings.push_back(memberFault(queue.name +
                                               " keeps an entry of the class in its address list, which "
                                               "counts only at the first printer, " +
                                               first,
                                           isSet ? remedy : remedy + " ADDRESS"));
        }
    }
}

} // namespace

QueueFinding stateFinding(const std::string& queue, const platform::QueueState& state) {
    if (state.state == destinationStateStopped) {
        return {"state", CheckState::fault,
                "the queue is stopped" + (state.message.empty() ? "" : ": " + state.message),
                "cupsenable " + queue};
    }
    if (!state.acceptsJobs) {
        return {"state", CheckState::fault, "the queue rejects jobs", "cupsaccept " + queue};
    }
    return {"state", CheckState::good, "the queue takes and prints jobs"};
}

std::vector<QueueFinding> checkClass(const std::string& name, const std::vector<std::string>& members,
                                     const ZANPPD* description) {
    std::vector<QueueFinding> findings;
    std::string names;
    for (const std::string& member : members) {
        names += (names.empty() ? "" : ", ") + member;
        if (std::string problem = descriptionFault(member, description); !problem.empty()) {
            findings.push_back(
                memberFault(std::move(problem), "torka queue add " + member + " URI FILE.ppd"));
        }
    }
    if (findings.empty() && description != nullptr) {
        findings.push_back({"members", CheckState::good, "the class has printers of one kind: " + names});
    }
    for (const std::string& member : members) {
        const std::optional<platform::QueueState> state = platform::queueState(member);
        QueueFinding finding = stateFinding(member, state.value_or(platform::QueueState()));
        if (state && finding.state == CheckState::fault) {
            findings.push_back(memberFault(member + " gets no job of the class: " + finding.text,
                                           std::move(finding.remedy)));
        }
    }
    addFormerLists(name, members.front(), findings);
    return findings;
}

} // namespace torka::tool
