// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cerrno>
#include <system_error>

namespace torka::platform {

// What errno says. Call it before anything that could change errno.
inline std::error_code lastError() { return {errno, std::generic_category()}; }

} // namespace torka::platform
