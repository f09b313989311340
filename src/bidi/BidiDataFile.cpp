#include "bidi/BidiDataFile.h"

#include "bidi/CFileHdlr.h"
#include "bidi/CommandJob.h"
#include "bidi/LineReader.h"
#include "platform/System.h"

namespace torka {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds pollInterval{50};
constexpr int dataFileChecks = 500;
constexpr int lockChecks = 61;
constexpr int readChecks = 41; // one and 40 more
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
    // What could be opened and not be read gets some more time.
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
        // A wait without limit sleeps too, so that it holds the person and not the machine.
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

// A data file that names no request is taken: the command job's completion stands for it.
bool answersRequest(const std::string& data, std::string_view requestIdentifier) {
    std::size_t size = 0;
    const RecordBlock named = CFileHdlr::stringReadData(data, requestIdentifierRecord, &size);
    return !named || std::string_view(named.get(), size) == requestIdentifier;
}

} // namespace

ServerDataOutcome fetchServerData(const PMPrinter& printer, const std::string& title, std::string_view text,
                                  std::string_view requestIdentifier, const BidiFilePaths& paths,
                                  BidiDataFile& dataFile, const WaitObserver& observer) {
    switch (sendCommandAndWait(printer, text, title, observer)) {
    case CommandOutcome::queueNotReady:
        return ServerDataOutcome::queueNotReady;
    case CommandOutcome::notSent:
        return ServerDataOutcome::notSent;
    case CommandOutcome::notCompleted:
        return ServerDataOutcome::jobNotCompleted;
    case CommandOutcome::completed:
        break;
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
    return answersRequest(*dataFile.getBidiDataCopy(), requestIdentifier) ? ServerDataOutcome::read
                                                                          : ServerDataOutcome::otherRequest;
}

} // namespace torka
