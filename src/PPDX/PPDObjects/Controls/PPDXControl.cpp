// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXControl.h"

#include "PPDX/KVEngine/UIConstraints.h"
#include "PPDX/PPDObjects/NumberText.h"
#include "PPDX/PPDObjects/StoredRecord.h"
#include "PPDX/Utilities/MemoryShortage.h"
#include "PPDX/Utilities/PostScriptText.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

namespace torka {

namespace {

// Settings of the system and of local properties; they are not offered as controls. Sorted.
constexpr std::array<std::string_view, 30> invalidKeywords = {
    "*QVHueKeeper",
    "*QV_LOCAL_PROP_BACKPAGEMEDIA",
    "*QV_LOCAL_PROP_BACKPAGESOURCE",
    "*QV_LOCAL_PROP_FIRSTPAGEMEDIA",
    "*QV_LOCAL_PROP_FIRSTPAGESOURCE",
    "*QV_PROP_COLORMODE",
    "*QV_PROP_HK_COLOR_SMART",
    "*QV_PROP_HK_CRD",
    "*QV_PROP_HK_CRD_GRAPHICS",
    "*QV_PROP_HK_CRD_GRAPHICS_HT",
    "*QV_PROP_HK_CRD_IMAGES",
    "*QV_PROP_HK_CRD_IMAGES_HT",
    "*QV_PROP_HK_CRD_TEXT",
    "*QV_PROP_HK_CRD_TEXT_HT",
    "*QV_PROP_HK_GAMMA",
    "*QV_PROP_HK_OUTPUT_PROFILE",
    "*QV_PROP_HK_OVER_PRINT",
    "*QV_PROP_HK_PHOSPHORS",
    "*QV_PROP_HK_PURE_BLACK",
    "*QV_PROP_HK_RGB_SEPARATION",
    "*QV_PROP_HK_SIMULATION",
    "*QV_PROP_HK_SIM_SPEED",
    "*QV_PROP_HK_SOURCE_PROFILES",
    "*QV_PROP_HK_SPOTCOLORS",
    "*QV_PROP_HK_WHITEPOINT",
    "*QV_PROP_LOCAL_QVLANDSCAPE",
    "*QV_PROP_WATERMARK",
    "*QV_PROP_WATERMARK_FIRSTPAGEONLY",
    "*QV_PROP_WATERMARK_FOREGROUND",
    "*QV_PROP_WATERMARK_OUTLINE",
};
static_assert(std::ranges::is_sorted(invalidKeywords));

constexpr std::size_t largestInjection = 64U << 20;

// Fields of the document server, which reads their values only as literal strings.
bool isNeverHex(std::string_view keyword) {
    return keyword == "*QVDSFileName" || keyword == "*QVDSPassword" || keyword == "*QVDSUserName";
}

std::size_t countOf(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string_view::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

// Replaces every occurrence of `part`, searched from left to right in the original text. Returns false when
// the result would be too long.
bool replaceAll(std::string_view text, std::string_view part, std::string_view with, std::string& out) {
    const std::size_t count = countOf(text, part);
    const std::size_t kept = text.size() - count * part.size();
    if (kept > largestInjection || (count > 0 && with.size() > (largestInjection - kept) / count)) {
        return false;
    }
    std::string result;
    result.reserve(kept + count * with.size());
    std::size_t from = 0;
    for (auto at = text.find(part); at != std::string_view::npos; at = text.find(part, from)) {
        result += text.substr(from, at - from);
        result += with;
        from = at + part.size();
    }
    result += text.substr(from);
    out = std::move(result);
    return true;
}

std::string withDoubledBackslashes(std::string_view value) {
    std::string doubled;
    doubled.reserve(value.size());
    for (const char c : value) {
        doubled.append(c == '\\' ? 2 : 1, c);
    }
    return doubled;
}

// Returns the text as a template's place holds it. It can leave neither its string nor its comment. In code
// it is one token.
std::string textAt(PostScriptScanner::Place place, std::string_view text) {
    const bool isToken = std::ranges::all_of(text, isRegularCharacter);
    switch (place) {
    case PostScriptScanner::Place::string:
        return asStringBody(text);
    case PostScriptScanner::Place::comment:
        return withoutLineBreaks(text);
    case PostScriptScanner::Place::code:
        return isToken ? std::string(text) : "(" + asStringBody(text) + ")";
    case PostScriptScanner::Place::hexString:
    case PostScriptScanner::Place::base85String:
        break;
    }
    std::string digits;
    appendHex(text, digits);
    return isToken ? std::string(text) : digits;
}

// Does the same as replaceAll with a text that a person typed, written as its place needs it.
bool replaceTyped(std::string_view psTemplate, std::string_view part, std::string_view text,
                  std::string& out) {
    // The longest form of one byte is an octal escape of four characters; the parentheses add two.
    const std::size_t count = countOf(psTemplate, part);
    if (psTemplate.size() > largestInjection ||
        (count > 0 && text.size() * 4 + 2 > (largestInjection - psTemplate.size()) / count)) {
        return false;
    }
    PostScriptScanner scanner;
    std::size_t from = 0;
    for (auto at = psTemplate.find(part); at != std::string_view::npos; at = psTemplate.find(part, from)) {
        const std::string_view before = psTemplate.substr(from, at - from);
        scanner.Read(before);
        out += before;
        out += textAt(scanner.Where(), text);
        from = at + part.size();
    }
    out += psTemplate.substr(from);
    return true;
}

unsigned char* put(unsigned char* out, std::string_view bytes) {
    return std::copy(bytes.begin(), bytes.end(), out);
}

} // namespace

std::string_view bytesView(const unsigned char* bytes, long length) {
    return bytes && length > 0
               ? std::string_view(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length))
               : std::string_view();
}

const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

PPDXControl::PPDXControl(CNTL_TYPE controlType, const ControlDefinition& definition)
    : PPDXElement(definition.keyword, definition.localName, definition.visible)
    , type(controlType)
    , psData(definition.psData)
    , psLength(definition.psData ? definition.psLength : 0)
    , constraints(definition.constraints) {
    SetFlags(definition.flags);
}

PPDXControl::PPDXControl(CNTL_TYPE controlType, Settings& settings, int index, const CString* prefix)
    : PPDXElement(settings, index, prefix)
    , type(controlType)
    , psData(nullptr)
    , psLength(0)
    , constraints(nullptr) {
    const StoredRecord record(settings, prefix && prefix->Buffer() ? prefix->Buffer() : "Control", index);
    if (const auto bytes = record.Text("ps")) {
        psData = KeepBytes(*bytes);
        psLength = static_cast<long>(bytes->size());
    }
    const std::string words = record.Text("flags").value_or("");
    std::vector<std::string_view> list;
    for (std::size_t from = 0; from < words.size();) {
        const std::size_t end = std::min(words.find('|', from), words.size());
        list.push_back(std::string_view(words).substr(from, end - from));
        from = end + 1;
    }
    SetFlags(list);
}

PPDXControl::~PPDXControl() = default;

void PPDXControl::SetFlags(std::span<const std::string_view> words) {
    std::size_t size = 0;
    for (const std::string_view word : words) {
        size += word.size() + 1;
    }
    if (size == 0) {
        return;
    }
    flagTexts = std::make_unique<char[]>(size);
    char* at = flagTexts.get();
    for (const std::string_view word : words) {
        flags.PushBack(at);
        at = std::copy(word.begin(), word.end(), at) + 1; // the block is zeroed
    }
}

bool PPDXControl::OkayToDisplay(const _DISPLAY_OPTIONS_& options) const {
    return PPDXElement::OkayToDisplay(options);
}

void PPDXControl::Save(Settings& settings, const int& index) const {
    SaveElement(settings, index, "Control");
    StoredRecord record(settings, "Control", index);
    record.SetInteger("type", static_cast<std::int32_t>(type));
    if (psLength > 0) {
        record.SetText("ps", bytesView(psData, psLength));
    }
    if (!flags.Empty()) {
        std::string words;
        for (const void* flag : flags) {
            words += words.empty() ? "" : "|";
            words += static_cast<const char*>(flag);
        }
        record.SetText("flags", std::string_view(words));
    }
}

void PPDXControl::ResetToDefaultValue() {}

long PPDXControl::PostScript(unsigned char* out) const {
    if (psLength <= 0) {
        return 0;
    }
    if (out) {
        std::copy_n(psData, psLength, out);
    }
    return psLength;
}

void PPDXControl::Restore(Settings&, int) {}

CFStringRef PPDXControl::CopyCurrentControlValueString() const { return nullptr; }

// Overrides keep the text.
void PPDXControl::SetCurrentControlWithCFString(CFStringRef) {} // NOLINT(performance-unnecessary-value-param)

CFStringRef PPDXControl::CopyPresetValueString() const { return CopyCurrentControlValueString(); }

void PPDXControl::SetPresetValueString(CFStringRef text) { SetCurrentControlWithCFString(std::move(text)); }

bool PPDXControl::IsInstallableOption() const { return false; }

std::string PPDXControl::DefaultText() const { return utf8Text(CopyCurrentControlValueString()); }

bool PPDXControl::ValidKeyword(const char* keyword) {
    return keyword && !std::ranges::binary_search(invalidKeywords, std::string_view(keyword));
}

const char* PPDXControl::FirstString(const PointerList& strings, ConstPointerListItr& cursor) {
    cursor = strings.Begin();
    return NextString(strings, cursor);
}

const char* PPDXControl::NextString(const PointerList& strings, ConstPointerListItr& cursor) {
    if (cursor == ConstPointerListItr() || cursor == strings.End()) {
        return nullptr;
    }
    const char* text = static_cast<const char*>(*cursor);
    ++cursor;
    return text;
}

const char* PPDXControl::FirstControlFlag() { return FirstString(flags, flagCursor); }

const char* PPDXControl::NextControlFlag() { return NextString(flags, flagCursor); }

bool PPDXControl::FindControlFlag(const char* name) const {
    return name && std::ranges::any_of(flags, [name](const void* flag) {
               return std::strcmp(static_cast<const char*>(flag), name) == 0;
           });
}

// A job note's value is any text that a user typed. It becomes a PostScript hex string: no character in it
// can end the string or act as an operator. Parentheses of the template around it are removed. Where the
// value stays readable (a field of the document server, a template that is a comment), its place decides what
// must be escaped; no line break leaves a template that begins with "%%". All texts are bytes here. Reading
// and writing them as Mac Roman preserves every byte, so texts in other encodings are unharmed.
long PPDXControl::Inject(const char* name, const unsigned char* psTemplate, long templateLength,
                         const char* value, std::string& out) const try {
    out.clear();
    const std::string_view text = bytesView(psTemplate, templateLength);
    const std::string_view given = value ? value : "";
    const bool isComment = text.starts_with("%%");
    const bool asHex =
        type == CNTL_TYPE::jobNote && !given.empty() && !isComment && !isNeverHex(Keyword() ? Keyword() : "");
    if (given.size() > largestInjection) {
        return 0;
    }
    const std::string placeholder = "<" + std::string(name ? name : "") + ">";
    bool isWhole = false;
    if (asHex) {
        std::string hex = "<";
        appendHex(given, hex);
        hex += ">";
        isWhole = replaceAll(text, placeholder, hex, out) && replaceAll(out, "(" + hex + ")", hex, out);
    } else {
        const std::string prepared = isComment ? withoutLineBreaks(given) : withDoubledBackslashes(given);
        isWhole = type == CNTL_TYPE::jobNote ? replaceTyped(text, placeholder, prepared, out)
                                             : replaceAll(text, placeholder, prepared, out);
    }
    if (!isWhole) {
        out.clear();
        return 0;
    }
    return static_cast<long>(out.size());
} catch (const std::bad_alloc&) {
    ++gMemoryShortages;
    out.clear();
    return 0;
}

long PPDXControl::GeneratePSOutputData(unsigned char* out, const unsigned char* ps, long length,
                                       std::string_view option, bool wrap) const {
    constexpr std::string_view begin = "%%BeginFeature: ";
    constexpr std::string_view end = "%%EndFeature\n";
    const std::string_view body = ps && length > 0 ? bytesView(ps, length) : std::string_view("\n");
    if (!wrap) {
        if (out) {
            put(out, body);
        }
        return static_cast<long>(body.size());
    }
    const std::string_view name(Keyword() ? Keyword() : "", KeywordLength());
    if (out) {
        out = put(put(out, begin), name);
        *out++ = ' ';
        // A line break in the option would end the comment. The blanks take its place without a copy, because
        // every option of a job passes here.
        unsigned char* const written = out;
        out = put(out, option);
        std::replace_if(
            written, out, [](unsigned char c) { return endsComment(static_cast<char>(c)); }, ' ');
        *out++ = '\n';
        put(put(out, body), end);
    }
    return static_cast<long>(begin.size() + name.size() + 1 + option.size() + 1 + body.size() + end.size());
}

void PPDXControl::UpdateKVCache(const char* key, const char* value) const {
    if (constraints && key && value) {
        constraints->UpdateKVCache(key, value);
    }
}

void PPDXControl::UpdateKVCache(std::int64_t key, std::int64_t value) const {
    if (constraints) {
        constraints->UpdateKVCache(key, value);
    }
}

void PPDXControl::SetConstraints(UIConstraints* store) {
    constraints = store;
    ReportValue();
}

void PPDXControl::ReportValue() const {}

const unsigned char* PPDXControl::KeepBytes(std::string_view bytes) {
    keptBytes.push_back(std::make_unique<unsigned char[]>(bytes.size() + 1));
    put(keptBytes.back().get(), bytes);
    return keptBytes.back().get();
}

bool IsSpoolerControl(const PPDXControl* control) { return control && control->IsSpooler(); }

bool IsNoTorkaDriverUIControl(const PPDXControl* control) { return control && control->IsNoTorkaDriverUI(); }

bool IsSetupControl(const PPDXControl* control) { return control && control->IsSetup(); }

} // namespace torka
