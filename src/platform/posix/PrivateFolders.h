// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>

// Private folders of mode 0700, one a process, with names of the form "torka-XXXXXX".

namespace torka::platform {

// Makes a folder below `parent`; "" when it cannot be made. Other processes see it as used while this process
// lives. Also removes this user's folders that killed processes left behind.
std::filesystem::path makePrivateFolder(const std::filesystem::path& parent);
// Removes a folder and the files in it.
void removePrivateFolder(const std::filesystem::path& folder) noexcept;
// Removes the folder of makePrivateFolder, for a process that ends at once. Needs no memory; safe in a signal
// handler.
void removeFolderOfProcess() noexcept;

// Makes SIGTERM, SIGINT and SIGHUP remove the folder of makePrivateFolder before they end the process. An
// ignored signal stays ignored. Only our own programs call this; a foreign host owns its signal handlers.
void removePrivateFolderOnSignals();

} // namespace torka::platform
