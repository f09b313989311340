// SPDX-License-Identifier: Apache-2.0
// Splices arbitrary documents. The result does not depend on the pieces in which a document arrives, its
// length is the sum of its parts, and every setup entry is written once or reported.
//
// Input: the first two bytes choose the pieces and the ticket; the rest is the document.

#include "spooler/Splicer.h"
#include "fuzz/Fuzzing.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace {

using torka::fuzz::require;

struct Spliced {
    std::string text;
    torka::SpliceReport report;
    torka::SpliceStatus status = torka::SpliceStatus::ok;
};

Spliced splice(std::string_view document, const torka::Ticket& ticket, std::size_t piece) {
    torka::StringSink sink;
    torka::Splicer splicer(ticket, sink);
    while (!document.empty()) {
        // A block of the exact size, so that the sanitizer detects a read past its end.
        const std::string_view part = document.substr(0, piece);
        const auto block = std::make_unique<char[]>(part.size());
        std::ranges::copy(part, block.get());
        splicer.Write({block.get(), part.size()});
        document.remove_prefix(part.size());
    }
    const torka::SpliceStatus status = splicer.Finish();
    return {sink.text, splicer.Report(), status};
}

torka::Ticket makeTicket(unsigned choice) {
    torka::Ticket ticket;
    const auto add = [&](unsigned bit, int site, const char* bytes) {
        if ((choice >> bit & 1U) != 0) {
            ticket.entries.push_back({site, bytes});
        }
    };
    add(0, torka::siteSuppressedKeyword, "*Tray");
    add(1, torka::siteSuppressedKeyword, "*QVDuplex");
    add(2, torka::siteDocumentSetup, "%%BeginFeature: *Tray B\n%%EndFeature\n");
    add(3, torka::sitePageSize, "size");
    add(4, torka::siteSetupEnd, "closing");
    add(5, torka::siteJobNote, "%%ZANCustom1: a\rb");
    add(6, torka::siteDriverComment, "%%ZANDriver\n");
    add(7, torka::siteLayoutComment, "%%Orientation: Portrait\n");
    return ticket;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    const std::string_view document(reinterpret_cast<const char*>(data) + 2, size - 2);
    const torka::Ticket ticket = makeTicket(data[1]);
    const Spliced whole = splice(document, ticket, std::max<std::size_t>(document.size(), 1));
    const std::size_t piece = 1 + data[0] % 200;
    const Spliced cut = splice(document, ticket, piece);
    require(cut.status == whole.status);
    if (whole.status == torka::SpliceStatus::notPostScript) {
        return 0;
    }
    require(cut.text == whole.text);
    const torka::SpliceReport& report = whole.report;
    require(whole.status == torka::SpliceStatus::ok || whole.status == torka::SpliceStatus::entriesLeft);
    require(report.bytesWritten == whole.text.size());
    require(report.bytesWritten == document.size() - report.bytesRemoved + report.bytesInserted);
    std::size_t accounted = report.removed.size() + report.unplaced.size();
    for (const auto& [site, placed] : report.placed) {
        accounted += placed.entries;
    }
    require(accounted == ticket.entries.size());
    return 0;
}
