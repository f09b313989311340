// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "PPDX/Utilities/MemoryShortage.h"

#include "PPDFile.h"
#include "PPDX/PPDObjects/Interface/ElementKeywords.h"
#include "PPDX/PPDObjects/Interface/PPDFileStream.h"
#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/UTF8Level.h"
#include "platform/System.h"

#include <algorithm>
#include <array>
#include <cstdlib>

// Construction, and the pass over the file that passes each line to the reader of its element.

namespace torka {

namespace {

// Hosts that open an annotated description and may read only its first part.
bool hostStopsAtAnnotation() {
    std::string identifier = hasSystem() ? system().Host().bundleIdentifier : std::string();
    std::transform(identifier.begin(), identifier.end(), identifier.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    static constexpr std::array<std::string_view, 3> hosts{"vectorworks", "preview", "indesign"};
    return std::any_of(hosts.begin(), hosts.end(),
                       [&](std::string_view host) { return identifier.find(host) != std::string::npos; });
}

// Looks at the value of a header line before it is read.
void checkHeaderValue(PPDLint& lint, long line, std::string_view keyword, std::string_view rest) {
    static constexpr std::array<std::string_view, 5> quoted{"*FormatVersion", "*FileVersion", "*PCFileName",
                                                            "*ModelName", "*APDialogExtension"};
    if (std::ranges::find(quoted, keyword) != quoted.end()) {
        lint.CheckQuotes(line, keyword, rest);
    }
}

// Looks at a line that begins no element. `header` is null when no reader took the line.
void checkHeaderLine(PPDLint& lint, long line, std::string_view keyword, const PPDX* header) {
    const auto hasText = [](const CString* value) { return value != nullptr && value->Buffer() != nullptr; };
    if (header != nullptr && keyword == "*LanguageEncoding" && hasText(header->LanguageEncoding())) {
        lint.CheckEncodingName(line, header->LanguageEncoding()->Buffer());
    } else if (header != nullptr && keyword == "*LanguageVersion" && hasText(header->LanguageVersion())) {
        lint.CheckLanguageName(line, header->LanguageVersion()->Buffer());
    } else if (findElementKeyword(keyword) == nullptr) {
        lint.OtherLine(line, keyword);
    }
}

// Every such line takes memory as long as the description lives. A control's further lines belong to its
// first.
bool definesElement(LineKind kind) {
    switch (kind) {
    case LineKind::constraint:
    case LineKind::requirement:
    case LineKind::propPage:
    case LineKind::groupName:
    case LineKind::subGroupName:
    case LineKind::parent:
    case LineKind::controlFlags:
    case LineKind::shortcut:
    case LineKind::specialOption:
    case LineKind::jobNote:
        return true;
    default:
        return false;
    }
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

} // namespace

ZANPPD::ZANPPD(_PARSE_OPTIONS_ options)
    : parseOptions(options) {
    Reset();
}

ZANPPD::ZANPPD(const FSRef& reference, _PARSE_OPTIONS_ options, CFArrayRef pcFileNames)
    : file(reference)
    , parseOptions(options)
    , supportedFileNames(std::move(pcFileNames)) {
    Build();
}

// A URL that names no file leaves an empty reference, which cannot be opened.
ZANPPD::ZANPPD(const CFURLRef& url, _PARSE_OPTIONS_ options, CFArrayRef pcFileNames)
    : file(FSRef{})
    , parseOptions(options)
    , supportedFileNames(std::move(pcFileNames)) {
    CFURLGetFSRef(url, *file);
    Build();
}

ZANPPD::~ZANPPD() = default;

void ZANPPD::Reset() {
    collectedShortcuts.clear();
    groupNames.clear();
    orphanGroups.clear();
    installableOptions = nullptr;
    customSize = nullptr;
    inInstallableOptions = false;
    shortcuts = std::make_unique<PPDXShortcuts>();
    controls.reset(); // they point to the constraint store
    constraints = std::make_unique<UIConstraints>();
    properties = std::make_unique<PPDXProperties>();
    groups = std::make_unique<PPDXGroups>();
    controls = std::make_unique<PPDXControls>();
    errors = std::make_unique<PPDXErrors>();
    hasFatalError = false;
    elementsTaken = 0;
    dmtInjection.clear();
    dmtXmlData.clear();
}

void ZANPPD::Build() {
    const std::uint64_t shortagesBefore = gMemoryShortages;
    Reset();
    if (file) {
        // NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.VirtualCall): a constructor reads with its own class
        Parse();
        if (!dmtInjection.empty()) {
            // A constructor reads with its own class.
            ZANPPD::ReadCustXmlData(dmtInjection);
        }
        ReadPUJNPrefs();
    }
    if (!hasFatalError) {
        if (properties->Empty()) {
            Report(PPDErr_NoPropertyPages, {}, 0);
        }
        if (groups->Empty()) {
            Report(PPDErr_NoGroups, {}, 0);
        }
        if (controls->Empty()) {
            Report(PPDErr_NoControls, {}, 0);
        }
    }
    // Without memory or lines, keywords and texts are missing that the checks take for granted.
    const PPDXErrorObj* const first = errors->First();
    const bool isRead = first == nullptr || *first != PPDErr_FileError;
    if (lint && isRead && gMemoryShortages == shortagesBefore) {
        const bool isReadAgain = lint->Finish(*this);
        if (!isReadAgain) {
            Report(PPDErr_FileError, {}, 0);
        }
    }
    if (gMemoryShortages != shortagesBefore && !hasFatalError) {
        Report(PPDErr_OutOfMemory, {}, 0);
    }
}

void ZANPPD::Parse() {
    refreshUTF8Level(nullptr);
    if (!properties || !groups || !controls) {
        Report(PPDErr_OutOfMemory, {}, 0);
        return;
    }
    if (!file) {
        return;
    }
    const std::uint64_t shortagesBefore = gMemoryShortages;
    PPDFile source(*file);
    if (!StartReading(std::make_unique<PPDFileStream>(&source, true))) {
        Report(PPDErr_FileError, {}, 0);
        return;
    }
    if (source.dataForkSize() > limits.bytes) {
        Report(PPDErr_TooManyBytes, {}, 0);
    } else if (TestPPDFile()) {
        ParseLines();
        ResolveShortcuts();
        collectedShortcuts.clear();
        CollectOrphanGroups();
        groupNames.clear();
        constraints->Resolve();
        refreshUTF8Level(controls.get());
    }
    if (HasReadFault()) {
        errors = std::make_unique<PPDXErrors>(); // they may come from the missing lines
        Report(PPDErr_FileError, {}, 0);
    }
    StopReading();
    inInstallableOptions = false;
    if (gMemoryShortages != shortagesBefore) {
        Report(PPDErr_OutOfMemory, {}, 0);
    }
}

bool ZANPPD::TestPPDFile() {
    std::string_view text;
    std::array<char, kLineCapacity> value;
    if (ReadLine(text)) {
        PPDStream line(text);
        if (TakeMainKeyword(line) == "*PPD-Adobe" &&
            GetQuotedString(line, value.data(), static_cast<long>(value.size())) > 1 &&
            std::string_view(value.data()) == "4.3") {
            return true;
        }
    }
    Report(PPDErr_NotPPDFile, {}, 1);
    return false;
}

void ZANPPD::ParseLines() {
    const bool stopsAtAnnotation = hostStopsAtAnnotation();
    std::string_view line;
    const std::size_t errorsBefore = errors->Count();
    const std::uint64_t shortagesBefore = gMemoryShortages;
    while (ReadNonEmptyLine(line)) {
        // Looks first: the line is gone when its value goes on in further lines.
        const bool isLast = stopsAtAnnotation && contains(line, "APLANNOTATE END");
        ParseLine(line);
        if (hasFatalError || gMemoryShortages != shortagesBefore ||
            (stopOnFirstError && errors->Count() > errorsBefore)) {
            return;
        }
        if (isLast) {
            return;
        }
    }
}

void ZANPPD::ParseLine(std::string_view line) {
    PPDStream stream(line);
    const std::string_view keyword = TakeMainKeyword(stream);
    const LineKind kind = lineKind(keyword);
    if (definesElement(kind) && !TakeElements(1)) {
        return;
    }
    switch (kind) {
    case LineKind::constraint:
        return ParseConstraint(stream, false);
    case LineKind::requirement:
        return ParseConstraint(stream, true);
    case LineKind::propPage:
        return ParsePropPage(stream);
    case LineKind::groupName:
        return ParseGroupName(stream, PPDErr_GroupNameParsing);
    case LineKind::subGroupName:
        return ParseGroupName(stream, PPDErr_SubGroupNameParsing);
    case LineKind::parent:
        return ParseParent(stream);
    case LineKind::controlFlags:
        return ParseControlFlags(stream);
    case LineKind::customPrintSize:
        return ParseCustomPrintSize(stream);
    case LineKind::shortcut:
        return ParseShortcut(stream);
    case LineKind::specialOption:
        return ParseSpecialOption(stream);
    case LineKind::jobNote:
        return ParseJobNote(stream, nullptr);
    case LineKind::group:
    case LineKind::range:
    case LineKind::floatRange:
        if (lint) {
            lint->StrayControlLine(Line(), keyword);
        }
        return;
    default:
        break;
    }
    if (isServerRecord(keyword)) {
        return;
    }
    if (contains(line, "*DMT_Injection")) {
        dmtInjection.append(line).push_back('\n');
        return;
    }
    if (keyword.starts_with('*') && keyword.size() < kLineCapacity) {
        std::array<char, kLineCapacity> name{};
        keyword.copy(name.data(), keyword.size());
        const long lineRead = Line();
        if (lint) {
            checkHeaderValue(*lint, lineRead, name.data(), stream.Remaining());
        }
        // NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.VirtualCall): a constructor reads with its own class
        const bool isTaken = ParsePSKeywords(stream, name.data());
        if (lint) {
            checkHeaderLine(*lint, lineRead, name.data(), isTaken ? this : nullptr);
        }
    }
}

bool ZANPPD::ParsePSKeywords(PPDStream& stream, const char* keyword) {
    const std::string_view name(keyword);
    std::array<char, kLineCapacity> value;
    const auto takeRest = [&](std::initializer_list<HeaderValue*> targets) {
        RestOfLine(stream, value.data());
        if (value.front() == '"') {
            Note(PPDLintKind::unclosedQuote, Line(), name);
        }
        for (HeaderValue* target : targets) {
            *target = std::make_unique<CString>(value.data());
        }
        return true;
    };
    if (name == "*%QVFileVersion") {
        return takeRest({&fileVersionQV});
    }
    if (name == "*%QVVersion") {
        return versionMacQV ? true : takeRest({&versionQV, &makerVersion});
    }
    if (name == "*%QVVersionMac") {
        return takeRest({&versionMacQV, &versionQV, &makerVersionMac, &makerVersion});
    }
    const LineKind kind = lineKind(name);
    if (kind == LineKind::openGroup || kind == LineKind::closeGroup) {
        const NamedToken group = TakeNamedToken(stream);
        if (group.token != "InstallableOptions") {
            return false;
        }
        if (kind == LineKind::openGroup) {
            OpenInstallableOptions(group);
        } else {
            inInstallableOptions = false;
        }
        return true;
    }
    if (lint && kind == LineKind::openMakersBlock) {
        lint->StrayControlLine(Line(), name);
    }
    if (lint && (kind == LineKind::openBlock || kind == LineKind::spoolerBlock)) {
        lint->SpoolerKeyword(TakeNamedToken(stream).token);
        return false;
    }
    return PPDX::ParsePSKeywords(stream, keyword);
}

// Counts elements of the current line. Reports a fatal error and returns false above the limit.
bool ZANPPD::TakeElements(std::size_t count) {
    elementsTaken += count;
    if (elementsTaken > limits.elements && !hasFatalError) {
        Report(PPDErr_TooManyElements, {}, Line());
    }
    return !hasFatalError;
}

void ZANPPD::Report(PPDErr code, std::string_view keyword, long line) {
    if (lint) {
        lint->Failed();
    }
    auto error = std::make_unique<PPDXErrorObj>(code, std::string(keyword).c_str(), line);
    hasFatalError = hasFatalError || error->IsFatal();
    if (errors->Count() < maximumErrors || error->IsFatal()) {
        errors->Add(std::move(error));
    }
}

void ZANPPD::Note(PPDLintKind kind, long line, std::string_view keyword, std::string_view text) const {
    if (lint) {
        lint->Note(kind, line, keyword, text);
    }
}

bool ZANPPD::GetFileSpec(FSRef& reference) const {
    if (!file) {
        return false;
    }
    reference = *file;
    return true;
}

bool ZANPPD::GetPPDFileName(char* name) const {
    name[0] = '\0';
    if (!file) {
        return false;
    }
    const std::string& path = file->path;
    const std::size_t slash = path.rfind('/');
    const std::string_view last = std::string_view(path).substr(slash == std::string::npos ? 0 : slash + 1);
    name[last.copy(name, kLineCapacity - 1)] = '\0';
    return true;
}

bool ZANPPD::operator==(const ZANPPD& other) const {
    const auto text = [](const CString* value) {
        return std::string_view(value && *value ? value->Buffer() : "");
    };
    const auto path = [](const std::optional<FSRef>& reference) {
        return reference ? reference->path : std::string();
    };
    return path(file) == path(other.file) && text(PCFileName()) == text(other.PCFileName());
}

} // namespace torka
