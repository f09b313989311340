// SPDX-License-Identifier: Apache-2.0
#include "pane/exchange/DeferredCommands.h"

#include "bidi/commands/SpoolerCommands.h"
#include "connection/ZANCorvianPrinterPList.h"
#include "pane/exchange/WaitPresenter.h"
#include "platform/Log.h"
#include "platform/System.h"

#include <utility>

namespace torka {

namespace {

constexpr int versionThatSavesFile =
    6; // the only version that keeps the list in a file, without a command job

SaveResult saveList(const QueueAccess& queue, std::string_view xml, SavesWait waits) {
    if (waits == SavesWait::yes || system().MinorVersion() == versionThatSavesFile) {
        const ScopedWait wait;
        return makePropertyListStore(addressListPath, queue)->Save(xml);
    }
    PMPrinter printer;
    PMSessionGetCurrentPrinter(queue.session, printer);
    return {PMPrinterSendCommand(describedPrinter(printer), cfString(xml),
                                 cfString(commandTitle(SpoolerCommand::zanPrefs)), nullptr),
            false};
}

} // namespace

PaneAddressStore::PaneAddressStore(QueueAccess queueAccess,
                                   std::shared_ptr<DeferredCommands> deferredCommands)
    : queue(std::move(queueAccess))
    , store(makePropertyListStore(addressListPath, queue))
    , deferred(std::move(deferredCommands)) {}

std::string PaneAddressStore::Load() {
    return deferred->addressList ? *deferred->addressList : store->Load();
}

SaveResult PaneAddressStore::Save(std::string_view xml) {
    if (deferred->held) {
        deferred->addressList = xml;
        return {noErr, true};
    }
    deferred->addressList.reset();
    return saveList(queue, xml, SavesWait::yes);
}

void sendDeferred(const std::shared_ptr<DeferredCommands>& deferred, const QueueAccess& queue,
                  SavesWait waits) {
    deferred->held = false;
    // The list is taken out first, because a wait runs the event loop and may call this function again.
    if (const std::optional<std::string> list = std::exchange(deferred->addressList, std::nullopt)) {
        const SaveResult result = saveList(queue, *list, waits);
        if (!result.reason.empty()) {
            myNSLogC("The queue did not keep the printer's address: %s", result.reason.c_str());
        }
        if (result.error != noErr) {
            myNSLogC("The printer's address could not be sent to its queue (error %d).",
                     static_cast<int>(result.error));
            if (!deferred->addressList) {
                deferred->addressList = list;
            }
        }
    }
    if (const std::string language = std::exchange(deferred->language, {}); !language.empty()) {
        PMPrinter printer;
        PMSessionGetCurrentPrinter(queue.session, printer);
        const OSStatus status =
            PMPrinterSendCommand(describedPrinter(printer), cfString(language),
                                 cfString(commandTitle(SpoolerCommand::localeCode)), nullptr);
        if (status != noErr) {
            myNSLogC("The person's language could not be sent to the queue (error %d).",
                     static_cast<int>(status));
        }
    }
}

} // namespace torka
