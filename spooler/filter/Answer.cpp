// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/Answer.h"

#include "bidi/commands/BidiFilePaths.h"
#include "bidi/records/BidiDataFile.h"
#include "bidi/records/RecordWriter.h"
#include "spooler/filter/PrivateFolder.h"
#include "spooler/filter/QueueRecords.h"
#include "spooler/filter/TicketStore.h"
#include "spooler/filter/TwoWayFolder.h"

#include <ctime>

namespace torka::filter {

namespace {

constexpr std::string_view addressRecord = "QVInvalidPrinterAddress";
constexpr std::string_view reportPrefix = "ConnectionErrorInfoFile";
constexpr std::string_view reportSuffix = ".txt";
constexpr unsigned everybodyReads = 0644;

// Adds one line per chunk. Returns false when a record is refused; the others are added.
bool addDataRecord(std::string_view name, std::string_view payload, std::string& text) {
    return encodeRecord(name, payload.data(), payload.size(),
                        [&text](std::string_view chunk, std::string_view base64) {
                            text.append(chunk).append(": ").append(base64).append("\n");
                        });
}

// Returns the parts of the request that determine the answer. "" for a request on behalf of a named user:
// nobody else may use its answer.
std::string decidingText(const AskedBy& asked) {
    std::vector<RequestLine> lines;
    if (!asked.language.empty()) {
        lines.emplace_back("locale", asked.language);
    }
    for (const RequestLine& line : asked.request.lines) {
        if (line.first == "address" || line.first == "keys" || line.first == "records") {
            lines.push_back(line);
        }
    }
    return valueOf(asked.request, "user").empty()
               ? updateRequestText(asked.request.identifier, asked.request.printerAddress, requestText(lines))
               : std::string();
}

std::string dataFileText(const AskedBy& asked, const std::vector<ControllerRecord>& records) {
    std::string text;
    addDataRecord(requestIdentifierRecord, asked.request.identifier, text);
    if (const std::string deciding = decidingText(asked); !deciding.empty()) {
        addDataRecord(requestTextRecord, deciding, text);
    }
    addDataRecord(answerTimeRecord, std::to_string(std::time(nullptr)), text);
    for (const ControllerRecord& record : records) {
        if (!addDataRecord(record.name, record.payload, text)) {
            tellDebug(record.name + ": the record is too long and left out");
        }
    }
    return text;
}

// Writes the record that tells the pane whether the address is wrong. A failure is only logged.
void putAddressRecord(const std::string& queue, const char* isInvalid) {
    if (Result<void> put = putRecords(queue, {{std::string(addressRecord), isInvalid}}); !put) {
        tellDebug(std::string(addressRecord) + ": " + put.Why().text);
    }
}

Result<void> writeAnswer(const AskedBy& asked, const ControllerAnswer& answer, QueueLock& lock) {
    const std::string text = dataFileText(asked, answer.dataRecords);
    std::error_code error = writeTwoWayFile(asked.queue, requestFileSuffix(asked.request.identifier), text);
    if (!error) {
        error = writeTwoWayFile(asked.queue, dataFileSuffix, text);
    }
    lock.Release();
    if (error) {
        removeTwoWayFile(asked.queue, asked.queue + requestFileSuffix(asked.request.identifier));
        return Fault{"the two-way data cannot be written: " + error.message()};
    }
    std::vector<NamedPayload> records;
    for (const ControllerRecord& record : answer.ppdRecords) {
        records.emplace_back(record.name, record.payload);
    }
    records.emplace_back(addressRecord, "no");
    Result<void> put = putRecords(asked.queue, std::move(records));
    if (!put) {
        putAddressRecord(asked.queue, "no");
    }
    return put;
}

Result<void> reportUnreachable(const AskedBy& asked, QueueLock& lock) {
    const std::string name(lastComponent(connectionErrorFile(asked.request.identifier)));
    const std::error_code error =
        PrivateFolder::Write(name, "No connection to " + asked.address + "\n", everybodyReads);
    lock.Release();
    putAddressRecord(asked.queue, "yes");
    return error ? Fault{"the failed connection cannot be reported: " + error.message()} : Result<void>();
}

} // namespace

Result<void> answerRequest(const AskedBy& asked, ControllerSource& source) {
    PrivateFolder::Remove(lastComponent(connectionErrorFile(asked.request.identifier)));
    QueueLock lock(asked.queue);
    if (lock.Failure()) {
        return Fault{"the folder of two-way data cannot be used: " + lock.Failure().message()};
    }
    const std::string found = source.FoundAddress();
    if (found.empty()) {
        removeTwoWayFile(asked.queue, asked.queue + std::string(bonjourFileSuffix));
    } else if (const std::error_code error = writeTwoWayFile(asked.queue, bonjourFileSuffix, found + "\n")) {
        tellDebug("the address of the device's service cannot be kept: " + error.message());
    }
    const ControllerAnswer answer = source.Ask(asked.address, asked.request.lines, asked.language);
    return answer.isReached ? writeAnswer(asked, answer, lock) : reportUnreachable(asked, lock);
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
