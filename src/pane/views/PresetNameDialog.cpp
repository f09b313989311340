// SPDX-License-Identifier: Apache-2.0
#include "pane/views/PresetNameDialog.h"

#include "pane/presentation/PresetChoice.h"
#include "pane/views/PaneColors.h"
#include "platform/qt/LetterWidth.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace torka {

PresetNameDialog::PresetNameDialog(const PaneContext& paneContext, const std::string& renamed,
                                   std::vector<std::string> taken,
                                   std::function<void(const std::string&)> take, QWidget* parent)
    : QDialog(parent)
    , context(paneContext)
    , oldName(renamed)
    , takenNames(std::move(taken))
    , takeName(std::move(take))
    , field(new QLineEdit(this))
    , hint(new QLabel(this)) {
    setPalette(readableColors());
    setObjectName(QStringLiteral("presetNameDialog"));
    setWindowTitle(context.Say(oldName.empty() ? words::presetSaveTitle : words::presetRenameTitle));
    field->setObjectName(QStringLiteral("presetName"));
    field->setMaxLength(static_cast<int>(PresetStore::maximumNameLength));
    field->setText(qText(oldName));
    field->selectAll();
    constexpr int characters = 44;
    field->setMinimumWidth(letterWidth(fontMetrics()) * characters);
    hint->setTextFormat(Qt::PlainText);
    hint->setWordWrap(true);
    hint->setMinimumHeight(fontMetrics().lineSpacing() * 2);
    hint->setAlignment((isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute | Qt::AlignTop);
    auto* form = new QFormLayout;
    form->addRow(context.Say(words::presetName), field);
    auto* buttons = new QDialogButtonBox(this);
    acceptButton = buttons->addButton(QString(), QDialogButtonBox::AcceptRole);
    acceptButton->setDefault(true);
    buttons->addButton(context.Say(words::cancel), QDialogButtonBox::RejectRole);
    auto* rows = new QVBoxLayout(this);
    rows->addLayout(form);
    rows->addWidget(hint);
    rows->addWidget(buttons);
    rows->setSizeConstraint(QLayout::SetMinimumSize);
    connect(field, &QLineEdit::textChanged, this, [this] { Check(); });
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { accept(); });
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
    Check();
}

std::string PresetNameDialog::Name() const { return field->text().trimmed().toStdString(); }

void PresetNameDialog::Check() {
    const PresetNameState state =
        presetNameState(context.texts, oldName, takenNames, field->text().toStdString(), Name());
    acceptButton->setEnabled(state.canAccept);
    acceptButton->setText(context.Say(*state.button));
    hint->setText(qText(state.hint));
    field->setAccessibleDescription(hint->text());
}

void PresetNameDialog::accept() {
    if (acceptButton->isEnabled()) {
        QDialog::accept();
        takeName(Name());
    }
}

} // namespace torka
