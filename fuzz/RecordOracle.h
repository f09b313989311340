// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/text/LineReader.h"

#include <array>
#include <cstdio>
#include <cups/http.h>
#include <optional>
#include <sstream>
#include <string>
#include <zlib.h>

// A slow and obvious reader for a record of a data file: line by line, chunk by chunk.

namespace torka::fuzz {

inline std::optional<std::string> readSlowly(const std::string& text, const std::string& recordName) {
    constexpr std::size_t limit = 0xFFFFFF;
    std::istringstream lines(text);
    std::string line;
    std::optional<std::string> payload;
    z_stream stream{};
    inflateInit(&stream);
    int number = 0;
    bool more = !recordName.empty() && recordName.size() <= 36;
    while (more && safeGetline(lines, line)) {
        std::array<char, 16> digits{};
        std::snprintf(digits.data(), digits.size(), "%04x", static_cast<unsigned>(number));
        const std::string chunk = recordName + digits.data();
        const std::size_t at = chunk.size() <= 40 ? line.find(chunk) : std::string::npos;
        if (at == std::string::npos) {
            continue;
        }
        ++number;
        payload = payload ? payload : std::string();
        const std::size_t begin = at + chunk.size() + 2;
        const std::string coded = begin < line.size() ? line.substr(begin, 255) : "";
        std::array<char, 160> bytes{};
        int length = 159;
        httpDecode64_2(bytes.data(), &length, coded.c_str());
        more = length > 0;
        stream.next_in = reinterpret_cast<Bytef*>(bytes.data());
        stream.avail_in = more ? static_cast<uInt>(length) : 0;
        while (more) {
            std::array<char, 999> out{};
            stream.next_out = reinterpret_cast<Bytef*>(out.data());
            stream.avail_out = out.size();
            const int result = inflate(&stream, Z_SYNC_FLUSH);
            payload->append(out.data(), out.size() - stream.avail_out);
            if (result == Z_BUF_ERROR) {
                break; // needs the next chunk
            }
            more = result == Z_OK && payload->size() < limit;
        }
    }
    inflateEnd(&stream);
    if (payload && payload->size() > limit) {
        payload->resize(limit);
    }
    return payload;
}

} // namespace torka::fuzz
