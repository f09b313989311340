// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"

namespace torka::tool {

void addQueueCommand(CLI::App& app, ExitStatus& status) {
    CLI::App* queue = app.add_subcommand("queue", "Queues of the print server");
    queue->require_subcommand(1);
    addQueueListCommand(*queue, status);
    addQueueAddCommand(*queue, status);
    addQueueRemoveCommand(*queue, status);
    addQueueCheckCommand(*queue, status);
}

} // namespace torka::tool
