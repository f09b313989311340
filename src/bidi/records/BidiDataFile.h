#pragma once

#include "bidi/commands/BidiFailure.h"
#include "bidi/commands/BidiFilePaths.h"

#include <memory>
#include <string>
#include <string_view>

namespace torka {

// The two-way data file of one queue, as the pane reads it: waits for it, and keeps a copy of its text.
//
// Owns the copy. Looks at the failure message's owner, which must outlive it.
class BidiDataFile {
public:
    // `paths` are path texts; their places are asked of twoWayPlace.
    BidiDataFile(BidiFilePaths queuePaths, BidiFailure& failureMessage, WaitObserver waitObserver = {});

    // Waits up to 25 seconds for the file, for each look up to 3 seconds more while the lock file exists, and
    // reads it: every line, ended by LF. False, with the old copy kept, when it never came or could not be
    // read.
    bool readBidiData();
    // Reads the data file of one request, which is there whole or not at all; nothing is waited for. False
    // when it is not there or cannot be read.
    bool readRequestData(std::string_view requestIdentifier);
    // The text that was read last; never null, and not changed by a later reading.
    std::shared_ptr<const std::string> getBidiDataCopy() const { return fdata; }

    // Waits up to 35 seconds for a file of the queue that can be opened; a connection error reported for the
    // request ends the wait. When the time was used up the failure message is shown. While the override file
    // exists the wait has no limit and no message. True when the file was opened and no error reported.
    bool WaitForFileToBeCreated(std::string_view requestIdentifier, std::string_view path);

    // Waits up to 5 seconds until there is no lock file; false when it stayed.
    bool canBiDiDataFileBeAccessed();

private:
    BidiFilePaths paths;
    BidiFailure& failure;
    WaitObserver observer;
    std::shared_ptr<const std::string> fdata = std::make_shared<const std::string>();
};

// How the answer to a request of server data came in.
enum class ServerDataOutcome {
    read,            // getBidiDataCopy has it
    queueNotReady,   // the queue is stopped or takes no jobs: nothing was sent
    notSent,         // the printing system refused the job
    jobNotCompleted, // failed, was given up, or cancelled
    connectionError, // the filter reported that it could not connect, or the file never came
    locked,          // the filter did not end its writing
    notRead,         // the file could not be read
    otherRequest,    // the file answers another request
};

// For a log or a tool: what stands behind "failed: ".
const char* outcomeText(ServerDataOutcome outcome);

// Narrow records of a data file. Which request it answers: its identifier; identifier, address and the lines
// that decide the answer, as updateRequestText writes them; and the seconds since 1970 at which it was
// written.
inline constexpr std::string_view requestIdentifierRecord = "RequestIdentifier";
inline constexpr std::string_view requestTextRecord = "RequestText";
inline constexpr std::string_view answerTimeRecord = "AnswerTime";

// Sends a request of server data and reads its answer: the command job; the request's own data file, or else
// the queue's: its data file, the lock file, the data, in this order, so that an old file never answers a new
// request. The queue's file may answer another request than this one where it was written after the command
// was done and for the same address, language, keywords and records.
ServerDataOutcome fetchServerData(const PMPrinter& printer, const std::string& title, std::string_view text,
                                  std::string_view requestIdentifier, const BidiFilePaths& paths,
                                  BidiDataFile& dataFile, const WaitObserver& observer = {});

} // namespace torka
