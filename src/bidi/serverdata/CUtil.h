// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/memory/ModuleMemory.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

// Text helpers for server data: parts of line formats, and the keys and values of a management template.
//
// A template is XML text in fixed lines. These functions search it as text and do not parse it, so that a
// document with a fault elsewhere remains readable.
class CUtil {
public:
    using KeyValues = std::map<std::wstring, std::wstring>;

    // Replace every occurrence in one pass from the start. An empty `from` replaces nothing.
    static std::string __replace(std::string_view text, std::string_view from, std::string_view to);
    static std::wstring __replaceW(std::wstring_view text, std::wstring_view from, std::wstring_view to);
    // Free such an array and its texts, which are null or blocks of that memory, and set the array to null.
    static void deallocTwoDimenArray(const ModuleMemory& memory, wchar_t**& array, std::size_t rows);
    static void deallocateArrayOfStrings(const ModuleMemory& memory, wchar_t**& array, std::size_t count);

    // The text between the first opening tag and the closing tag that follows it. False when either is
    // missing.
    static bool GetNodeDataFromXMLData(std::wstring_view xml, std::wstring_view openTag,
                                       std::wstring_view closeTag, std::wstring& out);
    // The text after `attributePrefix`, such as `key="`, up to the next quote. False without both.
    static bool GetKeyFromXMLData(std::wstring_view line, std::wstring_view attributePrefix,
                                  std::wstring& out);
    static bool GetValueFromXMLData(std::wstring_view line, std::wstring_view attributePrefix,
                                    std::wstring& out);
    // Reads the line at `position` and moves `position` behind the line's end. False at the end of the text.
    static bool GetNextLineFromXMLData(std::size_t& position, std::wstring_view xml, std::wstring& out);

    // Read the template's "<ZANPPD" lines: key and default of its controls; key and value of the settings
    // that it locks; key and value of those that it shows or hides. The first value of a key wins. Each
    // function writes its findings to the standard error stream. False when the template lacks the section.
    static bool GetControlKeyValFromDMTXmlData(std::wstring_view xml, KeyValues& map);
    static bool GetLockedKeyValFromDMTXmlData(std::wstring_view xml, KeyValues& map);
    static bool GetHiddenKeyValFromDMTXmlData(std::wstring_view xml, KeyValues& map);

    // Given interface; no caller here
    // Returns UTF-8.
    static std::string narrow(std::wstring_view wide);
    static std::string GenerateRandomID();
    // The first piece between separators that contains the key.
    static std::optional<std::wstring> findLineWithKey(std::wstring_view key, std::wstring_view text,
                                                       std::wstring_view separators);
    // The pieces between runs of separators. No piece is empty.
    static std::vector<std::wstring> tockenizeWstring(std::wstring_view text, std::wstring_view separators);
    // Allocates an array of `rows` empty texts for the module. Each text is a block with room for `length`
    // characters. False, with a null array, when memory runs out.
    static bool AllocMemory(const ModuleMemory& memory, wchar_t**& array, std::size_t rows,
                            std::size_t length);
    // Reads a file of UTF-8 text. Empty when it cannot be read or has more than 16 MiB.
    static std::wstring readFileWithWcharContent(const std::string& path);
    // The decimal value behind leading white space, 0 for none, clamped to the range of int.
    static int wtoi(std::wstring_view text);
};

} // namespace torka
