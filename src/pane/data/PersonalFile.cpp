// SPDX-License-Identifier: Apache-2.0
#include "pane/data/PersonalFile.h"

#include "platform/Log.h"
#include "platform/PropertyList.h"
#include "platform/System.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace torka {

namespace {

constexpr std::size_t maximumFileBytes = std::size_t{16} * 1024 * 1024;
constexpr unsigned fileMode = 0600;
constexpr std::size_t maximumFileName = 200; // bytes; file systems take 255

// Makes one file name of any printer name. A character that a file system may interpret becomes "%" and two
// hexadecimal digits. A long name is cut and ends in a hash of the whole name (FNV-1a, 64 bits).
std::string fileNameFor(const std::string& printerName) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string name;
    std::uint64_t mark = 0xCBF29CE484222325U;
    for (const char c : printerName) {
        const auto byte = static_cast<unsigned char>(c);
        mark = (mark ^ byte) * 0x100000001B3U;
        const bool plain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                           c == '_' || c == '-';
        if (plain) {
            name += c;
        } else {
            name += {'%', digits[byte >> 4], digits[byte & 15]};
        }
    }
    if (name.size() > maximumFileName) {
        name.resize(maximumFileName - 17);
        name += '-';
        for (int shift = 60; shift >= 0; shift -= 4) {
            name += digits[(mark >> shift) & 15];
        }
    }
    return name + ".plist";
}

} // namespace

std::filesystem::path personalFile(std::string_view kind, const CFStringRef& printerName) {
    return system().ConfigFolder() / "torka" / kind / fileNameFor(utf8Text(printerName));
}

CFDictionaryRef readPersonalFile(const std::filesystem::path& file, std::error_code* toldFailure) {
    std::string xml;
    const std::error_code failure = system().ReadFile(file, maximumFileBytes, xml);
    if (failure == std::errc::no_such_file_or_directory) {
        return nullptr;
    }
    if (toldFailure != nullptr) {
        *toldFailure = failure;
    }
    std::string reason = failure.message();
    CFDictionaryRef root;
    if (!failure) {
        root = cfCast<CFDictionary>(
            CFPropertyListCreateFromXMLData(CFDataCreate(xml.data(), xml.size()), &reason));
    }
    if (!root) {
        myNSLogC("The file %s cannot be used: %s", file.c_str(), reason.c_str());
    }
    return root;
}

namespace {

// A person may have edited the file by hand and mistyped: the text stays in a file beside it.
std::error_code keepDamaged(const std::filesystem::path& file) {
    std::string xml;
    const std::error_code unread = system().ReadFile(file, maximumFileBytes, xml);
    if (unread ||
        cfCast<CFDictionary>(CFPropertyListCreateFromXMLData(CFDataCreate(xml.data(), xml.size())))) {
        return {}; // absent, in order, or unreadable: callers that must not replace such a file read it first
    }
    const std::filesystem::path kept = file.string() + ".damaged";
    const std::error_code failure = system().WriteFile(kept, xml, fileMode);
    if (!failure) {
        myNSLogC("The damaged file is kept as %s", kept.c_str());
    }
    return failure;
}

} // namespace

std::error_code writePersonalFile(const std::filesystem::path& file, const CFDictionaryRef& content) {
    const CFDataRef xml = CFPropertyListCreateXMLData(content);
    std::error_code failure = std::make_error_code(std::errc::invalid_argument);
    if (xml) {
        const auto bytes = CFDataGetBytes(xml);
        failure = system().MakeFolder(file.parent_path());
        if (!failure) {
            failure = keepDamaged(file);
        }
        if (!failure) {
            failure = system().WriteFile(file, {reinterpret_cast<const char*>(bytes.data()), bytes.size()},
                                         fileMode);
        }
    }
    if (failure) {
        myNSLogC("The file %s could not be written: %s", file.c_str(), failure.message().c_str());
    }
    return failure;
}

std::optional<std::vector<std::string>> PersonalLists::Read(std::u16string_view list) const {
    const auto array = cfCast<CFArray>(CFDictionaryGetValue(readPersonalFile(file), list));
    if (!array) {
        return std::nullopt;
    }
    std::vector<std::string> rows;
    for (CFIndex i = 0; i < CFArrayGetCount(array); ++i) {
        if (const auto row = cfCast<CFString>(CFArrayGetValueAtIndex(array, i))) {
            rows.push_back(utf8Text(row));
        }
    }
    return rows;
}

bool PersonalLists::Write(std::u16string_view list, const std::vector<std::string>& rows) const {
    std::error_code failure;
    const CFDictionaryRef before = readPersonalFile(file, &failure);
    if (failure) {
        return false;
    }
    std::vector<CFDictionary::Pair> content;
    for (const std::u16string_view each : {quickAccess, watermarks}) {
        if (const CFTypeRef kept = CFDictionaryGetValue(before, each); kept && each != list) {
            content.emplace_back(CFStringCreateWithCharacters(each), kept);
        }
    }
    std::vector<CFTypeRef> values(rows.size());
    std::ranges::transform(rows, values.begin(), [](const std::string& row) { return cfString(row); });
    content.emplace_back(CFStringCreateWithCharacters(list), CFArrayCreate(std::move(values)));
    return !writePersonalFile(file, CFDictionaryCreate(content));
}

namespace {

constexpr std::u16string_view pictureKey = u"Picture";

std::filesystem::path paneFile() { return system().ConfigFolder() / "torka" / "pane.plist"; }

} // namespace

bool personWantsPicture() {
    const auto kept = cfCast<CFBoolean>(CFDictionaryGetValue(readPersonalFile(paneFile()), pictureKey));
    return !kept || CFBooleanGetValue(kept);
}

bool keepPersonWantsPicture(bool isWanted) {
    return !writePersonalFile(paneFile(), CFDictionaryCreate({{CFStringCreateWithCharacters(pictureKey),
                                                               CFBooleanCreate(isWanted)}}));
}

} // namespace torka
