// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/PosixLibraryLoader.h"
#include "tests/dialog/DialogFixture.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QRadioButton>
#include <QTabWidget>
#include <algorithm>
#include <cstdlib>

// What the screen shows, what the print settings hold and what reaches the device agree.

namespace torka::tests {

namespace {

using AgreementTest = DialogTest;

TEST_F(AgreementTest, AConflictOfThePageSizeNeverPrintsUnasked) {
    AddQueue("Conflict", samplePath("torka-production.ppd"));
    for (const auto& [answer, printed, fold] :
         {std::tuple{"Cancel", false, "Half"}, {"Resolve", true, "None"}, {"Print Anyway", true, "Half"}}) {
        SCOPED_TRACE(answer);
        const auto shown = Open("Conflict");
        PrintDialog& dialog = *shown->dialog;
        QTest::mouseClick(Button(dialog, "Defaults"), Qt::LeftButton);
        ShowPage(dialog, "Finishing");
        Choose(dialog, "*QVFoldStyle", "Half Fold");
        ChoosePageSize(dialog, "A5");
        QStringList named;
        {
            const Answers person({{"popupJobNotes", Answers::Accept},
                                  {"conflicts", [&, text = answer](QDialog& question) {
                                       named.append(question.findChild<QListWidget*>()->item(0)->text());
                                       Answers::Click(question, text);
                                   }}});
            PressPrint(dialog);
        }
        EXPECT_EQ(named, QStringList("“Page Size: A5” does not go together with “Fold: Half Fold”."));
        EXPECT_EQ(dialog.result(), printed ? QDialog::Accepted : QDialog::Rejected);
        EXPECT_EQ(dialog.isVisible(), !printed);
        EXPECT_EQ(utf8Text(cfCast<CFString>(dialog.tab().settings().Value(cfString("*QVFoldStyle")))), fold);
    }
}

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
    AddQueue("Agreement", samplePath("torka-production.ppd"));
    AddQueue("Other", samplePath("torka-production.ppd"));
    const auto properties = [](const char* button) {
        return [button](PrintDialog& dialog) {
            UseProperties(dialog, [button](QDialog& window) {
                window.findChild<QRadioButton*>(QLatin1String(button))->click();
            });
        };
    };
    const auto pane = [](const char* page, const char* keyword, const char* choice) {
        return [=](PrintDialog& dialog) {
            ShowPage(dialog, page);
            Choose(dialog, keyword, choice);
        };
    };
    struct Situation {
        const char* what;
        std::function<void(PrintDialog&)> person;
        const char* keyword;
        const char* shown;  // on screen
        const char* value;  // in the print settings
        const char* device; // in the document; null for what it does not tell
    };
    const Situation situations[] = {
        {"opened", [](PrintDialog&) {}, "*PageSize", "US Letter", "Letter",
         "%%BeginFeature: *PageSize Letter"},
        {"page size in Properties", [](PrintDialog& dialog) { ChoosePageSize(dialog, "A5"); }, "*PageSize",
         "A5", "A5", "%%BeginFeature: *PageSize A5"},
        {"Properties cancelled",
         [](PrintDialog& dialog) {
             ChoosePageSize(dialog, "A3");
             UseProperties(
                 dialog,
                 [](QDialog& window) { window.findChild<QComboBox*>("pageSizeCombo")->setCurrentIndex(0); },
                 QDialog::Rejected);
         },
         "*PageSize", "A3", "A3", "%%BeginFeature: *PageSize A3"},
        {"landscape", properties("landscape"), "*QVOrientation", "Landscape", "Landscape",
         "%%Orientation: Landscape"},
        {"portrait again",
         [&](PrintDialog& dialog) {
             properties("landscape")(dialog);
             properties("portrait")(dialog);
         },
         "*QVOrientation", "Portrait", "Portrait", "%%Orientation: Portrait"},
        {"defaults after landscape",
         [&](PrintDialog& dialog) {
             properties("landscape")(dialog);
             QTest::mouseClick(Button(dialog, "Defaults"), Qt::LeftButton);
         },
         "*QVOrientation", "Landscape", "Landscape", "%%Orientation: Landscape"},
        {"not collated",
         [](PrintDialog& dialog) {
             dialog.findChild<QSpinBox*>("copies")->setValue(2);
             dialog.findChild<QCheckBox*>("collate")->setChecked(false);
         },
         "*Collate", "Off", "False", nullptr},
        {"sides in the pane", pane("Layout", "*QVDuplex", "Turn on Long Edge"), "*QVDuplex",
         "Turn on Long Edge", "LongEdge", "%%BeginFeature: *QVDuplex LongEdge"},
        {"pages per sheet in the pane", pane("Layout", "*QVNUpPages", "4"), "*QVNUpPages", "4", "4",
         "%%BeginFeature: *QVNUpPages 4"},
        {"tray in the pane", pane("Paper and Job", "*InputSlot", "Tray 1"), "*InputSlot", "Tray 1", "Tray1",
         "%%BeginFeature: *InputSlot Tray1"},
        {"media in the pane", pane("Paper and Job", "*MediaType", "Labels"), "*MediaType", "Labels", "Labels",
         "%%BeginFeature: *MediaType Labels"},
        {"size, then landscape",
         [&](PrintDialog& dialog) {
             ChoosePageSize(dialog, "Tabloid");
             properties("landscape")(dialog);
         },
         "*PageSize", "Tabloid", "Tabloid", "%%BeginFeature: *PageSize Tabloid"},
        {"size, then defaults",
         [](PrintDialog& dialog) {
             ChoosePageSize(dialog, "A5");
             QTest::mouseClick(Button(dialog, "Defaults"), Qt::LeftButton);
         },
         "*PageSize", "A5", "A5", "%%BeginFeature: *PageSize A5"},
        {"another queue and back",
         [](PrintDialog& dialog) {
             ChoosePageSize(dialog, "A5");
             EXPECT_TRUE(dialog.chooseQueue("Other"));
             EXPECT_TRUE(dialog.chooseQueue("Agreement"));
             dialog.showPane();
         },
         "*PageSize", "US Letter", "Letter", "%%BeginFeature: *PageSize Letter"},
        {"pane's setting, then another queue and back",
         [&](PrintDialog& dialog) {
             pane("Layout", "*QVDuplex", "Turn on Short Edge")(dialog);
             EXPECT_TRUE(dialog.chooseQueue("Other"));
             EXPECT_TRUE(dialog.chooseQueue("Agreement"));
             dialog.showPane();
         },
         "*QVDuplex", "Turn on Short Edge", "ShortEdge", "%%BeginFeature: *QVDuplex ShortEdge"},
        {"pane's setting undone",
         [&](PrintDialog& dialog) {
             pane("Finishing", "*QVStaple", "Two, Left")(dialog);
             QTest::keyClick(Field<QComboBox>(dialog, "*QVStaple"), Qt::Key_Z, Qt::ControlModifier);
         },
         "*QVStaple", "Off", "None", nullptr},
        {"staple", pane("Finishing", "*QVStaple", "Two, Left"), "*QVStaple", "Two, Left", "Dual",
         "%%BeginFeature: *QVStaple Dual"},
        {"two pages per sheet", pane("Layout", "*QVNUpPages", "2"), "*QVNUpPages", "2", "2",
         "%%BeginFeature: *QVNUpPages 2"},
        {"tray, then size in Properties",
         [&](PrintDialog& dialog) {
             pane("Paper and Job", "*InputSlot", "Tray 2")(dialog);
             ChoosePageSize(dialog, "A4");
         },
         "*InputSlot", "Tray 2", "Tray2", "%%BeginFeature: *InputSlot Tray2"},
        {"a size that no name has",
         [](PrintDialog& dialog) {
             UseProperties(dialog, [](QDialog& window) {
                 auto* sizes = window.findChild<QComboBox*>("pageSizeCombo");
                 sizes->setCurrentIndex(sizes->findText("Custom"));
                 window.findChild<QDoubleSpinBox*>("pageWidth")->setValue(150);
                 window.findChild<QDoubleSpinBox*>("pageHeight")->setValue(210);
             });
         },
         "*PageSize", "150.0 × 210.0 mm", "Letter", "%%BeginFeature: *CustomPageSize True\n425."},
        {"collated again",
         [](PrintDialog& dialog) {
             dialog.findChild<QSpinBox*>("copies")->setValue(3);
             dialog.findChild<QCheckBox*>("collate")->setChecked(false);
             dialog.findChild<QCheckBox*>("collate")->setChecked(true);
         },
         "*Collate", "On", "True", nullptr},
    };
    for (const Situation& each : situations) {
        SCOPED_TRACE(each.what);
        const auto shown = Open("Agreement");
        PrintDialog& dialog = *shown->dialog;
        QTest::mouseClick(Button(dialog, "Defaults"), Qt::LeftButton);
        each.person(dialog);
        EXPECT_EQ(shownText(dialog, each.keyword), each.shown);
        const int job = Print(dialog);
        EXPECT_EQ(utf8Text(cfCast<CFString>(dialog.tab().settings().Value(cfString(each.keyword)))),
                  each.value);
        if (each.device != nullptr) {
            EXPECT_NE(sandbox->Printed(job).find(each.device), std::string::npos);
        }
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

TEST_F(AgreementTest, TheDialogHidesWhatThePaneDecides) {
    AddQueue("Owner", samplePath("torka-production.ppd"));
    AddQueue("Without", samplePath("torka-defects.ppd"));
    const auto shown = Open("Owner");
    PrintDialog& dialog = *shown->dialog;
    for (const bool hasPane : {true, false, true}) {
        ASSERT_TRUE(dialog.chooseQueue(hasPane ? "Owner" : "Without"));
        EXPECT_EQ(dialog.tab().hasPanel(), hasPane);
        EXPECT_EQ(dialog.findChild<QWidget*>("duplex")->isHidden(), hasPane);
        UseProperties(dialog, [&](QDialog& window) {
            auto* tabs = window.findChild<QTabWidget*>("tabs");
            auto* options = window.findChild<QWidget*>("cupsPropertiesPage");
            EXPECT_EQ(tabs->isTabVisible(tabs->indexOf(options)), !hasPane);
            EXPECT_EQ(window.findChild<QWidget*>("pagesPerSheetButtonGroup")->isHidden(), hasPane);
        });
    }
}

TEST_F(AgreementTest, OptionsOfTheCommandLineReachTheJobsOwnSettingsOrAreRefused) {
    AddQueue("Lines", samplePath("torka-production.ppd"));
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
