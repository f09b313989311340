// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/SupplyText.h"

#include <algorithm>
#include <charconv>

namespace torka::filter {

std::string_view SupplyText::Text(std::string_view key) const {
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view pair = rest.substr(0, rest.find(';'));
        rest.remove_prefix(std::min(pair.size() + 1, rest.size()));
        if (pair.size() > key.size() && pair[key.size()] == '=' && pair.starts_with(key)) {
            return pair.substr(key.size() + 1);
        }
    }
    return {};
}

int SupplyText::Number(std::string_view key) const {
    const std::string_view digits = Text(key);
    int number = supplyUnknown;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return error == std::errc() && end == digits.data() + digits.size() ? number : supplyUnknown;
}

} // namespace torka::filter
