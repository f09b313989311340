// SPDX-License-Identifier: Apache-2.0
#include "platform/FixedPath.h"

#include <string>

namespace torka::platform {

namespace {

struct Place {
    std::string_view fixed;
    std::string_view real;
};

// The first row whose folder contains the path counts. Filesystem Hierarchy Standard 3.0, sections 5.5
// and 5.8.
constexpr Place places[] = {
    {"/Library/Caches/", "/var/cache/torka/"},
    {"/Library/Application Support/", "/var/lib/torka/"},
    {"/Library/", "/var/lib/torka/"},
};

} // namespace

std::filesystem::path belowRoot(const std::filesystem::path& root, std::string_view fixedPath) {
    std::filesystem::path path(fixedPath);
    if (!path.is_absolute()) {
        return path;
    }
    std::string place = path.lexically_normal().string();
    for (const auto& [fixed, real] : places) {
        if (place.starts_with(fixed)) {
            place.replace(0, fixed.size(), real);
            break;
        }
    }
    return root.empty() ? std::filesystem::path(place) : root / std::filesystem::path(place).relative_path();
}

} // namespace torka::platform
