#include "spooler/filter/Answer.h"

#include "bidi/BidiDataFile.h"
#include "bidi/BidiFilePaths.h"
#include "bidi/CPPDMsgHdlr.h"
#include "bidi/RecordWriter.h"
#include "platform/System.h"
#include "spooler/filter/PrivateFolder.h"
#include "spooler/filter/TicketStore.h"

#include <csignal>
#include <cstdlib>
#include <cups/ppd.h>
#include <filesystem>
#include <memory>

// The library marks its PPD calls as deprecated; there are no others for a PPD's attributes.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace torka::filter {

namespace {

constexpr std::string_view addressRecord = "QVInvalidPrinterAddress";
constexpr std::string_view reportPrefix = "ConnectionErrorInfoFile";
constexpr std::string_view reportSuffix = ".txt";
constexpr unsigned everybodyReads = 0644;
constexpr unsigned everybodyPasses = 0755;

struct ClosePPD {
    void operator()(ppd_file_t* ppd) const { ppdClose(ppd); }
};

// A cancelled job ends the filter after what it is writing, so that no lock stays behind.
class TerminationLater {
public:
    TerminationLater() {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGTERM);
        sigprocmask(SIG_BLOCK, &signals, &before);
    }
    TerminationLater(const TerminationLater&) = delete;
    TerminationLater& operator=(const TerminationLater&) = delete;
    ~TerminationLater() { sigprocmask(SIG_SETMASK, &before, nullptr); }

private:
    sigset_t before{};
};

// One line a chunk. False when a record was refused; the others are there.
bool addDataRecord(std::string_view name, std::string_view payload, std::string& text) {
    return encodeRecord(name, payload.data(), payload.size(),
                        [&text](std::string_view chunk, std::string_view base64) {
                            text.append(chunk).append(": ").append(base64).append("\n");
                        });
}

std::string dataFileText(const std::string& requestIdentifier, const std::vector<ControllerRecord>& records) {
    std::string text;
    addDataRecord(requestIdentifierRecord, requestIdentifier, text);
    for (const ControllerRecord& record : records) {
        if (!addDataRecord(record.name, record.payload, text)) {
            tellDebug(record.name + ": the record is too long and left out");
        }
    }
    return text;
}

} // namespace

bool putRecords(const std::string& queue, std::vector<NamedPayload> records) {
    // The server names the queue's PPD in the filter's environment.
    const char* path = std::getenv("PPD");
    const std::unique_ptr<ppd_file_t, ClosePPD> ppd(path == nullptr ? nullptr : ppdOpenFile(path));
    if (ppd) {
        std::erase_if(records, [&ppd](const NamedPayload& record) {
            std::size_t size = 0;
            const RecordBlock held = ppdxReadData(ppd.get(), record.first, &size);
            return held && std::string_view(held.get(), size) == record.second;
        });
    }
    tellDebug(queue + ": " + std::to_string(records.size()) + " records are new in the PPD");
    return sendRecords(records);
}

std::string writeAnswer(const std::string& queue, const std::string& requestIdentifier,
                        const ControllerAnswer& answer) {
    const std::string text = dataFileText(requestIdentifier, answer.dataRecords);
    if (const std::error_code error = makeFolder(platform::system().Resolve(twoWayFolder), everybodyPasses)) {
        return "the folder of two-way data cannot be used: " + error.message();
    }
    const TerminationLater termination;
    const std::filesystem::path lock = twoWayPlace(queue, lockFileSuffix);
    const std::filesystem::path data = twoWayPlace(queue, dataFileSuffix);
    std::error_code error = platform::system().WriteFile(lock, "", everybodyReads);
    if (!error) {
        error = platform::system().WriteFile(data, text, everybodyReads);
    }
    std::error_code ignored;
    std::filesystem::remove(lock, ignored);
    if (error) {
        return "the two-way data cannot be written: " + error.message();
    }
    std::vector<NamedPayload> records;
    for (const ControllerRecord& record : answer.ppdRecords) {
        records.emplace_back(record.name, record.payload);
    }
    records.emplace_back(addressRecord, "no");
    return putRecords(queue, std::move(records)) ? "" : "a record of the PPD is too long";
}

std::string reportUnreachable(const std::string& queue, const std::string& requestIdentifier,
                              const std::string& address) {
    const std::string name(lastComponent(connectionErrorFile(requestIdentifier)));
    const TerminationLater termination;
    const std::error_code error =
        PrivateFolder::Write(name, "No connection to " + address + "\n", everybodyReads);
    putRecords(queue, {{std::string(addressRecord), "yes"}});
    return error ? "the failed connection cannot be reported: " + error.message() : "";
}

bool removeTwoWayFile(std::string_view queue, std::string_view name) {
    for (const std::string_view suffix : {dataFileSuffix, lockFileSuffix, bonjourFileSuffix}) {
        if (name == std::string(queue).append(suffix)) {
            std::error_code error;
            return std::filesystem::remove(twoWayPlace(queue, suffix), error);
        }
    }
    return false;
}

bool isConnectionErrorFile(std::string_view name) {
    if (!name.starts_with(reportPrefix) || !name.ends_with(reportSuffix) ||
        name.size() < reportPrefix.size() + reportSuffix.size()) {
        return false;
    }
    name.remove_prefix(reportPrefix.size());
    name.remove_suffix(reportSuffix.size());
    return isRequestIdentifier(name);
}

} // namespace torka::filter
