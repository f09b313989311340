#include "tests/e2e/ServerData.h"

#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <sstream>
#include <vector>

// Requests for server data from several people at the same time, and on servers with other configurations.

namespace torka::tests {

namespace {

std::string content(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return (std::stringstream() << file.rdbuf()).str();
}

CommandResult ask(const std::string& queue, const std::string& address) {
    return runTool({"serverdata", "-d", queue, "--address", address});
}

TEST_F(ServerData, EverybodyWhoAsksAtOnceGetsAnAnswerOfTheirOwn) {
    AddQueue("Asked");
    constexpr int people = 8;
    for (int i = 0; i < people; ++i) {
        const std::string number = std::to_string(i);
        Give("10.0.1." + number, "data", "ServerInfo", "Press " + number + ":ServerName\n");
    }
    std::vector<std::future<CommandResult>> asked;
    for (int i = 0; i < people; ++i) {
        asked.push_back(
            std::async(std::launch::async, [i] { return ask("Asked", "10.0.1." + std::to_string(i)); }));
    }
    for (int i = 0; i < people; ++i) {
        const CommandResult result = asked[static_cast<std::size_t>(i)].get();
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_NE(result.output.find("Press " + std::to_string(i)), std::string::npos) << result.output;
    }
    EXPECT_FALSE(std::filesystem::exists(twoWayPlace("Asked", lockFileSuffix)));
}

TEST_F(ServerData, AServerThatKeepsNoHistoryAnswersAsWell) {
    AddQueue("Forgetful");
    Give("10.0.1.20", "data", "ServerInfo", "Press 20:ServerName\n");
    const std::filesystem::path configuration = *sandbox / "etc/cupsd.conf";
    const std::string before = content(configuration);
    std::string changed = before;
    const std::string keeps = "PreserveJobHistory Yes";
    ASSERT_NE(before.find(keeps), std::string::npos);
    changed.replace(changed.find(keeps), keeps.size(), "PreserveJobHistory No");
    std::ofstream(configuration, std::ios::binary) << changed;
    sandbox->Restart();
    const CommandResult answered = ask("Forgetful", "10.0.1.20");
    const CommandResult refused = ask("Forgetful", "10.0.1.21");
    // Whoever follows a job by its number meets a server that knows it no more.
    const CommandResult sent = runTool({"command", "send", "Forgetful", "Command_LocaleCode", "de"});
    const CommandResult stopped = runTool({"command", "send", "Forgetful", "Command_AllBidi", "no request"});
    const CommandResult printed =
        runTool({"print", "-d", "Forgetful", samplePath("plain.ps"), "PageSize=A3"});
    std::ofstream(configuration, std::ios::binary) << before;
    sandbox->Restart();
    EXPECT_EQ(answered.status, 0) << answered.errors;
    EXPECT_NE(answered.output.find("Press 20"), std::string::npos) << answered.output;
    EXPECT_EQ(refused.status, 2) << refused.output;
    EXPECT_NE(refused.errors.find("could not reach"), std::string::npos) << refused.errors;
    for (const CommandResult& ended : {sent, printed}) {
        EXPECT_EQ(ended.status, 0) << ended.errors;
        // A poll may meet the moment between the job's end and its removal.
        EXPECT_TRUE(ended.errors.empty() || ended.errors.find("cannot tell how") != std::string::npos)
            << ended.errors;
    }
    EXPECT_EQ(stopped.status, 1);
    EXPECT_NE(stopped.errors.find("cannot be understood"), std::string::npos) << stopped.errors;
}

} // namespace

} // namespace torka::tests
