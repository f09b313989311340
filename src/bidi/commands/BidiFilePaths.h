#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// The files through which the pane and the queue's filter meet.
//
// A path has a text, as it is recorded and sent, and a place, where the file really lies: "/Library/…" lies
// below the system root, and the files that are named beside the queue's PPD lie in one folder that the
// filter may write and everybody may read. The filter asks here too, so that both sides mean the same files.

namespace torka {

// Places of the two-way files of all queues, below the system root. The folder has mode 0755, its files 0644;
// the filter writes each under a temporary name and renames it; the pane never writes there.
inline constexpr std::string_view twoWayFolder = "/var/cache/torka/queues";
inline constexpr std::string_view cachesFolder = "/Library/Caches/ZAN/";
// While it exists, waits for the data file have no limit and the failure message is not shown.
inline constexpr std::string_view timeoutOverrideFile = "/Library/Caches/ZAN/zan_timeout_override.txt";

inline constexpr std::string_view dataFileSuffix = ".bididata";
// Stands between a queue's name and a request's identifier in the name of that request's own data file. No
// queue's name holds it.
inline constexpr char requestMark = '#';
inline constexpr std::string_view lockFileSuffix = ".open";
inline constexpr std::string_view bonjourFileSuffix = ".bonjour";

// Texts of less than 512 bytes.
struct BidiFilePaths {
    std::string dataFile;    // records, written by the filter
    std::string lockFile;    // there while the filter writes the data file
    std::string bonjourFile; // the printer address found through Bonjour
};

// The paths beside a queue's PPD. `ppdPath` is the file itself, no link to it; the queue's name is the PPD's
// file name without ".ppd", unless `queueName` tells it, as it must where the PPD is a copy under some other
// name. False, with empty paths, when there is no name, the name could lead to another folder, or a path is
// too long.
bool fillBidiFilePaths(std::string_view ppdPath, BidiFilePaths& paths, std::string_view queueName = {});

// The file that a symbolic link names; a path that is no link comes back unchanged.
std::string resolvedPPDPath(const std::string& ppdPath);

// Where a file beside a PPD really lies; empty for a text that names none.
std::filesystem::path twoWayPlace(std::string_view pathText);
// Where one of a queue's two-way files lies; empty for a name that could lead to another folder.
std::filesystem::path twoWayPlace(std::string_view queueName, std::string_view suffix);

// What follows the queue's name in the name of the data file that answers one request alone; "" for an
// identifier that is not one.
std::string requestFileSuffix(std::string_view requestIdentifier);
// Its path text, beside the queue's data file; "" likewise.
std::string requestDataFile(const BidiFilePaths& paths, std::string_view requestIdentifier);

// True for what may stand as one component of a path: not empty, not "." or "..", no "/" and no NUL.
bool isFileName(std::string_view name);

// Path text of the filter's report that it could not connect; "" for an identifier that is not one.
std::string connectionErrorFile(std::string_view requestIdentifier);

// Whether something stands at a place, asked of platform::System.
bool fileExists(const std::filesystem::path& place);
bool timeoutOverridden();

} // namespace torka
