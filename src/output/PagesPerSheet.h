// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"

namespace torka {

// Writes how many pages a sheet carries into the print settings, as rows and columns on a portrait sheet; the
// job's layout comments follow them. False, with nothing written, for a number other than 1, 2, 4, 6, 9, 16.
inline bool setPagesPerSheet(PrintSettings& settings, int pages) {
    struct Grid {
        int pages;
        std::int64_t rows;
        std::int64_t columns;
    };
    for (const Grid& grid : {Grid{1, 1, 1}, {2, 2, 1}, {4, 2, 2}, {6, 3, 2}, {9, 3, 3}, {16, 4, 4}}) {
        if (grid.pages == pages) {
            const auto set = [&settings](const char* key, const CFTypeRef& value) {
                settings.SetValue(cfString(key), value, false);
            };
            set("com.apple.print.PrintSettings.PMLayoutNUp", CFBooleanCreate(pages > 1));
            set("com.apple.print.PrintSettings.PMLayoutRows", CFNumberCreate(grid.rows));
            set("com.apple.print.PrintSettings.PMLayoutColumns", CFNumberCreate(grid.columns));
            return true;
        }
    }
    return false;
}

} // namespace torka
