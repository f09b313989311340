// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/Description.h"
#include "connection/ControllerList.h"
#include "platform/avahi/AvahiServiceDirectory.h"
#include "platform/posix/PosixEventLoop.h"

#include <algorithm>
#include <chrono>
#include <memory>

namespace torka::tool {

namespace {

struct DiscoverOptions {
    int seconds = 3;
    bool json = false;
};

// Ends the loop when the search itself fails.
class FailureWatch final : public ControllerListObserver {
public:
    explicit FailureWatch(PosixEventLoop& eventLoop)
        : loop(eventLoop) {}
    void listDidChange() override {
        if (list != nullptr && !list->Failure().empty()) {
            loop.Stop();
        }
    }

    const ControllerList* list = nullptr;

private:
    PosixEventLoop& loop;
};

Json controllerJson(const FoundController& controller) {
    return {{"name", utf8Text(controller.name)},
            {"addresses", utf8Text(controller.addresses)},
            {"services", controller.aliases}};
}

ExitStatus discover(const DiscoverOptions& options) {
    PosixEventLoop loop;
    AvahiServiceDirectory directory(loop);
    FailureWatch observer(loop);
    ControllerList list(directory, observer);
    observer.list = &list;
    loop.Run(std::chrono::seconds(options.seconds));
    if (!list.Failure().empty()) {
        return unusable("controllers cannot be searched for: " + list.Failure());
    }
    std::vector<FoundController> controllers = list.Controllers();
    std::stable_sort(controllers.begin(), controllers.end(),
                     [](const FoundController& left, const FoundController& right) {
                         return CFStringCompare(left.name, right.name, kCFCompareCaseInsensitive) < 0;
                     });
    Json json = Json::object();
    json["controllers"] = Json::array();
    for (const FoundController& controller : controllers) {
        if (options.json) {
            json["controllers"].push_back(controllerJson(controller));
        } else {
            const std::string addresses = utf8Text(controller.addresses);
            print(printable(utf8Text(controller.name)) + ": " +
                  (addresses.empty() ? "no address" : printable(addresses)) + "\n");
        }
    }
    if (options.json) {
        print(jsonDocument(json));
    }
    if (list.LeftOut()) {
        warn("more controllers are announced than the first " + std::to_string(controllers.size()));
    }
    return controllers.empty() ? ExitStatus::findings : ExitStatus::good;
}

} // namespace

void addDiscoverCommand(CLI::App& address, ExitStatus& status) {
    const auto options = std::make_shared<DiscoverOptions>();
    CLI::App* command =
        address.add_subcommand("discover", "Print the controllers that the local network announces");
    command->add_option("--seconds", options->seconds, "How long to look for them; otherwise 3")
        ->check(CLI::Range(1, 600));
    command->add_flag("--json", options->json, "As JSON");
    describe(*command, {.examples = {"torka address discover --seconds 5"}, .findings = "none was found"});
    command->callback([options, &status] { status = discover(*options); });
}

} // namespace torka::tool
