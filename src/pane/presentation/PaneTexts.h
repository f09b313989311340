// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/presentation/PaneWords.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace torka {

class PaneEditor;

// The language and country of the person. The host supplies both functions.
struct PaneLanguage {
    std::function<std::string(const PaneWord& word)> text;
    // The number in the notation of the person's country.
    std::function<std::string(double number, int decimals)> number;
    bool metric = true; // millimetres, else inches
    // The English message of a lower floor in the person's language. Without it, messages stay English.
    std::function<std::string(const std::string& english)> message{};
};

// The source of all texts of the presentation. The editor must outlive it. Every text is UTF-8 and plain
// text; texts of a description may hold any character.
struct PaneTexts {
    const PaneEditor& editor;
    PaneLanguage language;

    // A word with the names put in its places. A name may hold any text, also "%1".
    template <class... Names>
    std::string Say(const PaneWord& word, const Names&... names) const {
        const std::array<std::string_view, sizeof...(Names)> all{std::string_view(names)...};
        return Filled(language.text(word), all);
    }
    std::string Message(const std::string& english) const {
        return language.message ? language.message(english) : english;
    }
    std::string Number(double number, int decimals) const { return language.number(number, decimals); }

private:
    static std::string Filled(std::string_view text, std::span<const std::string_view> names);
};

// "a, b, c"
template <class Texts>
std::string joined(const Texts& texts, std::string_view between = ", ") {
    std::string all;
    std::string_view before;
    for (const std::string& text : texts) {
        all.append(before).append(text);
        before = between;
    }
    return all;
}

} // namespace torka
