// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "spooler/ByteSink.h"
#include "spooler/SpliceReport.h"
#include "spooler/TicketReader.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace torka {

class SpliceMachine;

enum class SpliceStatus {
    ok,
    entriesLeft,   // the document is whole, but its setup entries found no place: see SpliceReport::unplaced
    notPostScript, // a document does not begin with "%!"
    readFailed,
    writeFailed,
    stopped, // by the caller's progress function
};

// Streams one PostScript document into a sink and places the entries of a job ticket in it, by the rules of
// docs/ticket.md. The result does not depend on how the document is cut into Write() calls.
//
// Memory is bounded for every document. At most holdLimit bytes wait while it is unclear whether the document
// has a setup section. At most featureLimit bytes wait for the end of a feature block that is to be removed,
// and at most lineLimit bytes for the end of a line. Copies what it needs of the ticket; does not own the
// sink.
class Splicer {
public:
    static constexpr std::size_t lineLimit =
        4096; // a longer "%%" line passes unread; the conventions allow 255
    static constexpr std::size_t featureLimit = std::size_t{256} * 1024;
    static constexpr std::size_t holdLimit = std::size_t{1024} * 1024;
    static constexpr std::size_t prefixLimit = std::size_t{64} * 1024; // job-language lines before "%!"

    Splicer(const Ticket& ticket, ByteSink& sink);
    ~Splicer();
    Splicer(const Splicer&) = delete;
    Splicer& operator=(const Splicer&) = delete;

    // After a status other than ok, every further call returns the same status and does nothing.
    SpliceStatus Write(std::string_view bytes);
    // Ends the document. REQUIRES: no Write() after it.
    SpliceStatus Finish();

    // Complete after Finish().
    const SpliceReport& Report() const;
    // One line that says what failed; "" for ok.
    const std::string& ErrorText() const;

private:
    std::unique_ptr<SpliceMachine> machine;
    std::string carried; // the last bytes written, not decided yet
};

} // namespace torka
