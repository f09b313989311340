// SPDX-License-Identifier: Apache-2.0
#include "output/ZANJobTicket.h"

#include "PPDX/PPDObjects/Controls/PPDXControl.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "platform/Log.h"
#include "platform/PropertyList.h"
#include "platform/System.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>

namespace torka {

namespace {

// From this minor version of the system on, the filter writes the ticket file.
constexpr int firstVersionWithFilterWrites = 7;
constexpr std::size_t nameBufferSize = 256;
constexpr unsigned ticketFileMode = 0666;

bool isNeverWritten(const CFStringRef& key) {
    static const CFStringRef spotPriority = cfString("*QVSpotPriority");
    static const CFStringRef grayOverride = cfString("*QVGrayOverride");
    static const CFIndex length = CFStringGetLength(spotPriority); // of both, in any letter case
    if (CFStringGetLength(key) != length) {
        return false;
    }
    return CFStringCompare(key, spotPriority, kCFCompareCaseInsensitive) == 0 ||
           CFStringCompare(key, grayOverride, kCFCompareCaseInsensitive) == 0;
}

std::string_view textOf(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace

JobTicket::JobTicket(PMPrintSession printSession, PMPrintSettings printSettings)
    : session(std::move(printSession))
    , settings(std::move(printSettings)) {}

JobTicket::~JobTicket() = default;

void JobTicket::Set(const CFStringRef& /*ignored*/, const CFStringRef& /*alsoIgnored*/,
                    const CFDictionaryRef& values) {
    if (!values) {
        return;
    }
    for (const auto& [key, value] : values->Pairs()) {
        if (!isNeverWritten(key)) {
            PMPrintSettingsSetValue(settings, key, value, false);
        }
    }
}

OSStatus JobTicket::Get(const CFStringRef& key, int& value) const {
    CFTypeRef stored;
    const OSStatus status = PMPrintSettingsGetValue(settings, key, stored);
    if (status != noErr) {
        return status;
    }
    std::int32_t number = 0;
    const bool converted = CFNumberGetValue(cfCast<CFNumber>(stored), number);
    value = number;
    return converted ? 1 : 0;
}

ZANJobTicket::ZANJobTicket(PrintSettingsTicket* ticket, PMPrintSettings printSettings, CFStringRef key)
    : JobTicket(nullptr, std::move(printSettings))
    , dictionaryTicket(ticket)
    , pathKey(std::move(key)) {}

ZANJobTicket::~ZANJobTicket() = default;

void ZANJobTicket::Create() {
    entries.clear();
    protectedEntries.clear();
}

void ZANJobTicket::Add(PostScriptInjectionSite site, const void* bytes, std::size_t length) {
    // Consecutive entries of one site share its number object.
    const std::size_t count = entries.size();
    const CFNumber* const last = count < 2 ? nullptr : static_cast<const CFNumber*>(entries[count - 2].get());
    entries.push_back(last != nullptr && last->integer == site ? entries[count - 2] : CFNumberCreate(site));
    entries.push_back(CFDataCreate(bytes, length));
}

void ZANJobTicket::AddProtected(PostScriptInjectionSite site, std::string_view text) {
    protectedEntries.push_back(entries.size() / 2);
    Add(site, text);
}

std::size_t ZANJobTicket::Add(PostScriptInjectionSite site, PPDXControl* control) {
    if (control == nullptr) {
        return 0;
    }
    const auto length = static_cast<std::int64_t>(control->PostScript(nullptr));
    if (length < 0 || length > static_cast<std::int64_t>(maximumControlText)) {
        return length < 0 ? 0 : static_cast<std::size_t>(length);
    }
    std::array<unsigned char, maximumControlText + 1> text; // written up to `length`
    control->PostScript(text.data());
    const char* keyword = control->Keyword();
    const bool isPageSize = keyword != nullptr && std::strcmp(keyword, "*PageSize") == 0;
    Add(isPageSize ? sitePageSize : site, text.data(), static_cast<std::size_t>(length));
    return 0;
}

void ZANJobTicket::Withdraw(PostScriptInjectionSite site, std::string_view text) {
    const std::vector<Entry> list = Entries();
    for (std::size_t i = list.size(); i-- > 0;) {
        if (list[i].site != site || list[i].bytes != text) {
            continue;
        }
        const auto place = entries.begin() + static_cast<std::ptrdiff_t>(2 * i);
        entries.erase(place, place + 2);
        std::erase(protectedEntries, i);
        for (std::size_t& index : protectedEntries) {
            index -= index > i ? 1 : 0;
        }
    }
}

void ZANJobTicket::SavePPDForAllKeys(ZANPPD* description, const CFStringRef& key) {
    if (description != nullptr && dictionaryTicket != nullptr) {
        dictionaryTicket->Set(key, key, description->CopyAllValues());
    }
}

CFDataRef ZANJobTicket::Save() {
    saveError.clear();
    CFDataRef xml = CFPropertyListCreateXMLData(CFArrayCreate(entries));
    if (!xml) {
        saveError = std::make_error_code(std::errc::value_too_large);
        myNSLogC("The job ticket has more entries than a ticket file may hold: %zu", entries.size() / 2);
        return nullptr;
    }
    if (platform::system().MinorVersion() >= firstVersionWithFilterWrites) {
        fileName = CreateRandomFileName("/Library/Caches/ZAN/Torka.temp");
        xmlData = xml;
        pathStatus = PMPrintSettingsSetValue(settings, pathKey, fileName, false);
        return xml;
    }
    const CFStringRef path = CreateRandomFileName("/tmp/Torka.temp");
    saveError = platform::system().WriteFile(platform::system().Resolve(utf8Text(path)),
                                             textOf(CFDataGetBytes(xml)), ticketFileMode);
    if (saveError) {
        myNSLogC("The job ticket %s could not be written: %s", utf8Text(path).c_str(),
                 saveError.message().c_str());
    }
    pathStatus = PMPrintSettingsSetValue(settings, pathKey, path, false);
    return xml;
}

CFStringRef ZANJobTicket::CreateRandomFileName(std::string_view prefix, char* buffer) {
    const std::string name = std::string(prefix) + platform::system().CreateUuidString();
    if (buffer != nullptr) {
        const std::size_t length = std::min(name.size(), nameBufferSize - 1);
        std::copy_n(name.data(), length, buffer);
        buffer[length] = '\0';
    }
    return cfString(name);
}

void ZANJobTicket::InjectTempFileToPSStream(const CFStringRef& key, const CFStringRef& value) {
    PMPrintSettingsSetValue(settings, key, value, false);
}

std::vector<ZANJobTicket::Entry> ZANJobTicket::Entries() const {
    std::vector<Entry> list;
    list.reserve(entries.size() / 2);
    for (std::size_t i = 0; i + 1 < entries.size(); i += 2) {
        Entry entry;
        CFNumberGetValue(cfCast<CFNumber>(entries[i]), entry.site);
        entry.bytes = textOf(CFDataGetBytes(cfCast<CFData>(entries[i + 1])));
        entry.isProtected = std::ranges::binary_search(protectedEntries, i / 2);
        list.push_back(entry);
    }
    return list;
}

} // namespace torka
