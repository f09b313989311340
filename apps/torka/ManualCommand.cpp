// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/ManualPage.h"
#include "platform/System.h"

#include <filesystem>
#include <memory>

namespace torka::tool {

namespace {

ExitStatus writePage(const CLI::App& command, const std::filesystem::path& folder) {
    const std::string path = (folder / (pageName(command) + ".1")).string();
    constexpr unsigned int readableForAll = 0644;
    const std::error_code failure = platform::system().WriteFile(path, manualPage(command), readableForAll);
    return failure ? unusable(path + ": cannot be written: " + failure.message()) : ExitStatus::good;
}

ExitStatus writeManual(const CLI::App& app, const std::string& folder) {
    ExitStatus status = writePage(app, folder);
    for (const CLI::App* command : commandsOf(app)) {
        status = status == ExitStatus::good ? writePage(*command, folder) : status;
    }
    return status;
}

} // namespace

// A build calls it; it is no command for people.
void addManualCommand(CLI::App& app, ExitStatus& status) {
    const auto folder = std::make_shared<std::string>();
    CLI::App* command = app.add_subcommand("manual", "Write the manual pages of all commands into a folder");
    command->group("");
    command->add_option("FOLDER", *folder, "Folder that exists")->required();
    describe(*command, {.examples = {"torka manual man1"}});
    command->callback([&app, folder, &status] { status = writeManual(app, *folder); });
}

} // namespace torka::tool
