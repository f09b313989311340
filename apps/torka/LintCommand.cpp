// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/LintWords.h"
#include "PPDX/PPDObjects/Interface/PPDLintTexts.h"
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/ModelJson.h"
#include "pane/panel/PrinterListFile.h"

#include <CLI/Validators.hpp>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

namespace torka::tool {

namespace {

struct LintOptions {
    std::string path;
    std::string bundle;
    std::string format = "text";
    bool json = false;
    bool strict = false;
};

// One error or warning, for people and for programs.
struct Finding {
    long line;
    std::string severity;
    std::string name;
    std::string message;
    std::string remedy;
};

// The known name that an error's name is probably meant to be, "" for none.
std::string suggestionFor(const ZANPPD& description, const PPDXErrorObj& error) {
    std::vector<std::string_view> known;
    const auto add = [&known](const PPDXElement* element) {
        if (element->Keyword() != nullptr) {
            known.emplace_back(element->Keyword());
        }
    };
    if (error == PPDErr_BadShortcut) {
        description.GetControls()->ForEach(add);
    } else if (error == PPDErr_ParentParsingNoParent) {
        description.GetProperties()->ForEach(add);
        description.GetGroups()->ForEach(add);
    }
    return std::string(closestWord(error.Keyword(), known));
}

Finding findingOf(const ZANPPD& description, const PPDXErrorObj& error) {
    const std::string keyword = *error.Keyword() == '\0' ? "" : " " + jsonText(error.Keyword());
    const std::string meant = suggestionFor(description, error);
    return {error.Line(), error.IsFatal() ? "fatal error" : "error", ppdErrName(error.Code()),
            std::to_string(error.Code()) + " " + ppdErrName(error.Code()) + keyword +
                (meant.empty() ? "" : "; did you mean \"" + jsonText(meant.c_str()) + "\"?"),
            std::string(ppdErrRemedy(error.Code()))};
}

Finding findingOf(const PPDLintNote& note) {
    const std::string keyword = note.keyword.empty() ? "" : jsonText(note.keyword.c_str()) + ": ";
    return {note.line, "warning", ppdLintName(note.kind), keyword + jsonText(ppdLintMessage(note).c_str()),
            jsonText(ppdLintRemedy(note).c_str())};
}

Json noteJson(const PPDLintNote& note) {
    return {{"name", ppdLintName(note.kind)},
            {"keyword", jsonText(note.keyword.c_str())},
            {"text", jsonText(note.text.c_str())},
            {"suggestion", jsonText(note.suggestion.c_str())},
            {"message", jsonText(ppdLintMessage(note).c_str())},
            {"remedy", jsonText(ppdLintRemedy(note).c_str())},
            {"line", note.line}};
}

void printJson(const ZANPPD& description, const PPDLint& lint) {
    Json json = Json::object();
    json["errors"] = errorsJson(description);
    PPDXErrors& errors = *description.Errors();
    const PPDXErrorObj* error = errors.First();
    for (Json& each : json["errors"]) {
        each["suggestion"] = jsonText(suggestionFor(description, *error).c_str());
        each["remedy"] = std::string(ppdErrRemedy(error->Code()));
        error = errors.Next();
    }
    json["warnings"] = Json::array();
    for (const PPDLintNote& note : lint.Notes()) {
        json["warnings"].push_back(noteJson(note));
    }
    print(jsonDocument(json));
}

// FILE:LINE: SEVERITY: MESSAGE, and what to do on a line of its own.
void printText(const Finding& finding, const std::string& path) {
    const std::string place = finding.line > 0 ? ":" + std::to_string(finding.line) : "";
    print(printable(path) + place + ": " + finding.severity + ": " + printable(finding.message) +
          "\n    mend: " + printable(finding.remedy) + "\n");
}

// The same on one line, in the form of a compiler. A finding about the whole file is put on its first line.
void printLikeCompiler(const Finding& finding, const std::string& path) {
    print(printable(path) + ":" + std::to_string(std::max(finding.line, 1L)) + ": " + finding.severity +
          ": " + printable(finding.message) + "; " + printable(finding.remedy) + " [" + finding.name + "]\n");
}

void printFindings(const ZANPPD& description, const PPDLint& lint, const LintOptions& options) {
    const auto printOne = options.format == "gcc" ? printLikeCompiler : printText;
    PPDXErrors& errors = *description.Errors();
    for (const PPDXErrorObj* error = errors.First(); error != nullptr; error = errors.Next()) {
        printOne(findingOf(description, *error), options.path);
    }
    for (const PPDLintNote& note : lint.Notes()) {
        printOne(findingOf(note), options.path);
    }
}

bool isUnreadable(const ZANPPD& description) {
    PPDXErrors& errors = *description.Errors();
    const PPDXErrorObj* error = errors.First();
    while (error != nullptr && *error != PPDErr_FileError) {
        error = errors.Next();
    }
    return error != nullptr;
}

// Returns false when the bundle has no list.
bool takeListedNames(const std::string& bundle, PPDLint& lint) {
    const PrinterListFile list(
        CFURLCreateWithFileSystemPath((std::filesystem::path(bundle) / "Contents").string()));
    lint.SetListedFileNames(list.PCFileNames());
    return list.IsValid();
}

ExitStatus runLint(const LintOptions& options) {
    PPDLint lint;
    if (!options.bundle.empty() && !takeListedNames(options.bundle, lint)) {
        return unusable(options.bundle + ": has no Contents/PrinterList.plist with a list of names");
    }
    const auto description = readDescription(options.path, &lint);
    if (options.json || options.format == "json") {
        printJson(*description, lint);
    } else {
        printFindings(*description, lint, options);
    }
    const Result<void> usable = checkUsable(*description, options.path);
    if (isUnreadable(*description)) {
        return unusable(usable.Why());
    }
    if (!usable && !markedEncoding(options.path).empty()) {
        warn(usable.Why().Line()); // the finding asks for a beginning that an editor shows already
    }
    const bool isGood = description->Errors()->Empty() && (!options.strict || lint.Notes().empty());
    return isGood ? ExitStatus::good : ExitStatus::findings;
}

} // namespace

void addLintCommand(CLI::App& app, ExitStatus& status) {
    const auto options = std::make_shared<LintOptions>();
    CLI::App* command = app.add_subcommand("lint", "Tell the errors and doubtful places of a description");
    command->add_option("PPD", options->path, "Extended PPD file")->required();
    command->add_flag("--json", options->json, "As JSON");
    command->add_option("--format", options->format, "Form of the output; gcc is for editors")
        ->check(CLI::IsMember({"text", "gcc", "json"}));
    command->add_flag("--strict", options->strict, "Status 1 for warnings too");
    command->add_option("--bundle", options->bundle, "Warn when this bundle does not list the model")
        ->option_text("FOLDER");
    describe(*command, {.examples = {"torka lint samples/torka-defects.ppd",
                                     "torka lint --strict --format=gcc samples/torka-production.ppd"},
                        .findings = "there is an error, or with --strict a warning"});
    command->callback([options, &status] { status = runLint(*options); });
}

} // namespace torka::tool
