// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace torka {

// A set of byte values that end a token. Computed at compile time when the characters are known then.
//
// Searches a small set with 16-byte comparisons where the processor has them.
class DelimiterSet {
public:
    constexpr DelimiterSet(const char* characters) {
        for (; characters != nullptr && *characters != '\0'; ++characters) {
            Add(*characters);
        }
    }
    constexpr void Add(char character) {
        kinds[static_cast<unsigned char>(character)] = delimiter;
        if (count < few.size()) {
            few[count].fill(character);
        }
        ++count;
    }
    constexpr bool Contains(char character) const {
        return kinds[static_cast<unsigned char>(character)] == delimiter;
    }
    // Returns true for delimiters and for line ends.
    constexpr bool EndsToken(char character) const {
        return kinds[static_cast<unsigned char>(character)] != inside;
    }

    // Returns the first byte of the text that ends a token, or the end of the text.
    const char* FindEnd(std::string_view text) const {
        const char* at = text.data();
        const char* const end = at + text.size();
#ifdef __SSE2__
        if (count <= few.size()) {
            const Searched searched(few);
            for (; end - at >= 16; at += 16) {
                if (const int found = searched.Matches(at); found != 0) {
                    return at + __builtin_ctz(static_cast<unsigned>(found));
                }
            }
            if (text.size() >= 16) { // looks at the last 16 bytes; those before `at` end no token
                const int found = searched.Matches(end - 16);
                return found != 0 ? end - 16 + __builtin_ctz(static_cast<unsigned>(found)) : end;
            }
        }
#endif
        while (at != end && !EndsToken(*at)) {
            ++at;
        }
        return at;
    }

    // Returns a mask in which bit i tells that byte i ends a token. REQUIRES: 16 to 64 bytes.
    std::uint64_t Ends(std::string_view text) const {
        std::uint64_t ends = 0;
#ifdef __SSE2__
        if (count <= few.size()) {
            const Searched searched(few);
            const auto matches = [&](std::size_t at) {
                return std::uint64_t{static_cast<unsigned>(searched.Matches(text.data() + at))} << at;
            };
            for (std::size_t at = 0; at + 16 <= text.size(); at += 16) {
                ends |= matches(at);
            }
            return ends | matches(text.size() - 16);
        }
#endif
        for (std::size_t at = 0; at < text.size(); ++at) {
            ends |= std::uint64_t{EndsToken(text[at])} << at;
        }
        return ends;
    }

private:
    enum Kind : unsigned char { inside, delimiter, lineEnd };
    static constexpr std::array<Kind, 256> lineEndsOnly() {
        std::array<Kind, 256> result{};
        result['\n'] = result['\r'] = lineEnd;
        return result;
    }
    using Sixteen = std::array<char, 16>;
    using Few = std::array<Sixteen, 3>;

#ifdef __SSE2__
    struct Searched {
        explicit Searched(const Few& few)
            : first(Load(few[0].data()))
            , second(Load(few[1].data()))
            , third(Load(few[2].data())) {}

        static __m128i Load(const char* bytes) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
        }

        // Returns a bit mask of those of 16 bytes that end a token.
        int Matches(const char* bytes) const {
            const __m128i text = Load(bytes);
            const __m128i ends = _mm_or_si128(_mm_cmpeq_epi8(text, _mm_set1_epi8('\n')),
                                              _mm_cmpeq_epi8(text, _mm_set1_epi8('\r')));
            const __m128i two = _mm_or_si128(_mm_cmpeq_epi8(text, first), _mm_cmpeq_epi8(text, second));
            return _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(ends, two), _mm_cmpeq_epi8(text, third)));
        }

        __m128i first;
        __m128i second;
        __m128i third;
    };
#endif

    std::array<Kind, 256> kinds = lineEndsOnly();
    static constexpr Few onlyLineEnds() {
        Few result{};
        for (Sixteen& place : result) {
            place.fill('\n');
        }
        return result;
    }
    Few few = onlyLineEnds(); // the first delimiters, each repeated; unused places hold a line end
    std::size_t count = 0;
};

inline constexpr DelimiterSet flagEnds("|:\""); // behind a flag of an element
inline constexpr DelimiterSet colonEnds(":");

} // namespace torka
