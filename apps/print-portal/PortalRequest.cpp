// SPDX-License-Identifier: Apache-2.0
#include "apps/print-portal/PortalRequest.h"

#include <RequestAdaptor.h>

#include <QDBusError>

namespace torka::portal {

PortalRequest* PortalRequest::Begin(const QDBusConnection& bus, const QDBusMessage& message,
                                    const QString& handle, QObject* parent) {
    auto* request = new PortalRequest(bus, message, handle, parent);
    // A handle elsewhere could stand for the service's own object.
    if (handle.startsWith(QLatin1String("/org/freedesktop/portal/desktop/request/")) &&
        request->connection.registerObject(handle, request, QDBusConnection::ExportAdaptors)) {
        return request;
    }
    request->path.clear();
    request->isAnswered = true;
    request->connection.send(message.createErrorReply(
        QDBusError::InvalidArgs, QStringLiteral("The handle is no free path of a request.")));
    delete request;
    return nullptr;
}

PortalRequest::PortalRequest(const QDBusConnection& bus, const QDBusMessage& message, const QString& handle,
                             QObject* parent)
    : QObject(parent)
    , connection(bus)
    , call(message)
    , path(handle) {
    new RequestAdaptor(this); // belongs to this object
}

PortalRequest::~PortalRequest() { Answer(Response::Ended); }

void PortalRequest::Answer(Response response, const QVariantMap& results) {
    if (isAnswered) {
        return;
    }
    isAnswered = true;
    connection.send(call.createReply({static_cast<unsigned>(response), results}));
    connection.unregisterObject(path);
    deleteLater();
}

void PortalRequest::Close() {
    Answer(Response::Ended);
    Q_EMIT closed();
}

} // namespace torka::portal
