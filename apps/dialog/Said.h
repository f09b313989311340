// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCoreApplication>
#include <QString>

namespace torka::dialog {

// The text in the language of the program, or as it is where the tables lack it.
inline QString said(const char* text) { return QCoreApplication::translate("torka", text); }

} // namespace torka::dialog
