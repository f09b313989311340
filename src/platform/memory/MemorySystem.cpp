// SPDX-License-Identifier: Apache-2.0
#include "platform/memory/MemorySystem.h"

#include "platform/FixedPath.h"

#include <algorithm>

namespace torka::platform {

std::filesystem::path MemorySystem::Resolve(std::string_view fixedPath) const {
    return belowRoot(root, fixedPath);
}

std::string MemorySystem::CreateUuidString() {
    std::string digits = std::to_string(++uuidsMade % 1'000'000'000'000U);
    return "00000000-0000-4000-8000-" + std::string(12 - digits.size(), '0') + digits;
}

bool MemorySystem::Sleep(std::chrono::milliseconds duration) {
    const auto wake = now + std::max(duration, std::chrono::milliseconds(0));
    const bool whole = wake < cancelAt;
    now = whole ? wake : std::max(now, cancelAt);
    if (onSleep) {
        onSleep();
    }
    return whole;
}

std::error_code MemorySystem::WriteFile(const std::filesystem::path& path, std::string_view content,
                                        unsigned mode) {
    if (writeFailure) {
        if (const std::error_code failure = writeFailure(path)) {
            return failure;
        }
    }
    files[path] = {std::string(content), mode};
    return {};
}

std::error_code MemorySystem::ReadFile(const std::filesystem::path& path, std::size_t limit,
                                       std::string& content) {
    content.clear();
    const auto place = files.find(path);
    if (place == files.end()) {
        return std::make_error_code(std::errc::no_such_file_or_directory);
    }
    if (place->second.content.size() > limit) {
        return std::make_error_code(std::errc::file_too_large);
    }
    content = place->second.content;
    return {};
}

std::error_code MemorySystem::ReadGuardedFile(std::string_view fixedPath, std::size_t limit,
                                              SecretBytes& content, std::string& /*refusal*/) {
    std::string text;
    const std::error_code failure = ReadFile(Resolve(fixedPath), limit, text);
    content.assign(text.begin(), text.end());
    return failure;
}

} // namespace torka::platform
