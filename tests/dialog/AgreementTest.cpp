// SPDX-License-Identifier: Apache-2.0
#include "tests/dialog/DialogFixture.h"

#include <functional>

// What the screen shows, what the print settings hold and what reaches the device agree.

namespace torka::tests {

namespace {

class AgreementTest : public DialogTest {
protected:
    // Presses the print button, clicks the button with this text in the question about conflicts, and goes on
    // from the popup notes. Returns the pairs that the question names.
    static QStringList PressPrintAndAnswer(PrintDialog& dialog, const char* answer) {
        QStringList named;
        QTimer person;
        QObject::connect(&person, &QTimer::timeout, [&] {
            auto* question = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (question != nullptr && question->objectName() == QLatin1String("popupJobNotes")) {
                question->accept();
            } else if (question != nullptr && question->objectName() == QLatin1String("conflicts")) {
                auto* list = question->findChild<QListWidget*>();
                for (int i = 0; i < list->count(); ++i) {
                    named.append(list->item(i)->text());
                }
                for (QPushButton* button : question->findChildren<QPushButton*>()) {
                    if (button->text().remove(QLatin1Char('&')) == QLatin1String(answer)) {
                        button->click();
                    }
                }
            }
        });
        person.start(5);
        PressPrint(dialog);
        return named;
    }
};

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
        EXPECT_EQ(PressPrintAndAnswer(dialog, answer),
                  QStringList("“Page Size: A5” does not go together with “Fold: Half Fold”."));
        EXPECT_EQ(dialog.result(), printed ? QDialog::Accepted : QDialog::Rejected);
        EXPECT_EQ(dialog.isVisible(), !printed);
        EXPECT_EQ(utf8Text(cfCast<CFString>(dialog.tab().settings().Value(cfString("*QVFoldStyle")))), fold);
    }
}

} // namespace

} // namespace torka::tests
