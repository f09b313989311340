// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/dialog/PrintDialog.h"
#include "apps/print-portal/DialogChoices.h"
#include "apps/print-portal/PortalRequest.h"
#include "apps/print-portal/TokenStore.h"
#include "apps/print-portal/settings/PrintChoices.h"

#include <QObject>
#include <QPrinter>
#include <memory>

namespace torka::portal {

struct DialogWish {
    QString title;        // of the document, for people and for the job
    QString parentWindow; // handle of the portal
    bool isModal = true;
    bool isSandboxed = false; // the program may not choose a folder
    bool hasSelection = false;
    bool hasCurrentPage = false;
    // Who applies the person's layout to the pages.
    LaidOutBy laidOutBy = LaidOutBy::Program;
    PrintChoices choices;
};

// One print dialog, from its appearance to the person's answer. Does not block: several can be open.
//
// Deletes itself after the answer, once no event loop of its own dialogs runs any more.
class DialogSession final : public QObject {
    Q_OBJECT

public:
    DialogSession(PDEPlugIn& plugIn, DialogWish wish, QObject* parent);
    ~DialogSession() override;

    void Open();
    // Ends the dialog and its questions without an answer.
    void Close();

    // REQUIRES: the person accepted.
    const PreparedJob& Job() const { return job; }
    const PrintChoices& Chosen() const { return chosen; }

Q_SIGNALS:
    // At most once. Ended: the queue has gone, and the person has read so.
    void answered(torka::portal::Response response);

private:
    void Take(int result);
    void TakeChoices();
    void Log(const QString& problem) const;
    void End();

    DialogWish wish;
    QPrinter printer;
    std::unique_ptr<dialog::PrintDialog> dialog;
    PropertyPresets* presets;
    QDoubleSpinBox* scale = nullptr; // for a program that draws the pages yet
    PreparedJob job;
    PrintChoices chosen;
    bool isOver = false;
};

// Runs it once no event loop but the program's own one runs: a dialog that is deleted in the loop of a
// question takes that question's frames away.
void whenLoopsHaveEnded(QObject* context, const std::function<void()>& work);

} // namespace torka::portal
