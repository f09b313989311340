// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/PosixSystem.h"

#include <algorithm>

namespace torka::platform {

namespace {

bool isLetters(std::string_view text, std::size_t least, std::size_t most) {
    return text.size() >= least && text.size() <= most && std::all_of(text.begin(), text.end(), [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
           });
}

std::string withCase(std::string_view text, bool upper) {
    std::string result(text);
    const char first = upper ? 'a' : 'A';
    for (char& c : result) {
        if (c >= first && c < first + 26) {
            c = static_cast<char>(c ^ 0x20);
        }
    }
    return result;
}

std::string_view scriptOf(std::string_view language, std::string_view territory, std::string_view modifier) {
    if (modifier == "latin") {
        return "Latn";
    }
    if (modifier == "cyrillic") {
        return "Cyrl";
    }
    if (language != "zh") {
        return "";
    }
    const bool traditional = territory == "TW" || territory == "HK" || territory == "MO";
    return traditional ? "Hant" : "Hans";
}

} // namespace

std::string languageTag(std::string_view localeName) {
    const std::size_t at = std::min(localeName.find('@'), localeName.size());
    const std::string_view modifier = localeName.substr(std::min(at + 1, localeName.size()));
    std::string_view name = localeName.substr(0, at);
    name = name.substr(0, name.find('.'));
    const std::size_t split = std::min(name.find_first_of("_-"), name.size());
    const std::string language = withCase(name.substr(0, split), false);
    const std::string territory = withCase(name.substr(std::min(split + 1, name.size())), true);
    // "C" is too short to be a language and "POSIX" too long.
    if (!isLetters(language, 2, 3) || !(territory.empty() || isLetters(territory, 2, 2))) {
        return {};
    }
    const std::string_view script = scriptOf(language, territory, modifier);
    std::string tag = language;
    if (!script.empty()) {
        tag.append("-").append(script);
    }
    if (!territory.empty()) {
        tag.append("-").append(territory);
    }
    return tag;
}

} // namespace torka::platform
