// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/Completion.h"
#include "apps/torka/CompletionLine.h"
#include "platform/System.h"
#include "platform/cups/CupsQueue.h"

#include <csignal>
#include <cstdlib>
#include <unistd.h>
#include <vector>

namespace torka::tool {

namespace {

// Ends the process in order: the handler of SIGTERM removes the private folder.
void endAtAlarm(int /*signal*/) { std::raise(SIGTERM); }

// Somebody waits with a finger on a key: a print server that answers later than in a second completes
// nothing.
void prepareAsking() {
    // libcups copies a description of a remote server into this folder.
    setenv("TMPDIR", platform::system().PrivateFolder().c_str(), 1);
    platform::neverAskForPasswords();
    std::signal(SIGALRM, endAtAlarm);
    alarm(1);
}

const char* directive(CompletedPaths paths) {
    switch (paths) {
    case CompletedPaths::files:
        return "\tfiles\n";
    case CompletedPaths::folders:
        return "\tfolders\n";
    default:
        return "";
    }
}

// Writes a line for each candidate: the word, and after a tab its description. A line without a word says
// what the shell itself completes.
void completeWords(const CLI::App& app, const std::vector<std::string>& words) {
    const Completion completion = complete(app, words, prepareAsking);
    std::string out = directive(completion.paths);
    for (const Candidate& candidate : completion.candidates) {
        out += candidate.text + (candidate.description.empty() ? "" : "\t") + candidate.description + "\n";
    }
    print(out);
}

// The same, with what bash inserts in place of the words, and no description.
void completeLine(const CLI::App& app, const CompletionLine& line) {
    const Completion completion = complete(app, line.Words(), prepareAsking);
    std::string out = directive(completion.paths);
    for (const Candidate& candidate : completion.candidates) {
        if (const std::string text = line.Insertion(candidate.text); !text.empty()) {
            out += text + "\n";
        }
    }
    print(out);
}

ExitStatus runComplete(const CLI::App& app, const std::vector<std::string>& arguments) {
    if (arguments.size() == 3 && arguments[0] == "bash") {
        completeLine(app, CompletionLine(arguments[2], arguments[1]));
        return ExitStatus::good;
    }
    if (!arguments.empty() && arguments[0] == "words") {
        completeWords(app, {arguments.begin() + 1, arguments.end()});
        return ExitStatus::good;
    }
    return unusable("complete: bash BREAKS LINE or words WORD ... is meant");
}

} // namespace

// The completion of the shells calls it; it is no command for people.
void addCompleteCommand(CLI::App& app, ExitStatus& status) {
    CLI::App* command = app.add_subcommand("complete", "Print what can follow an unfinished command line");
    command->group("");
    // The words are taken as they are: they belong to another command line.
    command->prefix_command();
    command->callback([&app, command, &status] { status = runComplete(app, command->remaining()); });
}

} // namespace torka::tool
