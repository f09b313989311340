// SPDX-License-Identifier: Apache-2.0
#include "bidi/module/JobPropertiesSession.h"
#include "bidi/module/JobPropertiesState.h"
#include "platform/System.h"

#include <algorithm>
#include <array>
#include <utility>

namespace torka {

namespace {

using LanguageAndCode = std::pair<std::string_view, std::string_view>;

// Searched in this order. Walloon maps to French and Catalan to Spanish. Only Chinese keeps the second part
// of its tag, so that "PT-BR" matches the entry "PT".
constexpr std::array<LanguageAndCode, 24> languageCodes = {{
    {"EN", "en"}, {"KO", "ko_KR"},      {"JA", "ja"},         {"FR", "fr"}, {"DE", "de"}, {"SV", "sv"},
    {"NL", "nl"}, {"ZH-HANS", "zh_CN"}, {"ZH-HANT", "zh_TW"}, {"TR", "tr"}, {"ES", "es"}, {"FI", "fi"},
    {"NO", "no"}, {"NB", "no"},         {"NN", "no"},         {"RU", "ru"}, {"IT", "it"}, {"DA", "da"},
    {"PL", "pl"}, {"CS", "cs_CZ"},      {"PT", "pt"},         {"WA", "fr"}, {"CA", "es"}, {"PT-BR", "pt"},
}};

std::string upperCase(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return upper;
}

// The first part behind the language with this number of letters: four for a script, two for a country.
std::string_view partOfLength(std::string_view tag, std::size_t length) {
    for (std::size_t at = tag.find_first_of("-_"); at != std::string_view::npos;) {
        const std::size_t end = std::min(tag.find_first_of("-_", at + 1), tag.size());
        if (end - at - 1 == length) {
            return tag.substr(at + 1, length);
        }
        at = end == tag.size() ? std::string_view::npos : end;
    }
    return {};
}

} // namespace

std::string_view serverLanguageCode(std::string_view languageTag) {
    constexpr std::size_t scriptLength = 4;
    constexpr std::size_t countryLength = 2;
    std::string language = upperCase(languageTag.substr(0, languageTag.find_first_of("-_")));
    if (language == "ZH") {
        const std::string_view script = partOfLength(languageTag, scriptLength);
        language += "-" + upperCase(script.empty() ? partOfLength(languageTag, countryLength) : script);
    }
    const auto found = std::find_if(languageCodes.begin(), languageCodes.end(),
                                    [&](const LanguageAndCode& entry) { return entry.first == language; });
    return found == languageCodes.end() ? "en" : found->second;
}

void getCurrentLocaleCode() {
    const std::vector<std::string> languages = platform::system().PreferredLanguages();
    gServerLanguage = serverLanguageCode(languages.empty() ? std::string_view() : languages.front());
}

} // namespace torka
