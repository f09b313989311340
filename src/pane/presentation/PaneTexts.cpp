// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/PaneTexts.h"

namespace torka {

std::string PaneTexts::Filled(std::string_view text, std::span<const std::string_view> names) {
    std::string filled;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t place =
            i + 1 < text.size() ? static_cast<std::size_t>(text[i + 1] - '1') : names.size();
        if (text[i] == '%' && place < names.size()) {
            filled += names[place];
            ++i;
        } else {
            filled += text[i];
        }
    }
    return filled;
}

} // namespace torka
