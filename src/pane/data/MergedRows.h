// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

// Two dialogs that change one list.

namespace torka {

using TextRows = std::vector<std::string>;

// What becomes of a stored list when a dialog keeps `own`. The dialog read `known` before it made its
// changes, and another dialog may have stored `stored` since.
//
// Makes this dialog's additions, removals and replacements in `stored`. A row that both added is added once.
// When this dialog has sorted the rows, its order counts, else that of `stored`.
TextRows mergedRows(const TextRows& known, const TextRows& own, const TextRows& stored);

} // namespace torka
