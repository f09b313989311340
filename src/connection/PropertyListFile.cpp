// SPDX-License-Identifier: Apache-2.0
#include "connection/PropertyListFile.h"

#include "bidi/commands/BidiFilePaths.h"
#include "platform/PropertyList.h"
#include "platform/System.h"

namespace torka {

namespace {

constexpr std::string_view cacheFile = "/Library/Caches/ZAN/ZAN.CorvianPrinterV2.plist";

} // namespace

PropertyListFile::PropertyListFile(std::string_view path, QueueAccess queue)
    : PropertyListFile(makePropertyListStore(path, std::move(queue))) {}

PropertyListFile::PropertyListFile(std::unique_ptr<PropertyListStore> listStore)
    : store(std::move(listStore)) {
    Load();
}

PropertyListFile::~PropertyListFile() = default;

void PropertyListFile::Load() {
    cacheFileExists = fileExists(system().Resolve(cacheFile));
    root = ReadStore();
    list = cfCast<CFArray>(root);
    loadError = store->LoadError();
    loaded = list != nullptr;
}

CFPropertyListRef PropertyListFile::ReadStore() {
    const std::string xml = store->Load();
    return xml.empty() ? nullptr : CFPropertyListCreateFromXMLData(CFDataCreate(xml.data(), xml.size()));
}

bool PropertyListFile::IsSaved(const CFArrayRef& newList) const {
    return newList && (list ? CFEqual(list, newList) : CFArrayGetCount(newList) == 0);
}

bool PropertyListFile::Save(const CFArrayRef& newList, const Merge& merge) {
    error = noErr;
    reason.clear();
    if (IsSaved(newList)) {
        return true;
    }
    error = loadError;
    if (error != noErr) { // the new list lacks what is stored
        return false;
    }
    const auto stored = cfCast<CFArray>(ReadStore());
    error = store->LoadError();
    if (error != noErr) { // the new list may lack what others have stored
        return false;
    }
    // Without a stored list, the new one takes nothing of others away.
    const bool isOfOthers = stored && !(list && CFEqual(stored, list));
    return Send(newList, isOfOthers && merge ? merge(stored) : newList, stored);
}

bool PropertyListFile::Send(const CFArrayRef& newList, const CFArrayRef& merged, const CFArrayRef& stored) {
    if (merged && stored && CFEqual(merged, stored)) {
        list = newList;
        return true;
    }
    const CFDataRef data = CFPropertyListCreateXMLData(merged);
    if (!data) {
        error = memFullErr;
        return false;
    }
    const auto bytes = CFDataGetBytes(data);
    const SaveResult result = store->Save({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    error = result.error;
    reason = result.reason;
    if (result.confirmed) {
        list = newList;
    }
    return error == noErr;
}

} // namespace torka
