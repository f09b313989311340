// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string_view>

// The streams to which the two-way exchange writes its diagnostics and its messages to the spooler. These are
// the process's standard output and standard error streams unless setStandardStreams replaces them.

namespace torka {

class StandardStreams {
public:
    StandardStreams() = default;
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;
    virtual ~StandardStreams();
    virtual void Output(std::string_view text) = 0;
    // A spooler reads messages from this stream line by line. Write the text of one call in one piece.
    virtual void Error(std::string_view text) = 0;
};

StandardStreams& standardStreams();
// Null restores the process's own streams.
void setStandardStreams(std::shared_ptr<StandardStreams> streams);

} // namespace torka
