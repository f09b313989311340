// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "spooler/Splicer.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <utility>

namespace torka::tests {

inline Ticket makeTicket(std::initializer_list<std::pair<int, std::string>> entries) {
    Ticket ticket;
    for (const auto& [site, bytes] : entries) {
        ticket.entries.push_back({site, bytes});
    }
    return ticket;
}

struct Spliced {
    std::string text;
    SpliceReport report;
    SpliceStatus status = SpliceStatus::ok;
};

inline Spliced spliceInPieces(const std::string& document, const Ticket& ticket, std::size_t piece) {
    StringSink sink;
    Splicer splicer(ticket, sink);
    for (std::size_t at = 0; at < document.size(); at += piece) {
        // A block of the exact size, so that a sanitizer detects a read past its end.
        const std::string part = document.substr(at, piece);
        splicer.Write(part);
    }
    const SpliceStatus status = splicer.Finish();
    return {sink.text, splicer.Report(), status};
}

// Splices the document whole, in small pieces and byte by byte. The results must be equal, and their lengths
// must be the sums of their parts.
inline Spliced splice(const std::string& document, const Ticket& ticket,
                      std::initializer_list<std::size_t> pieces = {1, 7, 4096}) {
    Spliced whole = spliceInPieces(document, ticket, std::max<std::size_t>(document.size(), 1));
    for (const std::size_t piece : pieces) {
        const Spliced cut = spliceInPieces(document, ticket, piece);
        EXPECT_EQ(cut.text, whole.text) << "in pieces of " << piece;
        EXPECT_EQ(cut.status, whole.status) << "in pieces of " << piece;
    }
    if (whole.status == SpliceStatus::ok) {
        EXPECT_EQ(whole.report.bytesRead, document.size());
        EXPECT_EQ(whole.report.bytesWritten, whole.text.size());
        EXPECT_EQ(whole.text.size(),
                  document.size() - whole.report.bytesRemoved + whole.report.bytesInserted);
    }
    return whole;
}

} // namespace torka::tests
