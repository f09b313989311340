// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/Description.h"
#include "apps/torka/DescriptionDiff.h"
#include "platform/System.h"

#include <memory>

namespace torka::tool {

namespace {

struct DiffOptions {
    std::string before;
    std::string after;
    bool isJson = false;
};

struct ReadFile {
    std::unique_ptr<ZANPPD> description;
    std::string text;
};

Result<ReadFile> readFile(const std::string& path) {
    ReadFile file;
    auto description = readUsableDescription(path);
    if (!description) {
        return description.Why();
    }
    file.description = *std::move(description);
    if (const std::error_code error = platform::system().ReadFile(path, maximumDescription, file.text)) {
        return Fault{"cannot be read: " + error.message(), path};
    }
    return file;
}

// "- WHAT SUBJECT: BEFORE", "+ WHAT SUBJECT: AFTER" or "~ WHAT SUBJECT: BEFORE -> AFTER".
std::string lineOf(const DescriptionChange& change) {
    const std::string name = change.what + (change.subject.empty() ? "" : " " + change.subject);
    const auto told = [](const std::optional<std::string>& value) {
        return value && !value->empty() ? ": " + *value : std::string();
    };
    if (!change.after) {
        return "- " + name + told(change.before);
    }
    if (!change.before) {
        return "+ " + name + told(change.after);
    }
    return "~ " + name + ": " + *change.before + " -> " + *change.after;
}

Json valueJson(const std::optional<std::string>& value) {
    return value ? Json(jsonText(value->c_str())) : Json();
}

ExitStatus showDifferences(const DiffOptions& options) {
    Result<ReadFile> before = readFile(options.before);
    if (!before) {
        return unusable(before.Why());
    }
    Result<ReadFile> after = readFile(options.after);
    if (!after) {
        return unusable(after.Why());
    }
    std::vector<DescriptionChange> changes = compareDescriptions(*before->description, *after->description);
    // Lines that the reader leaves to the print system: they alone decide when nothing else differs.
    if (changes.empty()) {
        changes = compareLines(before->text, after->text);
    }
    Json json = Json::object();
    json["changes"] = Json::array();
    for (const DescriptionChange& change : changes) {
        if (options.isJson) {
            json["changes"].push_back({{"what", change.what},
                                       {"subject", change.subject},
                                       {"before", valueJson(change.before)},
                                       {"after", valueJson(change.after)}});
        } else {
            print(printable(lineOf(change)) + "\n");
        }
    }
    if (options.isJson) {
        print(jsonDocument(json));
    }
    return changes.empty() ? ExitStatus::good : ExitStatus::findings;
}

} // namespace

void addDiffCommand(CLI::App& app, ExitStatus& status) {
    const auto options = std::make_shared<DiffOptions>();
    CLI::App* command = app.add_subcommand("diff", "Tell what differs between two descriptions");
    command->add_option("A", options->before, "Extended PPD file")->option_text("A.ppd")->required();
    command->add_option("B", options->after, "Extended PPD file, the newer one")
        ->option_text("B.ppd")
        ->required();
    command->add_flag("--json", options->isJson, "As JSON");
    describe(*command,
             {.examples = {"torka diff samples/torka-production.ppd samples/torka-production-ja.ppd"},
              .findings = "something differs"});
    command->callback([options, &status] { status = showDifferences(*options); });
}

} // namespace torka::tool
