// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/print-portal/DialogSession.h"
#include "apps/print-portal/PortalRequest.h"
#include "apps/print-portal/TokenStore.h"

#include <QDBusContext>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QVariantMap>
#include <chrono>

namespace torka::portal {

class DocumentIntake;

// The object of org.freedesktop.impl.portal.Print. Answers each call when its dialog is done, and serves
// others meanwhile. Refers to the plug-in.
class PrintService final : public QObject, protected QDBusContext {
    Q_OBJECT

public:
    explicit PrintService(PDEPlugIn& plugIn, QObject* parent = nullptr);
    ~PrintService() override;

    // Called by the adaptor, with the interface's arguments. The returned value is not sent: the answer is
    // delayed.
    unsigned PreparePrint(const QDBusObjectPath& handle, const QString& appId, const QString& parentWindow,
                          const QString& title, const QVariantMap& settings, const QVariantMap& pageSetup,
                          const QVariantMap& options, QVariantMap& results);
    unsigned Print(const QDBusObjectPath& handle, const QString& appId, const QString& parentWindow,
                   const QString& title, const QDBusUnixFileDescriptor& document, const QVariantMap& options,
                   QVariantMap& results);

    // Whether a request, a window or a token waits.
    bool IsBusy();
    // Emits `idle` when nothing has waited for so long, and again while that lasts.
    void EndAfter(std::chrono::milliseconds quiet);

Q_SIGNALS:
    void idle();

private:
    PortalRequest* Begin(const QDBusObjectPath& handle);
    DialogSession* OpenDialog(PortalRequest& request, DialogWish wish);
    bool Deliver(PortalRequest& request, DocumentIntake& intake, const PreparedJob& job,
                 const QString& title);
    void AskThenDeliver(PortalRequest& request, DocumentIntake& intake, DialogWish wish);

    PDEPlugIn& plugIn;
    TokenStore tokens;
    QDBusServiceWatcher callers;
    QTimer quietTimer;
};

} // namespace torka::portal
