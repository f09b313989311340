// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/DescribedOptions.h"

#include <QFile>

namespace torka::dialog {

DescribedOptions DescribedOptions::Of(const std::string& descriptionPath) {
    constexpr qint64 longestLine = 1024; // bytes; the keyword stands at the start
    DescribedOptions options;
    QFile file(QString::fromStdString(descriptionPath));
    if (descriptionPath.empty() || !file.open(QIODevice::ReadOnly)) {
        return options;
    }
    while (!file.atEnd()) {
        const QByteArray line = file.readLine(longestLine);
        if (line.startsWith("*OpenUI")) {
            const QByteArray keyword = line.mid(line.indexOf(' ') + 1).split('/')[0].split(':')[0].trimmed();
            options.sides = options.sides || keyword == "*QVDuplex" || keyword == "*Duplex";
            options.pagesPerSheet = options.pagesPerSheet || keyword == "*QVNUpPages";
        }
    }
    return options;
}

} // namespace torka::dialog
