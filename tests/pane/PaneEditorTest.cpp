// SPDX-License-Identifier: Apache-2.0
#include "pane/editing/PaneEditor.h"

#include "PPDX/KVEngine/UIConstraints.h"
#include "tests/pane/PaneFixture.h"

#include <gmock/gmock.h>

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

using EditorTest = PaneTest;

struct Small : EditorTest {
    Pane pane{paneHeader + popup("Media", {"Plain", "Labels", "Card"}) + popup("Sides", {"One", "Two"}) +
              popup("Staple", {"None", "Top", "Saddle"}) + popup("Fold", {"None", "Half"}) +
              jobNote("Memo", "20|UTF8") + jobNote("Secret", "20|Password") +
              unit("Finisher", {"Big", "None"}) + constraint("*Media Labels", "*Sides Two") +
              constraint("*Media Labels", "*Staple") + constraint("*Finisher None", "*Staple") +
              constraint("*Fold Half", "*Staple Saddle") + "*UIConstraints: *Media Card *Fold Half\n"};
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
    EXPECT_EQ(changesIn(*pane.model), "*Media=Labels ");
    ASSERT_TRUE(editor.Undo());
    EXPECT_EQ(editor.Conflicts().size(), 2U);
    ASSERT_TRUE(editor.Undo());
    EXPECT_TRUE(editor.Conflicts().empty());
    ASSERT_TRUE(editor.Redo());
    ASSERT_TRUE(editor.Redo());
    EXPECT_TRUE(editor.Conflicts().empty());
    EXPECT_FALSE(editor.Redo());
    pane.Set("*Finisher", "None");
    editor.Refresh();
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

// Small random descriptions. Forbidden is what the lines forbid with a selected choice.
TEST_F(EditorTest, AgreesWithThePlainReadingOfTheLines) {
    std::mt19937 random(7);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    std::size_t solved = 0;
    std::size_t permitted = 0;
    for (int round = 0; round < 60; ++round) {
        const std::vector<std::string> choices{"C0", "C1", "C2"};
        std::vector<std::string> keys;
        std::string text = paneHeader;
        for (const char digit : std::string_view("012345")) {
            keys.push_back(std::string("*O") + digit);
            text += popup(keys.back().substr(1), choices);
        }
        std::set<std::string> lines; // "*O1 C2 *O3 C0"
        for (int i = 0; i < 8; ++i) {
            const std::size_t key = below(keys.size());
            const std::string from = keys[key] + " " + choices[below(3)];
            const std::string to = keys[(key + 1 + below(5)) % 6] + " " + choices[below(3)];
            lines.insert(from + " " + to);
            if (below(3) != 0) {
                lines.insert(to + " " + from);
            }
        }
        for (const std::string& line : lines) {
            text += "*UIConstraints: " + line + "\n";
        }
        Pane pane(text);
        PaneEditor editor(*pane.model, pane.data.get());
        for (const std::string& key : keys) {
            editor.SetValue(key, choices[below(3)]);
        }
        const auto selected = [&](const std::string& key) {
            return key + " " + PaneEditor::Value(*editor.FindControl(key));
        };
        std::set<std::set<std::string>> clashes;
        for (const std::string& key : keys) {
            const auto forbidden = editor.Forbidden(*editor.FindControl(key));
            for (std::size_t c = 0; c < choices.size(); ++c) {
                const std::string setting = key + " " + choices[c];
                std::set<std::string> expected;
                for (const std::string& other : keys) {
                    if (lines.contains(setting + " " + selected(other))) {
                        expected.insert(selected(other));
                        setting == selected(key) ? void(clashes.insert({setting, selected(other)})) : void();
                    }
                }
                std::set<std::string> found;
                for (const PaneSetting& by : editor.ForbiddenBy(key, choices[c])) {
                    found.insert(by.keyword + " " + by.choice);
                }
                EXPECT_EQ(found, expected);
                EXPECT_EQ(forbidden[c], !expected.empty());
            }
        }
        const auto found = [&] {
            std::set<std::set<std::string>> pairs;
            for (const auto& [first, second] : editor.Conflicts()) {
                pairs.insert({first.keyword + " " + first.choice, second.keyword + " " + second.choice});
            }
            return pairs;
        };
        EXPECT_EQ(found(), clashes);
        for (const std::string& key : keys) {
            for (const std::string& choice : choices) {
                PPDXControl& control = *editor.FindControl(key);
                if (editor.ForbiddenBy(key, choice).empty() || !editor.ChangeWithOthers(control, choice)) {
                    continue;
                }
                ++permitted;
                EXPECT_EQ(PaneEditor::Value(control), choice);
                EXPECT_THAT(clashes, testing::IsSupersetOf(found())) << "it causes no conflict";
                EXPECT_TRUE(editor.Undo());
                EXPECT_EQ(found(), clashes) << "one step";
            }
        }
        if (!clashes.empty() && editor.Resolve()) {
            ++solved;
            EXPECT_TRUE(editor.Conflicts().empty());
        }
    }
    EXPECT_GT(solved, 20U);
    EXPECT_GT(permitted, 100U);
}

} // namespace
} // namespace torka::tests
