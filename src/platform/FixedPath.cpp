// SPDX-License-Identifier: Apache-2.0
#include "platform/FixedPath.h"

namespace torka::platform {

std::filesystem::path belowRoot(const std::filesystem::path& root, std::string_view fixedPath) {
    std::filesystem::path path(fixedPath);
    if (root.empty() || !path.is_absolute()) {
        return path;
    }
    return root / path.lexically_normal().relative_path();
}

} // namespace torka::platform
