// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/SmallPPD.h"
#include "tests/support/TestSupport.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cups/http.h>
#include <zlib.h>

namespace torka::tests {

// Writes a small PPD with one record, by zlib and libcups. A wide record holds 32-bit units in this machine's
// byte order, a narrow one the text's bytes. Returns the PPD's path.
inline std::string writeRecordPPD(const TemporaryFolder& folder, const std::string& recordName,
                                  const std::string& text, bool wide) {
    const std::u32string units = std::filesystem::path(std::u8string(text.begin(), text.end())).u32string();
    const auto* bytes =
        wide ? reinterpret_cast<const Bytef*>(units.data()) : reinterpret_cast<const Bytef*>(text.data());
    const uLong length = wide ? units.size() * sizeof(char32_t) : text.size();
    std::string packed(compressBound(length), '\0');
    uLongf size = packed.size();
    compress2(reinterpret_cast<Bytef*>(packed.data()), &size, bytes, length, 9);
    std::string ppd = smallPPD;
    for (std::size_t at = 0, number = 0; at < size + 158; at += 158, ++number) { // the last chunk is empty
        std::array<char, 256> line{};
        const int prefix = std::snprintf(line.data(), line.size(), "%04zx: \"", number);
        httpEncode64_2(line.data() + prefix, static_cast<int>(line.size()) - prefix,
                       packed.data() + std::min(at, size),
                       static_cast<int>(std::min<std::size_t>(158, size - std::min(at, size))));
        ppd += "*" + recordName + line.data() + "\"\n";
    }
    return folder.Write(recordName + ".ppd", ppd).string();
}

} // namespace torka::tests
