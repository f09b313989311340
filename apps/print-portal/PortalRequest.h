// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>

namespace torka::portal {

// Responses of the portal (org.freedesktop.portal.Request).
enum class Response : unsigned { Success = 0, Cancelled = 1, Ended = 2 };

// A call that waits for its answer: the object of org.freedesktop.impl.portal.Request at the call's handle,
// until the answer. Deletes itself after it.
class PortalRequest final : public QObject {
    Q_OBJECT

public:
    // Null when the handle is no free path below the portal's requests; the caller then gets a D-Bus error.
    static PortalRequest* Begin(const QDBusConnection& connection, const QDBusMessage& call,
                                const QString& handle, QObject* parent);
    ~PortalRequest() override;

    // The first answer counts.
    void Answer(Response response, const QVariantMap& results = {});
    bool IsAnswered() const { return isAnswered; }
    QString Caller() const { return call.service(); }

    // Called over D-Bus: answers, and tells the dialog to end.
    void Close();

Q_SIGNALS:
    void closed();

private:
    PortalRequest(const QDBusConnection& connection, const QDBusMessage& call, const QString& handle,
                  QObject* parent);

    QDBusConnection connection;
    QDBusMessage call;
    QString path;
    bool isAnswered = false;
};

} // namespace torka::portal
