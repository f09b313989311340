// SPDX-License-Identifier: Apache-2.0
#include "bidi/text/LineReader.h"

#include <algorithm>
#include <cstring>
#include <streambuf>

namespace torka {

std::istream& safeGetline(std::istream& stream, std::string& line) {
    using Traits = std::istream::traits_type;
    line.clear();
    const std::istream::sentry sentry(stream, true);
    std::streambuf* buffer = stream.rdbuf();
    if (!sentry || !buffer) {
        return stream;
    }
    while (true) {
        const Traits::int_type next = buffer->sbumpc();
        if (Traits::eq_int_type(next, Traits::eof())) {
            if (line.empty()) {
                stream.setstate(std::ios::eofbit | std::ios::failbit);
            }
            return stream;
        }
        const char c = Traits::to_char_type(next);
        if (c == '\n') {
            return stream;
        }
        if (c == '\r') {
            if (Traits::eq_int_type(buffer->sgetc(), Traits::to_int_type('\n'))) {
                buffer->sbumpc();
            }
            return stream;
        }
        line += c;
    }
}

// Searches in windows. Otherwise a text with one kind of line end would be searched to its end for the other
// kind.
std::size_t lineEnd(std::string_view text, std::size_t position) {
    constexpr std::size_t window = 256;
    while (position < text.size()) {
        std::size_t length = std::min(window, text.size() - position);
        const char* from = text.data() + position;
        const auto* feed = static_cast<const char*>(std::memchr(from, '\n', length));
        if (feed) {
            length = static_cast<std::size_t>(feed - from);
        }
        if (const auto* carriage = static_cast<const char*>(std::memchr(from, '\r', length))) {
            return static_cast<std::size_t>(carriage - text.data());
        }
        position += length;
        if (feed) {
            return position;
        }
    }
    return text.size();
}

std::size_t lineAfter(std::string_view text, std::size_t end) {
    if (end >= text.size()) {
        return text.size();
    }
    const bool pair = text[end] == '\r' && end + 1 < text.size() && text[end + 1] == '\n';
    return end + (pair ? 2 : 1);
}

std::string withPlainLineEnds(std::string text) {
    if (text.find('\r') != std::string::npos) {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] == '\r') {
                text[kept++] = '\n';
                i += i + 1 < text.size() && text[i + 1] == '\n' ? 1U : 0U;
            } else {
                text[kept++] = text[i];
            }
        }
        text.resize(kept);
    }
    if (!text.empty() && text.back() != '\n') {
        text += '\n';
    }
    return text;
}

} // namespace torka
