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
    const std::string xml = store->Load();
    if (!xml.empty()) {
        root = CFPropertyListCreateFromXMLData(CFDataCreate(xml.data(), xml.size()));
        list = cfCast<CFArray>(root);
    }
    loaded = list != nullptr;
}

bool PropertyListFile::Save(const CFArrayRef& newList) {
    error = noErr;
    reason.clear();
    const bool nothingToSay = newList && (list ? CFEqual(list, newList) : CFArrayGetCount(newList) == 0);
    if (nothingToSay) {
        return true;
    }
    error = LoadError();
    if (error != noErr) { // the new list lacks what is stored
        return false;
    }
    const CFDataRef data = CFPropertyListCreateXMLData(newList);
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
