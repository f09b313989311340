// SPDX-License-Identifier: Apache-2.0
#include "tests/model/ZANPPDTestSupport.h"

#include <regex>
#include <set>
#include <sstream>

// Checks the sample descriptions. The defective one causes the findings that its comments announce. The
// PostScript of every choice of the other ones runs.

namespace torka::tests {
namespace {

const std::string samples = TORKA_SOURCE_DIR "/samples/";

// The procedures that a controller would define. Each removes its operands.
constexpr const char* controllerProcedures = R"(
userdict /RMXZANsetpageproperties { type /dicttype ne { (no dictionary) = quit } if } put
userdict /RMXsetDynamicOption { pop pop } put
userdict /TorkaJobNotes 100 dict put
userdict /TorkaRMdict 20 dict put
TorkaRMdict begin
[ /ZANMixedMedia /ZANErrorSheet /ZANTestStrip /ZANSubsetFinishing /ZANImageSmoothing ] { { pop } def } forall
/ZANDoing_N_Up { pop pop } def
end
)";

// The findings that comments such as "*% Error 23: ..." and "*% Lint unknownDefault: ..." announce for the
// lines behind them.
Findings announced(const std::string& text) {
    Findings found;
    std::istringstream lines(text);
    std::string line;
    std::smatch match;
    const std::regex comment(R"(\*% (?:Error|Lint) ([^:]+).*)");
    for (long number = 1; std::getline(lines, line); ++number) {
        if (std::regex_match(line, match, comment)) {
            found.emplace_back(number, match[1]);
        }
    }
    return found;
}

std::set<std::string> elementNames(ZANPPD& model) {
    std::set<std::string> names;
    const auto add = [&](const PPDXElement* element) {
        const std::string keyword = element->Keyword();
        names.insert(keyword.substr(keyword.starts_with('*') ? 1 : 0));
        names.insert(element->UserName() ? element->UserName() : "");
    };
    model.GetControls()->ForEach(add);
    model.GetGroups()->ForEach(add);
    model.GetProperties()->ForEach(add);
    return names;
}

TEST(Samples, DefectsAreThoseThatTheCommentsAnnounce) {
    const std::string text = readFile(samples + "torka-defects.ppd");
    PPDLint lint;
    const auto model = parseFile(samples + "torka-defects.ppd", {.lint = &lint});
    const Findings expected = announced(text);
    const Findings found = findingsOf(*model, lint);
    for (std::size_t i = 0; i < std::max(expected.size(), found.size()); ++i) {
        ASSERT_TRUE(i < expected.size() && i < found.size()) << i;
        const auto& [comment, what] = expected[i];
        EXPECT_EQ(found[i].second.substr(0, found[i].second.find_first_of("? ")), what) << "line " << comment;
        EXPECT_GT(found[i].first, comment) << what;
        EXPECT_LE(found[i].first, comment + 10) << what;
    }

    const std::set<std::string> names = elementNames(*model);
    const std::regex kept(R"(\b(?:Good|Worn)\w+)");
    for (auto each = std::sregex_iterator(text.begin(), text.end(), kept); each != std::sregex_iterator();
         ++each) {
        EXPECT_TRUE(names.contains(each->str())) << each->str();
    }
    EXPECT_TRUE(names.contains("QVPPInstallableOptions"));
    for (const std::string& name : names) {
        EXPECT_FALSE(name.starts_with("Lost")) << name;
    }
}

TEST(Samples, HealthyDescriptionsHaveNoFindingAndTheirPostScriptRuns) {
    // What they show on purpose: requirement lines, a hidden group, and constraints of one direction.
    const std::set<std::string> accepted{"requirement", "hiddenControls", "oneWayConstraint"};
    for (const char* name : {"torka-production.ppd", "torka-production-ja.ppd"}) {
        PPDLint lint;
        const auto model = parseFile(samples + name, {.lint = &lint});
        for (const auto& [line, what] : findingsOf(*model, lint)) {
            EXPECT_TRUE(accepted.contains(what)) << name << " " << line << what;
        }

        std::string job;
        int choices = 0;
        model->GetControls()->ForEach([&](PPDXControl* control) {
            if (control->Type() == CNTL_TYPE::specialOption) {
                return;
            }
            if (control->Type() == CNTL_TYPE::jobNote) {
                control->SetCurrentControlWithCFString(cfString("a (note) \\ <here>"));
            }
            forEachChoice(*control, [&](const std::string&) {
                const std::string block = postScriptOf(*control);
                EXPECT_LE(block.size(), 1024U) << control->Keyword();
                job += "mark\n" + block + "counttomark 0 ne { (stack) = quit } if pop\n";
                ++choices;
            });
        });
        EXPECT_GT(choices, 100) << name;
        job += "(complete) =\n";
        for (const char* procedures : {"", controllerProcedures}) {
            const CommandResult result =
                runCommand({"gs", "-q", "-dNODISPLAY", "-dBATCH", "-dNOPAUSE", "-"}, procedures + job);
            EXPECT_EQ(0, result.status) << name << result.errors;
            EXPECT_EQ("complete\n", result.output) << name << result.errors;
        }
    }
}

} // namespace
} // namespace torka::tests
