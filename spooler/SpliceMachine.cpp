// SPDX-License-Identifier: Apache-2.0
#include "spooler/SpliceMachine.h"

#include <algorithm>
#include <cstring>
#include <system_error>
#include <utility>

namespace torka {

namespace {

// How far back from a feature comment its wrapper's first line can begin: the line, its end and one byte
// before it.
constexpr std::size_t lookBack = maximumWrapperLine + 3;

// Finds the first "%%" at the beginning of a line, at or after `from`.
std::size_t findComment(std::string_view bytes, std::size_t from, bool isLineStart) {
    while (from < bytes.size() && bytes.size() - from > 1) {
        const void* found = std::memchr(bytes.data() + from, '%', bytes.size() - 1 - from);
        if (found == nullptr) {
            break;
        }
        const auto at = static_cast<std::size_t>(static_cast<const char*>(found) - bytes.data());
        if (bytes[at + 1] == '%' && (at == 0 ? isLineStart : isLineEnd(bytes[at - 1]))) {
            return at;
        }
        from = bytes.find_first_not_of('%', at); // no line begins within a row of "%"
    }
    return std::string_view::npos;
}

// Returns the line without what printers and other systems put before "%!": a leading end-of-transmission,
// universal exits, a reset.
std::string_view withoutJobLanguage(std::string_view line) {
    for (bool isMore = true; isMore;) {
        isMore = false;
        for (const std::string_view code : {std::string_view("\x04"), std::string_view("\x1b%-12345X"),
                                            std::string_view("\x1b"
                                                             "E")}) {
            if (line.starts_with(code)) {
                line.remove_prefix(code.size());
                isMore = true;
            }
        }
    }
    return line;
}

} // namespace

SpliceMachine::SpliceMachine(const Ticket& ticket, ByteSink& sink)
    : output(sink) {
    for (std::size_t i = 0; i < ticket.entries.size(); ++i) {
        SortEntry(i, ticket);
    }
    heldKeyword = report.removed.end();
    isSetupPlaced = isClosingPlaced = !hasSetupEntries;
    isRaw = placeable.empty() && report.removed.empty();
}

// Lines

std::optional<SpliceMachine::Line> SpliceMachine::ReadLine(std::string_view bytes, std::size_t limit,
                                                           bool isLast) {
    const std::size_t end = bytes.substr(0, limit + 1).find_first_of("\r\n");
    if (end == std::string_view::npos) {
        if (bytes.size() > limit) {
            return Line{bytes.substr(0, limit), {}, true};
        }
        return isLast ? std::optional(Line{bytes, {}, false}) : std::nullopt;
    }
    std::size_t endSize = 1;
    if (bytes[end] == '\r') {
        if (end + 1 == bytes.size() && !isLast) {
            return std::nullopt;
        }
        endSize = end + 1 < bytes.size() && bytes[end + 1] == '\n' ? 2 : 1;
    }
    return Line{bytes.substr(0, end), bytes.substr(end, endSize), false};
}

// Returns the line before `lineBegin`, with its end, when it opens a feature's wrapper; else "".
std::string_view SpliceMachine::FindWrapperOpening(std::string_view bytes, std::size_t lineBegin) const {
    std::size_t end = lineBegin;
    if (end > 0 && bytes[end - 1] == '\n') {
        --end;
    }
    if (end > 0 && bytes[end - 1] == '\r') {
        --end;
    }
    std::size_t begin = end;
    while (begin > 0 && !isLineEnd(bytes[begin - 1]) && end - begin <= maximumWrapperLine) {
        --begin;
    }
    if ((begin == 0 && !isLineStart) || !isWrapperOpening(bytes.substr(begin, end - begin))) {
        return {};
    }
    return bytes.substr(begin, lineBegin - begin);
}

// Steps

std::size_t SpliceMachine::Consume(std::string_view bytes, bool isLast) {
    std::size_t at = 0;
    while (status == SpliceStatus::ok && (at < bytes.size() || (isLast && isHeldComplete))) {
        const bool wasData = dataBytes > 0;
        const std::optional<std::size_t> used = Step(bytes.substr(at), isLast);
        if (!used) {
            break;
        }
        at += *used;
        if (*used > 0) {
            isLineStart = (wasData && dataBytes == 0) || isLineEnd(bytes[at - 1]);
        }
        if (output.Error() != 0) {
            FailWriting();
        }
    }
    return at;
}

std::optional<std::size_t> SpliceMachine::Step(std::string_view bytes, bool isLast) {
    if (isRaw) {
        Pass(bytes);
        return bytes.size();
    }
    if (dataBytes > 0) {
        return StepDataBytes(bytes);
    }
    if (dataLines > 0) {
        return StepDataLines(bytes, isLast);
    }
    if (isHeldComplete) {
        return StepFeatureEnd(bytes, isLast);
    }
    if (isInRestOfLine) {
        return StepRestOfLine(bytes, isLast);
    }
    switch (section) {
    case Section::prefix:
        return StepPrefix(bytes, isLast);
    case Section::header:
        return StepHeader(bytes, isLast);
    default:
        return StepScan(bytes, isLast);
    }
}

std::optional<std::size_t> SpliceMachine::StepPrefix(std::string_view bytes, bool isLast) {
    const std::optional<Line> line = ReadLine(bytes, Splicer::lineLimit, isLast);
    if (!line) {
        return std::nullopt;
    }
    const std::string_view text = withoutJobLanguage(line->text);
    if (text.starts_with("%!")) {
        section = Section::header;
    } else {
        isJobLanguage = isJobLanguage || line->text.starts_with('\x1b') || line->text.starts_with('@');
        prefixBytes += line->Size();
        if ((!isJobLanguage && !withoutOuterBlanks(text).empty()) || prefixBytes > Splicer::prefixLimit) {
            Fail(SpliceStatus::notPostScript,
                 "the document does not begin with \"%!\": it is not PostScript");
            return std::nullopt;
        }
    }
    PassWholeLine(*line);
    return line->Size();
}

std::optional<std::size_t> SpliceMachine::StepHeader(std::string_view bytes, bool isLast) {
    const std::optional<Line> line = ReadLine(bytes, Splicer::lineLimit, isLast);
    if (!line) {
        return std::nullopt;
    }
    if (isHeaderComment(line->text)) {
        PassWholeLine(*line);
        return line->Size();
    }
    const bool isExplicit = !line->isCut && line->text.starts_with("%%") &&
                            readDscComment(line->text).kind == DscKind::endComments;
    PlaceHeader();
    if (isExplicit) {
        Pass(bytes.substr(0, line->Size()));
    }
    isHeaderImplicit = !isExplicit;
    section = Section::prolog;
    isMarkAtHeader = true;
    OpenMark();
    ChooseRaw();
    return isExplicit ? line->Size() : 0;
}

void SpliceMachine::PassWholeLine(const Line& line) {
    Pass(line.text);
    Pass(line.lineEnd);
    isInRestOfLine = line.isCut;
    if (section == Section::header && !isLineEndKnown && !line.lineEnd.empty()) {
        lineEnd = line.lineEnd;
        isLineEndKnown = true;
    }
}

std::optional<std::size_t> SpliceMachine::StepRestOfLine(std::string_view bytes, bool isLast) {
    const std::size_t end = bytes.find_first_of("\r\n");
    if (end != 0) {
        std::string_view rest = bytes.substr(0, end);
        if (section == Section::prefix) {
            rest = rest.substr(0, Splicer::prefixLimit - prefixBytes);
            prefixBytes += rest.size();
            if (rest.empty()) {
                RefuseAsForeign();
                return std::nullopt;
            }
        }
        Pass(rest);
        return rest.size();
    }
    const std::optional<Line> line = ReadLine(bytes, 0, isLast);
    if (!line) {
        return std::nullopt;
    }
    PassWholeLine(*line);
    return line->Size();
}

std::optional<std::size_t> SpliceMachine::StepScan(std::string_view bytes, bool isLast) {
    std::size_t from = 0;
    for (;;) {
        const std::size_t at = findComment(bytes, from, isLineStart);
        const bool isFound = at != std::string_view::npos;
        const std::optional<Line> line =
            isFound ? ReadLine(bytes.substr(at), Splicer::lineLimit, isLast) : std::nullopt;
        if (!line) {
            const std::size_t known = isFound ? at : bytes.size();
            const std::size_t used = isLast ? known : known - std::min(known, lookBack);
            Pass(bytes.substr(0, used));
            return used > 0 ? std::optional(used) : std::nullopt;
        }
        const DscComment comment = line->isCut ? DscComment{} : readDscComment(line->text);
        if (comment.kind == DscKind::other) {
            from = at + line->Size();
            continue;
        }
        const std::string_view opening =
            comment.kind == DscKind::beginFeature ? FindWrapperOpening(bytes, at) : std::string_view();
        Pass(bytes.substr(0, at - opening.size()));
        HandleComment(comment, opening, *line);
        return at + line->Size();
    }
}

std::size_t SpliceMachine::StepDataBytes(std::string_view bytes) {
    const std::size_t count = dataBytes < bytes.size() ? static_cast<std::size_t>(dataBytes) : bytes.size();
    Pass(bytes.substr(0, count));
    dataBytes -= count;
    return count;
}

std::optional<std::size_t> SpliceMachine::StepDataLines(std::string_view bytes, bool isLast) {
    std::size_t at = 0;
    while (dataLines > 0 && at < bytes.size()) {
        const std::size_t end = bytes.find_first_of("\r\n", at);
        if (end == std::string_view::npos) {
            at = bytes.size();
            break;
        }
        const std::optional<Line> line = ReadLine(bytes.substr(end), 0, isLast);
        if (!line) {
            at = end;
            break;
        }
        at = end + line->Size();
        --dataLines;
    }
    Pass(bytes.substr(0, at));
    return at > 0 ? std::optional(at) : std::nullopt;
}

std::optional<std::size_t> SpliceMachine::StepFeatureEnd(std::string_view bytes, bool isLast) {
    const std::optional<Line> line = ReadLine(bytes, maximumWrapperLine, isLast);
    if (!line) {
        return std::nullopt;
    }
    if (line->isCut || !isWrapperClosing(line->text)) {
        DropHeld(heldOpening);
        return 0;
    }
    held.append(bytes.substr(0, line->Size()));
    DropHeld(0);
    return line->Size();
}

// Comments

void SpliceMachine::HandleComment(const DscComment& comment, std::string_view opening, const Line& line) {
    const std::string_view whole(line.text.data(), line.Size());
    if (isHolding && HandleHeld(comment, whole)) {
        return;
    }
    switch (comment.kind) {
    case DscKind::beginFeature:
    case DscKind::includeFeature:
        HandleFeature(comment, opening, whole);
        return;
    case DscKind::beginDocument:
    case DscKind::endDocument:
    case DscKind::beginResource:
    case DscKind::endResource:
    case DscKind::beginData:
    case DscKind::endData:
        HandleNesting(comment, line);
        return;
    default:
        HandleStructure(comment.kind, whole);
    }
}

// Handles a comment inside a block that may be removed. Returns whether the comment belongs to the block. A
// comment of any other structure shows that the block's %%EndFeature is missing.
bool SpliceMachine::HandleHeld(const DscComment& comment, std::string_view line) {
    if (comment.kind == DscKind::includeFeature) {
        Pass(line);
        return true;
    }
    if (comment.kind != DscKind::endFeature) {
        KeepHeld("its %%EndFeature is missing");
        return false;
    }
    held.append(line);
    if (heldOpening > 0) {
        isHeldComplete = true;
    } else {
        DropHeld(0);
    }
    return true;
}

void SpliceMachine::HandleFeature(const DscComment& comment, std::string_view opening,
                                  std::string_view line) {
    const auto keyword = MayRemove() ? FindSuppressed(comment.arguments) : report.removed.end();
    if (keyword == report.removed.end()) {
        Pass(opening);
        Pass(line);
    } else if (comment.kind == DscKind::includeFeature) {
        ++keyword->second;
        report.bytesRemoved += line.size();
    } else {
        isHolding = true;
        heldKeyword = keyword;
        heldOpening = opening.size();
        held.assign(opening).append(line);
    }
}

void SpliceMachine::HandleNesting(const DscComment& comment, const Line& line) {
    Pass(std::string_view(line.text.data(), line.Size()));
    if (isDataOpen) {
        isDataOpen = comment.kind != DscKind::endData;
        return;
    }
    switch (comment.kind) {
    case DscKind::beginData:
        BeginData(comment, line.lineEnd);
        break;
    case DscKind::beginDocument:
        ++documentDepth;
        break;
    case DscKind::endDocument:
        documentDepth -= documentDepth > 0 ? 1 : 0;
        break;
    case DscKind::beginResource:
        // The mark of a declared prolog never moves. Without this condition each of its resources would scan
        // all bytes behind the mark again.
        if (documentDepth == 0 && resourceDepth++ == 0 && !isPrologDeclared) {
            isMarkFixed = isMarkFixed || output.HasCodeSinceMark();
        }
        break;
    case DscKind::endResource:
        if (documentDepth == 0 && resourceDepth > 0 && --resourceDepth == 0) {
            MoveMark();
        }
        break;
    default:
        break;
    }
}

void SpliceMachine::BeginData(const DscComment& comment, std::string_view commentEnd) {
    const std::optional<DscDataExtent> extent = readDataExtent(comment.arguments);
    if (!extent) {
        isDataOpen = true;
    } else if (extent->isLines) {
        dataLines = extent->count;
    } else {
        dataBytes = extent->count;
        // Where lines end with a carriage return alone, a line feed after it is the first byte of the data.
        if (lineEnd == "\r" && commentEnd == "\r\n" && dataBytes > 0) {
            --dataBytes;
        }
    }
}

void SpliceMachine::HandleStructure(DscKind kind, std::string_view line) {
    if (resourceDepth > 0 && documentDepth == 0 && !isDataOpen &&
        (kind == DscKind::beginSetup || kind == DscKind::page)) {
        Warn("a resource or procedure set is not closed before the setup or the first page");
        resourceDepth = 0;
    }
    if (IsNested()) {
        Pass(line);
        return;
    }
    const bool isBeforeSetup = section == Section::prolog || section == Section::afterProlog;
    switch (kind) {
    case DscKind::beginProlog:
        isPrologDeclared = true;
        break;
    case DscKind::endProlog:
        if (section == Section::prolog) {
            EndProlog(line);
            return;
        }
        break;
    case DscKind::beginSetup:
        if (isBeforeSetup) {
            BeginSetup(line);
            return;
        }
        break;
    case DscKind::endSetup:
        if (section == Section::setup) {
            PlaceClosing();
            section = Section::afterSetup;
        }
        break;
    case DscKind::page:
        if (WantsSetup()) {
            CreateSetup();
        }
        LeaveSetup();
        section = Section::page;
        break;
    case DscKind::beginPageSetup:
    case DscKind::endPageSetup:
        if (section == Section::page || section == Section::pageSetup) {
            section = kind == DscKind::beginPageSetup ? Section::pageSetup : Section::page;
        }
        break;
    case DscKind::trailer:
    case DscKind::endOfFile:
        if (!WantsSetup()) { // else it may be stray; the end of the document decides
            LeaveSetup();
            section = Section::trailer;
        }
        break;
    default:
        break;
    }
    Pass(line);
    ChooseRaw();
}

// Removal

bool SpliceMachine::MayRemove() const {
    return !IsNested() && section != Section::page && section != Section::trailer;
}

SpliceMachine::Removed::iterator SpliceMachine::FindSuppressed(std::string_view arguments) {
    constexpr std::string_view custom =
        "*Custom"; // "*CustomFoo True" sets a custom value of the option "*Foo"
    const std::string_view keyword = firstWord(arguments);
    const auto found = report.removed.find(keyword);
    if (found != report.removed.end() || !keyword.starts_with(custom)) {
        return found;
    }
    return report.removed.find("*" + std::string(keyword.substr(custom.size())));
}

// Leaves the block in the document.
void SpliceMachine::KeepHeld(std::string_view reason) {
    Warn("a feature block of " + heldKeyword->first + " is left in the document: " + std::string(reason));
    isHolding = isHeldComplete = false;
    const std::string block = std::exchange(held, {});
    Pass(block);
}

// Removes the block except its first `kept` bytes.
void SpliceMachine::DropHeld(std::size_t kept) {
    ++heldKeyword->second;
    report.bytesRemoved += held.size() - kept;
    isHolding = isHeldComplete = false;
    const std::string block = std::exchange(held, {});
    Pass(std::string_view(block).substr(0, kept));
}

void SpliceMachine::Pass(std::string_view bytes) {
    if (isHolding) {
        if (held.size() + bytes.size() <= Splicer::featureLimit) {
            held.append(bytes);
            return;
        }
        KeepHeld("it is longer than 256 KiB");
    }
    if (output.HasMark() && output.MarkedBytes() + bytes.size() > Splicer::holdLimit) {
        const bool isPlaceAhead = (isPrologDeclared && section == Section::prolog) || // behind its end
                                  (resourceDepth > 0 && !isMarkFixed);                // behind the resource
        if (isPlaceAhead) {
            output.CloseMark({}, lineEnd);
        } else {
            PlaceAtMark();
        }
    }
    output.Pass(bytes);
}

void SpliceMachine::Warn(std::string text) {
    if (report.warnings.size() + 1 < SpliceReport::maximumWarnings) {
        report.warnings.push_back(std::move(text));
    } else if (report.warnings.size() < SpliceReport::maximumWarnings) {
        report.warnings.emplace_back("more warnings came and are not listed");
    }
}

void SpliceMachine::Fail(SpliceStatus failure, std::string text) {
    status = failure;
    errorText = std::move(text);
}

void SpliceMachine::RefuseAsForeign() {
    Fail(SpliceStatus::notPostScript, "the document does not begin with \"%!\": it is not PostScript");
}

void SpliceMachine::FailWriting() {
    Fail(SpliceStatus::writeFailed,
         "the document cannot be written: " + std::generic_category().message(output.Error()));
}

} // namespace torka
