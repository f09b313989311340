// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

// One value of an IPP printer's "printer-supply" or "printer-input-tray" (PWG 5100.13): pairs "key=value;" in
// any order. This is outside data: anything but a pair is skipped, and the first pair of a key counts.

namespace torka::filter {

// The value of a number that the printer does not give (RFC 3805).
inline constexpr int supplyUnknown = -2;

class SupplyText {
public:
    // Keeps a view of the text.
    explicit SupplyText(std::string_view value)
        : text(value.substr(0, longest)) {}

    // Returns "" for a missing key. Keys are case-sensitive.
    std::string_view Text(std::string_view key) const;
    // Returns a decimal number that fits, else supplyUnknown.
    int Number(std::string_view key) const;

private:
    static constexpr std::size_t longest = 2048; // bytes; IPP's octet strings are half as long

    std::string_view text;
};

} // namespace torka::filter
