// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"

namespace torka::tool {

void addQueueCommand(CLI::App& app, ExitStatus& status) {
    CLI::App* queue = app.add_subcommand("queue", "Queues of the print server");
    queue->require_subcommand(1);
    describe(*queue, {.examples = {"torka queue check office"}});
    addQueueListCommand(*queue, status);
    addQueueAddCommand(*queue, status);
    addQueueRemoveCommand(*queue, status);
    addQueueCheckCommand(*queue, status);
}

} // namespace torka::tool
