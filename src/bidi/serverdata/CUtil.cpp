// SPDX-License-Identifier: Apache-2.0
#include "bidi/serverdata/CUtil.h"

#include "PPDX/Utilities/given/StringFunctions.h"
#include "bidi/text/StandardStreams.h"
#include "platform/System.h"
#include "platform/TextEncoding.h"

#include <algorithm>

namespace torka {

namespace {

constexpr std::size_t fileLimit = std::size_t{16} * 1024 * 1024;

template <typename Text, typename View>
Text replaceAll(View text, View from, View to) {
    Text result;
    for (;;) {
        const std::size_t found = from.empty() ? View::npos : text.find(from);
        result += text.substr(0, found);
        if (found == View::npos) {
            return result;
        }
        result += to;
        text.remove_prefix(found + from.size());
    }
}

// One section of a template, and its names in diagnostics ("Control", "Locked", "Hidden").
struct TemplateSection {
    std::wstring_view openTag;
    std::wstring_view closeTag;
    std::wstring_view valuePrefix;
    const char* name;
    const char* lineName;
};

void tell(const std::string& label, std::wstring_view text) {
    standardStreams().Error("DMT " + label + " =" + utf8FromWide(text) + "\n");
}

bool readSection(std::wstring_view xml, const TemplateSection& section, CUtil::KeyValues& map) {
    std::wstring data;
    if (!CUtil::GetNodeDataFromXMLData(xml, section.openTag, section.closeTag, data)) {
        return false;
    }
    tell(std::string(section.name) + " data", data);
    std::size_t position = 0;
    std::size_t count = 0;
    std::wstring line;
    while (CUtil::GetNextLineFromXMLData(position, data, line)) {
        tell(std::string(section.lineName) + " data", line);
        std::wstring key;
        std::wstring value;
        if (line.find(L"<ZANPPD") == std::wstring::npos || !CUtil::GetKeyFromXMLData(line, L"key=\"", key) ||
            !CUtil::GetValueFromXMLData(line, section.valuePrefix, value)) {
            continue;
        }
        tell(std::string(section.name) + " Key" + std::to_string(count), key);
        tell(std::string(section.name) + " Value" + std::to_string(count), value);
        ++count;
        map.emplace(std::move(key), std::move(value));
    }
    return true;
}

bool readAttribute(std::wstring_view line, std::wstring_view prefix, std::wstring& out) {
    const std::size_t found = line.find(prefix);
    if (found == std::wstring_view::npos) {
        return false;
    }
    const std::size_t begin = found + prefix.size();
    const std::size_t end = line.find(L'"', begin);
    if (end == std::wstring_view::npos) {
        return false;
    }
    out = line.substr(begin, end - begin);
    return true;
}

} // namespace

std::string CUtil::__replace(std::string_view text, std::string_view from, std::string_view to) {
    return replaceAll<std::string>(text, from, to);
}

std::wstring CUtil::__replaceW(std::wstring_view text, std::wstring_view from, std::wstring_view to) {
    return replaceAll<std::wstring>(text, from, to);
}

std::string CUtil::narrow(std::wstring_view wide) { return utf8FromWide(wide); }

std::string CUtil::GenerateRandomID() { return platform::system().CreateUuidString(); }

std::optional<std::wstring> CUtil::findLineWithKey(std::wstring_view key, std::wstring_view text,
                                                   std::wstring_view separators) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(separators), text.size());
        const std::wstring_view piece = text.substr(0, end);
        if (!piece.empty() && piece.find(key) != std::wstring_view::npos) {
            return std::wstring(piece);
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return std::nullopt;
}

std::vector<std::wstring> CUtil::tockenizeWstring(std::wstring_view text, std::wstring_view separators) {
    std::vector<std::wstring> pieces;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(separators), text.size());
        if (end > 0) {
            pieces.emplace_back(text.substr(0, end));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return pieces;
}

bool CUtil::AllocMemory(const ModuleMemory& memory, wchar_t**& array, std::size_t rows, std::size_t length) {
    array = memory.NewArray<wchar_t*>(rows);
    for (std::size_t i = 0; array && i < rows; ++i) {
        array[i] = memory.NewText({}, length + 1);
        if (!array[i]) {
            deallocTwoDimenArray(memory, array, rows);
        }
    }
    return array != nullptr;
}

void CUtil::deallocTwoDimenArray(const ModuleMemory& memory, wchar_t**& array, std::size_t rows) {
    memory.FreeNames(array, rows);
    array = nullptr;
}

void CUtil::deallocateArrayOfStrings(const ModuleMemory& memory, wchar_t**& array, std::size_t count) {
    deallocTwoDimenArray(memory, array, count);
}

std::wstring CUtil::readFileWithWcharContent(const std::string& path) {
    std::string content;
    if (platform::system().ReadFile(path, fileLimit, content)) {
        return {};
    }
    return wideFromUtf8(content);
}

int CUtil::wtoi(std::wstring_view text) { return torka::wtoi(std::wstring(text).c_str()); }

bool CUtil::GetNodeDataFromXMLData(std::wstring_view xml, std::wstring_view openTag,
                                   std::wstring_view closeTag, std::wstring& out) {
    const std::size_t open = xml.find(openTag);
    if (open == std::wstring_view::npos) {
        return false;
    }
    const std::size_t begin = open + openTag.size();
    const std::size_t end = xml.find(closeTag, begin);
    if (end == std::wstring_view::npos) {
        return false;
    }
    out = xml.substr(begin, end - begin);
    return true;
}

bool CUtil::GetKeyFromXMLData(std::wstring_view line, std::wstring_view attributePrefix, std::wstring& out) {
    return readAttribute(line, attributePrefix, out);
}

bool CUtil::GetValueFromXMLData(std::wstring_view line, std::wstring_view attributePrefix,
                                std::wstring& out) {
    return readAttribute(line, attributePrefix, out);
}

bool CUtil::GetNextLineFromXMLData(std::size_t& position, std::wstring_view xml, std::wstring& out) {
    if (position >= xml.size()) {
        return false;
    }
    const std::size_t end = std::min(xml.find(L'\n', position), xml.size());
    out = xml.substr(position, end - position);
    position = end + 1;
    return true;
}

bool CUtil::GetControlKeyValFromDMTXmlData(std::wstring_view xml, KeyValues& map) {
    return readSection(xml, {L"<Controls>", L"</Controls>", L"default=\"", "Control", "Line"}, map);
}

bool CUtil::GetLockedKeyValFromDMTXmlData(std::wstring_view xml, KeyValues& map) {
    return readSection(xml, {L"<Lock>", L"</Lock>", L"value=\"", "Locked", "Locked Line"}, map);
}

bool CUtil::GetHiddenKeyValFromDMTXmlData(std::wstring_view xml, KeyValues& map) {
    return readSection(xml, {L"<Show>", L"</Show>", L"value=\"", "Hidden", "Hidden Line"}, map);
}

} // namespace torka
