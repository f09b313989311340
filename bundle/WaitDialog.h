#pragma once

#include "pane/exchange/WaitPresenter.h"
#include "platform/Bundle.h"

#include <QPointer>
#include <QTimer>

#include <chrono>

class QProgressDialog;

namespace torka {

// Waits of the pane as a person meets them: a modal dialog with a bar and a Cancel button, shown only once a
// wait takes long, and gone when nothing is waited for any more.
class WaitDialog final : public WaitPresenter {
public:
    explicit WaitDialog(BundleRef bundle);
    ~WaitDialog() override;
    void Begin() override;
    void Show(const WaitProgress& progress) override;
    void End() override;

    // Lets the event loop run for that time. False, at once, when the person has cancelled. Before the dialog
    // is on the screen nothing that the person does reaches the host's windows.
    static bool wait(std::chrono::milliseconds duration);

private:
    void Hide();

    BundleRef bundle;
    QPointer<QProgressDialog> dialog;
    QTimer quiet; // ends the dialog when a wait ends without telling
};

} // namespace torka
