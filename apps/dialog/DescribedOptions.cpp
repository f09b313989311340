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
            options.defaults.try_emplace(keyword.mid(1).toStdString());
        } else if (constexpr QByteArrayView start("*Default"); line.startsWith(start) && line.contains(':')) {
            const std::string keyword =
                line.mid(start.size(), line.indexOf(':') - start.size()).toStdString();
            if (const auto found = options.defaults.find(keyword); found != options.defaults.end()) {
                found->second = line.mid(line.indexOf(':') + 1).trimmed().toStdString();
            }
        }
    }
    return options;
}

} // namespace torka::dialog
