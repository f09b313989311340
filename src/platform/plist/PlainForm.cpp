// SPDX-License-Identifier: Apache-2.0
#include "platform/plist/PlainForm.h"

#include "platform/TextEncoding.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>

namespace torka::platform {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// The characters of XML 1.0.
bool isXmlCharacter(char32_t point) {
    return point == U'\t' || point == U'\n' || point == U'\r' || (point >= 0x20 && point < 0xD800) ||
           (point >= 0xE000 && point < 0xFFFE) || (point >= 0x10000 && point <= 0x10FFFF);
}

bool isXmlText(std::u16string_view units) {
    for (std::size_t i = 0; i < units.size();) {
        if (!isXmlCharacter(nextCodePoint(units, i))) {
            return false;
        }
    }
    return true;
}

struct Tag {
    std::string_view name;
    bool closing = false; // "</name>"
    bool empty = false;   // "<name/>"
};

// A recursive-descent reader. Each function returns false once `error` is set.
class Reader {
public:
    Reader(std::string_view xml, std::string& output, std::string& problem)
        : text(xml)
        , plain(output)
        , error(problem) {}

    bool ReadDocument();

private:
    bool Fail(std::string_view what);
    bool At(std::string_view token) const { return text.substr(position).starts_with(token); }
    bool SkipPast(std::string_view token);
    bool SkipBetween();
    bool ReadProlog();
    bool ReadDeclaration();
    bool ReadTag(Tag& tag, bool withAttributes = false);
    bool ReadValue(const Tag& tag, int depth);
    bool ReadContainer(const Tag& tag, int depth);
    bool ReadLeaf(const Tag& tag);
    bool ReadContent(const Tag& tag, std::string& content);
    bool ReadReference(std::string& content);
    bool ReadCharacters(std::string& content);

    bool WriteText(std::string_view name, std::string_view content);
    bool WriteInteger(std::string_view content);
    bool WriteReal(std::string_view content);
    bool WriteData(std::string_view content);
    bool WriteElement(std::string_view name, std::string_view content);

    std::string_view text;
    std::size_t position = 0;
    std::size_t values = 0;
    std::string& plain;
    std::string& error;
};

bool Reader::Fail(std::string_view what) {
    const auto line =
        1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(position), '\n');
    error = "line " + std::to_string(line) + ": " + std::string(what);
    return false;
}

bool Reader::SkipPast(std::string_view token) {
    const std::size_t found = text.find(token, position);
    if (found == std::string_view::npos) {
        return Fail("\"" + std::string(token) + "\" is missing");
    }
    position = found + token.size();
    return true;
}

// Skips blanks, comments and processing instructions.
bool Reader::SkipBetween() {
    while (position < text.size()) {
        if (isBlank(text[position])) {
            ++position;
        } else if (At("<!--")) {
            position += 4;
            if (!SkipPast("-->")) {
                return false;
            }
        } else if (At("<?")) {
            if (!SkipPast("?>")) {
                return false;
            }
        } else {
            break;
        }
    }
    return true;
}

