// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/PositionTable.h"
#include "PPDX/KVEngine/TextHash.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace torka {

// The string table of one store. Holds each text once, under an index that never changes.
//
// Owns its texts, one behind the other in blocks that never move. A text ends at its first NUL. Texts are
// compared byte by byte.
class CStringSoup {
public:
    CStringSoup();
    virtual ~CStringSoup() = default;
    CStringSoup(const CStringSoup&) = delete;
    CStringSoup& operator=(const CStringSoup&) = delete;

    // Returns the index of the text. Adds a new text.
    virtual std::int64_t Insert(std::string_view text);
    // Does the same for a text without NUL.
    std::int64_t InsertWhole(std::string_view text);
    // Does the same, and is faster when the text is the one at `guess` or at `otherGuess`; -1 is no guess.
    std::int64_t InsertWhole(std::string_view text, std::int64_t guess, std::int64_t otherGuess = -1) {
        const auto isRight = [&](std::int64_t each) {
            const auto place = static_cast<std::size_t>(each);
            return place < texts.size() && isSameText(texts[place].View(), text);
        };
        return isRight(guess) ? guess : isRight(otherGuess) ? otherGuess : InsertWhole(text);
    }
    // Returns the text at that index, NUL-terminated; null when there is none. The pointer stays valid until
    // Clear.
    virtual const char* Find(std::int64_t index) const;
    // Returns the index of the text, or -1.
    virtual std::int64_t Find(std::string_view text) const;
    virtual void Clear();
    virtual std::size_t size() const;

private:
    struct Text {
        const char* bytes; // NUL-terminated, in a block
        std::size_t length;

        std::string_view View() const { return {bytes, length}; }
    };

    std::int64_t Find(std::string_view text, std::uint64_t hash) const;
    const char* Keep(std::string_view text);

    std::vector<Text> texts;
    PositionTable index;
    std::vector<std::unique_ptr<char[]>> blocks;
    char* next = nullptr; // the free part of the last block
    std::size_t available = 0;
};

} // namespace torka
