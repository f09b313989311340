// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/PosixLibraryLoader.h"
#include "tests/dialog/DialogFixture.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QMenu>
#include <QRadioButton>
#include <QToolButton>
#include <algorithm>
#include <cstdlib>

// What the screen shows, what the print settings hold and what reaches the device agree.

namespace torka::tests {

namespace {

using AgreementTest = DialogTest;

using Step = std::function<void(PrintDialog&)>;

// What the pane shows for a setting, on whichever page it stands.
std::string shownText(PrintDialog& dialog, const char* name) {
    auto* pages = dialog.tab().findChild<QListWidget*>();
    for (int row = 0; row < pages->count(); ++row) {
        pages->setCurrentRow(row);
        QTest::qWait(1);
        for (QWidget* field : dialog.tab().findChildren<QWidget*>(QLatin1String(name))) {
            if (!field->isVisible()) {
                continue;
            }
            if (const auto* box = qobject_cast<QComboBox*>(field)) {
                return (box->currentIndex() < 0 ? box->placeholderText() : box->currentText()).toStdString();
            }
            if (const auto* check = qobject_cast<QCheckBox*>(field)) {
                return check->isChecked() ? "On" : "Off";
            }
            if (const auto* line = qobject_cast<QLineEdit*>(field)) {
                return line->text().toStdString();
            }
            if (const auto* list = qobject_cast<QListWidget*>(field)) {
                return list->currentItem()->text().toStdString();
            }
        }
    }
    return "not shown";
}

std::string heldText(PrintDialog& dialog, const char* key) {
    const CFTypeRef value = dialog.tab().settings().Value(cfString(key));
    if (const auto number = cfCast<CFNumber>(value)) {
        std::int32_t held = 0;
        CFNumberGetValue(number, held);
        return std::to_string(held);
    }
    return utf8Text(cfCast<CFString>(value));
}

// The Job Properties module opens, does what the script says, and returns.
Step module(const std::string& script) {
    return [script](PrintDialog& dialog) {
        const TemporaryFolder folder;
        ASSERT_EQ(setenv("TORKA_JP_SCRIPT", folder.Write("script", script).c_str(), 1), 0);
        dialog.tab().findChild<QPushButton*>("fullPropertiesButton")->click();
        unsetenv("TORKA_JP_SCRIPT");
    };
}

// A description with a template of the administrator.
std::string withTemplate() {
    const std::string end = "*% End of PPD file";
    std::string lines;
    for (const char* line :
         {"<Category name=\"UI-Modification\">", "<Controls>",
          "<ZANPPD key=\"Notes2\" default=\"of the house\"/>", "</Controls>", "</Category>"}) {
        lines += std::string("*% *DMT_Injection ") + line + "\n";
    }
    return replaced(readFile(samplePath("torka-production.ppd")), end, lines + end);
}

TEST_F(AgreementTest, ScreenPrintSettingsAndDeviceSayTheSame) {
    setLibraryLoader(std::make_unique<PosixLibraryLoader>());
    const TemporaryFolder folder;
    AddQueue("Agreement");
    AddQueue("Other");
    AddQueue("Templated", "torkasink:/", folder.Write("templated.ppd", withTemplate()).string());
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
    const auto typed = [](const char* keyword, const char* text) -> Step {
        return [=](PrintDialog& dialog) {
            ShowPage(dialog, "Job Notes");
            auto* line = Field<QLineEdit>(dialog, keyword);
            line->selectAll();
            QTest::keyClicks(line, QLatin1String(text));
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
    const auto click = [](const char* button) -> Step {
        return [button](PrintDialog& dialog) {
            ASSERT_NE(Button(dialog, button), nullptr) << button;
            QTest::mouseClick(Button(dialog, button), Qt::LeftButton);
        };
    };
    const Step defaults = click("Defaults");
    const auto queue = [](const char* name) -> Step {
        return [name](PrintDialog& dialog) {
            EXPECT_TRUE(dialog.chooseQueue(name));
            dialog.showPane();
        };
    };
    const Step otherQueue = queue("Other");
    const Step backAgain = queue("Agreement");
    const auto collate = [](bool on) -> Step {
        return [on](PrintDialog& dialog) {
            dialog.findChild<QSpinBox*>("copies")->setValue(2);
            dialog.findChild<QCheckBox*>("collate")->setChecked(!on);
            dialog.findChild<QCheckBox*>("collate")->setChecked(on);
        };
    };
    const auto undo = [](const char* field) -> Step {
        return [field](PrintDialog& dialog) {
            Field<QComboBox>(dialog, field)->setFocus();
            QTest::keyClick(Field<QComboBox>(dialog, field), Qt::Key_Z, Qt::ControlModifier);
        };
    };
    const Step refused = [](PrintDialog& dialog) { // the question about the conflict is cancelled
        const Answers person({{"conflicts", [](QDialog& question) { Answers::Click(question, "Cancel"); }},
                              {"popupJobNotes", [](QDialog& next) {
                                   ADD_FAILURE() << "nobody asked about the conflict";
                                   next.reject();
                               }}});
        PressPrint(dialog);
        EXPECT_TRUE(dialog.isVisible());
    };
    const Step watermark = [](PrintDialog& dialog) {
        ShowPage(dialog, "Watermarks");
        QTest::keyClick(Field<QListWidget>(dialog, "watermarks"), Qt::Key_Insert);
        auto* edited = dialog.findChild<QDialog*>("watermarkDialog");
        edited->findChild<QLineEdit*>("watermarkText")->setText("PROOF");
        edited->accept();
        QCoreApplication::processEvents(); // stores the list
    };
    const auto preset = [](const char* entry) -> Step { // "": saves it
        return [entry](PrintDialog& dialog) {
            auto* button = dialog.findChild<QToolButton*>("presets");
            Q_EMIT button->menu()->aboutToShow();
            for (QAction* action : button->menu()->actions()) {
                if (action->text() == QString::fromUtf8(*entry == '\0' ? "&Save As…" : entry)) {
                    action->trigger();
                    break;
                }
            }
            if (*entry == '\0') {
                auto* asked = dialog.findChild<QDialog*>("presetNameDialog");
                ASSERT_NE(asked, nullptr);
                asked->findChild<QLineEdit*>("presetName")->setText("Catalogue");
                asked->accept();
            }
        };
    };
    const Step half = pane("Finishing", "*QVFoldStyle", "Half Fold");
    const Step staple = pane("Finishing", "*QVStaple", "Two, Left");
    struct Situation {
        std::vector<Step> steps; // after the defaults, which a template's queue does without
        const char* keyword;
        const char* shown;  // on screen
        const char* value;  // in the print settings
        const char* device; // in the document; with "!" it is not there
        const char* queue = "Agreement";
    };
    const Situation situations[] = {
        {{}, "*PageSize", "US Letter", "Letter", "*PageSize Letter"},
        {{size("A5")}, "*PageSize", "A5", "A5", "*PageSize A5"},
        {{size("A3"), cancelled}, "*PageSize", "A3", "A3", "*PageSize A3"},
        {{size("A5"), defaults}, "*PageSize", "A5", "A5", "*PageSize A5"},
        {{size("A5"), otherQueue, backAgain}, "*PageSize", "US Letter", "Letter", "*PageSize Letter"},
        {{customSize}, "*PageSize", "150.0 × 210.0 mm", "Letter", "*CustomPageSize True\n425."},
        {{turn("landscape"), turn("portrait")}, "*QVOrientation", "Portrait", "Portrait", "ion: Portrait"},
        {{turn("landscape"), defaults}, "*QVOrientation", "Landscape", "Landscape", "ion: Landscape"},
        {{collate(false)}, "*Collate", "Off", "False", "numcopies(2)\n"},
        {{collate(true)}, "*Collate", "On", "True", "numcopies(2) collate\n"},
        {{pane("Layout", "*QVDuplex", "Turn on Short Edge"), otherQueue, backAgain},
         "*QVDuplex",
         "Turn on Short Edge",
         "ShortEdge",
         "*QVDuplex ShortEdge"},
        {{pane("Layout", "*QVNUpPages", "4")}, "*QVNUpPages", "4", "4", "*QVNUpPages 4"},
        {{staple}, "*QVStaple", "Two, Left", "Dual", "*QVStaple Dual"},
        {{staple, undo("*QVStaple")}, "*QVStaple", "Off", "None", "!*QVStaple Dual"},
        {{pane("Paper and Job", "*MediaType", "Labels")}, "*MediaType", "Labels", "Labels", "pe Labels"},
        {{pane("Paper and Job", "*InputSlot", "Tray 2"), size("A4")},
         "*InputSlot",
         "Tray 2",
         "Tray2",
         "*InputSlot Tray2"},
        // A conflict.
        {{half, size("A5"), refused}, "*QVFoldStyle", "Half Fold", "Half", "*QVFoldStyle Half"},
        {{half, size("A5"), refused, click("Resolve")}, "*QVFoldStyle", "Off", "None", "!*QVFoldStyle Half"},
        // Another queue of the model.
        {{otherQueue, watermark, backAgain, watermark, otherQueue},
         "watermarks",
         "None",
         "-1",
         "!/Watermark <50524F4F46>"},
        {{watermark}, "watermarks", "PROOF", "1", "/Watermark <50524F4F46>"},
        {{module("set MM_A1 Card")}, "*MM_A1", "not shown", "1", "*MM_A1 Card"},
        {{module("set MM_A1 Card"), otherQueue}, "*MM_A1", "not shown", "0", "!*MM_A1"},
        // The module's answer.
        {{module("set QVDuplex LongEdge\nset PresetName Glossy")},
         "*PresetName",
         "not shown",
         "Glossy",
         "*QVDuplex LongEdge"},
        {{half, module("set QVFoldStyle Z"), undo("*QVFoldStyle")},
         "*QVFoldStyle",
         "Half Fold",
         "Half",
         "*QVFoldStyle Half"},
        {{module("watermark remove 1\nwatermark remove 0"), watermark, module("watermark remove 0")},
         "watermarks",
         "None",
         "-1",
         "!/Watermark <50524F4F46>"},
        // The administrator's template, before and after a person's own job.
        {{typed("*Notes2", "mine")}, "*Notes2", "mine", "mine", "*Notes2 mine", "Templated"},
        {{}, "*Notes2", "of the house", "of the house", "*Notes2 of the house", "Templated"},
        // A preset with an account.
        {{module("set QVPCName 42\nset MM_A1 Card"), preset(""), defaults, preset("Catalogue")},
         "*QVPCName",
         "not shown",
         "42",
         "*MM_A1 Card"},
        // What a field refuses.
        {{typed("*QVLcdMessage", "12345678901234567890123")},
         "*QVLcdMessage",
         "12345678901234567890",
         "12345678901234567890",
         "*QVLcdMessage 12345678901234567890\n"},
        {{typed("*QVPageRanges", "01-0x5")}, "*QVPageRanges", "01-05", "01-05", "*QVPageRanges 01-05\n"},
    };
    const std::map<std::string, const char*> keptElsewhere{{"watermarks", ".SelectedWatermarkKey"},
                                                           {"*MM_A1", ".MMKey"}};
    for (const Situation& each : situations) {
        SCOPED_TRACE(std::string(each.keyword) + " " + each.shown + " " + each.device);
        const auto shown = Open(each.queue);
        PrintDialog& dialog = *shown->dialog;
        if (each.queue == std::string("Agreement")) {
            defaults(dialog);
        }
        for (const Step& step : each.steps) {
            step(dialog);
        }
        EXPECT_EQ(shownText(dialog, each.keyword), each.shown);
        const std::string printed = sandbox->Printed(Print(dialog, "Print Anyway"));
        const auto elsewhere = keptElsewhere.find(each.keyword);
        EXPECT_EQ(heldText(dialog, elsewhere == keptElsewhere.end() ? each.keyword : elsewhere->second),
                  each.value);
        const bool isThere = *each.device != '!';
        EXPECT_EQ(printed.find(each.device + (isThere ? 0 : 1)) != std::string::npos, isThere);
    }
}

// Whoever changes the number of copies: the dialog's field, the field in the pane, the Job Properties module.
TEST_F(AgreementTest, CopiesAreTheSameEverywhere) {
    setLibraryLoader(std::make_unique<PosixLibraryLoader>());
    const struct {
        int copies;
        Step person;
    } changes[] = {
        {2, [](PrintDialog& dialog) { dialog.findChild<QSpinBox*>("copies")->setValue(2); }},
        {3, [](PrintDialog& dialog) { Field<QSpinBox>(dialog, "paneCopies")->setValue(3); }},
        {4, module("set *QV_COPIES 4")},
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
    // expected: in the document, or on standard error
    for (const auto& [arguments, status, expected] :
         {std::tuple<std::vector<std::string>, int, std::string>{
              {"-o", "number-up=2"}, 0, "%%Orientation: Landscape"},
          {{"-o", "number-up=4"}, 0, "%%Orientation: Portrait"},
          {{"-o", "sides=two-sided-long-edge"}, 0, "%%BeginFeature: *QVDuplex LongEdge"},
          {{"-o", "sides=two-sided-short-edge"}, 0, "%%BeginFeature: *QVDuplex ShortEdge"},
          {{"-o", "media=A5"}, 0, "%%BeginFeature: *PageSize A5"},
          {{"PageSize=A4", "-o", "media=A5"}, 2, "media=A5 and *PageSize=A4 differ"},
          {{"-o", "number-up=3"}, 2, "number-up takes 1, 2, 4, 6, 9 or 16, not '3'"},
          {{"QVNUpPages=2", "-o", "number-up=2"}, 2, "QVNUpPages already puts several pages on a sheet"},
          {{"-o", "sides=both"}, 2, "sides takes one-sided"},
          {{"QVDuplex=LongEdge", "-o", "sides=one-sided"}, 2, "*QVDuplex=LongEdge differ"},
          {{"PageSize=A5", "QVFoldStyle=Half", "--strict"}, 1, "*QVFoldStyle=Half"}}) {
        std::vector<std::string> command{"print", "-d", "Lines", samplePath("plain.ps")};
        command.insert(command.end(), arguments.begin(), arguments.end());
        const CommandResult result = runTool(command);
        SCOPED_TRACE(arguments.back());
        EXPECT_EQ(result.status, status) << result.errors;
        const std::string told = status == 0 ? sandbox->Printed(jobNumber(result.output)) : result.errors;
        EXPECT_NE(told.find(expected), std::string::npos) << result.output << result.errors;
    }
}

} // namespace

} // namespace torka::tests
