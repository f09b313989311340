// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "spooler/DscComment.h"
#include "spooler/SpliceOutput.h"
#include "spooler/Splicer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

// The state of one document on its way through a Splicer: its section, its nesting, and the bytes that wait.
//
// Invariants:
// (1) A step decides by the document's bytes only, never by where a piece of it ends. A step that needs to
// see more uses nothing; at most lineLimit and a few bytes then wait.
// (2) Every byte used is at once passed on, held, marked or counted as removed.
class SpliceMachine {
public:
    SpliceMachine(const Ticket& ticket, ByteSink& sink);

    void CountRead(std::size_t count) { report.bytesRead += count; }
    // Works on the next bytes of the document and returns how many it used. The caller passes the rest again,
    // with more bytes behind it. With `isLast` no more bytes follow, and all are used.
    std::size_t Consume(std::string_view bytes, bool isLast);
    // REQUIRES: all bytes were consumed.
    void Finish();

    SpliceStatus Status() const { return status; }
    const SpliceReport& Report() const { return report; }
    const std::string& ErrorText() const { return errorText; }

private:
    using Removed = decltype(SpliceReport::removed);
    enum class Section { prefix, header, prolog, afterProlog, setup, afterSetup, page, pageSetup, trailer };

    // A line, or its beginning when it is longer than the limit.
    struct Line {
        std::string_view text;    // without its end
        std::string_view lineEnd; // "" for a cut line and at the end of the document
        bool isCut = false;       // longer than the limit: `text` is its beginning
        std::size_t Size() const { return text.size() + lineEnd.size(); }
    };
    static std::optional<Line> ReadLine(std::string_view bytes, std::size_t limit, bool isLast);
    std::string_view FindWrapperOpening(std::string_view bytes, std::size_t lineBegin) const;

    // Each step uses some bytes or changes what the next step does. It returns nothing when it must see more
    // bytes first.
    std::optional<std::size_t> Step(std::string_view bytes, bool isLast);
    std::optional<std::size_t> StepPrefix(std::string_view bytes, bool isLast);
    std::optional<std::size_t> StepHeader(std::string_view bytes, bool isLast);
    std::optional<std::size_t> StepRestOfLine(std::string_view bytes, bool isLast);
    std::optional<std::size_t> StepScan(std::string_view bytes, bool isLast);
    std::optional<std::size_t> StepFeatureEnd(std::string_view bytes, bool isLast);
    std::size_t StepDataBytes(std::string_view bytes);
    std::optional<std::size_t> StepDataLines(std::string_view bytes, bool isLast);
    void PassWholeLine(const Line& line);

    // The meaning of a comment depends on where it stands: in a block that may be removed, in a nested
    // section, or at the top level.
    void HandleComment(const DscComment& comment, std::string_view opening, const Line& line);
    bool HandleHeld(const DscComment& comment, std::string_view line);
    void HandleFeature(const DscComment& comment, std::string_view opening, std::string_view line);
    void HandleNesting(const DscComment& comment, const Line& line);
    void HandleStructure(DscKind kind, std::string_view line);
    void BeginData(const DscComment& comment, std::string_view commentEnd);

    void Pass(std::string_view bytes);
    void KeepHeld(std::string_view reason);
    void DropHeld(std::size_t kept);
    bool IsNested() const { return documentDepth + resourceDepth > 0 || isDataOpen; }
    bool MayRemove() const;
    Removed::iterator FindSuppressed(std::string_view arguments);

    void SortEntry(std::size_t index, const Ticket& ticket);
    bool WantsSetup() const { return !isSetupPlaced; }
    struct SortedEntry {
        std::size_t index = 0; // in the ticket
        TicketEntry entry;
        SitePlace place = SitePlace::setup; // of the entry's site
        bool isGuarded = false;
    };
    std::string HeaderLines(const SortedEntry& sorted);
    std::string TextOf(PostScriptInjectionSite site, SplicePlace place);
    std::string TextOf(SitePlace sites, SplicePlace place);
    std::string SetupText(SplicePlace place);
    std::string ClosingText(SplicePlace place);
    std::string CreatedSetup();
    void PlaceHeader();
    void OpenMark();
    void MoveMark();
    void PlaceAtMark();
    void PlaceClosing();
    void EndProlog(std::string_view line);
    void BeginSetup(std::string_view line);
    void LeaveSetup();
    void CreateSetup();
    void ReportSetupUnplaced();
    void ChooseRaw();
    void Warn(std::string text);
    void Fail(SpliceStatus failure, std::string text);
    void FailWriting();
    void RefuseAsForeign();

    std::vector<SortedEntry> placeable; // in ticket order
    bool hasSetupEntries = false;

    SpliceOutput output;
    SpliceReport report;
    SpliceStatus status = SpliceStatus::ok;
    std::string errorText;

    Section section = Section::prefix;
    bool isRaw = false;          // every further byte passes unchanged
    bool isLineStart = true;     // of the next byte
    bool isInRestOfLine = false; // of a line of the prefix or the header that was cut at the limit
    bool isLineEndKnown = false;
    std::string lineEnd = "\n"; // of the document's first line; also ends the lines that we insert
    bool isJobLanguage = false; // the prefix began with lines of another language
    std::size_t prefixBytes = 0;

    std::uint64_t documentDepth = 0;
    std::uint64_t resourceDepth = 0; // outside embedded documents
    std::uint64_t dataBytes = 0;     // still to pass unread
    std::uint64_t dataLines = 0;
    bool isDataOpen = false; // a data section without a count; it ends with its closing comment

    bool isHeaderImplicit = false; // the header had no %%EndComments
    bool isMarkAtHeader = false;
    bool isMarkFixed = false; // code stands behind the mark, so the mark no longer moves behind a resource
    bool isPrologDeclared = false;
    bool isSetupPlaced = false;
    bool isClosingPlaced = false;

    std::string held;              // a feature block that is removed when it is complete
    std::size_t heldOpening = 0;   // bytes of its wrapper's first line
    Removed::iterator heldKeyword; // in report.removed
    bool isHolding = false;
    bool isHeldComplete = false; // only the wrapper's last line is awaited
};

} // namespace torka
