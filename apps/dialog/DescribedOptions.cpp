// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/DescribedOptions.h"

#include <QFile>
#include <QRegularExpression>

namespace torka::dialog {

namespace {

// "QVStaple" of " *QVStaple/Staple: PickOne".
std::string keywordIn(const QByteArray& text) {
    QByteArray keyword = text.left(text.indexOf(':')).split('/')[0].trimmed();
    keyword.remove(0, keyword.startsWith('*') ? 1 : 0);
    return keyword.toStdString();
}

// The fourth number behind the colon: minimum, maximum, increment, default.
void takeNumber(const QByteArray& range, std::map<std::string, double>& numbers) {
    static const QRegularExpression separators(QStringLiteral("[;()]"));
    const QStringList parts = QString::fromLatin1(range.mid(range.indexOf(':') + 1))
                                  .section(QLatin1Char('"'), 0, 0)
                                  .split(separators, Qt::SkipEmptyParts);
    bool isNumber = false;
    const double standard = parts.value(3).toDouble(&isNumber);
    if (isNumber) {
        numbers.try_emplace(keywordIn(range), standard);
    }
}

} // namespace

DescribedOptions DescribedOptions::Of(const std::string& descriptionPath) {
    constexpr qint64 longestLine = 1024; // bytes; the keyword stands at the start
    constexpr QByteArrayView defaultWord("*Default");
    DescribedOptions options;
    QFile file(QString::fromStdString(descriptionPath));
    if (descriptionPath.empty() || !file.open(QIODevice::ReadOnly)) {
        return options;
    }
    while (!file.atEnd()) {
        const QByteArray line = file.readLine(longestLine);
        const QByteArray rest = line.mid(line.indexOf(' ') + 1);
        if (line.startsWith("*OpenUI")) {
            const std::string keyword = keywordIn(rest);
            options.sides = options.sides || keyword == "QVDuplex" || keyword == "Duplex";
            options.pagesPerSheet = options.pagesPerSheet || keyword == "QVNUpPages";
            options.defaults.try_emplace(keyword);
        } else if (line.startsWith("*%ZANRange ") || line.startsWith("*%ZANUnitRange ") ||
                   line.startsWith("*%ZANFloatRange ")) {
            takeNumber(rest, options.numbers);
        } else if (line.startsWith("*%ZANJobNote ")) {
            options.notes.insert(keywordIn(rest));
        } else if (line.startsWith(defaultWord) && line.contains(':')) {
            const auto found = options.defaults.find(keywordIn(line.mid(defaultWord.size())));
            if (found != options.defaults.end()) {
                found->second = line.mid(line.indexOf(':') + 1).trimmed().toStdString();
            }
        }
    }
    return options;
}

} // namespace torka::dialog
