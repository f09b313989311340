// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <string>
#include <string_view>
#include <vector>

// Messages of every floor in the person's language.
//
// They come in English, with names already in them. So the table "Tool" of the bundle has sentences with
// places as its keys, "%1 cannot be written: %2", and a message is found by the words that stand between the
// places. "%L1" is a place for another message, such as the reason behind a colon. What stands in "%1" is a
// name and stays as it is, also where a message of the tables has the same words: a queue may be called
// "good". So does what stands in front of a colon in a message without a sentence of its own.

namespace torka::platform {

class Sentences {
public:
    // A null table has no sentence.
    explicit Sentences(const CFDictionaryRef& table);
    // The message as it is when no sentence fits.
    std::string Say(std::string_view english) const { return Say(english, 0); }

private:
    struct Sentence {
        Sentence(std::string_view english, std::string translation);
        std::vector<std::string_view> PlacesIn(std::string_view text) const;

        std::vector<std::string> words; // around its places, which are numbered in this order
        std::vector<bool> areMessages;  // of each place
        std::string said;
        std::size_t length = 0; // of the words, bytes
    };

    std::string Say(std::string_view english, int depth) const;

    std::vector<Sentence> sentences; // in the order in which they are tried
};

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
