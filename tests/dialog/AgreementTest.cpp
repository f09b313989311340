// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/PosixLibraryLoader.h"
#include "tests/dialog/DialogFixture.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QRadioButton>
#include <algorithm>
#include <cstdlib>

// What the screen shows, what the print settings hold and what reaches the device agree.

namespace torka::tests {

namespace {

using AgreementTest = DialogTest;

// What the pane shows for a setting, on whichever page it stands.
std::string shownText(PrintDialog& dialog, const char* keyword) {
    auto* pages = dialog.tab().findChild<QListWidget*>();
    for (int row = 0; row < pages->count(); ++row) {
        pages->setCurrentRow(row);
        QTest::qWait(1);
        for (QWidget* field : dialog.tab().findChildren<QWidget*>(QLatin1String(keyword))) {
            if (const auto* box = qobject_cast<QComboBox*>(field); box != nullptr && box->isVisible()) {
                return (box->currentIndex() < 0 ? box->placeholderText() : box->currentText()).toStdString();
            }
            if (const auto* check = qobject_cast<QCheckBox*>(field); check != nullptr && check->isVisible()) {
                return check->isChecked() ? "On" : "Off";
            }
        }
    }
    return "not shown";
}

TEST_F(AgreementTest, ScreenPrintSettingsAndDeviceSayTheSame) {
    AddQueue("Agreement");
    AddQueue("Other");
    using Step = std::function<void(PrintDialog&)>;
    const auto turn = [](const char* button) -> Step {
        return [button](PrintDialog& dialog) {
            UseProperties(dialog, [button](QDialog& window) {
                window.findChild<QRadioButton*>(QLatin1String(button))->click();
            });
        };
    };
    const auto pane = [](const char* page, const char* keyword, const char* choice) -> Step {
        return [=](PrintDialog& dialog) {
            ShowPage(dialog, page);
            Choose(dialog, keyword, choice);
        };
    };
    const auto size = [](const char* name) -> Step {
        return [name](PrintDialog& dialog) { ChoosePageSize(dialog, name); };
    };
    const Step customSize = [](PrintDialog& dialog) {
        ChoosePageSize(dialog, "Custom");
        UseProperties(dialog, [](QDialog& window) {
            window.findChild<QDoubleSpinBox*>("pageWidth")->setValue(150);
            window.findChild<QDoubleSpinBox*>("pageHeight")->setValue(210);
        });
    };
    const Step cancelled = [](PrintDialog& dialog) {
        UseProperties(
            dialog,
            [](QDialog& window) { window.findChild<QComboBox*>("pageSizeCombo")->setCurrentIndex(0); },
            QDialog::Rejected);
    };
    const Step defaults = [](PrintDialog& dialog) {
        QTest::mouseClick(Button(dialog, "Defaults"), Qt::LeftButton);
    };
    const Step otherQueueAndBack = [](PrintDialog& dialog) {
        EXPECT_TRUE(dialog.chooseQueue("Other"));
        EXPECT_TRUE(dialog.chooseQueue("Agreement"));
        dialog.showPane();
    };
    const Step uncollated = [](PrintDialog& dialog) {
        dialog.findChild<QSpinBox*>("copies")->setValue(2);
        dialog.findChild<QCheckBox*>("collate")->setChecked(false);
    };
    const Step undo = [](PrintDialog& dialog) {
        QTest::keyClick(Field<QComboBox>(dialog, "*QVStaple"), Qt::Key_Z, Qt::ControlModifier);
    };
    struct Situation {
        std::vector<Step> steps; // after the defaults
        const char* keyword;
        const char* shown;  // on screen
        const char* value;  // in the print settings
        const char* device; // in the document
    };
    const Situation situations[] = {
        {{}, "*PageSize", "US Letter", "Letter", "*PageSize Letter"},
        {{size("A3"), cancelled}, "*PageSize", "A3", "A3", "*PageSize A3"},
        {{size("A5"), defaults}, "*PageSize", "A5", "A5", "*PageSize A5"},
        {{size("A5"), otherQueueAndBack}, "*PageSize", "US Letter", "Letter", "*PageSize Letter"},
        {{customSize}, "*PageSize", "150.0 × 210.0 mm", "Letter", "*CustomPageSize True\n425."},
        {{turn("landscape"), turn("portrait")}, "*QVOrientation", "Portrait", "Portrait", "ion: Portrait"},
        {{turn("landscape"), defaults}, "*QVOrientation", "Landscape", "Landscape", "ion: Landscape"},
        {{uncollated}, "*Collate", "Off", "False", ""},
        {{pane("Layout", "*QVDuplex", "Turn on Short Edge"), otherQueueAndBack},
         "*QVDuplex",
         "Turn on Short Edge",
         "ShortEdge",
         "*QVDuplex ShortEdge"},
        {{pane("Layout", "*QVNUpPages", "4")}, "*QVNUpPages", "4", "4", "*QVNUpPages 4"},
        {{pane("Finishing", "*QVStaple", "Two, Left"), undo}, "*QVStaple", "Off", "None", ""},
        {{pane("Paper and Job", "*InputSlot", "Tray 2"), size("A4")},
         "*InputSlot",
         "Tray 2",
         "Tray2",
         "*InputSlot Tray2"},
    };
    for (const Situation& each : situations) {
        SCOPED_TRACE(std::string(each.keyword) + " " + each.shown);
        const auto shown = Open("Agreement");
        PrintDialog& dialog = *shown->dialog;
        defaults(dialog);
        for (const Step& step : each.steps) {
            step(dialog);
        }
        EXPECT_EQ(shownText(dialog, each.keyword), each.shown);
        const int job = Print(dialog);
        EXPECT_EQ(utf8Text(cfCast<CFString>(dialog.tab().settings().Value(cfString(each.keyword)))),
                  each.value);
        EXPECT_NE(sandbox->Printed(job).find(each.device), std::string::npos);
    }
}

// Whoever changes the number of copies: the dialog's field, the field in the pane, the Job Properties module.
TEST_F(AgreementTest, CopiesAreTheSameEverywhere) {
    setLibraryLoader(std::make_unique<PosixLibraryLoader>());
    const TemporaryFolder folder;
    const std::string script = folder.Write("script", "set *QV_COPIES 4\n").string();
    const struct {
        int copies;
        std::function<void(PrintDialog&)> person;
    } changes[] = {
        {2, [](PrintDialog& dialog) { dialog.findChild<QSpinBox*>("copies")->setValue(2); }},
        {3, [](PrintDialog& dialog) { Field<QSpinBox>(dialog, "paneCopies")->setValue(3); }},
        {4,
         [&](PrintDialog& dialog) {
             ASSERT_EQ(setenv("TORKA_JP_SCRIPT", script.c_str(), 1), 0);
             dialog.tab().findChild<QPushButton*>("fullPropertiesButton")->click();
             unsetenv("TORKA_JP_SCRIPT");
         }},
    };
    for (const auto& [copies, person] : changes) {
        const auto shown = Open();
        PrintDialog& dialog = *shown->dialog;
        ShowPage(dialog, "Quick Access");
        person(dialog);
        Paint(dialog);
        dialog.tab().dialogSettingsChanged(); // the tab comes to the front
        EXPECT_EQ(dialog.findChild<QSpinBox*>("copies")->value(), copies);
        EXPECT_EQ(Field<QSpinBox>(dialog, "paneCopies")->value(), copies);
        const int job = Print(dialog);
        EXPECT_EQ(dialog.tab().settings().Copies(), copies);
        EXPECT_EQ(std::ranges::count(Drawn(job, "inkcov"), '\n'), copies * 3) << "the sample has three pages";
    }
}

TEST_F(AgreementTest, OptionsOfTheCommandLineReachTheJobsOwnSettingsOrAreRefused) {
    AddQueue("Lines");
    struct Case {
        std::vector<std::string> arguments;
        int status;
        std::string told; // in the document, or on standard error
    };
    for (const Case& each :
         {Case{{"-o", "number-up=2"}, 0, "%%Orientation: Landscape"},
          Case{{"-o", "number-up=4"}, 0, "%%Orientation: Portrait"},
          Case{{"-o", "sides=two-sided-long-edge"}, 0, "%%BeginFeature: *QVDuplex LongEdge"},
          Case{{"-o", "sides=two-sided-short-edge"}, 0, "%%BeginFeature: *QVDuplex ShortEdge"},
          Case{{"-o", "media=A5"}, 0, "%%BeginFeature: *PageSize A5"},
          Case{{"PageSize=A4", "-o", "media=A5"}, 2, "media=A5 and *PageSize=A4 differ"},
          Case{{"-o", "number-up=3"}, 2, "number-up takes 1, 2, 4, 6, 9 or 16, not '3'"},
          Case{{"QVNUpPages=2", "-o", "number-up=2"}, 2, "QVNUpPages already puts several pages on a sheet"},
          Case{{"-o", "sides=both"}, 2, "sides takes one-sided"},
          Case{{"QVDuplex=LongEdge", "-o", "sides=one-sided"}, 2, "*QVDuplex=LongEdge differ"},
          Case{{"PageSize=A5", "QVFoldStyle=Half", "--strict"}, 1, "*QVFoldStyle=Half"}}) {
        std::vector<std::string> command{"print", "-d", "Lines", samplePath("plain.ps")};
        command.insert(command.end(), each.arguments.begin(), each.arguments.end());
        const CommandResult result = runTool(command);
        SCOPED_TRACE(each.arguments.back());
        EXPECT_EQ(result.status, each.status) << result.errors;
        const std::string told = each.status == 0 ? sandbox->Printed(std::atoi(result.output.c_str() + 4))
                                                  : result.errors; // "Job N on …"
        EXPECT_NE(told.find(each.told), std::string::npos) << result.output << result.errors;
    }
}

} // namespace

} // namespace torka::tests
