#pragma once

#include "bidi/commands/Wait.h"
#include "platform/Printing.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

// Where a property list of the pane is kept: in a file, or in the description of a queue.

namespace torka {

// The queue that a list belongs to.
struct QueueAccess {
    PMPrintSession session;
    WaitObserver observer; // told while a command job is waited for
};

struct SaveResult {
    // noErr when the list was written or sent; else an error of the printing framework, or one of the system
    // as its number.
    OSStatus error = noErr;
    // Load would give the list now. A command job that was sent and did not complete leaves this open.
    bool confirmed = false;
    std::string reason{}; // why the queue's filter did not keep it, as it said; "" where it said nothing
};

class PropertyListStore {
public:
    PropertyListStore() = default;
    PropertyListStore(const PropertyListStore&) = delete;
    PropertyListStore& operator=(const PropertyListStore&) = delete;
    virtual ~PropertyListStore();
    // The kept list as XML text, "" when none is kept or it cannot be had.
    virtual std::string Load() = 0;
    virtual SaveResult Save(std::string_view xml) = 0;
};

// A file of at most 16 MB, readable and writable by its owner alone. Saved whole or not at all.
class FilePropertyListStore final : public PropertyListStore {
public:
    explicit FilePropertyListStore(std::filesystem::path file);
    std::string Load() override;
    SaveResult Save(std::string_view xml) override;

private:
    std::filesystem::path path;
};

// The record "QVDriverPreference" of a description. Saving is refused: only the spooler writes there.
class DescriptionPropertyListStore final : public PropertyListStore {
public:
    explicit DescriptionPropertyListStore(std::string ppd);
    std::string Load() override;
    SaveResult Save(std::string_view xml) override;

private:
    std::string ppdPath;
};

// The record "QVDriverPreference" of the current queue's description, saved by a command job to the queue's
// filter, which is waited for. Nothing is sent to a queue that is stopped or takes no jobs.
class QueuePropertyListStore final : public PropertyListStore {
public:
    explicit QueuePropertyListStore(QueueAccess queueAccess);
    std::string Load() override;
    SaveResult Save(std::string_view xml) override;

private:
    QueueAccess queue;
};

// The store that the running system version asks for: from minor version 7 on a list is read from the queue's
// description, before that from the file at the home folder joined with `path`; version 6 alone saves to that
// file, all others by command job.
std::unique_ptr<PropertyListStore> makePropertyListStore(std::string_view path, QueueAccess queue);

} // namespace torka
