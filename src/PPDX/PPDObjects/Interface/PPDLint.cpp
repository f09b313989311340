#include "PPDX/PPDObjects/Interface/PPDLint.h"

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/KeyForest.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <array>
#include <fstream>

namespace torka {

namespace {

constexpr std::string_view endOfDescription = "*% End of PPD file";

std::string_view mainKeyword(std::string_view line) {
    return line.substr(0, line.find_first_of(std::string_view(" \t:\0\xFF", 5)));
}

} // namespace

const char* ppdLintName(PPDLintKind kind) {
    switch (kind) {
    case PPDLintKind::unknownJobNoteFlag:
        return "unknownJobNoteFlag";
    case PPDLintKind::unknownConstraintKeyword:
        return "unknownConstraintKeyword";
    case PPDLintKind::unknownConstraintOption:
        return "unknownConstraintOption";
    case PPDLintKind::unplacedGroup:
        return "unplacedGroup";
    case PPDLintKind::cutLine:
        return "cutLine";
    case PPDLintKind::untranslatableText:
        return "untranslatableText";
    case PPDLintKind::unknownDefault:
        return "unknownDefault";
    case PPDLintKind::unknownGroup:
        return "unknownGroup";
    case PPDLintKind::emptyBlock:
        return "emptyBlock";
    case PPDLintKind::unclosedBlock:
        return "unclosedBlock";
    case PPDLintKind::unclosedQuote:
        return "unclosedQuote";
    case PPDLintKind::unreadableByte:
        return "unreadableByte";
    case PPDLintKind::badCustomSize:
        return "badCustomSize";
    case PPDLintKind::badNumber:
        return "badNumber";
    case PPDLintKind::badDefaultNote:
        return "badDefaultNote";
    }
    return "";
}

void PPDLint::Note(PPDLintKind kind, long line, std::string_view keyword, std::string_view text) {
    if (notes.size() < maximumNotes) {
        notes.push_back({kind, line, std::string(keyword), std::string(text)});
    }
}

void PPDLint::ConstraintLine(long line, std::string_view key1, std::string_view option1,
                             std::string_view key2, std::string_view option2) {
    Constraint constraint{line, {}};
    for (const std::string_view part : {key1, option1, key2, option2}) {
        constraint.text.append(part).push_back('\0');
    }
    constraints.push_back(std::move(constraint));
}

void PPDLint::CheckText(long line, std::string_view keyword, std::string_view text,
                        CFStringEncoding encoding) {
    std::string bytes(text.size(), '\0');
    bytes.resize(TextConverter::DehexBufferFill(text, bytes.data()));
    const CFStringEncoding readAs = isKnownEncoding(encoding) ? encoding : kCFStringEncodingUTF8;
    if (!decodeText(bytes, readAs)) {
        Note(PPDLintKind::untranslatableText, line, keyword, text);
    }
}

void PPDLint::Finish(ZANPPD& description) {
    for (const Constraint& constraint : constraints) {
        CheckConstraint(description, constraint);
    }
    CheckGroups();
    CheckLines(description);
    std::stable_sort(notes.begin(), notes.end(),
                     [](const PPDLintNote& a, const PPDLintNote& b) { return a.line < b.line; });
}

void PPDLint::CheckConstraint(ZANPPD& description, const Constraint& constraint) {
    std::array<const char*, 4> parts{};
    const char* at = constraint.text.c_str();
    for (const char*& part : parts) {
        part = at;
        at += std::char_traits<char>::length(at) + 1;
    }
    CheckConstraintSide(description, constraint.line, parts[0], parts[1]);
    CheckConstraintSide(description, constraint.line, parts[2], parts[3]);
}

void PPDLint::CheckConstraintSide(ZANPPD& description, long line, const char* key, const char* option) {
    CNTL_TYPE type{};
    PPDXControl* control = description.GetControls()->Find(key, type, true);
    if (!control) {
        if (!spoolerKeywords.contains(key)) {
            Note(PPDLintKind::unknownConstraintKeyword, line, key);
        }
        return;
    }
    if (*option == '\0' || (type != CNTL_TYPE::boolean && type != CNTL_TYPE::popup)) {
        return;
    }
    const UIConstraints& store = *description.GetUIConstraints();
    const CStringSoup& texts = *store.GetConstraintStrings();
    const auto offered = store.GetKeyForest()->GetOptions(texts.Find(std::string_view(key)));
    if (!offered ||
        offered->Occurrences(texts.Find(std::string_view(option)), offered->Items().size()) == 0) {
        Note(PPDLintKind::unknownConstraintOption, line, key, option);
    }
}

void PPDLint::CheckGroups() {
    for (const Declared& group : declaredGroups) {
        if (!placedGroups.contains(group.name)) {
            Note(PPDLintKind::unplacedGroup, group.line, group.name);
        }
    }
}

// Reads the file itself: these defects may stand where no reader of an element looks. Skips a file that is
// not a description; its error is enough.
void PPDLint::CheckLines(const ZANPPD& description) {
    FSRef file;
    if (description.HasFatalError() || !description.GetFileSpec(file)) {
        return;
    }
    std::ifstream in(file.path, std::ios::binary);
    std::array<char, 65536> block;
    std::string start;
    std::size_t length = 0;
    std::string_view badByte;
    long line = 1;
    char last = '\0';
    auto unclosed = description.UnclosedValues().begin();
    const auto endLine = [&] {
        CheckLine(line, start, length, badByte);
        for (; unclosed != description.UnclosedValues().end() && *unclosed <= line; ++unclosed) {
            Note(PPDLintKind::unclosedQuote, line, mainKeyword(start));
        }
        length = 0;
        badByte = {};
        start.clear();
    };
    while (in.read(block.data(), static_cast<std::streamsize>(block.size())) || in.gcount() > 0) {
        for (const char c : std::string_view(block.data(), static_cast<std::size_t>(in.gcount()))) {
            if (c == '\n' || c == '\r') {
                if (!(c == '\n' && last == '\r')) {
                    const bool isLast = start.starts_with(endOfDescription);
                    endLine();
                    if (isLast) {
                        return;
                    }
                    ++line;
                }
            } else {
                if (badByte.empty() && (c == '\0' || c == '\xFF')) {
                    badByte = c == '\0' ? "NUL" : "0xFF";
                }
                if (++length <= 64) {
                    start.push_back(c);
                }
            }
            last = c;
        }
    }
    endLine();
}

void PPDLint::CheckLine(long line, std::string_view start, std::size_t length, std::string_view badByte) {
    if (length >= kLineCapacity) {
        Note(PPDLintKind::cutLine, line, mainKeyword(start));
    }
    if (!badByte.empty()) {
        Note(PPDLintKind::unreadableByte, line, mainKeyword(start), badByte);
    }
}

} // namespace torka
