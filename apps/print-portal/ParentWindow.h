// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

class QWidget;

namespace torka::portal {

// Puts the window before the program's window that the handle names. "x11:HEX" is the number of an X window.
// "wayland:TOKEN" names an exported surface (xdg-foreign), for which Qt 6.4 has no public call. With any
// other handle the window stands alone, too. REQUIRES: the window is not shown yet.
void standBefore(QWidget& window, const QString& handle, bool isModal);

} // namespace torka::portal
