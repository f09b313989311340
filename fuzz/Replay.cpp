// SPDX-License-Identifier: Apache-2.0
// Runs a fuzz target on the files and folders of the command line, without libFuzzer. ctest replays each
// corpus with it. Fails when there is no input, so that a lost corpus is noticed.
//
// --random N[,SEED] runs the target on N random inputs in this one process; scripts/soak watches its memory.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void replayFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    // A block of the exact size, so that the sanitizer detects a read past the end.
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

std::size_t runRandom(const std::string& numbers) {
    constexpr unsigned longest = 1024;
    const std::size_t comma = numbers.find(',');
    const std::size_t count = std::stoul(numbers);
    std::mt19937 random(
        comma == std::string::npos ? 1U : static_cast<unsigned>(std::stoul(numbers.substr(comma + 1))));
    for (std::size_t i = 0; i < count; ++i) {
        std::vector<std::uint8_t> input(random() % longest);
        for (std::uint8_t& byte : input) {
            byte = static_cast<std::uint8_t>(random());
        }
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    return count;
}

} // namespace

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]) == "--random" && i + 1 < argc) {
            count += runRandom(argv[++i]);
            continue;
        }
        const std::filesystem::path path(argv[i]);
        if (!std::filesystem::is_directory(path)) {
            replayFile(path);
            ++count;
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(path)) {
            if (entry.is_regular_file()) {
                replayFile(entry.path());
                ++count;
            }
        }
    }
    std::printf("%zu inputs replayed\n", count);
    return count > 0 ? 0 : 1;
}
