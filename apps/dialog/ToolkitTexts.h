// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace torka::dialog {

// Lets Qt's own dialogs and buttons speak the person's language, for a program of ours; other programs decide
// that for themselves. Without Qt's catalogue (Debian: qt6-translations-l10n) they speak English.
// REQUIRES: an application object.
void loadToolkitTexts();

} // namespace torka::dialog
