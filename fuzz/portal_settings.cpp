// SPDX-License-Identifier: Apache-2.0
// What a program sends to the print portal, and the description of a queue that is not ours. Lines
// "KEY=VALUE" are settings; "#KEY=NUMBER" is a length of the page setup; the whole is also read as a
// description.
#include "apps/print-portal/settings/DescribedChoices.h"
#include "apps/print-portal/settings/PrintChoices.h"

#include <QBuffer>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torka::portal;
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    QVariantMap settings;
    QVariantMap setup;
    const QList<QByteArray> lines = input.split('\n');
    for (const QByteArray& line : lines) {
        const qsizetype equals = line.indexOf('=');
        const QString key = QString::fromUtf8(line.left(equals));
        const QByteArray value = equals < 0 ? QByteArray() : line.mid(equals + 1);
        if (key.startsWith(QLatin1Char('#'))) {
            setup.insert(key.mid(1), value.toDouble());
        } else {
            settings.insert(key, QString::fromUtf8(value));
            setup.insert(key, QString::fromUtf8(value));
        }
    }
    QStringList problems;
    const PrintChoices choices = readChoices(settings, setup, problems);
    // What comes back is read the same way.
    const QVariantMap back = writeSettings(choices, LaidOutBy::Program, {});
    QStringList again;
    const PrintChoices second = readChoices(back, writePageSetup(choices, {}), again);
    if (second.copies != choices.copies || second.sides != choices.sides ||
        second.pageSet != choices.pageSet ||
        (choices.copies && (*choices.copies < 1 || *choices.copies > 9999))) {
        std::abort();
    }
    QBuffer description;
    description.setData(input);
    description.open(QIODevice::ReadOnly);
    describedChoices(description);
    return 0;
}