bool Reader::ReadDeclaration() {
    const std::size_t start = position;
    if (!SkipPast("?>")) {
        return false;
    }
    std::string declaration(text.substr(start, position - start));
    std::transform(declaration.begin(), declaration.end(), declaration.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    const bool told = declaration.find("encoding") != std::string::npos;
    if (told && declaration.find("utf-8") == std::string::npos &&
        declaration.find("utf8") == std::string::npos && declaration.find("us-ascii") == std::string::npos) {
        return Fail("the encoding is not UTF-8");
    }
    return true;
}

bool Reader::ReadProlog() {
    if (At("\xEF\xBB\xBF")) {
        position += 3;
    }
    if (At("<?xml") && !ReadDeclaration()) {
        return false;
    }
    if (!SkipBetween()) {
        return false;
    }
    if (At("<!DOCTYPE")) {
        // An internal subset could define entities.
        const std::size_t end = std::min(text.find('>', position), text.size());
        if (text.substr(position, end - position).find('[') != std::string_view::npos) {
            return Fail("a document type of its own is not read");
        }
        if (!SkipPast(">")) {
            return false;
        }
    }
    return true;
}

bool Reader::ReadTag(Tag& tag, bool withAttributes) {
    if (!SkipBetween()) {
        return false;
    }
    if (!At("<")) {
        return Fail(position < text.size() ? "text outside of a value" : "the list ends too early");
    }
    const std::size_t end = text.find('>', position);
    if (end == std::string_view::npos) {
        return Fail("a tag is not closed");
    }
    std::string_view inner = text.substr(position + 1, end - position - 1);
    tag.closing = inner.starts_with('/');
    tag.empty = !tag.closing && inner.ends_with('/');
    inner.remove_prefix(tag.closing ? 1 : 0);
    inner.remove_suffix(tag.empty ? 1 : 0);
    const auto nameEnd = std::find_if(inner.begin(), inner.end(), isBlank);
    tag.name = inner.substr(0, static_cast<std::size_t>(nameEnd - inner.begin()));
    if (!withAttributes && !trimmed(inner.substr(tag.name.size())).empty()) {
        return Fail("attributes are not read");
    }
    position = end + 1;
    return true;
}

bool Reader::ReadDocument() {
    Tag tag;
    if (!ReadProlog() || !ReadTag(tag, true)) {
        return false;
    }
    if (tag.name != "plist" || tag.closing || tag.empty) {
        return Fail("this is no property list");
    }
    plain = "<plist version=\"1.0\">";
    Tag end;
    if (!ReadTag(tag) || !ReadValue(tag, 1) || !ReadTag(end)) {
        return false;
    }
    if (end.name != "plist" || !end.closing) {
        return Fail("a property list holds one value");
    }
    plain += "</plist>";
    if (!SkipBetween()) {
        return false;
    }
    return position == text.size() || Fail("something follows the property list");
}

// Reads the value that `tag` begins.
bool Reader::ReadValue(const Tag& tag, int depth) {
    if (tag.closing) {
        return Fail("</" + std::string(tag.name) + "> is out of place");
    }
    if (++values > maximumPropertyListValues) {
        return Fail("more than " + std::to_string(maximumPropertyListValues) + " values");
    }
    return tag.name == "dict" || tag.name == "array" ? ReadContainer(tag, depth) : ReadLeaf(tag);
}

bool Reader::ReadContainer(const Tag& tag, int depth) {
    if (depth > maximumPropertyListDepth) {
        return Fail("values are nested too deep");
    }
    plain.append("<").append(tag.name).append(">");
    while (!tag.empty) {
        Tag inner;
        if (!ReadTag(inner)) {
            return false;
        }
        if (inner.closing && inner.name == tag.name) {
            break;
        }
        if (tag.name == "dict") {
            std::string key;
            if (inner.name != "key" || inner.closing) {
                return Fail("a key is missing");
            }
            if (!ReadContent(inner, key) || !WriteText("key", key) || !ReadTag(inner)) {
                return false;
            }
        }
        if (!ReadValue(inner, depth + 1)) {
            return false;
        }
    }
    plain.append("</").append(tag.name).append(">");
    return true;
}

bool Reader::ReadLeaf(const Tag& tag) {
    std::string content;
    if (tag.name == "date") {
        return Fail("dates are not read");
    }
    const bool isTruth = tag.name == "true" || tag.name == "false";
    if (!isTruth && tag.name != "string" && tag.name != "integer" && tag.name != "real" &&
        tag.name != "data") {
        return Fail("\"" + std::string(tag.name.substr(0, 40)) + "\" is no value");
    }
    if (!ReadContent(tag, content)) {
        return false;
    }
    if (tag.name == "string") {
        return WriteText("string", content);
    }
    if (tag.name == "integer") {
        return WriteInteger(trimmed(content));
    }
    if (tag.name == "real") {
        return WriteReal(trimmed(content));
    }
    if (tag.name == "data") {
        return WriteData(content);
    }
    if (!trimmed(content).empty()) {
        return Fail("a truth value holds text");
    }
    plain.append("<").append(tag.name).append("/>");
    return true;
}

// Reads the text between `tag` and its end tag. Resolves entities and CDATA sections; leaves out comments.
bool Reader::ReadContent(const Tag& tag, std::string& content) {
    while (!tag.empty) {
        if (position == text.size()) {
            return Fail("the list ends too early");
        }
        if (At("<![CDATA[")) {
            position += 9;
            const std::size_t start = position;
            if (!SkipPast("]]>")) {
                return false;
            }
            content.append(text.substr(start, position - 3 - start));
        } else if (At("<!--")) {
            position += 4;
            if (!SkipPast("-->")) {
                return false;
            }
        } else if (text[position] == '<') {
            Tag end;
            if (!ReadTag(end)) {
                return false;
            }
            if (end.closing && end.name == tag.name) {
                break;
            }
            return Fail("a value of text holds an element");
        } else if (text[position] == '&' ? !ReadReference(content) : !ReadCharacters(content)) {
            return false;
        }
    }
    return true;
}

// Reads literal characters. Normalises line ends as XML requires.
bool Reader::ReadCharacters(std::string& content) {
    const std::size_t end = std::min(text.find_first_of("<&", position), text.size());
    for (; position < end; ++position) {
        if (text[position] != '\r') {
            content += text[position];
        } else if (position + 1 == text.size() || text[position + 1] != '\n') {
            content += '\n';
        }
    }
    return true;
}

bool Reader::ReadReference(std::string& content) {
    const std::size_t end = text.substr(position, 16).find(';');
    if (end == std::string_view::npos) {
        return Fail("an entity is not closed");
    }
    std::string_view name = text.substr(position + 1, end - 1);
    if (name.starts_with('#')) {
        const bool hexadecimal = name.starts_with("#x");
        name.remove_prefix(hexadecimal ? 2 : 1);
        std::uint32_t point = 0;
        const auto result =
            std::from_chars(name.data(), name.data() + name.size(), point, hexadecimal ? 16 : 10);
        if (result.ec != std::errc() || result.ptr != name.data() + name.size() || !isXmlCharacter(point)) {
            return Fail("this is no character reference");
        }
        content += utf8FromWide(std::wstring(1, static_cast<wchar_t>(point)));
    } else {
        static constexpr std::pair<std::string_view, char> entities[] = {
            {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}};
        const auto* place = std::find_if(std::begin(entities), std::end(entities),
                                         [name](const auto& entity) { return entity.first == name; });
        if (place == std::end(entities)) {
            return Fail("an entity is not known");
        }
        content += place->second;
    }
    position += end + 1;
    return true;
}

bool Reader::WriteElement(std::string_view name, std::string_view content) {
    plain.append("<").append(name).append(">").append(content);
    plain.append("</").append(name).append(">");
    return true;
}

bool Reader::WriteText(std::string_view name, std::string_view content) {
    if (content.find_first_of("<&\r") == std::string_view::npos) {
        return WriteElement(name, content);
    }
    std::string section = "<![CDATA[";
    for (std::size_t i = 0; i < content.size(); ++i) {
        section += content[i];
        if (content.substr(i).starts_with("]]>")) {
            section += "]]><![CDATA["; // splits the section between the two brackets
        }
    }
    return WriteElement(name, section + "]]>");
}

bool Reader::WriteInteger(std::string_view content) {
    const bool negative = content.starts_with('-');
    content.remove_prefix(negative || content.starts_with('+') ? 1 : 0);
    const bool hexadecimal = content.starts_with("0x") || content.starts_with("0X");
    content.remove_prefix(hexadecimal ? 2 : 0);
    std::uint64_t magnitude = 0;
    const auto result =
        std::from_chars(content.data(), content.data() + content.size(), magnitude, hexadecimal ? 16 : 10);
    constexpr std::uint64_t limit = std::uint64_t{1} << 63;
    if (result.ec == std::errc::result_out_of_range || magnitude > (negative ? limit : limit - 1)) {
        return Fail("an integer is beyond 64 bits");
    }
    if (result.ec != std::errc() || result.ptr != content.data() + content.size()) {
        return Fail("this is no integer");
    }
    return WriteElement("integer", (negative ? "-" : "") + std::to_string(magnitude));
}

bool Reader::WriteReal(std::string_view content) {
    const bool positive = content.starts_with('+');
    const std::string_view number = content.substr(positive ? 1 : 0);
    double value = 0.0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    // Excludes "inf" and "nan", which from_chars would read.
    const bool isDecimal = number.find_first_not_of("+-.0123456789eE") == std::string_view::npos &&
                           !(positive && number.starts_with('-'));
    if (result.ec != std::errc() || result.ptr != number.data() + number.size() || !isDecimal) {
        return Fail("this is no real number");
    }
    return WriteElement("real", number);
}

bool Reader::WriteData(std::string_view content) {
    std::string base64;
    base64.reserve(content.size());
    std::copy_if(content.begin(), content.end(), std::back_inserter(base64),
                 [](char c) { return !isBlank(c); });
    const std::size_t end = std::min(base64.find_last_not_of('=') + 1, base64.size());
    const bool isAlphabet =
        std::all_of(base64.begin(), base64.begin() + static_cast<std::ptrdiff_t>(end), [](char c) {
            return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' ||
                   c == '/';
        });
    if (!isAlphabet || base64.size() % 4 != 0 || base64.size() - end > 2) {
        return Fail("this is no Base64");
    }
    return WriteElement("data", base64);
}

} // namespace

Result<std::string> makePlainForm(std::string_view xml) {
    if (xml.size() > maximumPropertyListBytes) {
        return Fault{"the property list is larger than " + std::to_string(maximumPropertyListBytes) +
                     " bytes"};
    }
    const auto units = decodeText(xml, kCFStringEncodingUTF8);
    if (!units || !isXmlText(*units)) {
        return Fault{"the property list is not XML text in UTF-8"};
    }
    std::string plain;
    std::string fault;
    if (!Reader(xml, plain, fault).ReadDocument()) {
        return Fault{fault};
    }
    return plain;
}

} // namespace torka::platform
