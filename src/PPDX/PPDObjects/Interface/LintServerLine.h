// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

namespace torka {

// Reads the lines of a description as libcups reads them with its relaxed rules (ppdOpen2), to find what
// makes the print server refuse the whole description. A line that begins with "*%" is a comment there.
class ServerLine {
public:
    struct Refusal {
        std::string name; // the keyword or option that is refused; "" for a line without an asterisk
        std::string why;
    };

    // Takes the next byte of the line, without its end.
    void Take(char c);
    // Ends the line.
    std::optional<Refusal> End();

private:
    std::optional<Refusal> Fault() const;

    std::string start; // the first bytes of the line
    bool hasColon = false;
    bool isQuoted = false;    // a quoted value goes on at the end of the line
    bool beganQuoted = false; // it went on at the beginning
};

} // namespace torka
