// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// The files through which the pane and the queue's filter exchange data.
//
// A path has a text, which is recorded and sent, and a place, where the file really lies. "/Library/…" lies
// below the system root. The files that are named beside the queue's PPD lie in one folder: the filter may
// write it, and everybody may read it. The pane and the filter both use these functions, so that they mean
// the same files.

namespace torka {

// The folder of all queues' two-way files, below the system root. The folder has mode 0755, its files 0644.
// The filter writes each file under a temporary name and renames it. The pane never writes there.
inline constexpr std::string_view twoWayFolder = "/var/cache/torka/queues";
inline constexpr std::string_view cachesFolder = "/Library/Caches/ZAN/";
// While this file exists, waits for the data file have no limit, and the failure message is not shown.
inline constexpr std::string_view timeoutOverrideFile = "/Library/Caches/ZAN/zan_timeout_override.txt";

inline constexpr std::string_view dataFileSuffix = ".bididata";
// Separates the queue's name and the request's identifier in the name of a request's own data file. A queue's
// name cannot contain it.
inline constexpr char requestMark = '#';
inline constexpr std::string_view lockFileSuffix = ".open";
inline constexpr std::string_view bonjourFileSuffix = ".bonjour";

// Path texts of less than 512 bytes each.
struct BidiFilePaths {
    std::string dataFile;    // records, written by the filter
    std::string lockFile;    // exists while the filter writes the data file
    std::string bonjourFile; // holds the printer address found through Bonjour
};

// The paths beside a queue's PPD. `ppdPath` is the file itself, not a link to it. The queue's name is the
// PPD's file name without ".ppd", unless `queueName` gives it. REQUIRES: `queueName` when the PPD is a copy
// under another name. False, with empty paths, when the name is empty or could lead to another folder, or
// when a path is too long.
bool fillBidiFilePaths(std::string_view ppdPath, BidiFilePaths& paths, std::string_view queueName = {});

// The target of a symbolic link. Returns a path that is no link unchanged.
std::string resolvedPPDPath(const std::string& ppdPath);

// The place of a file named beside a PPD; empty when the text has no usable file name.
std::filesystem::path twoWayPlace(std::string_view pathText);
// The place of one of a queue's two-way files; empty when the name could lead to another folder.
std::filesystem::path twoWayPlace(std::string_view queueName, std::string_view suffix);

// The name of a request's own data file consists of the queue's name and this suffix. "" for an invalid
// identifier.
std::string requestFileSuffix(std::string_view requestIdentifier);
// The path text of that file, beside the queue's data file. "" for an invalid identifier.
std::string requestDataFile(const BidiFilePaths& paths, std::string_view requestIdentifier);

// True for a valid component of a path: not empty, not "." or "..", without "/" and NUL.
bool isFileName(std::string_view name);

// The path text of the file by which the filter reports a connection error. "" for an invalid identifier.
std::string connectionErrorFile(std::string_view requestIdentifier);

// Whether a file exists at the place, according to platform::System.
bool fileExists(const std::filesystem::path& place);
bool timeoutOverridden();

} // namespace torka
