// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"

#include <gmock/gmock.h>

namespace torka {
namespace {

using tests::runTool;

TEST(DiffCommand, NamesWhatChanged) {
    const tests::TemporaryFolder folder;
    const std::string before = tests::samplePath("torka-production.ppd");
    const std::string description = tests::readFile(before);
    // What is replaced by what, and the line that tells it: "" for no difference.
    for (const auto& [from, to, line] : std::vector<std::tuple<std::string, std::string, std::string>>{
             {"*ModelName: \"Torka Production 90\"", "*ModelName: \"Press\"",
              "~ header modelName: Torka Production 90 -> Press\n"},
             {"Saddle Stitch", "Booklet", "~ text *QVRIPBooklet=Saddle: Saddle Stitch -> Booklet\n"},
             {"DefaultQVStaple: None", "DefaultQVStaple: Top", "~ default *QVStaple: None -> Top\n"},
             {"*QVRIPBooklet None", "*QVRIPBooklet Third/Twice: \"\"\n*QVRIPBooklet None",
              "+ choice *QVRIPBooklet=Third: Twice\n"},
             {"*QVStaple None/Off: \"\"", "*QVStaple None/Off: \"off\n\"",
              "~ code *QVStaple=None:  -> off\\x0a\\x0a\n"},
             {"*UIConstraints: *PageSize Statement *QVStaple Saddle\n", "",
              "- constraint *PageSize=Statement *QVStaple=Saddle\n"},
             {"*UIConstraints", "*UIConstraints: *PageSize A4 *QVStaple Dual\n*UIConstraints",
              "+ constraint *PageSize=A4 *QVStaple=Dual\n"},
             {"*ModelName", "*cupsFilter: \"a/b 0 c\"\n*ModelName", "~ lines: 0 lines -> 1 lines\n"},
             {"*ModelName", "*% a remark\n\n*ModelName", ""}}) {
        std::string text = description;
        ASSERT_NE(text.find(from), std::string::npos) << from;
        text.replace(text.find(from), from.size(), to);
        const std::string after = folder.Write("b.ppd", text).string();
        const tests::CommandResult result = runTool({"diff", before, after});
        EXPECT_EQ(result.status, line.empty() ? 0 : 1) << to << result.errors;
        EXPECT_EQ(result.output, line);
        EXPECT_EQ(tests::runToolForJson({"diff", after, before}, line.empty() ? 0 : 1)["changes"].size(),
                  line.empty() ? 0U : 1U);
    }
    std::string shorter = description;
    const std::size_t start = shorter.find("*%ZANFlags *QVFoldStyle");
    shorter.erase(start, shorter.find("*CloseUI: *QVFoldStyle", start) - start);
    EXPECT_THAT(runTool({"diff", before, folder.Write("b.ppd", shorter).string()}).output,
                ::testing::HasSubstr("- option *QVFoldStyle: Fold\n"));
    EXPECT_EQ(runTool({"diff", before, folder.Write("b.ppd", "no description").string()}).status, 2);
}

} // namespace
} // namespace torka
