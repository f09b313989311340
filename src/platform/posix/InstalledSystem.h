// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/posix/PosixSystem.h"

#include <filesystem>

namespace torka::platform {

// The system root that this build was configured with (TORKA_SYSTEM_ROOT_DEFAULT), and whether the
// environment may name another one (TORKA_ROOT_FROM_ENVIRONMENT). All programs of one build share them,
// because pane, tool and filter meet in the folders below the root.
PosixSystemOptions installedSystem();

// The folder of the program that this process runs.
std::filesystem::path programFolder();

// The folder of the plug-in's bundle, for a program in `programFolder`. The build tree and an installation
// have the same layout, so that a relocated copy finds its own bundle.
std::filesystem::path installedBundle(const std::filesystem::path& programFolder);
// The folder of Qt's plug-ins that has ours, in the same way, and the one that Qt searches by itself.
std::filesystem::path installedQtPlugIns(const std::filesystem::path& programFolder);
std::filesystem::path ownQtPlugIns();

} // namespace torka::platform
