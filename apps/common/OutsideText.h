// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

// Texts from outside (files, the print server, the network, the command line) for a terminal. Shared by the
// programs.

namespace torka::apps {

// Whether the text is UTF-8 (RFC 3629).
bool isUtf8(std::string_view text);

// Replaces the bytes of everything that could control a terminal by \xNN: the control characters C0 and C1,
// DEL, the Unicode controls that change the direction of the text behind them, the separators of lines and
// paragraphs, and bytes that are no UTF-8.
std::string printable(std::string_view text);

// The same for a finished JSON text: replaces the characters that JSON allows as they are by \uNNNN, which a
// reader turns back. REQUIRES: valid UTF-8 with escaped C0 characters.
std::string printableJson(std::string_view json);

} // namespace torka::apps
