// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/FieldKeys.h"
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/JobEmission.h"
#include "output/NoteCipher.h"
#include "platform/System.h"

#include <memory>

namespace torka::tool {

namespace {

struct DecryptOptions {
    std::string hex;
    std::string keys;
    std::string specialKey;
    bool des = false;
    bool aes = false;
};

// Tries both algorithms when the options name neither: text enciphered with one does not decipher to valid
// text with the other.
ExitStatus decrypt(const DecryptOptions& options) {
    if (const Result<void> used = useFieldKeys(options.keys); !used) {
        return unusable(used.Why());
    }
    const auto keys = installedFieldKeys();
    if (!keys) {
        return unusable(Fault{"no field keys are installed; --keys FILE names another file",
                              platform::system().Resolve(FieldKeys::installedPath).string()});
    }
    Fault last;
    for (const NoteAlgorithm algorithm : {NoteAlgorithm::aes, NoteAlgorithm::des}) {
        const bool isAsked = algorithm == NoteAlgorithm::aes ? !options.des : !options.aes;
        if (!isAsked) {
            continue;
        }
        const Result<std::string> text = decipherNote(*keys, options.specialKey, algorithm, options.hex);
        if (text) {
            print(printable(*text) + "\n");
            return ExitStatus::good;
        }
        last = text.Why();
    }
    return unusable(last);
}

} // namespace

void addNotesCommand(CLI::App& app, ExitStatus& status) {
    CLI::App* notes = app.add_subcommand("notes", "Protected job notes");
    notes->require_subcommand(1);
    describe(*notes, {.examples = {"torka notes decrypt --keys samples/FieldKeys.plist 8729B952EB4CF5CA"}});
    const auto options = std::make_shared<DecryptOptions>();
    CLI::App* command =
        notes->add_subcommand("decrypt", "Tell the text of a protected note, as proof of what a job carries");
    command->add_option("HEX", options->hex, "The note's hexadecimal digits, as they stand in the job")
        ->required();
    command->add_option("--keys", options->keys, "Key file instead of the installed one")
        ->option_text("FILE");
    command->add_option("--special-key", options->specialKey, "Value of *UseSpecialKey in the description")
        ->option_text("VALUE");
    CLI::Option* des = command->add_flag("--des", options->des, "The note is enciphered with DES");
    command->add_flag("--aes", options->aes, "The note is enciphered with AES")->excludes(des);
    describe(*command, {.examples = {"torka notes decrypt --keys samples/FieldKeys.plist 8729B952EB4CF5CA"}});
    command->callback([options, &status] { status = decrypt(*options); });
}

} // namespace torka::tool
