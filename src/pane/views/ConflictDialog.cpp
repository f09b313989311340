// SPDX-License-Identifier: Apache-2.0
#include "pane/views/ConflictDialog.h"

#include "pane/presentation/FieldTexts.h"
#include "pane/views/PaneColors.h"
#include "pane/views/PlainTexts.h"
#include "pane/views/RoomyRows.h"
#include "platform/qt/LetterWidth.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace torka {

ConflictDialog::ConflictDialog(const PaneContext& paneContext, QWidget* parent)
    : QDialog(parent)
    , context(paneContext) {
    setPalette(readableColors());
    setObjectName(QStringLiteral("conflicts"));
    setWindowTitle(context.Say(words::conflictTitle));
    auto* introduction = new QLabel(context.Say(words::conflictAsk), this);
    auto* consequence = new QLabel(Consequence(), this);
    for (QLabel* label : {introduction, consequence}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        alignLeading(*label);
    }
    auto* list = new QListWidget(this);
    list->setAccessibleName(introduction->text());
    list->setItemDelegate(new RoomyRows(list));
    list->setWordWrap(true);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    constexpr int characters = 64;
    constexpr int lines = 6;
    list->setMinimumSize(letterWidth(fontMetrics()) * characters, fontMetrics().lineSpacing() * lines);
    for (const PaneConflict& conflict : context.editor.Conflicts()) {
        const std::string sentence =
            context.texts.Say(words::conflict, shownSetting(context.texts, conflict.first),
                              shownSetting(context.texts, conflict.second));
        list->addItem(qText(sentence));
    }
    auto* buttons = new QDialogButtonBox(this);
    const PaneResolution& resolution = context.editor.Resolution();
    QPushButton* resolve = buttons->addButton(context.Say(words::resolve), QDialogButtonBox::ActionRole);
    resolve->setEnabled(resolution.solved && !resolution.changes.empty());
    QPushButton* print =
        buttons->addButton(context.Say(words::printAnyway), QDialogButtonBox::DestructiveRole);
    QPushButton* cancel = buttons->addButton(context.Say(words::cancel), QDialogButtonBox::RejectRole);
    for (QPushButton* button : {resolve, print, cancel}) {
        button->setAutoDefault(false);
    }
    (resolve->isEnabled() ? resolve : cancel)->setDefault(true);
    connect(resolve, &QPushButton::clicked, this, [this] {
        isToResolve = true;
        accept();
    });
    connect(print, &QPushButton::clicked, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* rows = new QVBoxLayout(this);
    rows->addWidget(introduction);
    rows->addWidget(list, 1);
    rows->addWidget(consequence);
    rows->addWidget(buttons);
}

// What a resolution would do, or that there is none.
QString ConflictDialog::Consequence() const {
    const PaneResolution& resolution = context.editor.Resolution();
    return resolution.solved && !resolution.changes.empty()
               ? qText(context.texts.Say(words::conflictResolve,
                                         shownChanges(context.texts, resolution.changes)))
               : context.Say(words::noResolution);
}

} // namespace torka
