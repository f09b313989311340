// SPDX-License-Identifier: Apache-2.0
#include "pane/editing/PaneEditor.h"

#include "PPDX/KVEngine/UIConstraints.h"
#include "tests/pane/PaneFixture.h"

#include <gmock/gmock.h>

#include <map>
#include <random>
#include <set>

namespace torka::tests {
namespace {

using testing::ElementsAre;

std::string constraint(const std::string& a, const std::string& b) {
    return "*UIConstraints: " + a + " " + b + "\n*UIConstraints: " + b + " " + a + "\n";
}

std::vector<std::string> keywordsOf(const std::vector<PPDXControl*>& controls) {
    std::vector<std::string> keywords;
    for (const PPDXControl* control : controls) {
        keywords.emplace_back(control->Keyword());
    }
    return keywords;
}

std::string line(const PaneSetting& setting) { return setting.keyword + "=" + setting.choice; }

struct EditorTest : testing::Test {
    ScopedMemorySystem system;
};

struct Small : EditorTest {
    Pane pane{paneHeader + popup("Media", {"Plain", "Labels", "Card"}) + popup("Sides", {"One", "Two"}) +
              popup("Staple", {"None", "Top", "Saddle"}) + popup("Fold", {"None", "Half"}) +
              jobNote("Memo", "20|UTF8") + jobNote("Secret", "20|Password") +
              "*OpenGroup: InstallableOptions/Installed\n*%ZANFlags *Finisher: Setup\n*OpenUI "
              "*Finisher/Finisher: PickOne\n"
              "*DefaultFinisher: Big\n*Finisher None/None: \"\"\n*Finisher Big/Big: \"\"\n*CloseUI: "
              "*Finisher\n*CloseGroup: InstallableOptions\n" +
              constraint("*Media Labels", "*Sides Two") + constraint("*Media Labels", "*Staple") +
              constraint("*Finisher None", "*Staple") + constraint("*Fold Half", "*Staple Saddle") +
              "*UIConstraints: *Media Card *Fold Half\n"};
    PaneEditor editor{*pane.model, pane.data.get()};
};

// A preset of the server holds until the person changes a setting. Undoing the change brings its name back.
TEST_F(EditorTest, AChangeForgetsTheServersPresetAndUndoBringsItBack) {
    Pane pane(paneHeader + popup("Sides", {"One", "Two"}) + jobNote("Memo", "20|UTF8") +
              jobNote("PresetName"));
    PaneEditor editor(*pane.model, pane.data.get());
    const auto name = [&] { return PaneEditor::Value(*editor.FindControl("*PresetName")); };
    editor.EditAll([&] { pane.Set("*PresetName", "Glossy"); }, ServerPresetChoice::keep);
    editor.Refresh();
    EXPECT_EQ(name(), "Glossy");
    PPDXControl& memo = *editor.FindControl("*Memo");
    for (const char* text : {"a", "ab"}) { // typed in one step
        editor.Edit(
            memo, [&] { pane.Set("*Memo", text); }, true);
        EXPECT_EQ(name(), "");
    }
    editor.Refresh();
    editor.SetValue("*Sides", "Two");
    EXPECT_TRUE(editor.Undo());
    EXPECT_EQ(name(), "");
    EXPECT_TRUE(editor.Undo());
    EXPECT_EQ(PaneEditor::Value(memo), "");
    EXPECT_EQ(name(), "Glossy");
    EXPECT_TRUE(editor.Redo());
    EXPECT_EQ(name(), "");
}

TEST_F(Small, ResolvesInOneStepAndKeepsWhatWasEditedLast) {
    editor.SetValue("*Staple", "Saddle");
    editor.SetValue("*Sides", "Two");
    editor.SetValue("*Media", "Labels");
    EXPECT_EQ(editor.Conflicts().size(), 2U);
    ASSERT_TRUE(editor.Resolution().solved);
    ASSERT_TRUE(editor.Resolve());
    EXPECT_TRUE(editor.Conflicts().empty());
    EXPECT_EQ(PaneEditor::Value(*editor.FindControl("*Media")), "Labels");
    EXPECT_EQ(PaneEditor::Value(*editor.FindControl("*Staple")), "None");
    EXPECT_EQ(PaneEditor::Value(*editor.FindControl("*Sides")), "One");
    ASSERT_TRUE(editor.Undo());
    EXPECT_EQ(editor.Conflicts().size(), 2U);
    ASSERT_TRUE(editor.Undo());
    EXPECT_TRUE(editor.Conflicts().empty());
    ASSERT_TRUE(editor.Redo());
    ASSERT_TRUE(editor.Redo());
    EXPECT_TRUE(editor.Conflicts().empty());
    EXPECT_FALSE(editor.Redo());
}

TEST_F(Small, LeavesInstalledOptionsAsTheyAre) {
    editor.SetValue("*Staple", "Top");
    pane.Set("*Finisher", "None"); // causes a conflict without a click
    editor.Refresh();
    ASSERT_EQ(editor.Conflicts().size(), 1U);
    ASSERT_TRUE(editor.Resolve());
    EXPECT_EQ(PaneEditor::Value(*editor.FindControl("*Finisher")), "None");
    EXPECT_EQ(PaneEditor::Value(*editor.FindControl("*Staple")), "None");
    EXPECT_FALSE(editor.ForbiddenBy("*Staple", "Top").empty());
    EXPECT_FALSE(editor.WayTo(*editor.FindControl("*Staple"), "Top").solved) << "it would install a unit";
}

TEST_F(Small, UndoesStepsAndForgetsThemWhenAnotherHandChangesTheirControls) {
    int told = 0;
    PaneChange last;
    editor.AddListener([&](const PaneChange& change) {
        ++told;
        last = change;
    });
    PPDXControl& memo = *editor.FindControl("*Memo");
    for (const char* text : {"a", "ab", "abc"}) {
        editor.Edit(
            memo, [&] { memo.SetCurrentControlWithCFString(cfString(text)); }, true);
    }
    editor.EndStep();
    EXPECT_EQ(told, 3);
    EXPECT_THAT(keywordsOf(editor.UndoSubjects()), ElementsAre("*Memo"));
    editor.SetValue("*Secret", "1234");
    EXPECT_THAT(keywordsOf(last.controls), ElementsAre("*Secret"));
    EXPECT_THAT(keywordsOf(editor.UndoSubjects()), ElementsAre("*Memo")) << "secrets are not kept";
    EXPECT_TRUE(editor.Undo());
    EXPECT_EQ(PaneEditor::Value(memo), "") << "typing is one step";
    EXPECT_FALSE(editor.CanUndo());
    EXPECT_FALSE(editor.SetValue("*Sides", "One")) << "already so";
    EXPECT_FALSE(editor.SetValue("*Nothing", "One"));

    ASSERT_TRUE(editor.EditAll([&] {
        pane.Set("*Sides", "Two");
        pane.Set("*Fold", "Half");
    }));
    ASSERT_EQ(editor.Differences().size(), 3U);
    EXPECT_EQ(editor.Differences()[0].value, "Two");
    EXPECT_EQ(editor.Differences()[0].defaultValue, "One");
    pane.Set("*Media", "Card");
    editor.Refresh();
    EXPECT_EQ(last.kind, PaneChange::Kind::outside);
    EXPECT_THAT(keywordsOf(last.controls), ElementsAre("*Media"));
    EXPECT_TRUE(editor.CanUndo()) << "other controls";
    ASSERT_EQ(editor.Conflicts().size(), 1U) << "the line forbids in one direction only";
    pane.Set("*Fold", "None");
    editor.Refresh();
    EXPECT_FALSE(editor.CanUndo());
}

TEST_F(Small, TakesUpControlsMadeLater) {
    bool remade = false;
    editor.AddListener([&](const PaneChange& change) { remade = remade || change.catalogRemade; });
    const std::size_t before = editor.Catalog().FieldCount();
    pane.model->SetupControl(
        pane.model->GetGroups()->Find("Group", true),
        std::make_unique<PPDXJobNote>("*Late", cfString("Late"), nullptr, nullptr, 0, nullptr, 10, 0U, 0),
        true);
    editor.Refresh();
    EXPECT_TRUE(remade);
    EXPECT_EQ(editor.Catalog().FieldCount(), before + 1);
    EXPECT_TRUE(editor.SetValue("*Late", "text"));
}

// Compares random small descriptions with an oracle that knows only the lines.
TEST_F(EditorTest, AgreesWithThePlainReadingOfTheLines) {
    std::mt19937 random(7);
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    int solved = 0;
    int permitted = 0;
    for (int round = 0; round < 60; ++round) {
        constexpr int options = 6;
        constexpr int choices = 3;
        const auto option = [](int i) { return "*O" + std::to_string(i); };
        const auto choice = [](int i) { return "C" + std::to_string(i); };
        std::string text = paneHeader;
        for (int i = 0; i < options; ++i) {
            text += popup("O" + std::to_string(i), {"C0", "C1", "C2"});
        }
        std::set<std::pair<std::string, std::string>> lines; // "*O1 C2" forbids "*O3 C0"
        for (int i = 0; i < 8; ++i) {
            const int a = below(options);
            const int b = (a + 1 + below(options - 1)) % options;
            const std::string from = option(a) + " " + choice(below(choices));
            const std::string to = option(b) + " " + choice(below(choices));
            lines.insert({from, to});
            if (below(3) != 0) {
                lines.insert({to, from});
            }
        }
        for (const auto& [from, to] : lines) {
            text += "*UIConstraints: " + from + " " + to + "\n";
        }
        Pane pane(text);
        PaneEditor editor(*pane.model, pane.data.get());
        std::map<std::string, std::string> values;
        for (int i = 0; i < options; ++i) {
            values[option(i)] = choice(below(choices));
            editor.SetValue(option(i), values[option(i)]);
        }
        const auto forbids = [&](const std::string& from, const std::string& key) {
            return lines.contains({from, key + " " + values[key]});
        };
        std::set<std::set<std::string>> clashes;
        for (const auto& [key, value] : values) {
            for (const auto& [other, otherValue] : values) {
                if (key != other && forbids(key + " " + value, other)) {
                    clashes.insert({key + "=" + value, other + "=" + otherValue});
                }
            }
            const auto forbidden = editor.Forbidden(*editor.FindControl(key));
            for (int c = 0; c < choices; ++c) {
                std::set<std::string> expected;
                for (const auto& [other, otherValue] : values) {
                    if (other != key && forbids(key + " " + choice(c), other)) {
                        expected.insert(other + "=" + otherValue);
                    }
                }
                std::set<std::string> found;
                for (const PaneSetting& setting : editor.ForbiddenBy(key, choice(c))) {
                    found.insert(line(setting));
                }
                EXPECT_EQ(found, expected);
                EXPECT_EQ(forbidden[static_cast<std::size_t>(c)], !expected.empty());
            }
        }
        const auto found = [&] {
            std::set<std::set<std::string>> pairs;
            for (const PaneConflict& conflict : editor.Conflicts()) {
                pairs.insert({line(conflict.first), line(conflict.second)});
            }
            return pairs;
        };
        const std::set<std::set<std::string>> before = found();
        EXPECT_EQ(before, clashes);
        for (const auto& [key, value] : values) {
            for (int c = 0; c < choices; ++c) {
                const bool isForbidden = !editor.ForbiddenBy(key, choice(c)).empty();
                if (!isForbidden || !editor.ChangeWithOthers(*editor.FindControl(key), choice(c))) {
                    continue;
                }
                ++permitted;
                EXPECT_EQ(PaneEditor::Value(*editor.FindControl(key)), choice(c));
                EXPECT_THAT(before, testing::IsSupersetOf(found())) << "it causes no conflict";
                EXPECT_TRUE(editor.Undo());
                EXPECT_EQ(found(), before) << "one step";
            }
        }
        if (!clashes.empty() && editor.Resolve()) {
            ++solved;
            EXPECT_TRUE(editor.Conflicts().empty());
        }
    }
    EXPECT_GT(solved, 20);
    EXPECT_GT(permitted, 100);
}

} // namespace
} // namespace torka::tests
