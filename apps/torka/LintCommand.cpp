#include "apps/torka/Command.h"
#include "apps/torka/ModelJson.h"

#include <memory>

namespace torka::tool {

namespace {

struct LintOptions {
    std::string path;
    bool json = false;
};

// Explains the note to the author of the description.
std::string explain(const PPDLintNote& note) {
    switch (note.kind) {
    case PPDLintKind::unknownJobNoteFlag:
        return "the job-note flag word \"" + note.text + "\" is unknown and was skipped";
    case PPDLintKind::unknownConstraintKeyword:
        return "a constraint names this keyword, which nothing defines";
    case PPDLintKind::unknownConstraintOption:
        return "a constraint names the option \"" + note.text + "\", which is not offered";
    case PPDLintKind::unplacedGroup:
        return "the group is declared but no *%ZANParent line places it";
    case PPDLintKind::cutLine:
        return "the line has more than 255 bytes and was cut into pieces";
    case PPDLintKind::untranslatableText:
        return "the text is not valid in the declared *LanguageEncoding";
    case PPDLintKind::unknownDefault:
        return "the default \"" + note.text + "\" names no option; the first one is the default";
    case PPDLintKind::unknownGroup:
        return "the group \"" + note.text + "\" does not exist";
    case PPDLintKind::emptyBlock:
        return "the block has no options";
    case PPDLintKind::unclosedBlock:
        return "the block is not closed before the next element or the end of the file";
    case PPDLintKind::unclosedQuote:
        return "the value has no closing quote and ends where the next keyword begins";
    case PPDLintKind::unreadableByte:
        return "the line holds a byte " + note.text + ", at which its text ends";
    case PPDLintKind::badCustomSize:
        return "the custom size line is not understood";
    case PPDLintKind::badNumber:
        return "\"" + note.text + "\" is not a number that can be used here";
    case PPDLintKind::badDefaultNote:
        return "the default text " + note.text;
    }
    return note.text;
}

Json noteJson(const PPDLintNote& note) {
    return {{"name", ppdLintName(note.kind)},
            {"keyword", jsonText(note.keyword.c_str())},
            {"text", jsonText(note.text.c_str())},
            {"line", note.line}};
}

std::string place(const std::string& path, long line) {
    return printable(path) + (line > 0 ? ":" + std::to_string(line) : "") + ": ";
}

void printFindings(const ZANPPD& description, const PPDLint& lint, const std::string& path) {
    PPDXErrors& errors = *description.Errors();
    for (const PPDXErrorObj* error = errors.First(); error != nullptr; error = errors.Next()) {
        print(place(path, error->Line()) + (error->IsFatal() ? "fatal error " : "error ") +
              std::to_string(error->Code()) + " " + ppdErrName(error->Code()) + " " +
              printable(jsonText(error->Keyword())) + "\n");
    }
    for (const PPDLintNote& note : lint.Notes()) {
        const std::string keyword = note.keyword.empty() ? "" : note.keyword + ": ";
        print(place(path, note.line) + "warning: " + printable(jsonText((keyword + explain(note)).c_str())) +
              "\n");
    }
}

bool isUnreadable(const ZANPPD& description) {
    PPDXErrors& errors = *description.Errors();
    const PPDXErrorObj* first = errors.First();
    return first != nullptr && *first == PPDErr_FileError;
}

ExitStatus runLint(const LintOptions& options) {
    PPDLint lint;
    const auto description = readDescription(options.path, &lint);
    if (options.json) {
        Json warnings = Json::array();
        for (const PPDLintNote& note : lint.Notes()) {
            warnings.push_back(noteJson(note));
        }
        Json json;
        json["errors"] = errorsJson(*description);
        json["warnings"] = std::move(warnings);
        print(jsonDocument(json));
    } else {
        printFindings(*description, lint, options.path);
    }
    if (isUnreadable(*description)) {
        return unusable(checkUsable(*description, options.path).Why());
    }
    return description->Errors()->Empty() && lint.Notes().empty() ? ExitStatus::good : ExitStatus::findings;
}

} // namespace

void addLintCommand(CLI::App& app, ExitStatus& status) {
    const auto options = std::make_shared<LintOptions>();
    CLI::App* command =
        app.add_subcommand("lint", "Check a description and tell its errors and doubtful places");
    command->add_option("FILE", options->path, "Extended PPD file")->required();
    command->add_flag("--json", options->json, "As JSON");
    command->callback([options, &status] { status = runLint(*options); });
}

} // namespace torka::tool
