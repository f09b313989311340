// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/qt/PersonsTexts.h"

#include <QCoreApplication>
#include <QString>
#include <string>

namespace torka::dialog {

// The text in the language of the program, or as it is where the tables lack it.
inline QString said(const char* text) { return QCoreApplication::translate("torka", text); }

// The message of another floor in the language of the program, or as it is.
inline QString saidMessage(const std::string& english) {
    return QCoreApplication::translate(messageContext, english.c_str());
}

} // namespace torka::dialog
