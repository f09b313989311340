// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/LanguageFolders.h"

#include <algorithm>

namespace torka::platform {

namespace {

bool isSubtag(std::string_view text) {
    return !text.empty() && text.size() <= 8 && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    });
}

} // namespace

std::vector<std::string> languageFolders(std::string_view tag) {
    std::vector<std::string> subtags;
    for (std::string_view rest = tag; !rest.empty();) {
        const std::size_t end = std::min(rest.find('-'), rest.size());
        if (!isSubtag(rest.substr(0, end))) {
            return {};
        }
        subtags.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    if (subtags.empty()) {
        return {};
    }
    const std::string language = subtags[0];
    std::string script;
    std::string region;
    for (std::size_t i = 1; i < subtags.size(); ++i) {
        if (subtags[i].size() == 4 && script.empty()) {
            script = subtags[i];
        } else if (subtags[i].size() == 2 || subtags[i].size() == 3) {
            region = subtags[i];
            break;
        }
    }
    if (language == "zh" && region.empty()) {
        region = script == "Hant" ? "TW" : "CN";
    } else if (language == "zh" && script == "Hans") {
        region = "CN"; // Singapore uses the same script
    }
    std::vector<std::string> names;
    const auto add = [&names](std::string name) {
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(std::move(name));
        }
    };
    for (const char separator : {'_', '-'}) {
        std::string whole = language;
        for (std::size_t i = 1; i < subtags.size(); ++i) {
            whole += separator + subtags[i];
        }
        add(whole);
    }
    for (const std::string* part : {&region, &script}) {
        for (const char separator : {'_', '-'}) {
            if (!part->empty()) {
                add(language + separator + *part);
            }
        }
    }
    // "zh" alone could mean either script.
    if (language != "zh" || script.empty()) {
        add(language);
    }
    return names;
}

} // namespace torka::platform
