// SPDX-License-Identifier: Apache-2.0
#include "platform/memory/MemoryPrinting.h"

#include <algorithm>

namespace torka::platform {

std::vector<MemoryPrintSettings::Entry>::const_iterator
MemoryPrintSettings::Find(const CFStringRef& key) const {
    const auto place = key ? places.find(key->units) : places.end();
    return place == places.end() ? entries.end()
                                 : entries.begin() + static_cast<std::ptrdiff_t>(place->second);
}

CFTypeRef MemoryPrintSettings::Value(const CFStringRef& key) const {
    const auto place = Find(key);
    return place == entries.end() ? nullptr : place->value;
}

OSStatus MemoryPrintSettings::SetValue(const CFStringRef& key, const CFTypeRef& value, bool locked) {
    if (!key) {
        return kPMInvalidParameter;
    }
    if (setResult != noErr) {
        return setResult;
    }
    const auto place = Find(key);
    if (place == entries.end()) {
        if (value) {
            places.emplace(key->units, entries.size());
            entries.push_back({key, value, locked});
        }
    } else if (value) {
        Entry& entry = entries[static_cast<std::size_t>(place - entries.cbegin())];
        entry.value = value;
        entry.locked = locked;
    } else {
        places.erase(key->units);
        for (auto later = entries.erase(place); later != entries.end(); ++later) {
            --places[later->key->units];
        }
    }
    return noErr;
}

CFDictionaryRef MemoryPrintSettings::CopyAsDictionary() const {
    std::vector<CFDictionary::Pair> pairs;
    pairs.reserve(entries.size());
    for (const Entry& entry : entries) {
        pairs.emplace_back(entry.key, entry.value);
    }
    return CFDictionaryCreate(pairs);
}

OSStatus MemoryPrintSettings::SetCopies(std::uint32_t newCopies) {
    if (newCopies == 0) {
        return kPMInvalidParameter;
    }
    copies = newCopies;
    return noErr;
}

bool MemoryPrintSettings::IsLocked(const CFStringRef& key) const {
    const auto place = Find(key);
    return place != entries.end() && place->locked;
}

OSStatus MemoryPrinter::CopyDescriptionURL(const CFStringRef& type, CFURLRef& url) const {
    url = nullptr;
    if (descriptionResult != noErr) {
        return descriptionResult;
    }
    if (CFStringCompare(type, cfString("PMPPDDescriptionType")) != 0) {
        return kPMInvalidParameter;
    }
    url = CFURLCreateWithFileSystemPath(ppdPath);
    return url ? noErr : kPMGeneralError;
}

OSStatus MemoryPrinter::CopyDeviceURI(CFURLRef& uri) const {
    uri = deviceUriResult == noErr ? CFURLCreateWithString(cfString(deviceUri)) : nullptr;
    return deviceUriResult != noErr || uri ? deviceUriResult : kPMGeneralError;
}

OSStatus MemoryPrinter::CopyHostName(CFStringRef& host) const {
    host = hostNameResult == noErr ? cfString(hostName) : nullptr;
    return hostNameResult;
}

OSStatus MemoryPrinter::MakeAndModelName(CFStringRef& text) const {
    text = makeAndModelResult == noErr ? cfString(makeAndModel) : nullptr;
    return makeAndModelResult;
}

OSStatus MemoryPrinter::State(std::uint16_t& answer) const {
    if (onStateAsked) {
        onStateAsked();
    }
    answer = stateResult == noErr ? state : std::uint16_t{0};
    return stateResult;
}

OSStatus MemoryPrinter::CopyState(CFDictionaryRef& answer) const {
    answer = stateResult == noErr ? stateAttributes : nullptr;
    return stateResult;
}

OSStatus MemoryPrinter::PaperList(std::vector<Paper>& list) const {
    list.clear();
    if (paperListResult == noErr) {
        list = papers;
    }
    return paperListResult;
}

OSStatus MemoryPrinter::SendCommand(const CFStringRef& command, const CFStringRef& title,
                                    const CFDictionaryRef& options) {
    const SentCommand record{command, title, options};
    sent.push_back(record);
    if (onSend) {
        onSend(record);
    }
    return sendResult;
}

OSStatus MemorySession::CurrentPrinter(PMPrinter& answer) const {
    answer = printer;
    return answer ? noErr : kPMGeneralError;
}

} // namespace torka::platform
