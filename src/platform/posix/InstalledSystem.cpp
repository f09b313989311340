// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/InstalledSystem.h"

#include <system_error>

namespace torka::platform {

PosixSystemOptions installedSystem() {
    PosixSystemOptions options;
    options.root = TORKA_SYSTEM_ROOT_DEFAULT;
    options.rootFromEnvironment = TORKA_ROOT_FROM_ENVIRONMENT != 0;
    return options;
}

std::filesystem::path programFolder() {
    std::error_code failure;
    return std::filesystem::read_symlink("/proc/self/exe", failure).parent_path();
}

std::filesystem::path installedBundle(const std::filesystem::path& programFolder) {
    return (programFolder / TORKA_BUNDLE_FROM_PROGRAMS).lexically_normal();
}

std::filesystem::path installedQtPlugIns(const std::filesystem::path& programFolder) {
    return (programFolder / TORKA_QT_PLUGINS_FROM_PROGRAMS).lexically_normal();
}

std::filesystem::path ownQtPlugIns() { return TORKA_OWN_QT_PLUGINS; }

} // namespace torka::platform
