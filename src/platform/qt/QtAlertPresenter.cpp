// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/QtAlertPresenter.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

namespace torka::platform {

AlertButton QtAlertPresenter::RunModal(const AlertText& text) {
    // On the heap and guarded by a QPointer: the window below may close during the alert and delete the box.
    QWidget* below = QApplication::activeWindow();
    const QPointer<QMessageBox> box = new QMessageBox(below);
    box->setIcon(QMessageBox::Warning);
    // Without a title the window shows the program's file name.
    const QString title = below == nullptr ? QString() : below->windowTitle();
    box->setWindowTitle(title.isEmpty() ? QString::fromStdString(text.title) : title);
    box->setTextFormat(Qt::PlainText);
    box->setText(QString::fromStdString(text.title));
    box->setInformativeText(QString::fromStdString(text.informative));
    // QMessageBox::setTextFormat affects only the title.
    for (QLabel* shown : box->findChildren<QLabel*>()) {
        shown->setTextFormat(Qt::PlainText);
    }
    const auto label = [](const std::string& name) {
        return QString::fromStdString(name).replace(QLatin1Char('&'), QLatin1String("&&"));
    };
    QPushButton* accept = box->addButton(label(text.defaultButton), QMessageBox::AcceptRole);
    box->setDefaultButton(accept);
    const bool hasAlternate = !text.alternateButton.empty();
    QPushButton* alternate =
        hasAlternate ? box->addButton(label(text.alternateButton), QMessageBox::RejectRole) : nullptr;
    box->setEscapeButton(hasAlternate ? alternate : accept);
    box->exec();
    const bool accepted = box != nullptr && box->clickedButton() == accept;
    delete box.data();
    return accepted || !hasAlternate ? AlertButton::defaultButton : AlertButton::alternateButton;
}

} // namespace torka::platform
