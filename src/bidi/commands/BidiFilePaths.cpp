// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/BidiFilePaths.h"

#include "bidi/commands/SpoolerCommands.h"
#include "platform/System.h"

namespace torka {

namespace {

constexpr std::size_t pathCapacity = 512; // with a NUL
constexpr std::string_view descriptionSuffix = ".ppd";

std::string_view fileNameOf(std::string_view path) { return path.substr(path.rfind('/') + 1); }

} // namespace

bool isFileName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

bool fillBidiFilePaths(std::string_view ppdPath, BidiFilePaths& paths, std::string_view queueName) {
    paths = {};
    const std::string_view fileName = fileNameOf(ppdPath);
    const std::string_view folder = ppdPath.substr(0, ppdPath.size() - fileName.size());
    std::string_view queue = queueName.empty() ? fileName : queueName;
    if (queueName.empty() && queue.ends_with(descriptionSuffix)) {
        queue.remove_suffix(descriptionSuffix.size());
    }
    if (!isFileName(queue) || folder.size() + queue.size() + dataFileSuffix.size() >= pathCapacity) {
        return false;
    }
    const std::string stem = std::string(folder.empty() ? "./" : folder).append(queue);
    if (stem.size() + dataFileSuffix.size() >= pathCapacity) {
        return false;
    }
    paths.dataFile = stem + std::string(dataFileSuffix);
    paths.lockFile = stem + std::string(lockFileSuffix);
    paths.bonjourFile = stem + std::string(bonjourFileSuffix);
    return true;
}

std::string resolvedPPDPath(const std::string& ppdPath) {
    std::error_code failure;
    const std::filesystem::path target = std::filesystem::read_symlink(ppdPath, failure);
    if (failure) {
        return ppdPath;
    }
    return (std::filesystem::path(ppdPath).parent_path() / target)
        .string(); // an absolute target stands alone
}

std::filesystem::path twoWayPlace(std::string_view pathText) {
    const std::string_view name = fileNameOf(pathText);
    return isFileName(name) ? system().Resolve(twoWayFolder) / name : std::filesystem::path();
}

std::filesystem::path twoWayPlace(std::string_view queueName, std::string_view suffix) {
    return isFileName(queueName) ? twoWayPlace(std::string(queueName).append(suffix))
                                 : std::filesystem::path();
}

std::string requestFileSuffix(std::string_view requestIdentifier) {
    return isRequestIdentifier(requestIdentifier)
               ? requestMark + std::string(requestIdentifier).append(dataFileSuffix)
               : std::string();
}

std::string requestDataFile(const BidiFilePaths& paths, std::string_view requestIdentifier) {
    const std::string suffix = requestFileSuffix(requestIdentifier);
    return suffix.empty() || !paths.dataFile.ends_with(dataFileSuffix)
               ? std::string()
               : paths.dataFile.substr(0, paths.dataFile.size() - dataFileSuffix.size()) + suffix;
}

std::string connectionErrorFile(std::string_view requestIdentifier) {
    if (!isRequestIdentifier(requestIdentifier)) {
        return {};
    }
    return std::string(cachesFolder)
        .append("ConnectionErrorInfoFile")
        .append(requestIdentifier)
        .append(".txt");
}

bool fileExists(const std::filesystem::path& place) {
    if (place.empty()) {
        return false;
    }
    std::string ignored;
    const std::error_code failure = system().ReadFile(place, 0, ignored);
    return failure != std::errc::no_such_file_or_directory && failure != std::errc::not_a_directory;
}

bool timeoutOverridden() { return fileExists(system().Resolve(timeoutOverrideFile)); }

} // namespace torka
