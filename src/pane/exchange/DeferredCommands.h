// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection/PropertyListStore.h"

#include <memory>
#include <optional>
#include <string>

namespace torka {

// The commands that a new panel sends to its queue. They are held back until the pane has been painted once,
// so that no spooler delays the first painting. They are sent in this order: the address list, then the
// language.
//
// Shared by the panel and the stores of its address list.
struct DeferredCommands {
    bool held = true;
    // The address list (XML) that is still to be sent. Readers take it for the stored list. After a failure
    // it waits for the next sending.
    std::optional<std::string> addressList;
    std::string language; // "" for none
};

// Whether saving waits until the command job is done.
enum class SavesWait { yes, no };

// The store of the queue for an address list. It holds the first savings back.
class PaneAddressStore final : public PropertyListStore {
public:
    PaneAddressStore(QueueAccess queueAccess, std::shared_ptr<DeferredCommands> deferredCommands);
    std::string Load() override;
    OSStatus LoadError() const override { return deferred->addressList ? noErr : store->LoadError(); }
    SaveResult Save(std::string_view xml) override;

private:
    QueueAccess queue;
    std::unique_ptr<PropertyListStore> store;
    std::shared_ptr<DeferredCommands> deferred;
};

// Sends the commands that were held back; later commands are sent at once. An address list that fails is sent
// again at the next call. Without waiting, the address list is only handed to the spooler.
void sendDeferred(const std::shared_ptr<DeferredCommands>& deferred, const QueueAccess& queue,
                  SavesWait waits);

} // namespace torka
