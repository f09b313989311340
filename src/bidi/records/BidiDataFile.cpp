// SPDX-License-Identifier: Apache-2.0
#include "bidi/records/BidiDataFile.h"

#include "bidi/commands/CommandJob.h"
#include "bidi/commands/SpoolerCommands.h"
#include "bidi/records/CFileHdlr.h"
#include "bidi/text/LineReader.h"
#include "platform/NetServices.h"
#include "platform/System.h"

#include <charconv>
#include <optional>

namespace torka {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds pollInterval{50};
constexpr int dataFileChecks = 500;
constexpr int lockChecks = 61;
constexpr int readChecks = 41; // the first read and 40 repetitions
constexpr int accessChecks = 101;
constexpr milliseconds creationInterval{300};
constexpr milliseconds creationLimit{35'000};

// Whether a read failed because the file could not be opened at all.
bool isOpenFailure(const std::error_code& failure) {
    return failure == std::errc::no_such_file_or_directory || failure == std::errc::not_a_directory ||
           failure == std::errc::permission_denied || failure == std::errc::too_many_files_open ||
           failure == std::errc::too_many_files_open_in_system;
}

bool canBeOpened(const std::filesystem::path& place) {
    std::string ignored;
    return !place.empty() && !isOpenFailure(system().ReadFile(place, 0, ignored));
}

} // namespace

BidiDataFile::BidiDataFile(BidiFilePaths queuePaths, BidiFailure& failureMessage, WaitObserver waitObserver)
    : paths(std::move(queuePaths))
    , failure(failureMessage)
    , observer(std::move(waitObserver)) {}

bool BidiDataFile::readBidiData() {
    const std::filesystem::path dataPlace = twoWayPlace(paths.dataFile);
    const std::filesystem::path lockPlace = twoWayPlace(paths.lockFile);
    std::string content;
    std::error_code readFailure;
    bool cancelled = false;
    const auto open = [&] {
        if (!fileExists(dataPlace)) {
            return false;
        }
        const auto unlocked = [&] { return !fileExists(lockPlace); };
        poll({WaitFor::lockFile, lockChecks, pollInterval, false}, unlocked, observer, &cancelled);
        if (cancelled) {
            return true;
        }
        readFailure = system().ReadFile(dataPlace, maximumDataFile, content);
        return !isOpenFailure(readFailure);
    };
    if (!poll({WaitFor::dataFile, dataFileChecks, pollInterval, true}, open, observer) || cancelled) {
        return false;
    }
    // Read again for some time when the file opened but could not be read.
    bool first = true;
    const auto readable = [&] {
        if (!first) {
            readFailure = system().ReadFile(dataPlace, maximumDataFile, content);
        }
        first = false;
        return !readFailure;
    };
    if (!poll({WaitFor::dataFile, readChecks, pollInterval, false}, readable, observer)) {
        return false;
    }
    fdata = std::make_shared<const std::string>(withPlainLineEnds(std::move(content)));
    return true;
}

bool BidiDataFile::readRequestData(std::string_view requestIdentifier) {
    std::string content;
    const std::filesystem::path place = twoWayPlace(requestDataFile(paths, requestIdentifier));
    if (place.empty() || system().ReadFile(place, maximumDataFile, content)) {
        return false;
    }
    fdata = std::make_shared<const std::string>(withPlainLineEnds(std::move(content)));
    return true;
}

bool BidiDataFile::WaitForFileToBeCreated(std::string_view requestIdentifier, std::string_view path) {
    const std::string errorFile = connectionErrorFile(requestIdentifier);
    const auto connectionFailed = [&] {
        return !errorFile.empty() && fileExists(system().Resolve(errorFile));
    };
    const std::filesystem::path place = twoWayPlace(path);
    milliseconds waited{0};
    bool opened = false;
    while (!connectionFailed() && !opened) {
        opened = canBeOpened(place);
        // A wait without limit sleeps too, to leave the processor idle.
        const bool unlimited = timeoutOverridden();
        if (observer) {
            observer({WaitFor::dataFile, waited, unlimited ? milliseconds(0) : creationLimit});
        }
        if (!system().Sleep(creationInterval)) {
            return false;
        }
        waited += unlimited ? milliseconds(0) : creationInterval;
        if (waited > creationLimit) {
            break;
        }
    }
    if (waited >= creationLimit && !timeoutOverridden()) {
        failure.showBiDiError();
    }
    return opened && !connectionFailed();
}

bool BidiDataFile::canBiDiDataFileBeAccessed() {
    const std::filesystem::path lockPlace = twoWayPlace(paths.lockFile);
    return poll(
        {WaitFor::lockFile, accessChecks, pollInterval, false}, [&] { return !fileExists(lockPlace); },
        observer);
}

namespace {

std::optional<std::string> narrowRecord(const std::string& data, std::string_view name) {
    std::size_t size = 0;
    const RecordBlock block = CFileHdlr::stringReadData(data, name, &size);
    return block ? std::optional(std::string(block.get(), size)) : std::nullopt;
}

// Compares the request that a data file answers with another request.
class AnsweredRequest {
public:
    AnsweredRequest(const std::string& data, const UpdateRequest& asked)
        : identifier(narrowRecord(data, requestIdentifierRecord))
        , answered(parseUpdateRequest(narrowRecord(data, requestTextRecord).value_or("")))
        , isSame(answered && asksTheSame(*answered, asked))
        , isOwn(identifier == asked.identifier &&
                (!answered || isSameAddress(answered->printerAddress, asked.printerAddress)))
        , time(narrowRecord(data, answerTimeRecord).value_or("")) {}

