// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"

#include <gmock/gmock.h>

namespace torka {
namespace {

using tests::runTool;

const std::string description = "*PPD-Adobe: \"4.3\"\n"
                                "*LanguageEncoding: ISOLatin1\n"
                                "*LanguageVersion: English\n"
                                "*ModelName: \"Press\"\n"
                                "*%ZANFlags *Fold/Folding:\n"
                                "*OpenUI *Fold/Folding: PickOne\n"
                                "*DefaultFold: None\n"
                                "*Fold None/Flat: \"\"\n"
                                "*Fold Half/In halves: \"half\"\n"
                                "*CloseUI: *Fold\n"
                                "*%ZANFlags *Bind/Binding:\n"
                                "*OpenUI *Bind/Binding: Boolean\n"
                                "*DefaultBind: False\n"
                                "*Bind True/Yes: \"\"\n"
                                "*Bind False/No: \"\"\n"
                                "*CloseUI: *Bind\n"
                                "*UIConstraints: *Fold Half *Bind True\n"
                                "*cupsFilter: \"a/b 0 c\"\n";

TEST(DiffCommand, NamesWhatChanged) {
    struct Row {
        std::string from;
        std::string to;
        std::string line; // "" for no difference
    };
    const tests::TemporaryFolder folder;
    const std::string before = folder.Write("a.ppd", description).string();
    for (const auto& [from, to, line] : std::vector<Row>{
             {"\"Press\"", "\"Press 2\"", "~ header modelName: Press -> Press 2\n"},
             {"In halves", "Once", "~ text *Fold=Half: In halves -> Once\n"},
             {"DefaultFold: None", "DefaultFold: Half", "~ default *Fold: None -> Half\n"},
             {"*Fold None", "*Fold Third/Twice: \"\"\n*Fold None", "+ choice *Fold=Third: Twice\n"},
             {"\"half\"", "\"HALF\"", "~ code *Fold=Half: half\\x0a -> HALF\\x0a\n"},
             {"*UIConstraints: *Fold Half *Bind True\n", "", "- constraint *Fold=Half *Bind=True\n"},
             {"*UIConstraints", "*UIConstraints: *Bind True *Fold Half\n*UIConstraints",
              "+ constraint *Bind=True *Fold=Half\n"},
             {"0 c", "0 d", "~ lines: 1 lines -> 1 lines\n"},
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
    shorter.erase(shorter.find("*%ZANFlags *Bind"));
    EXPECT_THAT(runTool({"diff", before, folder.Write("b.ppd", shorter).string()}).output,
                ::testing::HasSubstr("- option *Bind: Binding\n"));
    EXPECT_EQ(runTool({"diff", before, folder.Write("b.ppd", "no description").string()}).status, 2);
}

} // namespace
} // namespace torka
