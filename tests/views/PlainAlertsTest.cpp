// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtAlertPresenter.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QTimer>
#include <gtest/gtest.h>

namespace torka {
namespace {

// Addresses and job names come from outside. An alert shows them as text and opens no link in them.
TEST(PlainAlerts, ShowMarkupAsText) {
    int labels = 0;
    QTimer::singleShot(0, [&labels] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), "<b>title</b>");
        for (const QLabel* label : box->findChildren<QLabel*>()) {
            if (Qt::mightBeRichText(label->text())) {
                ++labels;
                EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
            }
        }
        box->accept();
    });
    AlertText text;
    text.title = "<b>title</b>";
    text.informative = "<a href=\"http://example.invalid/\">10.0.0.5</a>";
    text.defaultButton = "OK";
    QtAlertPresenter().RunModal(text);
    EXPECT_EQ(labels, 2);
}

} // namespace
} // namespace torka
