// SPDX-License-Identifier: Apache-2.0
#include "pane/views/PresetBar.h"
#include "pane/views/PresetNameDialog.h"
#include "platform/memory/MemorySpooler.h"
#include "platform/qt/PersonsTexts.h"
#include "tests/views/ViewFixture.h"

#include <QTranslator>

namespace torka::tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::Not;
using testing::Pair;
using testing::UnorderedElementsAre;

// Uses the presets of the sample's pane by menu and keys.
struct PresetBarTest : testing::Test {
    ScopedMemorySystem system;
    std::unique_ptr<ViewedPane> pane;

    PresetBarTest() { Open(); }
    void Open(bool withLastJob = false) {
        pane.reset();
        pane = std::make_unique<ViewedPane>(samplePane());
        pane->beganWithLastJob = withLastJob;
        if (withLastJob) {
            pane->pane->Set("*QVDuplex", "ShortEdge");
        }
        pane->Show();
        QCoreApplication::processEvents();
    }
    PresetBar* Bar() const { return static_cast<PresetBar*>(pane->Find<QToolButton>("presets")); }
    std::vector<std::string> MenuTexts() const {
        std::vector<std::string> texts;
        Q_EMIT Bar()->menu()->aboutToShow();
        for (const QAction* action : Bar()->menu()->actions()) {
            texts.push_back(action->text().toStdString() + (action->isChecked() ? " (marked)" : ""));
        }
        return texts;
    }
    void Choose(const char* text) {
        Q_EMIT Bar()->menu()->aboutToShow();
        for (QAction* action : Bar()->menu()->actions()) {
            if (action->text() == QString::fromUtf8(text) && action->isEnabled()) {
                action->trigger();
                return;
            }
        }
        ADD_FAILURE() << "no such entry: " << text;
    }
    PresetNameDialog* NameDialog() const {
        return static_cast<PresetNameDialog*>(Bar()->findChild<QDialog*>(QStringLiteral("presetNameDialog")));
    }
    void Type(const QString& name) {
        NameDialog()->Field()->selectAll();
        NameDialog()->Field()->insert(name);
        QTest::keyClick(NameDialog()->Field(), Qt::Key_Return);
        Settle();
    }
    void SaveAs(const char* name) {
        Bar()->AskForSaving();
        Type(QString::fromUtf8(name));
    }
    static void Settle() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    std::string Shown() const {
        QCoreApplication::processEvents();
        return Bar()->text().toStdString();
    }
};

TEST_F(PresetBarTest, SavesAppliesUpdatesAndTakesBack) {
    EXPECT_EQ(Shown(), "Presets");
    pane->Editor().SetValue("*QVDuplex", "ShortEdge");
    pane->Editor().EditAll([&] { pane->pane->data->MixedMediaList().Append({L"*MM_A1", L"Cover"}); });
    SaveAs("Other");
    SaveAs("Booklet");
    EXPECT_EQ(Shown(), "Booklet");
    EXPECT_THAT(MenuTexts(), IsSupersetOf({"Booklet (marked)", "Other"}));
    pane->Editor().SetValue("*QVDuplex", "None");
    EXPECT_EQ(Shown(), "Booklet (changed)");
    EXPECT_THAT(MenuTexts(), IsSupersetOf({"Booklet", "Other"}));
    pane->Editor().Undo();
    EXPECT_EQ(Shown(), "Booklet") << "the settings are the preset's again";

    pane->Editor().EditAll([&] {
        pane->Editor().FindControl("*QVDuplex")->ResetToDefaultValue();
        pane->pane->data->MixedMediaList().Clear();
    });
    EXPECT_EQ(Shown(), "Booklet (changed)");
    Choose("Booklet");
    EXPECT_EQ(pane->Value("*QVDuplex"), "ShortEdge");
    EXPECT_THAT(pairsOf(pane->pane->data->MixedMedia()), ElementsAre("*MM_A1=Cover"));
    ASSERT_TRUE(pane->Editor().Undo());
    EXPECT_EQ(pane->Value("*QVDuplex"), "None");
    EXPECT_EQ(pane->pane->data->MixedMediaList().Count(), 0U) << "what has no control comes back, too";
    ASSERT_TRUE(pane->Editor().Redo());
    EXPECT_EQ(pane->pane->data->MixedMediaList().Count(), 1U);

    pane->Editor().SetValue("*QVMirror", "True");
    Choose("&Update “Booklet”");
    EXPECT_EQ(Shown(), "Booklet");
    pane->Editor().SetValue("*QVMirror", "False");
    Choose("Booklet");
    EXPECT_EQ(pane->Value("*QVMirror"), "True");
}

TEST_F(PresetBarTest, TheLastJobIsToldUntilAnEditOrAPreset) {
    EXPECT_FALSE(pane->Find<QWidget>("lastJob")->isVisible());
    for (const bool usesDefaults : {true, false}) {
        Open(true);
        auto* line = pane->Find<QWidget>("lastJob");
        ASSERT_TRUE(line->isVisible());
        pane->Draw(); // changes that the dialog makes leave the line
        EXPECT_TRUE(line->isVisible());
        if (usesDefaults) {
            QTest::mouseClick(line->findChild<QToolButton*>(), Qt::LeftButton);
            EXPECT_EQ(pane->Value("*QVDuplex"), "None");
            EXPECT_FALSE(line->isVisible());
            EXPECT_TRUE(pane->Editor().Undo());
        } else {
            SaveAs("Mine");
        }
        EXPECT_EQ(pane->Value("*QVDuplex"), "ShortEdge");
        EXPECT_FALSE(line->isVisible());
    }
    Open(true);
    EXPECT_EQ(Shown(), "Mine");
    EXPECT_FALSE(pane->Find<QWidget>("lastJob")->isVisible()) << "the preset's name tells enough";
}

