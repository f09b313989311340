// SPDX-License-Identifier: Apache-2.0
#include "pane/data/MergedRows.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>
#include <string_view>

namespace torka {

namespace {

// For each row of `list`, whether `other` has it too. Equal rows count as often as they stand there.
std::vector<bool> rowsIn(const TextRows& other, const TextRows& list) {
    std::multiset<std::string_view> rest(other.begin(), other.end());
    std::vector<bool> marks;
    for (const std::string& row : list) {
        const auto place = rest.find(row);
        marks.push_back(place != rest.end());
        if (place != rest.end()) {
            rest.erase(place);
        }
    }
    return marks;
}

TextRows picked(const TextRows& list, const std::vector<bool>& marks, bool wanted) {
    TextRows rows;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (marks[i] == wanted) {
            rows.push_back(list[i]);
        }
    }
    return rows;
}

// The place behind the last row of after[0, count) that `list` has too; its beginning without one.
TextRows::iterator placeAfter(const TextRows& after, std::size_t count, TextRows& list) {
    for (; count > 0; --count) {
        const auto row = std::find(list.rbegin(), list.rend(), after[count - 1]);
        if (row != list.rend()) {
            return row.base();
        }
    }
    return list.begin();
}

// Makes the changes that lead from `before` to `after` in `list`.
TextRows applied(const TextRows& before, const TextRows& after, TextRows list) {
    for (const std::string& removed : picked(before, rowsIn(after, before), false)) {
        if (const auto row = std::ranges::find(list, removed); row != list.end()) {
            list.erase(row);
        }
    }
    const std::vector<bool> isOld = rowsIn(before, after);
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (!isOld[i] && std::ranges::count(list, after[i]) < std::ranges::count(after, after[i])) {
            list.insert(placeAfter(after, i, list), after[i]);
        }
    }
    return list;
}

} // namespace

TextRows mergedRows(const TextRows& known, const TextRows& own, const TextRows& stored) {
    if (stored == known) {
        return own;
    }
    const bool isSorted = picked(own, rowsIn(known, own), true) != picked(known, rowsIn(own, known), true);
    return isSorted ? applied(known, stored, own) : applied(known, own, stored);
}

} // namespace torka
