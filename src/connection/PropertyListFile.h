// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection/PropertyListStore.h"

#include <functional>
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

    // Makes the changes of this object's list in the list that another writer has stored.
    using Merge = std::function<CFArrayRef(const CFArrayRef& stored)>;

    // False, with Error() set, when the list could not be written or sent. A list equal to the stored one is
    // not written or sent again; an empty list equals a missing one. Nothing replaces a list that could not
    // be read.
    //
    // Reads the store again first. When another writer has stored a list since, `merge` makes the list that
    // is saved; without it the new list replaces the other one.
    bool Save(const CFArrayRef& newList, const Merge& merge = nullptr);

    // The list that was loaded, or given to the last Save that succeeded; null for none.
    const CFArrayRef& List() const { return list; }
    bool Loaded() const { return loaded; }           // the store held a list
    OSStatus LoadError() const { return loadError; } // of the constructor, see PropertyListStore
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

protected:
    // Whether Save has nothing to do for the list.
    bool IsSaved(const CFArrayRef& newList) const;

private:
    void Load();
    CFPropertyListRef ReadStore();
    bool Send(const CFArrayRef& newList, const CFArrayRef& merged, const CFArrayRef& stored);

    CFPropertyListRef root;
    CFArrayRef list;
    bool loaded = false;
    OSStatus loadError = noErr;
    OSStatus error = noErr;
    std::string reason;
    bool cacheFileExists = false;
    std::unique_ptr<PropertyListStore> store;
};

} // namespace torka
