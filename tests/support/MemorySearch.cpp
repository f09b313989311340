// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TestSupport.h"

#include <algorithm>
#include <cinttypes>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace torka::tests {

namespace {

struct Range {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

std::vector<Range> writableRanges() {
    std::vector<Range> ranges;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        Range range;
        char mode[5] = {};
        if (std::sscanf(line.c_str(), "%" SCNx64 "-%" SCNx64 " %4s", &range.begin, &range.end, mode) == 3 &&
            mode[0] == 'r' && mode[1] == 'w') {
            ranges.push_back(range);
        }
    }
    return ranges;
}

} // namespace

std::size_t copiesInMemory(std::string_view maskedText) {
    constexpr std::size_t pieceBytes = std::size_t{1} << 20;
    // Reads into separate pages, which the search skips.
    const std::size_t bufferBytes = pieceBytes + 4096;
    void* pages = ::mmap(nullptr, bufferBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    const int memory = ::open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    EXPECT_TRUE(pages != MAP_FAILED && memory >= 0);
    const auto own = reinterpret_cast<std::uint64_t>(pages);
    const char* bytes = static_cast<const char*>(pages);
    std::size_t copies = 0;
    for (const Range& range : writableRanges()) {
        for (std::uint64_t at = range.begin; at < range.end; at += pieceBytes) {
            if (at < own + bufferBytes && own < at + bufferBytes) {
                continue;
            }
            const std::size_t wanted = std::min<std::uint64_t>(bufferBytes, range.end - at);
            const ssize_t count = ::pread(memory, pages, wanted, static_cast<off_t>(at));
            const char* end = bytes + std::max<ssize_t>(count, 0);
            const char* const limit = std::min(end, bytes + pieceBytes);
            const auto isMasked = [](char there, char masked) {
                return static_cast<char>(there ^ secretMask) == masked;
            };
            for (const char* place = bytes;; ++place) {
                place = std::search(place, end, maskedText.begin(), maskedText.end(), isMasked);
                if (place >= limit) {
                    break;
                }
                ++copies;
            }
        }
    }
    ::close(memory);
    ::munmap(pages, bufferBytes);
    return copies;
}

} // namespace torka::tests
