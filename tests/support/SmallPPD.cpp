// SPDX-License-Identifier: Apache-2.0
#include "tests/support/SmallPPD.h"

#include <gtest/gtest.h>
#include <map>
#include <sstream>

namespace torka::tests {

std::string afterMessages(const std::string& ppd, const std::vector<std::string>& messages, bool quoted) {
    std::map<std::string, std::string> pairs;
    for (const std::string& message : messages) {
        if (!message.starts_with("PPD: ")) {
            continue;
        }
        EXPECT_TRUE(message.ends_with("\n") && message.size() < 1024) << message;
        std::istringstream words(message.substr(5));
        for (std::string word; words >> word;) {
            pairs[word.substr(0, word.find('='))] = word.substr(word.find('=') + 1);
        }
    }
    std::istringstream lines(ppd);
    std::ostringstream out;
    std::string line;
    std::getline(lines, line);
    out << line << "\n";
    for (const auto& [name, value] : pairs) {
        const bool bare = !quoted || value == "\"\"";
        out << "*" << name << ": " << (bare ? value : "\"" + value + "\"") << "\n";
    }
    while (std::getline(lines, line)) {
        const bool replaced = line.starts_with("*") && pairs.contains(line.substr(1, line.find(':') - 1));
        if (!replaced) {
            out << line << "\n";
        }
    }
    return out.str();
}

} // namespace torka::tests
