// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"

#include <gmock/gmock.h>

#include <algorithm>

// What a command says in words, against what it gives programs as JSON.

namespace torka::tests {
namespace {

using json = nlohmann::json;
using ::testing::HasSubstr;

const std::string sample = samplePath("torka-production.ppd");

std::pair<std::string, json> wordsAndJson(std::vector<std::string> arguments) {
    const std::string words = runTool(arguments).output;
    arguments.emplace_back("--json");
    return {words, json::parse(runTool(arguments).output)};
}

TEST(Words, ShowNamesEveryControlWithItsChoicesAndValue) {
    const auto [words, data] = wordsAndJson({"show", sample});
    ASSERT_GT(data["controls"].size(), 50U);
    for (const json& control : data["controls"]) {
        const std::string keyword = control["keyword"];
        if (control["type"] == "specialOption") {
            EXPECT_THAT(words, HasSubstr(keyword + " = ")) << keyword;
            continue;
        }
        const std::size_t at = words.find(" " + keyword + "  " + control["name"].get<std::string>());
        ASSERT_NE(at, std::string::npos) << keyword;
        const std::size_t next = words.find('\n', at) + 1;
        const std::string choices = words.substr(next, words.find('\n', next) - next);
        for (const json& choice : control.value("items", json::array())) {
            EXPECT_THAT(choices, HasSubstr(choice["keyword"].get<std::string>())) << keyword;
        }
        if (control["type"] == "popup") {
            EXPECT_THAT(choices, HasSubstr("*" + control["value"].get<std::string>())) << keyword;
        }
    }
}

TEST(Words, CheckNamesTheSamePairs) {
    const auto [words, data] = wordsAndJson({"check", sample, "QVStaple=Saddle", "QVFinisherUnit=None"});
    ASSERT_EQ(data["conflicts"].size(), 2U);
    std::string expected;
    const std::pair<const char*, const char*> parts[] = {
        {"conflicts", "Conflicts with what is selected:\n"},
        {"alternatives", "Choices that would not conflict:\n"},
        {"constrained", "Forbidden once the settings are applied:\n"}};
    for (const auto& [name, title] : parts) {
        expected += title;
        for (const json& pair : data[name]) {
            expected +=
                "  " + pair["key"].get<std::string>() + "=" + pair["option"].get<std::string>() + "\n";
        }
    }
    EXPECT_EQ(words, expected);
}

TEST(Words, LintTellsTheSameFindings) {
    const TemporaryFolder folder;
    const std::string file =
        folder.Write("a.ppd", "*PPD-Adobe: \"4.3\"\n*OpenUI *A/B: PickOne\n*A x/y: \"1\"\n");
    const auto [words, data] = wordsAndJson({"lint", file});
    ASSERT_FALSE(data["errors"].empty());
    ASSERT_FALSE(data["warnings"].empty());
    for (const json& error : data["errors"]) {
        EXPECT_THAT(words, HasSubstr("error: " + std::to_string(error["code"].get<int>()) + " " +
                                     error["name"].get<std::string>() +
                                     "\n    mend: " + error["remedy"].get<std::string>()));
    }
    for (const json& warning : data["warnings"]) {
        EXPECT_THAT(words, HasSubstr("warning: " + warning["keyword"].get<std::string>() + ": " +
                                     warning["message"].get<std::string>() +
                                     "\n    mend: " + warning["remedy"].get<std::string>()));
    }
    EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(words, '\n')),
              2 * (data["errors"].size() + data["warnings"].size()));
}

} // namespace
} // namespace torka::tests
