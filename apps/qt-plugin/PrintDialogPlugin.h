// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QGenericPlugin>
#include <QObject>

namespace torka::plugin {

// The plug-in that every program of Qt loads at its start, whether it prints or not. It links Qt's core and
// windows only; the first print dialog loads everything else.
class PrintDialogPlugin final : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "torka.json")

public:
    QObject* create(const QString& key, const QString& specification) override;
};

// Sees the application's events and adds the pane to a print dialog before it is first shown.
class DialogWatcher final : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace torka::plugin
