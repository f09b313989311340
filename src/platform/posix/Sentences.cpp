// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/Sentences.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace torka::platform {

namespace {

constexpr int deepest = 8; // messages in messages
constexpr std::string_view colon = ": ";

// A place, "%1" for a name or "%L1" for a message.
struct Place {
    std::size_t number = 0; // from 0
    std::size_t size = 0;   // of the mark, bytes; 0 for no place
    bool isMessage = false;
};

Place placeAt(std::string_view text, std::size_t at) {
    const bool isMessage = text.substr(at).starts_with("%L");
    const std::size_t digit = at + (isMessage ? 2 : 1);
    if (text[at] != '%' || digit >= text.size() || text[digit] < '1' || text[digit] > '9') {
        return {};
    }
    return {static_cast<std::size_t>(text[digit] - '1'), digit + 1 - at, isMessage};
}

} // namespace

// What stands in the places. Empty when the text is another sentence. The first of two readings counts; a
// place is never empty, and never ends with a colon, which belongs to the words. "FILE: NAME cannot be read"
// is the message "NAME cannot be read" behind a file.
std::vector<std::string_view> Sentences::Sentence::PlacesIn(std::string_view text) const {
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
    const bool isBehindName =
        words.front().empty() && !areMessages.front() && places.front().find(colon) != std::string_view::npos;
    return isBehindName ? std::vector<std::string_view>() : places;
}

Sentences::Sentence::Sentence(std::string_view english, std::string translation)
    : words(1)
    , said(std::move(translation)) {
    for (std::size_t at = 0; at < english.size();) {
        const Place place = placeAt(english, at);
        if (place.size > 0) {
            words.emplace_back();
            areMessages.push_back(place.isMessage);
        } else {
            words.back() += english[at];
            ++length;
        }
        at += std::max<std::size_t>(place.size, 1);
    }
}

Sentences::Sentences(const CFDictionaryRef& table) {
    if (!table) {
        return;
    }
    for (const auto& [key, value] : table->Pairs()) {
        sentences.emplace_back(utf8Text(key), utf8Text(cfCast<CFString>(value)));
    }
    // A name takes no words of a sentence around it: those that stand behind a message are tried first, then
    // those at the beginning of a sentence.
    std::ranges::stable_sort(sentences, std::ranges::greater(), [](const Sentence& sentence) {
        const bool beginsWithPlace = sentence.words.front().empty();
        return std::tuple(beginsWithPlace && sentence.areMessages.front(), !beginsWithPlace, sentence.length);
    });
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
        const std::vector<std::string_view> places = sentence.PlacesIn(english);
        if (places.empty()) {
            continue;
        }
        std::string said;
        for (std::size_t at = 0; at < sentence.said.size();) {
            const Place place = placeAt(sentence.said, at);
            if (place.size == 0 || place.number >= places.size()) {
                said += sentence.said[at];
                ++at;
                continue;
            }
            const std::string_view text = places[place.number];
            said += sentence.areMessages[place.number] ? Say(text, depth + 1) : std::string(text);
            at += place.size;
        }
        return said;
    }
    // "FILE: MESSAGE"
    if (const std::size_t end = english.find(colon); end != std::string_view::npos) {
        const std::size_t message = end + colon.size();
        return std::string(english.substr(0, message)).append(Say(english.substr(message), depth + 1));
    }
    return std::string(english);
}

} // namespace torka::platform
