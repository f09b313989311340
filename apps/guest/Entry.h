// SPDX-License-Identifier: Apache-2.0
#pragma once

// The only function of libtorkadialog.so. Adds the pane to a print dialog of the program that loads it.
//
// `dialog` is a QObject*. Any other object than a QPrintDialog, and a dialog that is unlike the known one,
// stay as they are. Increase the version with every change of this interface; another version does nothing.
// Lets no exception out. REQUIRES: the program's main thread.

inline constexpr int torkaAttachVersion = 1;
inline constexpr const char* torkaAttachName = "torkaAttachPane";
using TorkaAttach = void (*)(void* dialog, int version);
