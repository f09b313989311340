#pragma once

#include "connection/PropertyListStore.h"

#include <memory>
#include <optional>
#include <string>

namespace torka {

// What a new panel would send to its queue and wait for, held back until the pane has been painted once, so
// that no spooler stands between a person and the pane. Sent in the order in which it would have been sent at
// once: the address list, then the language.
//
// Shared by the panel and the stores of its address list.
struct DeferredCommands {
    bool held = true;
    // The address list (XML) as it is to be kept. It counts as the kept one until it is sent, and after a
    // sending that failed it waits for the next one.
    std::optional<std::string> addressList;
    std::string language; // "" for none
};

// Whether a saving waits until its command job is done.
enum class SavesWait { yes, no };

// The queue's store of an address list, with its first savings held back.
class PaneAddressStore final : public PropertyListStore {
public:
    PaneAddressStore(QueueAccess queueAccess, std::shared_ptr<DeferredCommands> deferredCommands);
    std::string Load() override;
    SaveResult Save(std::string_view xml) override;

private:
    QueueAccess queue;
    std::unique_ptr<PropertyListStore> store;
    std::shared_ptr<DeferredCommands> deferred;
};

// Sends what was held back; from then on nothing is held. What could not be sent is tried again at the next
// call. Without waiting, the address list is only handed to the spooler.
void sendDeferred(const std::shared_ptr<DeferredCommands>& deferred, const QueueAccess& queue,
                  SavesWait waits);

} // namespace torka
