// SPDX-License-Identifier: Apache-2.0
#include "bidi/serverdata/ServerDataXml.h"

#include "bidi/text/StandardStreams.h"
#include "platform/TextEncoding.h"

#include <unordered_map>
#include <vector>

namespace torka {

namespace {

constexpr std::wstring_view xmlLine = L"<?xml version=\"1.0\" encoding=\"UTF8\"?>\n";
constexpr std::wstring_view optionsEnd = L"\n  </InstallableOptions>\n </Device> \n</SMDData>";

std::wstring headText(const ServerDataHead& head) {
    std::wstring text(xmlLine);
    const std::wstring place = L"<SMDData>\n <Configuration locale=\"" + xmlEscaped(head.language) +
                               L"\" encoding=\"UTF8\" ppdLocation0=\"" + xmlEscaped(head.ppdPath) + L"\" ";
    if (head.server) {
        text += L" " + place + L"server=\"" + xmlEscaped(*head.server) +
                L"\" ControlScope=\"Driver\" username=\"admin\" /> \n";
    } else {
        text += place + L"ControlScope=\"Driver\"  /> \n";
    }
    return text + L" <Device deviceName=\"\" deviceID=\"0\"> \n  <InstallableOptions>";
}

std::wstring optionText(const KeyValueView& option) {
    return L"\n   <InstalledOptions key=\"" + xmlEscaped(option.first) + L"\" value=\"" +
           xmlEscaped(option.second) + L"\"/>";
}

// Finds entries by their keys. Builds its index at the first call, because most lists hold indexes only.
class KeyPlaces {
public:
    explicit KeyPlaces(const SharedMemoryList& exchangeRecord)
        : record(&exchangeRecord) {}
    std::optional<std::size_t> Find(std::string_view key) {
        if (places.empty()) {
            for (std::size_t i = 0; i < entryCount(*record); ++i) {
                places.emplace(entryKey(*record, i), i); // keeps the first entry of a key
            }
        }
        const auto place = places.find(key);
        return place == places.end() ? std::nullopt : std::optional(place->second);
    }

private:
    const SharedMemoryList* record;
    std::unordered_map<std::string_view, std::size_t> places;
};

} // namespace

std::wstring xmlEscaped(std::wstring_view text) {
    std::wstring escaped;
    escaped.reserve(text.size());
    for (const wchar_t unit : text) {
        switch (unit) {
        case L'&':
            escaped += L"&amp;";
            break;
        case L'<':
            escaped += L"&lt;";
            break;
        case L'>':
            escaped += L"&gt;";
            break;
        case L'"':
            escaped += L"&quot;";
            break;
        case L'\'':
            escaped += L"&apos;";
            break;
        case L'\t':
        case L'\n':
        case L'\r': // an XML parser turns unescaped ones into blanks
            escaped += L"&#" + std::to_wstring(static_cast<int>(unit)) + L";";
            break;
        default:
            const bool isAllowed =
                unit >= L' ' && unit != L'\xFFFE' && unit != L'\xFFFF' && isProperWideText({&unit, 1});
            escaped += isAllowed ? unit : L'\xFFFD';
        }
    }
    return escaped;
}

std::wstring serverDataXml(const ServerDataHead& head, std::span<const KeyValueView> options,
                           std::size_t maximumUnits) {
    std::wstring text = headText(head);
    if (text.size() + optionsEnd.size() > maximumUnits) {
        return {};
    }
    for (std::size_t i = 0; i < options.size(); ++i) {
        const std::wstring option = optionText(options[i]);
        if (text.size() + option.size() + optionsEnd.size() > maximumUnits) {
            standardStreams().Error("Server data: no room for " + std::to_string(options.size() - i) +
                                    " of " + std::to_string(options.size()) + " installed options\n");
            break;
        }
        text += option;
    }
    text += optionsEnd;
    return text;
}

std::wstring withDescriptionPath(std::wstring_view xml, std::wstring_view ppdPath) {
    constexpr std::wstring_view empty = L" ppdLocation0=\"\"";
    std::wstring filled(xml);
    const std::size_t element = xml.find(L"<Configuration");
    const std::size_t at = xml.find(empty, std::min(element, xml.size()));
    const std::size_t end = xml.find(L'>', std::min(element, xml.size()));
    if (end != std::wstring_view::npos && at < end) {
        filled.insert(at + empty.size() - 1, xmlEscaped(ppdPath));
    }
    return filled;
}

std::vector<std::size_t> installedOptions(const SharedMemoryList& record) {
    std::vector<std::size_t> entries;
    KeyPlaces places(record);
    std::string_view rest = fieldText(record.installableOptions);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(','), rest.size());
        const std::string_view item = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (item.empty()) {
            continue;
        }
        const std::optional<std::int32_t> number = wholeNumber(std::wstring(item.begin(), item.end()));
        const bool isPlace = number && *number >= 0 && static_cast<std::size_t>(*number) < entryCount(record);
        const std::optional<std::size_t> entry =
            isPlace ? static_cast<std::size_t>(*number) : places.Find(item);
        if (entry) {
            entries.push_back(*entry);
        }
    }
    return entries;
}

SDMRESULT serverDataNonBidi(const SharedMemoryList& record, std::string_view language,
                            const ModuleMemory& memory, wchar_t*& out) {
    out = nullptr;
    std::vector<std::pair<std::wstring, std::wstring>> texts;
    for (const std::size_t entry : installedOptions(record)) {
        texts.emplace_back(wideFromUtf8(entryKey(record, entry)), wideFromUtf8(entryValue(record, entry)));
    }
    constexpr std::size_t units = serverDataBlock / sizeof(wchar_t);
    const std::vector<KeyValueView> options(texts.begin(), texts.end());
    const std::wstring xml =
        serverDataXml({wideFromUtf8(language), wideFromUtf8(fieldText(record.ppdCopyPath)), std::nullopt},
                      options, units - 1);
    out = xml.empty() ? nullptr : memory.NewText(xml, units);
    return out ? SDM_SUCCESS : SDM_NOT_AVAILABLE;
}

} // namespace torka
