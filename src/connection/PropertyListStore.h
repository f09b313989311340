// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/Wait.h"
#include "platform/Printing.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

// Stores of the pane's property lists: a file, or the description of a queue.

namespace torka {

// The queue that a list belongs to.
struct QueueAccess {
    PMPrintSession session;
    WaitObserver observer; // called during the wait for a command job
};

struct SaveResult {
    // noErr when the list was written or sent; else an error of the printing framework, or an error number of
    // the system.
    OSStatus error = noErr;
    // True when Load would now return the list. False after a command job that was sent and did not complete.
    bool confirmed = false;
    std::string reason{}; // the filter's reason for not keeping the list; "" when it gave none
};

class PropertyListStore {
public:
    PropertyListStore() = default;
    PropertyListStore(const PropertyListStore&) = delete;
    PropertyListStore& operator=(const PropertyListStore&) = delete;
    virtual ~PropertyListStore();
    // The stored list as XML text; "" when there is none or it cannot be read.
    virtual std::string Load() = 0;
    // Why the last Load could not tell whether a list is stored; noErr when it could.
    virtual OSStatus LoadError() const { return noErr; }
    virtual SaveResult Save(std::string_view xml) = 0;
};

// A file of at most 16 MiB with mode 0600. Save writes it whole or not at all.
class FilePropertyListStore final : public PropertyListStore {
public:
    explicit FilePropertyListStore(std::filesystem::path file);
    std::string Load() override;
    OSStatus LoadError() const override { return loadError; }
    SaveResult Save(std::string_view xml) override;

private:
    std::filesystem::path path;
    OSStatus loadError = noErr;
};

// The record "QVDriverPreference" of a description. Save fails with EROFS, because only the spooler writes
// descriptions.
class DescriptionPropertyListStore final : public PropertyListStore {
public:
    explicit DescriptionPropertyListStore(std::string ppd);
    std::string Load() override;
    SaveResult Save(std::string_view xml) override;

private:
    std::string ppdPath;
};

// The record "QVDriverPreference" of the current queue's description. Save sends a command job to the queue's
// filter and waits for it. It sends nothing to a queue that is stopped or rejects jobs.
class QueuePropertyListStore final : public PropertyListStore {
public:
    explicit QueuePropertyListStore(QueueAccess queueAccess);
    std::string Load() override;
    OSStatus LoadError() const override { return loadError; }
    SaveResult Save(std::string_view xml) override;

private:
    QueueAccess queue;
    OSStatus loadError = noErr;
};

// The store for the running system version. From minor version 7 on, Load reads the queue's description;
// before that, the file at the home folder joined with `path`. Version 6 saves to that file, all others by
// command job.
std::unique_ptr<PropertyListStore> makePropertyListStore(std::string_view path, QueueAccess queue);

} // namespace torka
