// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/InstalledSystem.h"

namespace torka::platform {

PosixSystemOptions installedSystem() {
    PosixSystemOptions options;
    options.root = TORKA_SYSTEM_ROOT_DEFAULT;
    options.rootFromEnvironment = TORKA_ROOT_FROM_ENVIRONMENT != 0;
    return options;
}

std::filesystem::path installedBundle(const std::filesystem::path& programFolder) {
    return (programFolder / TORKA_BUNDLE_FROM_PROGRAMS).lexically_normal();
}

} // namespace torka::platform
