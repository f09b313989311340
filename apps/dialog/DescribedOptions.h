// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <set>
#include <string>

namespace torka::dialog {

// Which choices of the dialog's own tabs the description offers as options of the printer. The pane decides
// these.
struct DescribedOptions {
    bool sides = false;
    bool pagesPerSheet = false;
    // The default of every option with choices, by its main keyword without the asterisk. Notes are no such
    // options.
    std::map<std::string, std::string> defaults = {};
    // The default of every number, by its main keyword without the asterisk.
    std::map<std::string, double> numbers = {};
    // The main keyword of every note, without the asterisk.
    std::set<std::string> notes = {};

    // Of the description in that file; nothing for "".
    static DescribedOptions Of(const std::string& descriptionPath);
};

} // namespace torka::dialog
