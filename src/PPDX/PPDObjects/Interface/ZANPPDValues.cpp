// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/ZANPPD.h"

#include "PPDFile.h"

#include <array>
#include <unordered_map>
#include <unordered_set>

// Values by key, lists of choices supplied at run time, and the check for supported descriptions.

namespace torka {

namespace {

bool equalIgnoringCase(const CFStringRef& left, const CFStringRef& right) {
    return CFStringCompare(left, right, kCFCompareCaseInsensitive) == 0;
}

bool holdsName(const CFArrayRef& names, const CString* name) {
    if (!name || name->Empty()) {
        return false;
    }
    const CFStringRef wanted = cfString(name->Buffer());
    for (CFIndex i = 0; i < CFArrayGetCount(names); ++i) {
        const auto candidate = cfCast<CFString>(CFArrayGetValueAtIndex(names, i));
        if (candidate && equalIgnoringCase(candidate, wanted)) {
            return true;
        }
    }
    return false;
}

// Reads a description's header up to its "*PCFileName" without changing the state of the model.
class FileNameReader : public PPDX {
public:
    const CString* Read(PPDFile& source) {
        const CFStringEncoding encoding = GetApplicationTextEncoding();
        const bool endOfPPD = gEndOfPPD;
        if (StartReading(std::make_unique<PPDFileStream>(&source, true))) {
            std::string_view text;
            while (!PCFileName() && ReadNonEmptyLine(text)) {
                PPDStream line(text);
                std::array<char, kLineCapacity> keyword;
                if (NextToken(line, keyword.data(), DelimiterSet(" \t:"), true) &&
                    std::string_view(keyword.data()) == "*PCFileName") {
                    ParsePSKeywords(line, keyword.data());
                }
            }
        }
        StopReading();
        SetApplicationTextEncoding(encoding);
        gEndOfPPD = endOfPPD;
        return PCFileName();
    }
};

} // namespace

bool PPDX::ValidateFileName(const CFURLRef& ppdURL, const CFArrayRef& pcFileNames, PPDFile* ppdFile) {
    if (!pcFileNames) {
        return true;
    }
    FileNameReader reader;
    if (ppdFile) {
        return holdsName(pcFileNames, reader.Read(*ppdFile));
    }
    PPDFile source(ppdURL);
    return source.valid() && holdsName(pcFileNames, reader.Read(source));
}

const char* PPDX::PathToPDE() const {
    return dialogExtension && !dialogExtension->Empty() ? dialogExtension->Buffer() : "";
}

bool ZANPPD::IsSupported() const {
    return !supportedFileNames || holdsName(supportedFileNames, PCFileName());
}

PPDXControl* ZANPPD::GetPPDXControlForKey(const CFStringRef& key) const {
    CNTL_TYPE type{};
    return key ? controls->Find(utf8Text(key).c_str(), type, true) : nullptr;
}

CFStringRef ZANPPD::CopyValueForKey(const CFStringRef& key) const {
    PPDXControl* control = GetPPDXControlForKey(key);
    return control ? control->CopyCurrentControlValueString() : nullptr;
}

bool ZANPPD::SetValueForKey(const CFStringRef& key, const CFStringRef& value) {
    PPDXControl* control = GetPPDXControlForKey(key);
    if (!control || !value || control->Type() == CNTL_TYPE::specialOption) {
        return false;
    }
    control->SetCurrentControlWithCFString(value);
    return true;
}

CFDictionaryRef ZANPPD::CopyAllValues() const {
    std::vector<CFDictionary::Pair> pairs;
    pairs.reserve(controls->ControlCount());
    controls->ForEach([&](PPDXControl* control) {
        if (control->Keyword()) {
            pairs.emplace_back(control->CFStringKeyword(), control->CopyCurrentControlValueString());
        }
    });
    return CFDictionaryCreate(pairs);
}

void ZANPPD::SetAllValues(const CFDictionaryRef& values) {
    if (!values) {
        return;
    }
    for (const auto& [key, value] : values->Pairs()) {
        SetValueForKey(key, cfCast<CFString>(value));
    }
}

bool ZANPPD::IsKVConstrained(const char* keyword, const char* option) const {
    return keyword && option && constraints->IsKVConstrained(keyword, option);
}

bool ZANPPD::PPDCreatePopupMenu(const char* keyword, std::span<const SuppliedPopupItem> items,
                                const char* defaultKeyword) {
    return ReplacePopupItems(keyword, items, defaultKeyword, false);
}

bool ZANPPD::PPDReconcilePopupMenu(const char* keyword, std::span<const SuppliedPopupItem> items,
                                   const char* defaultKeyword) {
    return ReplacePopupItems(keyword, items, defaultKeyword, true);
}

bool ZANPPD::ReplacePopupItems(const char* keyword, std::span<const SuppliedPopupItem> items,
                               const char* defaultKeyword, bool keepsCurrent) {
    PPDXPopupControl* popup = controls->FindPopup(keyword, true);
    if (!popup) {
        return false;
    }
    std::unordered_map<std::string_view, const _PopupItem*> known;
    for (const _PopupItem* item = popup->FirstItem(); item; item = popup->NextItem()) {
        known.try_emplace(item->keyword.View(), item);
    }
    PopupItems replacement;
    std::unordered_set<std::string_view> offered;
    for (const SuppliedPopupItem& item : items) {
        if (item.keyword.empty() || !offered.insert(item.keyword).second) {
            continue;
        }
        const auto before = known.find(item.keyword);
        const bool isKnown = before != known.end();
        CFStringRef name = item.localName;
        if (!name) {
            name = isKnown ? before->second->LocalName() : cfString(item.keyword);
        }
        replacement.emplace_back(item.keyword.c_str(), name, isKnown ? before->second->psData : nullptr,
                                 isKnown ? before->second->psLength : 0);
    }
    if (replacement.empty()) {
        return false;
    }
    for (const _PopupItem& item : replacement) {
        if (!known.contains(item.keyword.View())) {
            constraints->KVSInsert(keyword, item.keyword.View());
        }
    }
    const std::string first(replacement.front().keyword.View());
    const bool offersDefault = defaultKeyword && offered.contains(defaultKeyword);
    const CFStringRef current = popup->CopyCurrentControlValueString();
    if (!popup->Rebuild(keyword, std::move(replacement), offersDefault ? defaultKeyword : first.c_str())) {
        return false;
    }
    if (keepsCurrent && offered.contains(utf8Text(current))) {
        popup->SetCurrentControlWithCFString(current);
    }
    return true;
}

} // namespace torka
