// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/MarkedChoices.h"

#include "spooler/filter/OpenedPPD.h"

// The library marks its PPD calls as deprecated and has no other calls for a description.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace torka::filter {

ServerChoices markedChoices(const std::string& ppdPath, const OptionMap& options) {
    ServerChoices choices;
    const OpenedPPD ppd = openDescription(ppdPath);
    if (!ppd) {
        return choices;
    }
    cups_option_t* list = nullptr;
    int count = 0;
    for (const auto& [name, value] : options) {
        if (!name.starts_with('*')) { // no option of the print server's filters
            count = cupsAddOption(name.c_str(), value.c_str(), count, &list);
        }
    }
    ppdMarkDefaults(ppd.get());
    cupsMarkOptions(ppd.get(), count, list);
    cupsFreeOptions(count, list);
    for (ppd_option_t* option = ppdFirstOption(ppd.get()); option != nullptr;
         option = ppdNextOption(ppd.get())) {
        for (int i = 0; i < option->num_choices; ++i) {
            if (option->choices[i].marked != 0) {
                choices[option->keyword].emplace_back(option->choices[i].choice);
            }
        }
    }
    return choices;
}

} // namespace torka::filter
