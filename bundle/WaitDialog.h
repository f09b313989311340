// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/exchange/WaitPresenter.h"
#include "platform/Bundle.h"

#include <QPointer>
#include <QTimer>

#include <chrono>

class QProgressDialog;

namespace torka {

// Shows the pane's waits in a modal dialog with a progress bar and a Cancel button. The dialog appears when a
// wait takes long and disappears when the waits are over.
class WaitDialog final : public WaitPresenter {
public:
    explicit WaitDialog(BundleRef bundle);
    ~WaitDialog() override;
    void Begin() override;
    void Show(const WaitProgress& progress) override;
    void End() override;

    // Runs the event loop for that time. False at once when the person has cancelled. Until the dialog is
    // shown, the loop excludes user input, so that it does not reach the host's windows.
    static bool wait(std::chrono::milliseconds duration);

private:
    void Hide();

    BundleRef bundle;
    QPointer<QProgressDialog> dialog;
    QTimer quiet; // hides the dialog when a wait ends without a report
};

} // namespace torka
