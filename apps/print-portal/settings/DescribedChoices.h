// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <map>
#include <string>

class QIODevice;

namespace torka::portal {

struct DescribedChoice {
    QString text;        // the option's name for people
    QStringList choices; // in the description's order
};

// The options that a description offers, by main keyword without its asterisk (PPD 4.3, "*OpenUI").
std::map<QString, DescribedChoice> describedChoices(QIODevice& description);
// The same of a file; empty for one that cannot be read.
std::map<QString, DescribedChoice> describedChoices(const std::string& descriptionPath);

// Whether the dialog's own tabs decide the option, so that it is no advanced option of the printer.
bool isOfDialog(const QString& keyword);

} // namespace torka::portal
