#pragma once

#include "connection/PropertyListStore.h"

#include <memory>
#include <string>
#include <string_view>

namespace torka {

// A property list (an array) that is loaded when this is made and saved on demand.
//
// Owns its store. What is kept comes from outside: anything but an array counts as no list.
class PropertyListFile {
public:
    static constexpr OSStatus memFullErr = -108; // the list cannot be turned into XML

    // The list at `path` below the home folder, or what stands for it on the running system version.
    PropertyListFile(std::string_view path, QueueAccess queue);
    explicit PropertyListFile(std::unique_ptr<PropertyListStore> listStore);
    PropertyListFile(const PropertyListFile&) = delete;
    PropertyListFile& operator=(const PropertyListFile&) = delete;
    virtual ~PropertyListFile();

    // False with Error() set when the list could not be written or sent. A list equal to the one that is kept
    // (an empty one where none is) is not written or sent again.
    bool Save(const CFArrayRef& newList);

    const CFArrayRef& List() const { return list; } // what is kept, null for none
    bool Loaded() const { return loaded; }          // a list was there
    // What the file holds, whatever its kind, as it was loaded; null for none.
    const CFPropertyListRef& Root() const { return root; }
    OSStatus Error() const { return error; } // of the last Save
    // Why the list of the last Save is not kept, as the queue's filter said; "" when it said nothing.
    const std::string& Reason() const { return reason; }
    // Whether "/Library/Caches/ZAN/ZAN.CorvianPrinterV2.plist" was there when the list was loaded.
    bool CacheFileExists() const { return cacheFileExists; }

private:
    void Load();

    CFPropertyListRef root;
    CFArrayRef list;
    bool loaded = false;
    OSStatus error = noErr;
    std::string reason;
    bool cacheFileExists = false;
    std::unique_ptr<PropertyListStore> store;
};

} // namespace torka