TEST_F(PresetBarTest, KeepsSettingsForAllProgramsAndNoSecrets) {
    EXPECT_THAT(MenuTexts(), Not(Contains("Use for All &Programs"))) << "without a spooler";
    auto* spooler = new MemorySpooler;
    setSpooler(std::unique_ptr<Spooler>(spooler));
    const std::string queue = utf8Text(pane->pane->data->PrinterName());
    const StandingOptionList others{{"copies", "2"}, {"PageSize", "A3"}};
    spooler->standing[queue] = {others[0], others[1], {"QVStaple", "Top"}};
    pane->Editor().SetValue("*QVDuplex", "ShortEdge");
    pane->Editor().SetValue("*Notes1", "from shelf 4");
    pane->Editor().SetValue("*Resume", "74915362");
    pane->Editor().SetValue("*QVDSPassword", "4711");
    Choose("Use for All &Programs");
    EXPECT_NE(Bar()->findChild<QMessageBox*>(), nullptr);
    EXPECT_THAT(spooler->standing[queue],
                UnorderedElementsAre(others[0], others[1], Pair("QVDuplex", "ShortEdge"),
                                     Pair("Notes1", "from shelf 4")));
    Choose("Do &Not Use for All Programs");
    EXPECT_EQ(spooler->standing[queue], others);
    spooler->answers = false;
    class : public QTranslator {
        QString translate(const char* context, const char* source, const char* /*hint*/,
                          int /*number*/) const override {
            const bool isReason =
                std::string_view(context) == messageContext && std::string_view(source) == "no answer";
            return isReason ? QStringLiteral("keine Antwort") : QString();
        }
        bool isEmpty() const override { return false; }
    } inGerman;
    QCoreApplication::installTranslator(&inGerman);
    for (const std::string& text : MenuTexts()) {
        if (text.starts_with("The settings for all programs c")) { // and "…" where the entry is too long
            Choose(text.c_str());
        }
    }
    EXPECT_EQ(Bar()->findChildren<QMessageBox*>().last()->text(),
              "The settings for all programs cannot be read: keine Antwort");
    Choose("Use for All &Programs");
    EXPECT_EQ(Bar()->findChildren<QMessageBox*>().last()->text(),
              "The settings for all programs were not changed: keine Antwort");
    pane.reset();
    setSpooler(nullptr);
}

TEST_F(PresetBarTest, AsksBeforeItReplacesAndDeletes) {
    SaveAs("One");
    pane->Editor().SetValue("*QVDuplex", "ShortEdge");
    SaveAs("Two");
    EXPECT_THAT(MenuTexts(), IsSupersetOf({"One", "Two (marked)"}));

    Bar()->AskForSaving();
    QTest::keyClicks(NameDialog()->Field(), QStringLiteral("One"));
    EXPECT_EQ(NameDialog()->AcceptButton()->text(), QStringLiteral("&Replace"));
    QTest::keyClick(NameDialog(), Qt::Key_Escape);
    Settle();
    EXPECT_EQ(Shown(), "Two");

    Choose("&Rename “Two”…");
    NameDialog()->Field()->setText(QStringLiteral("One"));
    EXPECT_FALSE(NameDialog()->AcceptButton()->isEnabled());
    Type(QStringLiteral("Three"));
    EXPECT_EQ(Shown(), "Three");
    EXPECT_THAT(MenuTexts(), Not(Contains(testing::StartsWith("Two"))));

    for (const bool really : {false, true}) {
        Choose("&Delete “Three”…");
        auto* box = Bar()->findChild<QMessageBox*>();
        ASSERT_NE(box, nullptr);
        if (really) {
            for (QAbstractButton* button : box->buttons()) {
                if (box->buttonRole(button) == QMessageBox::AcceptRole) {
                    button->click();
                    break;
                }
            }
        } else {
            QTest::keyClick(box, Qt::Key_Return); // the default button keeps the preset
        }
        Settle();
        EXPECT_EQ(Shown(), really ? "Presets" : "Three");
    }
    EXPECT_THAT(MenuTexts(), Contains("One"));
}

TEST_F(PresetBarTest, ShowsHostileNamesAsTheyAre) {
    const std::string name = "<b>R&D</b> %1 \xE2\x80\xAE x";
    SaveAs(name.c_str());
    EXPECT_EQ(Bar()->Chosen(), name);
    EXPECT_EQ(Shown(), "<b>R&&D</b> %1 \xE2\x80\xAE x");
    EXPECT_THAT(Bar()->toolTip().toStdString(), testing::HasSubstr("&lt;b&gt;R&amp;D"));
    Bar()->AskForDeleting();
    auto* box = Bar()->findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->textFormat(), Qt::PlainText);
    EXPECT_THAT(box->text().toStdString(), testing::HasSubstr(name));
}

} // namespace
} // namespace torka::tests
