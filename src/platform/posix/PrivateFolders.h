#pragma once

#include <filesystem>

// Folders of mode 0700 for one process each, named "torka-XXXXXX".

namespace torka::platform {

// Makes one below `parent`, which other processes see as used while this one lives; "" when it cannot be
// made. Removes those of this user that processes left which were killed.
std::filesystem::path makePrivateFolder(const std::filesystem::path& parent);
// With what is in it.
void removePrivateFolder(const std::filesystem::path& folder);

// From now on SIGTERM, SIGINT and SIGHUP remove the folder of makePrivateFolder before they end the process
// as they do otherwise; an ignored one stays ignored. For our own programs alone: in a foreign one signals
// are not ours.
void removePrivateFolderOnSignals();

} // namespace torka::platform
