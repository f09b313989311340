// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/FixedControls.h"
#include "PPDX/PPDObjects/Controls/JobNoteFlags.h"
#include "PPDX/PPDObjects/Interface/DelimiterSet.h"
#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "StringUtils.h"
#include "platform/Log.h"

#include <algorithm>
#include <array>
#include <string>

// Job notes, and the stored preferences of notes that a dialog asks for before printing.

namespace torka {

namespace {

void checkDefaultLine(PPDLint& lint, long line, std::string_view token, std::string_view keyword,
                      std::string_view bare) {
    constexpr std::string_view beginning = "*%Default";
    if (token.substr(std::min(beginning.size(), token.size())) != bare) {
        lint.Note(PPDLintKind::otherDefault, line, keyword, token);
    }
}

ZANPPD::PUJNPrefsReader& preferencesReader() {
    static ZANPPD::PUJNPrefsReader reader;
    return reader;
}

} // namespace

// A null draft means no group line, whose keyword the note's must equal.
void ZANPPD::ParseJobNote(PPDStream& line, ControlDraft* draft) {
    const long noteLine = Line();
    const std::string_view rest = line.Remaining();
    line.Skip(std::min(rest.find_first_not_of(" \t:"), rest.size()));
    const NamedToken named = TakeNamedToken(line);
    if (!draft || named.token != draft->keyword) {
        Report(PPDErr_JobNoteParsing, draft ? draft->keyword : named.token, noteLine);
        return;
    }
    const std::string_view length = line.TakeToken(flagEnds, true);
    const std::int64_t maxLength = integerValue(length);
    if (length.empty() || length.find_first_not_of("0123456789") != std::string_view::npos ||
        integerOverflows(length)) {
        Note(PPDLintKind::badNumber, noteLine, draft->keyword, length);
    }
    JobNoteFlagReader flags(extensions);
    if (!ReadNoteFlags(line, draft->keyword, flags)) {
        Report(PPDErr_UnsupportedJobNoteFlag, draft->keyword, noteLine);
        return;
    }
    const bool hasRules = (flags.Flags() & jobNoteOnOffSwitch) == 0;
    if (hasRules && flags.MinLength() > maxLength) {
        Note(PPDLintKind::minLengthAboveMaximum, noteLine, draft->keyword,
             std::to_string(flags.MinLength()) + " and " + std::to_string(maxLength));
    }
    const CFStringRef name = LocalName(named, noteLine);

    CString defaultNotes;
    std::string_view text;
    ControlDefinition definition = Define(*draft, draft->keyword, name);
    bool isRead = ReadNonEmptyLine(text);
    const std::string_view bare =
        std::string_view(draft->keyword).substr(draft->keyword.starts_with('*') ? 1 : 0);
    if (isRead && text.starts_with("*%Default")) {
        PPDStream next(text);
        if (PPDStream again(next); lint) {
            checkDefaultLine(*lint, Line(), TakeMainKeyword(again), draft->keyword, bare);
            lint->CheckQuotes(Line(), draft->keyword, again.Remaining());
        }
        const long defaultLine = Line();
        std::array<char, kLineCapacity> value;
        if (GetQuotedString(next, value.data(), static_cast<long>(value.size())) > 1) {
            defaultNotes = value.data();
            if (lint) {
                lint->CheckNoteText(defaultLine, draft->keyword, value.data(),
                                    LanguageEncoding() ? std::optional(TextConverter::GetPPDEncoding(this))
                                                       : std::nullopt);
            }
        }
        isRead = ReadNonEmptyLine(text);
    }
    if (isRead) {
        PPDStream next(text);
        const std::string_view keyword = TakeMainKeyword(next);
        if (keyword.size() == bare.size() + 2 && keyword.starts_with("*%") && keyword.substr(2) == bare) {
            const long templateLine = Line();
            if (lint) {
                lint->CheckQuotes(templateLine, draft->keyword, next.Remaining());
            }
            const PostscriptBytes value = TakePostscript(next);
            if (lint) {
                lint->CheckPostscript(templateLine, draft->keyword, {}, value.bytes, value.length);
                lint->CheckNoteTemplate(
                    templateLine, draft->keyword,
                    {reinterpret_cast<const char*>(value.bytes), static_cast<std::size_t>(value.length)});
            }
            definition.psData = value.bytes;
            definition.psLength = value.length;
        } else {
            if (lint) {
                lint->LineBehindNote(Line(), draft->keyword, keyword, next.Remaining());
            }
            PushBackLine();
        }
    }
    // A note may stand in any kind of group.
    if (HasPlace(*draft, draft->keyword, false)) {
        auto note = std::make_unique<PPDXJobNote>(definition, defaultNotes.Buffer() ? &defaultNotes : nullptr,
                                                  maxLength, flags.Flags(), flags.MinLength());
        CheckDefaultNote(*note, noteLine);
        SetupControl(draft->group, std::move(note), false);
    }
}

// Skips a note without a default text, which the user has to fill in and therefore must see.
void ZANPPD::CheckDefaultNote(const PPDXJobNote& note, long line) {
    if (note.GetDefaultNotes() == nullptr) {
        const bool isRequired = (note.NoteFlags() & jobNoteRequired) != 0;
        if (isRequired && (note.IsNoTorkaDriverUI() || isBidiKeyword(note.Keyword()))) {
            Note(PPDLintKind::hiddenRequiredNote, line, note.Keyword());
        }
    } else {
        for (const BrokenNoteRule& rule : note.BrokenRules()) {
            Note(PPDLintKind::badDefaultNote, line, note.Keyword(), rule.Words());
        }
    }
}

// Returns false at a known word above the description's extension level.
bool ZANPPD::ReadNoteFlags(PPDStream& line, std::string_view keyword, JobNoteFlagReader& flags) {
    while (!line.Remaining().empty()) {
        const std::string_view word = line.TakeToken(flagEnds, true);
        if (word.empty()) {
            continue;
        }
        const std::int64_t minLength = flags.MinLength();
        switch (flags.Read(word)) {
        case JobNoteFlagReader::Result::aboveLevel:
            return false;
        case JobNoteFlagReader::Result::unknown:
            if (!word.starts_with("MinLength") || flags.MinLength() < 0) {
                Note(PPDLintKind::unknownJobNoteFlag, Line(), keyword, word);
            }
            break;
        case JobNoteFlagReader::Result::taken:
            if (minLength > 0 && flags.MinLength() == 0) {
                Note(PPDLintKind::lostMinLength, Line(), keyword, "MinLength" + std::to_string(minLength));
            }
            break;
        }
    }
    return true;
}

void ZANPPD::SetPUJNPrefsReader(PUJNPrefsReader reader) { preferencesReader() = std::move(reader); }

std::optional<std::string> QVPDEDataRead() {
    return preferencesReader() ? preferencesReader()() : std::nullopt;
}

void ZANPPD::ReadPUJNPrefs() {
    const std::optional<std::string> stored = QVPDEDataRead();
    if (!stored || stored->size() < 3) {
        myNSLogC("There are no preferences in the accounting popup file.");
        return;
    }
    popupJobNotePreferences = {(*stored)[0], (*stored)[1], (*stored)[2], stored->substr(3)};
    if (popupJobNotePreferences.enable == '0') {
        myNSLogC("The accounting popup feature is disabled.");
    }
}

} // namespace torka
