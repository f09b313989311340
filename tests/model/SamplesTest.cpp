// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/PPDLintTexts.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"

#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

// Checks the sample descriptions. The defective one causes the findings that its comments announce. The
// PostScript of every choice of the other ones runs.

namespace torka {

namespace {

constexpr const char* samples = TORKA_SOURCE_DIR "/samples/";

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

struct Finding {
    long line = 0;
    std::string what; // an error code or the name of a lint warning
};

struct Description {
    explicit Description(const char* name)
        : path(std::string(samples) + name) {
        model.SetFile(FSRef{path});
        model.SetLint(&lint);
        model.Build();
    }

    std::vector<Finding> Errors() {
        std::vector<Finding> found;
        for (PPDXErrorObj* error = model.Errors()->First(); error; error = model.Errors()->Next()) {
            found.push_back({error->Line(), std::to_string(error->Code())});
        }
        std::stable_sort(found.begin(), found.end(), [](auto& a, auto& b) { return a.line < b.line; });
        return found;
    }
    std::vector<Finding> Warnings() const {
        std::vector<Finding> found;
        for (const PPDLintNote& note : lint.Notes()) {
            found.push_back({note.line, ppdLintName(note.kind)});
        }
        return found;
    }

    std::string path;
    PPDLint lint;
    ZANPPD model{kAcceptOrphans | kAcceptHidden};
};

std::string listed(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text += std::to_string(finding.line) + ": " + finding.what + "\n";
    }
    return text;
}

// The findings that comments such as "*% Error 23: ..." and "*% Lint unknownDefault: ..." announce for the
// lines behind them.
std::vector<Finding> announced(const std::string& text, const std::string& sort) {
    std::vector<Finding> found;
    std::istringstream lines(text);
    std::string line;
    const std::string opening = "*% " + sort + " ";
    for (long number = 1; std::getline(lines, line); ++number) {
        if (line.starts_with(opening)) {
            found.push_back({number, line.substr(opening.size(), line.find(':') - opening.size())});
        }
    }
    return found;
}

void expectAnnounced(const std::vector<Finding>& expected, const std::vector<Finding>& found) {
    ASSERT_EQ(expected.size(), found.size()) << listed(expected) << "but found\n" << listed(found);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(expected[i].what, found[i].what) << "line " << expected[i].line;
        EXPECT_GT(found[i].line, expected[i].line) << expected[i].what;
        EXPECT_LE(found[i].line, expected[i].line + 10) << expected[i].what;
    }
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

// The file's keywords with this beginning, without their asterisk.
std::set<std::string> elementsNamed(const std::string& text, const std::string& beginning) {
    std::set<std::string> names;
    for (std::size_t at = text.find("*" + beginning); at != std::string::npos;
         at = text.find("*" + beginning, at + 1)) {
        const std::size_t end = text.find_first_of(": />\n", at);
        names.insert(text.substr(at + 1, end - at - 1));
    }
    return names;
}

} // namespace

TEST(Samples, DefectsAreThoseThatTheCommentsAnnounce) {
    Description description("torka-defects.ppd");
    const std::string text = tests::readFile(description.path);
    expectAnnounced(announced(text, "Error"), description.Errors());
    expectAnnounced(announced(text, "Lint"), description.Warnings());

    const std::set<std::string> names = elementNames(description.model);
    for (const char* beginning : {"Good", "Worn"}) {
        for (const std::string& name : elementsNamed(text, beginning)) {
            EXPECT_TRUE(names.contains(name)) << name;
        }
    }
    for (const char* name : {"GoodPage", "GoodLatePage", "GoodHiddenPage", "GoodPlainPage", "GoodPane",
                             "GoodGroup", "GoodOtherGroup", "QVPPInstallableOptions"}) {
        EXPECT_TRUE(names.contains(name)) << name;
    }
    for (const std::string& name : names) {
        EXPECT_FALSE(name.starts_with("Lost")) << name;
    }
}

// What the healthy samples show on purpose: requirement lines, a hidden group, and constraints of one
// direction.
const std::set<std::string> accepted{"requirement", "hiddenControls", "oneWayConstraint"};

TEST(Samples, HealthyDescriptionsHaveNoFindingAndTheirPostScriptRuns) {
    for (const char* name : {"torka-production.ppd", "torka-production-ja.ppd"}) {
        Description description(name);
        EXPECT_EQ("", listed(description.Errors())) << name;
        for (const Finding& warning : description.Warnings()) {
            EXPECT_TRUE(accepted.contains(warning.what)) << name << " " << warning.line << warning.what;
        }

        std::string job;
        int choices = 0;
        const auto emit = [&](PPDXControl* control) {
            const long length = control->PostScript(nullptr);
            std::string block(static_cast<std::size_t>(length), '\0');
            control->PostScript(reinterpret_cast<unsigned char*>(block.data()));
            EXPECT_LE(length, 1024) << control->Keyword();
            job += "mark\n" + block + "counttomark 0 ne { (stack) = quit } if pop\n";
            ++choices;
        };
        description.model.GetControls()->ForEach([&](PPDXControl* control) {
            if (auto* popup = dynamic_cast<PPDXPopupControl*>(control)) {
                for (std::size_t i = 1; i <= popup->ItemCount(); ++i) {
                    popup->SetValue(static_cast<int>(i));
                    emit(control);
                }
            } else if (control->Type() == CNTL_TYPE::boolean) {
                for (const char* value : {"True", "False"}) {
                    control->SetCurrentControlWithCFString(cfString(value));
                    emit(control);
                }
            } else if (control->Type() == CNTL_TYPE::jobNote) {
                control->SetCurrentControlWithCFString(cfString("a (note) \\ <here>"));
                emit(control);
            } else if (control->Type() != CNTL_TYPE::specialOption) {
                emit(control);
            }
        });
        EXPECT_GT(choices, 100) << name;
        job += "(complete) =\n";
        for (const char* procedures : {"", controllerProcedures}) {
            const tests::CommandResult result =
                tests::runCommand({"gs", "-q", "-dNODISPLAY", "-dBATCH", "-dNOPAUSE", "-"}, procedures + job);
            EXPECT_EQ(0, result.status) << name << result.errors;
            EXPECT_EQ("complete\n", result.output) << name << result.errors;
        }
    }
}

} // namespace torka