    // A data file that names no request serves: the command job has completed, so the file is its answer.
    bool Serves(std::int64_t commandOverAt) const {
        return !identifier || isOwn || (isSame && WrittenAt() >= commandOverAt);
    }
    // A file with the request's identifier in its name must also hold that identifier.
    bool IsOwn() const { return isOwn; }

private:
    std::int64_t WrittenAt() const {
        std::int64_t seconds = -1;
        const auto [end, error] = std::from_chars(time.data(), time.data() + time.size(), seconds);
        return error == std::errc() && end == time.data() + time.size() ? seconds : -1;
    }

    std::optional<std::string> identifier;
    std::optional<UpdateRequest> answered;
    bool isSame;
    bool isOwn;
    std::string time;
};

} // namespace

const char* outcomeText(ServerDataOutcome outcome) {
    switch (outcome) {
    case ServerDataOutcome::read:
        return "read";
    case ServerDataOutcome::queueNotReady:
        return "the queue is stopped or takes no jobs";
    case ServerDataOutcome::notSent:
        return "the printing system took no command job";
    case ServerDataOutcome::jobNotCompleted:
        return "the command job was not completed";
    case ServerDataOutcome::connectionError:
        return "the filter could not reach the controller";
    case ServerDataOutcome::locked:
        return "the data file stayed locked";
    case ServerDataOutcome::notRead:
        return "the data file could not be read";
    case ServerDataOutcome::otherRequest:
        return "the data file answers another request";
    }
    return "unknown";
}

ServerDataOutcome fetchServerData(const PMPrinter& printer, const std::string& title, std::string_view text,
                                  std::string_view requestIdentifier, const BidiFilePaths& paths,
                                  BidiDataFile& dataFile, const WaitObserver& observer) {
    CommandEnd end;
    switch (sendCommandAndWait(printer, text, title, observer, &end)) {
    case CommandOutcome::queueNotReady:
        return ServerDataOutcome::queueNotReady;
    case CommandOutcome::notSent:
        return ServerDataOutcome::notSent;
    case CommandOutcome::notCompleted:
        return ServerDataOutcome::jobNotCompleted;
    case CommandOutcome::completed:
    case CommandOutcome::ended:
        break;
    }
    UpdateRequest asked = parseUpdateRequest(text).value_or(UpdateRequest());
    asked.identifier = requestIdentifier;
    if (dataFile.readRequestData(requestIdentifier) &&
        AnsweredRequest(*dataFile.getBidiDataCopy(), asked).IsOwn()) {
        return ServerDataOutcome::read;
    }
    if (!dataFile.WaitForFileToBeCreated(requestIdentifier, paths.dataFile)) {
        return ServerDataOutcome::connectionError;
    }
    if (!dataFile.canBiDiDataFileBeAccessed()) {
        return ServerDataOutcome::locked;
    }
    if (!dataFile.readBidiData()) {
        return ServerDataOutcome::notRead;
    }
    return AnsweredRequest(*dataFile.getBidiDataCopy(), asked).Serves(end.overAt)
               ? ServerDataOutcome::read
               : ServerDataOutcome::otherRequest;
}

} // namespace torka
