#pragma once

#include "bidi/memory/ModuleMemory.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

// Text helpers of the server data: pieces of line formats, and what a management template says of keys.
//
// A template is XML text in fixed lines, searched as text and never parsed: a document that is broken
// elsewhere still says what it says here.
class CUtil {
public:
    using KeyValues = std::map<std::wstring, std::wstring>;

    // Every occurrence replaced, in one pass from the start; an empty `from` replaces nothing.
    static std::string __replace(std::string_view text, std::string_view from, std::string_view to);
    static std::wstring __replaceW(std::wstring_view text, std::wstring_view from, std::wstring_view to);
    // UTF-8.
    static std::string narrow(std::wstring_view wide);
    static std::string GenerateRandomID();
    // The first piece between separators that contains the key.
    static std::optional<std::wstring> findLineWithKey(std::wstring_view key, std::wstring_view text,
                                                       std::wstring_view separators);
    // The pieces between runs of separators; none is empty.
    static std::vector<std::wstring> tockenizeWstring(std::wstring_view text, std::wstring_view separators);
    // An array of `rows` texts, each an empty one in a block with room for `length` characters, for the
    // module. False, with null, when there is no memory.
    static bool AllocMemory(const ModuleMemory& memory, wchar_t**& array, std::size_t rows,
                            std::size_t length);
    // Free such an array with its texts, which are null or blocks of that memory; it is null afterwards.
    static void deallocTwoDimenArray(const ModuleMemory& memory, wchar_t**& array, std::size_t rows);
    static void deallocateArrayOfStrings(const ModuleMemory& memory, wchar_t**& array, std::size_t count);
    // A whole file of UTF-8 text; empty when it cannot be read or has more than 16 MiB.
    static std::wstring readFileWithWcharContent(const std::string& path);
    // Decimal value after leading white space, 0 for none, held to the range of int.
    static int wtoi(std::wstring_view text);

    // The text between the first opening tag and the closing tag that follows it. False when either is
    // missing.
    static bool GetNodeDataFromXMLData(std::wstring_view xml, std::wstring_view openTag,
                                       std::wstring_view closeTag, std::wstring& out);
    // The text after `attributePrefix`, such as `key="`, up to the next quote. False without both.
    static bool GetKeyFromXMLData(std::wstring_view line, std::wstring_view attributePrefix,
                                  std::wstring& out);
    static bool GetValueFromXMLData(std::wstring_view line, std::wstring_view attributePrefix,
                                    std::wstring& out);
    // The line that begins at `position`, which then stands behind its end. False at the end of the text.
    static bool GetNextLineFromXMLData(std::size_t& position, std::wstring_view xml, std::wstring& out);

    // What the template's "<ZANPPD" lines say: key and default of its controls; key and value of what it
    // locks and of what it shows or hides. The first value of a key wins. Each writes what it finds to the
    // standard error stream. False when the template lacks the section.
    static bool GetControlKeyValFromDMTXmlData(std::wstring_view xml, KeyValues& map);
    static bool GetLockedKeyValFromDMTXmlData(std::wstring_view xml, KeyValues& map);
    static bool GetHiddenKeyValFromDMTXmlData(std::wstring_view xml, KeyValues& map);
};

} // namespace torka
