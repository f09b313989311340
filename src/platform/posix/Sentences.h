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
// places. What a place holds may be a message, too: the reason behind the colon.

namespace torka::platform {

class Sentences {
public:
    // A null table has no sentence.
    explicit Sentences(const CFDictionaryRef& table);
    // The message as it is when no sentence fits.
    std::string Say(std::string_view english) const { return Say(english, 0); }

private:
    struct Sentence {
        std::vector<std::string> words; // around its places, which are "%1", "%2", … in this order
        std::string said;
        std::size_t length = 0; // of the words, bytes
    };

    std::string Say(std::string_view english, int depth) const;

    std::vector<Sentence> sentences; // those with the most words first
};

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
