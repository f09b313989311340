// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/Sentences.h"

#include <algorithm>
#include <utility>

namespace torka::platform {

namespace {

constexpr int deepest = 8; // messages in messages

bool isPlace(std::string_view text, std::size_t at) {
    return text[at] == '%' && at + 1 < text.size() && text[at + 1] >= '1' && text[at + 1] <= '9';
}

// The text between the places; one piece more than places.
std::vector<std::string> wordsAround(std::string_view text) {
    std::vector<std::string> words(1);
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (isPlace(text, at)) {
            words.emplace_back();
            ++at;
        } else {
            words.back() += text[at];
        }
    }
    return words;
}

// What stands in the places. Empty when the text is another sentence. The first of two readings counts; a
// place is never empty, and never ends with a colon, which belongs to the words.
std::vector<std::string_view> placesIn(std::string_view text, const std::vector<std::string>& words) {
    std::vector<std::string_view> places;
    if (!text.starts_with(words.front()) || text.size() < words.front().size() + words.back().size() ||
        !text.ends_with(words.back())) {
        return places;
    }
    text.remove_prefix(words.front().size());
    text.remove_suffix(words.back().size());
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::size_t end = i + 1 < words.size() ? text.find(words[i]) : text.size();
        if (end == std::string_view::npos || end == 0 || text[end - 1] == ':') {
            return {};
        }
        places.push_back(text.substr(0, end));
        text.remove_prefix(i + 1 < words.size() ? end + words[i].size() : end);
    }
    return places;
}

} // namespace

Sentences::Sentences(const CFDictionaryRef& table) {
    if (!table) {
        return;
    }
    for (const auto& [key, value] : table->Pairs()) {
        Sentence sentence{wordsAround(utf8Text(key)), utf8Text(cfCast<CFString>(value))};
        for (const std::string& words : sentence.words) {
            sentence.length += words.size();
        }
        sentences.push_back(std::move(sentence));
    }
    std::ranges::stable_sort(sentences, std::ranges::greater(), &Sentence::length);
}

std::string Sentences::Say(std::string_view english, int depth) const {
    if (depth > deepest) {
        return std::string(english);
    }
    for (const Sentence& sentence : sentences) {
        if (sentence.words.size() == 1) {
            if (english == sentence.words.front()) {
                return sentence.said;
            }
            continue;
        }
        const std::vector<std::string_view> places = placesIn(english, sentence.words);
        if (places.empty()) {
            continue;
        }
        std::string said;
        for (std::size_t at = 0; at < sentence.said.size(); ++at) {
            const std::size_t place = isPlace(sentence.said, at)
                                          ? static_cast<std::size_t>(sentence.said[at + 1] - '1')
                                          : places.size();
            if (place < places.size()) {
                said += Say(places[place], depth + 1);
                ++at;
            } else {
                said += sentence.said[at];
            }
        }
        return said;
    }
    // "FILE: MESSAGE"
    constexpr std::string_view colon = ": ";
    if (const std::size_t end = english.find(colon); end != std::string_view::npos) {
        return Say(english.substr(0, end), depth + 1) + std::string(colon) +
               Say(english.substr(end + colon.size()), depth + 1);
    }
    return std::string(english);
}

} // namespace torka::platform
