// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Hex.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace torka::tests {

// Runs openssl with blank-separated arguments and returns its output. Fails the test when openssl fails.
inline std::string openSsl(const std::string& arguments, std::string_view input = {}) {
    std::vector<std::string> words{"openssl"};
    std::size_t start = 0;
    while (start < arguments.size()) {
        const std::size_t end = std::min(arguments.find(' ', start), arguments.size());
        words.push_back(arguments.substr(start, end - start));
        start = end + 1;
    }
    const CommandResult result = runCommand(words, input);
    EXPECT_EQ(result.status, 0) << arguments << "\n" << result.errors;
    return result.output;
}

// The bytes enciphered by `openssl enc`, with the legacy ciphers enabled.
inline std::vector<std::uint8_t> openSslCipher(const std::string& options,
                                               std::span<const std::uint8_t> input) {
    const std::string output = openSsl("enc " + options + " -provider legacy -provider default",
                                       {reinterpret_cast<const char*>(input.data()), input.size()});
    return {output.begin(), output.end()};
}

// The text with its terminator, then 16 - r bytes with the value 15 - r.
inline std::string aesPadded(std::string text) {
    text.push_back('\0');
    const std::size_t rest = text.size() % 16;
    return text.append(16 - rest, static_cast<char>(15 - rest));
}

} // namespace torka::tests
