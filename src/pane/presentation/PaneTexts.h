#pragma once

#include "pane/presentation/PaneWords.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace torka {

class PaneEditor;

// How the pane speaks with its person. The host's side supplies both functions.
struct PaneLanguage {
    std::function<std::string(const PaneWord& word)> text;
    // In the notation of the person's country.
    std::function<std::string(double number, int decimals)> number;
    bool metric = true; // millimetres, else inches
};

// What the sentences of the presentation are made from. The editor outlives it. Every text is UTF-8 and
// plain: a description may hold anything.
struct PaneTexts {
    const PaneEditor& editor;
    PaneLanguage language;

    // A word with names in its places. The names may hold anything, "%1" too.
    template <class... Names>
    std::string Say(const PaneWord& word, const Names&... names) const {
        const std::array<std::string_view, sizeof...(Names)> all{std::string_view(names)...};
        return Filled(language.text(word), all);
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
