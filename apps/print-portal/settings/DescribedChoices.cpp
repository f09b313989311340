// SPDX-License-Identifier: Apache-2.0
#include "apps/print-portal/settings/DescribedChoices.h"

#include <QFile>
#include <algorithm>
#include <array>

namespace torka::portal {

namespace {

constexpr qint64 longestLine = 1024; // bytes; keyword, choice and text stand at the start
constexpr std::size_t mostOptions = 5000;

// "Keyword Choice/Text" from "*Keyword Choice/Text: …"; the text is the choice where the line gives none.
struct Statement {
    QString keyword, choice, text;
};

Statement statementOf(const QByteArray& line) {
    const qsizetype blank = line.indexOf(' ');
    const qsizetype colon = line.indexOf(':');
    if (blank < 0 || colon < blank) {
        return {};
    }
    const QByteArray rest = line.mid(blank + 1, colon - blank - 1).trimmed();
    const qsizetype slash = rest.indexOf('/');
    const QByteArray choice = rest.left(slash).trimmed();
    return {QString::fromUtf8(line.mid(1, blank - 1)), QString::fromUtf8(choice),
            QString::fromUtf8(slash < 0 ? choice : rest.mid(slash + 1).trimmed())};
}

} // namespace

std::map<QString, DescribedChoice> describedChoices(const std::string& descriptionPath) {
    QFile file(QString::fromStdString(descriptionPath));
    if (descriptionPath.empty() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return describedChoices(file);
}

std::map<QString, DescribedChoice> describedChoices(QIODevice& description) {
    std::map<QString, DescribedChoice> options;
    std::map<QString, DescribedChoice>::iterator open = options.end();
    while (!description.atEnd() && options.size() < mostOptions) {
        const QByteArray line = description.readLine(longestLine);
        if (line.startsWith("*CloseUI")) {
            open = options.end();
        } else if (line.startsWith("*OpenUI") || line.startsWith("*JCLOpenUI")) {
            const Statement statement = statementOf(line);
            if (statement.choice.startsWith(QLatin1Char('*'))) {
                QString text = statement.text;
                if (text.startsWith(QLatin1Char('*'))) {
                    text.remove(0, 1);
                }
                open = options.insert_or_assign(statement.choice.mid(1), DescribedChoice{text, {}}).first;
            }
        } else if (open != options.end() && line.startsWith('*')) {
            const Statement statement = statementOf(line);
            if (statement.keyword == open->first && !statement.choice.isEmpty()) {
                open->second.choices += statement.choice;
            }
        }
    }
    return options;
}

bool isOfDialog(const QString& keyword) {
    constexpr std::array<const char*, 5> own{"PageSize", "PageRegion", "Duplex", "Collate", "OutputOrder"};
    return std::ranges::any_of(own, [&](const char* name) { return keyword == QLatin1String(name); });
}

} // namespace torka::portal
