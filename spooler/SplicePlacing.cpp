// SPDX-License-Identifier: Apache-2.0
// The half of SpliceMachine that decides where entries go.

#include "PPDX/Utilities/PostScriptText.h"
#include "spooler/SpliceMachine.h"

namespace torka {

namespace {

bool isSetup(SitePlace place) { return place == SitePlace::setup || place == SitePlace::setupEnd; }

bool isKeyword(std::string_view text) {
    return text.size() > 1 && text.size() < Splicer::lineLimit && text[0] == '*' &&
           text.find_first_of(std::string_view(" \t\r\n\0:", 6)) == std::string_view::npos;
}

// A failing setting then costs that setting alone. The page size and everything else that is one feature
// block are guarded; the end marker, a watermark and other code is not.
bool isGuarded(const Ticket& ticket, const TicketEntry& entry, SitePlace place) {
    const std::string_view keyword =
        ticket.unguarded && place == SitePlace::setup ? featureKeyword(entry.bytes) : std::string_view();
    return !keyword.empty() && !ticket.unguarded->contains(keyword) && canBeGuarded(entry.bytes);
}

std::string quantity(std::size_t count, const char* noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

} // namespace

std::string_view placeText(SplicePlace place) {
    switch (place) {
    case SplicePlace::headerComments:
        return "in the header comments";
    case SplicePlace::documentSetup:
        return "in the document setup";
    case SplicePlace::createdSetup:
        return "in a document setup made for it";
    case SplicePlace::afterHeader:
        return "behind the header comments";
    case SplicePlace::nowhere:
        break;
    }
    return "nowhere";
}

void SpliceMachine::SortEntry(std::size_t index, const Ticket& ticket) {
    const TicketEntry& entry = ticket.entries[index];
    const InjectionSite* site = findInjectionSite(entry.site);
    if (site == nullptr) {
        report.unplaced.push_back({index, entry.site, "its site is not known"});
        return;
    }
    switch (site->place) {
    case SitePlace::removal:
        if (isKeyword(entry.bytes)) {
            report.removed.emplace(entry.bytes, 0);
        } else {
            report.unplaced.push_back({index, entry.site, "it is not a main keyword"});
        }
        break;
    case SitePlace::report:
        report.mailboxPaths.push_back(entry.bytes);
        break;
    case SitePlace::headerComments:
    case SitePlace::setup:
    case SitePlace::setupEnd:
        placeable.push_back({index, entry, site->place, isGuarded(ticket, entry, site->place)});
        hasSetupEntries = hasSetupEntries || isSetup(site->place);
        break;
    }
}

// Returns the entry as lines that a header may hold. A line that would end the header, or run as code,
// becomes a continuation of the comment before it.
std::string SpliceMachine::HeaderLines(const SortedEntry& sorted) {
    std::string lines;
    std::size_t continued = 0;
    std::string_view rest = sorted.entry.bytes;
    while (!rest.empty()) {
        const Line line = *ReadLine(rest, rest.size(), true);
        if (!line.text.starts_with("%%") || !isHeaderComment(line.text)) {
            lines += "%%+ ";
            ++continued;
        }
        lines += withoutLineBreaks(line.text); // a form feed also ends a comment
        lines.append(line.lineEnd.empty() ? std::string_view(lineEnd) : line.lineEnd);
        rest.remove_prefix(line.Size());
    }
    if (continued > 0) {
        Warn("entry " + std::to_string(sorted.index) + " (site " + std::to_string(sorted.entry.site) +
             "): " + quantity(continued, "line") +
             " not fit for the header comments, written as continuation with \"%%+\"");
    }
    return lines;
}

// Returns the entries of a site and records them as placed.
std::string SpliceMachine::TextOf(PostScriptInjectionSite site, SplicePlace place) {
    std::string text;
    std::size_t count = 0;
    for (const SortedEntry& sorted : placeable) {
        if (sorted.entry.site != site) {
            continue;
        }
        ++count;
        if (place == SplicePlace::headerComments) {
            text += HeaderLines(sorted);
            continue;
        }
        if (sorted.isGuarded) {
            text += "[{" + lineEnd;
        }
        text += sorted.entry.bytes;
        if (!sorted.entry.bytes.empty() && !isLineEnd(text.back())) {
            text += lineEnd;
        }
        if (sorted.isGuarded) {
            text += "} stopped cleartomark" + lineEnd;
        }
    }
    if (count > 0) {
        report.placed[site] = {count, text.size(), place};
    }
    return text;
}

std::string SpliceMachine::TextOf(SitePlace sites, SplicePlace place) {
    std::string text;
    for (const InjectionSite& site : injectionSites) {
        if (site.place == sites) {
            text += TextOf(site.number, place);
        }
    }
    return text;
}

void SpliceMachine::PlaceHeader() {
    output.Insert(TextOf(SitePlace::headerComments, SplicePlace::headerComments), lineEnd);
}

std::string SpliceMachine::SetupText(SplicePlace place) {
    isSetupPlaced = true;
    return TextOf(SitePlace::setup, place);
}

std::string SpliceMachine::ClosingText(SplicePlace place) {
    isClosingPlaced = true;
    return TextOf(SitePlace::setupEnd, place);
}

std::string SpliceMachine::CreatedSetup() {
    std::string text = "%%BeginSetup" + lineEnd + SetupText(SplicePlace::createdSetup);
    return text + ClosingText(SplicePlace::createdSetup) + "%%EndSetup" + lineEnd;
}

void SpliceMachine::OpenMark() {
    if (WantsSetup()) {
        output.OpenMark();
    }
}

// Moves the mark behind a resource of an undeclared prolog: settings go behind such resources.
void SpliceMachine::MoveMark() {
    if (section != Section::prolog || isPrologDeclared || isMarkFixed || !WantsSetup()) {
        return;
    }
    output.CloseMark({}, lineEnd);
    isMarkAtHeader = false;
    output.OpenMark();
}

// Places the setup entries at the mark: no setup section came in time.
void SpliceMachine::PlaceAtMark() {
    std::string text;
    if (section == Section::afterProlog) {
        text = CreatedSetup();
    } else {
        if (isHeaderImplicit && isMarkAtHeader) {
            text = "%%EndComments" + lineEnd; // else the comments that follow would be header comments
        }
        text += SetupText(SplicePlace::afterHeader);
        text += ClosingText(SplicePlace::afterHeader);
    }
    output.CloseMark(text, lineEnd);
    ChooseRaw();
}

void SpliceMachine::EndProlog(std::string_view line) {
    Pass(line);
    output.CloseMark({}, lineEnd);
    section = Section::afterProlog;
    isMarkFixed = true;
    OpenMark();
    ChooseRaw();
}

void SpliceMachine::BeginSetup(std::string_view line) {
    output.CloseMark({}, lineEnd);
    Pass(line);
    if (WantsSetup()) {
        output.Insert(SetupText(SplicePlace::documentSetup), lineEnd);
    }
    section = Section::setup;
    ChooseRaw();
}

// Adds a setup section before the first page of a document that has none.
void SpliceMachine::CreateSetup() {
    if (section == Section::afterProlog && output.HasMark()) {
        PlaceAtMark();
        return;
    }
    output.CloseMark({}, lineEnd);
    output.Insert(CreatedSetup(), lineEnd);
}

void SpliceMachine::PlaceClosing() {
    if (!isClosingPlaced) {
        output.Insert(ClosingText(SplicePlace::documentSetup), lineEnd);
    }
}

void SpliceMachine::LeaveSetup() {
    if (section == Section::setup) {
        Warn("the document's setup section is not closed");
        PlaceClosing();
    }
}

void SpliceMachine::ChooseRaw() {
    isRaw = report.removed.empty() && !WantsSetup() && isClosingPlaced && section != Section::prefix &&
            section != Section::header && !output.HasMark();
}

void SpliceMachine::Finish() {
    if (section == Section::prefix && !isRaw) {
        Fail(SpliceStatus::notPostScript, report.bytesRead == 0
                                              ? "the document is empty"
                                              : "the document holds no line that begins with \"%!\"");
        return;
    }
    if (section == Section::header) {
        PlaceHeader();
        isHeaderImplicit = isMarkAtHeader = true;
        section = Section::prolog;
        OpenMark();
    }
    if (isHolding) {
        KeepHeld("the document ends in it");
    }
    LeaveSetup();
    if (output.HasMark()) {
        PlaceAtMark();
    }
    output.Flush();
    report.bytesInserted = output.Inserted();
    report.bytesWritten = output.Written();
    if (output.Error() != 0) {
        FailWriting();
    } else if (WantsSetup()) {
        ReportSetupUnplaced();
    }
}

void SpliceMachine::ReportSetupUnplaced() {
    const std::size_t before = report.unplaced.size();
    for (const SortedEntry& sorted : placeable) {
        if (isSetup(sorted.place)) {
            report.unplaced.push_back(
                {sorted.index, sorted.entry.site, "the document has no place for a setup"});
        }
    }
    Fail(SpliceStatus::entriesLeft,
         "the document ends in an open section before its setup: " +
             quantity(report.unplaced.size() - before, "ticket entry").append(" not placed"));
}

} // namespace torka
