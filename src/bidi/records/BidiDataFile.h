// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/BidiFailure.h"
#include "bidi/commands/BidiFilePaths.h"

#include <memory>
#include <string>
#include <string_view>

namespace torka {

// Reads the two-way data file of one queue for the pane: waits for the file and keeps a copy of its text.
//
// Owns the copy. Refers to the BidiFailure, which must outlive it.
class BidiDataFile {
public:
    // `queuePaths` are path texts; twoWayPlace maps them to places.
    BidiDataFile(BidiFilePaths queuePaths, BidiFailure& failureMessage, WaitObserver waitObserver = {});

    // Reads the file; every line of the copy ends in LF. Checks up to 25 seconds for the file. A check waits
    // up to 3 seconds more while the lock file exists. A file that opens but cannot be read is read again for
    // up to 2 seconds. False, with the old copy kept, when the file never appeared or could not be read.
    bool readBidiData();
    // Reads the data file of one request. It is complete as soon as it exists, so nothing is waited for.
    // False when it is absent or cannot be read.
    bool readRequestData(std::string_view requestIdentifier);
    // The text of the last successful read. Never null. A later read does not change a copy handed out
    // before.
    std::shared_ptr<const std::string> getBidiDataCopy() const { return fdata; }

    // Waits up to 35 seconds until the file can be opened. A connection error that the filter reports for the
    // request ends the wait. Shows the failure message when the time is used up. While the override file
    // exists, the wait has no limit and shows no message. True when the file was opened and no error was
    // reported.
    bool WaitForFileToBeCreated(std::string_view requestIdentifier, std::string_view path);

    // Waits up to 5 seconds until the lock file is gone. False when it still exists.
    bool canBiDiDataFileBeAccessed();

private:
    BidiFilePaths paths;
    BidiFailure& failure;
    WaitObserver observer;
    std::shared_ptr<const std::string> fdata = std::make_shared<const std::string>();
};

// The result of a request for server data.
enum class ServerDataOutcome {
    read,            // getBidiDataCopy returns the answer
    queueNotReady,   // the queue is stopped or rejects jobs; nothing was sent
    notSent,         // the printing system refused the job
    jobNotCompleted, // the job failed, did not end in time, or was cancelled
    connectionError, // the filter reported that it could not connect, or the file never appeared
    locked,          // the filter did not remove the lock file
    notRead,         // the file could not be read
    otherRequest,    // the file answers another request
};

// The outcome in words, for a log or a tool.
const char* outcomeText(ServerDataOutcome outcome);

// Narrow records of a data file that name the request which it answers: the request's identifier; its
// identifier, address and decisive lines, as updateRequestText writes them; the time of writing in seconds
// since 1970.
inline constexpr std::string_view requestIdentifierRecord = "RequestIdentifier";
inline constexpr std::string_view requestTextRecord = "RequestText";
inline constexpr std::string_view answerTimeRecord = "AnswerTime";

// Sends a request for server data and reads its answer, in steps whose order keeps an old file from answering
// a new request: waits for the command job; reads the request's own data file; without one, waits for the
// queue's data file, then for the end of its lock, and reads it. The queue's file may name another request:
// it still serves when it was written after the end of the command, and for the same address, language,
// keywords and records.
ServerDataOutcome fetchServerData(const PMPrinter& printer, const std::string& title, std::string_view text,
                                  std::string_view requestIdentifier, const BidiFilePaths& paths,
                                  BidiDataFile& dataFile, const WaitObserver& observer = {});

} // namespace torka
