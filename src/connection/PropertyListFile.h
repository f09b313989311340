// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection/PropertyListStore.h"

#include <memory>
#include <string>
#include <string_view>

namespace torka {

// A property list (an array). The constructor loads it; Save saves it.
//
// Owns its store. The stored data come from outside: anything but an array counts as no list.
class PropertyListFile {
public:
    static constexpr OSStatus memFullErr = -108; // the list cannot be turned into XML

    explicit PropertyListFile(std::unique_ptr<PropertyListStore> listStore);
    PropertyListFile(const PropertyListFile&) = delete;
    PropertyListFile& operator=(const PropertyListFile&) = delete;
    virtual ~PropertyListFile();

    // False, with Error() set, when the list could not be written or sent. A list equal to the stored one is
    // not written or sent again; an empty list equals a missing one. Nothing replaces a list that could not
    // be read.
    bool Save(const CFArrayRef& newList);

    const CFArrayRef& List() const { return list; }           // the stored list; null for none
    bool Loaded() const { return loaded; }                    // the store held a list
    OSStatus LoadError() const { return store->LoadError(); } // PropertyListStore
    // The property list of any kind that was loaded; null for none.
    const CFPropertyListRef& Root() const { return root; }
    OSStatus Error() const { return error; } // of the last Save
    // The filter's reason for not keeping the list of the last Save; "" when it gave none.
    const std::string& Reason() const { return reason; }

    // Given interface; no caller here
    // The list at `path` below the home folder, or the store that replaces this file on the running system
    // version (makePropertyListStore).
    PropertyListFile(std::string_view path, QueueAccess queue);

    // For the tests; no caller here
    // Whether "/Library/Caches/ZAN/ZAN.CorvianPrinterV2.plist" existed when the list was loaded.
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
