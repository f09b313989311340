// SPDX-License-Identifier: Apache-2.0
#include "tests/model/ZANPPDTestSupport.h"

#include <gmock/gmock.h>

#include <sstream>

// Reads the small descriptions of descriptions.txt, whose head explains them, and compares the findings and
// the model with what stands behind each. samples/torka-defects.ppd shows more mistakes.

namespace torka::tests {
namespace {

using ::testing::ElementsAre;

struct Description {
    std::string title, text, findings, model;

    // The number behind the word in the title.
    int Number(const std::string& word, int otherwise) const {
        const std::size_t at = title.find(word + " ");
        return at == std::string::npos ? otherwise : std::stoi(title.substr(at + word.size()));
    }
};

// With the bytes of its "\xE9".
std::string unescaped(std::string line) {
    for (std::size_t at = 0; (at = line.find("\\x", at)) != std::string::npos; ++at) {
        line.replace(at, 4, 1, static_cast<char>(std::stoi(line.substr(at + 2, 2), nullptr, 16)));
    }
    return line;
}

std::vector<Description> descriptions() {
    std::vector<Description> all;
    std::string head;
    std::string* place = &head;
    std::istringstream lines(readFile(TORKA_SOURCE_DIR "/tests/model/descriptions.txt"));
    for (std::string line; std::getline(lines, line);) {
        const auto part = std::ranges::find(all, line, &Description::title);
        if (line.starts_with("==== ")) {
            all.push_back({line.substr(5), {}, {}, {}});
            place = &all.back().text;
        } else if (line == "----") {
            place = place == &all.back().text ? &all.back().findings : &all.back().model;
        } else {
            *place += part != all.end() ? part->text : unescaped(line) + "\n";
        }
    }
    std::erase_if(all, [](const Description& each) { return each.title.starts_with('@'); });
    return all;
}

std::string told(const PPDXElement& element) {
    return std::string(element.Keyword()) + " \"" + utf8Text(element.CFStringUserName()) + "\"" +
           (element.IsVisible() ? "" : " hidden");
}

std::string headerOf(const ZANPPD& model) {
    std::string text = std::string("extension \"") + model.PathToPDE() + "\"\n";
    for (const auto& [name, value] : {std::pair{"language encoding", model.LanguageEncoding()},
                                      {"model", model.ModelName()},
                                      {"version", model.VersionQV()},
                                      {"maker's version", model.MakerVersion()},
                                      {"file version", model.FileVersionQV()}}) {
        text += value ? std::string(name) + " " + value->Buffer() + "\n" : "";
    }
    return text + "texts in " + (model.Converter() ? model.Converter()->LanguageVersion() : "no language") +
           ", encoding " + std::to_string(GetApplicationTextEncoding()) + ", level " +
           std::to_string(gQVUTF8Version) + "\n" + model.DMTXmlData() + model.DMTInjection();
}

std::string pagesOf(const ZANPPD& model) {
    std::string text;
    const auto addGroup = [&text](PPDXGroup* group) {
        text += "  " + told(*group) + ":";
        if (const auto* rollDown = dynamic_cast<const PPDXRollDown*>(group)) {
            rollDown->Controls().ForEach(
                [&text](const PPDXControl* control) { text += std::string(" ") + control->Keyword(); });
        }
        text += "\n";
    };
    model.GetProperties()->ForEach([&](const PPDXProperty* page) {
        text += "page " + told(*page) + (page->ShowInApp() ? " app" : "") +
                (ShowPropInPrintProp(page) ? " print" : "") + "\n";
        if (PPDXScrollPane* pane = page->GetScrollDown()) {
            text += " pane " + told(*pane) + "\n";
            pane->RollDowns().ForEach(addGroup);
        }
    });
    for (PPDXGroup* group : model.OrphanGroups()) {
        text += group == model.InstallableOptions() ? " installable\n" : " orphan\n";
        addGroup(group);
    }
    for (const PPDXControl* each = model.GetShortcuts()->First(); each; each = model.GetShortcuts()->Next()) {
        text += std::string("shortcut ") + each->Keyword() + "\n";
    }
    return text;
}

// What controls of its kind alone have.
std::string ownOf(const PPDXControl& control) {
    if (const auto* popup = dynamic_cast<const PPDXPopupControl*>(&control)) {
        return popup->CanSelectMultipleItems() ? " several" : "";
    }
    if (const auto* boolean = dynamic_cast<const PPDXBooleanControl*>(&control)) {
        const auto shown = [](const char* name) { return std::string(name ? name : "-"); };
        return " " + shown(boolean->TrueDisplayText()) + "/" + shown(boolean->FalseDisplayText());
    }
    if (const auto* note = dynamic_cast<const PPDXJobNote*>(&control)) {
        return " of " + std::to_string(note->MinLength()) + " to " + std::to_string(note->MaxLength()) +
               " characters, flags " + std::to_string(note->NoteFlags());
    }
    const auto* size = dynamic_cast<const PPDXCustomPageSizeControl*>(&control);
    return size ? " up to " + std::to_string(size->MaxWidth()) + " x " + std::to_string(size->MaxHeight())
                : "";
}

std::string controlsOf(const ZANPPD& model) {
    std::string text;
    model.GetControls()->ForEach([&text](PPDXControl* control) {
        text += told(*control) + ownOf(*control) + (control->IsDynamic() ? " dynamic" : "") +
                (control->IsSetup() ? " setup" : "") + (control->IsCommand() ? " command" : "") +
                (control->IsOrphan() ? " orphan" : "") +
                (control->IsInstallableOption() ? " installable" : "") + " = \"" + valueOf(*control) + "\"\n";
        auto* popup = dynamic_cast<PPDXPopupControl*>(control);
        forEachChoice(*control, [&](const std::string& choice) {
            text += popup ? "  " + choice + " \"" + popup->GetKeywordLocalName(choice.c_str()) + "\"\n" : "";
            std::istringstream code(postScriptOf(*control));
            for (std::string line; std::getline(code, line);) {
                text += "    |" + line + "|\n";
            }
        });
    });
    return text;
}

TEST(Descriptions, AreReadAndJudgedAsWritten) {
    for (const Description& each : descriptions()) {
        SCOPED_TRACE(each.title);
        PPDLint lint;
        lint.SetListedFileNames(CFArrayCreate({cfString("test.ppd")}));
        const std::string before =
            each.text.starts_with("*PPD-Adobe") ? "" : frame + "*%QVVersion: \"4.2\"\n";
        const auto model = parseText(
            before + each.text, {.options = static_cast<_PARSE_OPTIONS_>(each.Number("options", acceptAll)),
                                 .extensions = each.Number("extensions", kAllExtensions),
                                 .lint = &lint});
        std::string findings;
        for (const auto& [line, what] : findingsOf(*model, lint, true)) {
            const long inCase = line == 0 ? 0 : line - std::ranges::count(before, '\n');
            findings += std::to_string(inCase) + " " + what + "\n";
        }
        EXPECT_EQ(findings, each.findings);
        if (!each.model.empty()) {
            const std::string header = before.empty() ? headerOf(*model) : "";
            EXPECT_EQ(header + pagesOf(*model) + controlsOf(*model), each.model);
        }
        for (const PPDXErrorObj* error = model->Errors()->First(); error; error = model->Errors()->Next()) {
            EXPECT_FALSE(ppdErrRemedy(error->Code()).empty());
        }
        for (const PPDLintNote& note : lint.Notes()) {
            EXPECT_EQ(ppdLintMessage(note).find('\n'), std::string::npos);
        }
    }
}

std::string controlText(const std::string& flags, const std::string& group, const std::string& body) {
    return "*%ZANFlags *Key: " + flags + "\n*%ZANGroup *Key: " + group + "\n" + body;
}

TEST(Descriptions, AFatalErrorStandsAlone) {
    EXPECT_THAT(errorsOf(*parseText("*PPD-Adobe: \"4.2\"\n" + popupText("Key"))), ElementsAre("28 "));
    EXPECT_THAT(errorsOf(*parseText("*PPD-Other: \"4.3\"\n" + popupText("Key"))), ElementsAre("28 "));
    EXPECT_THAT(errorsOf(*parseText("\n*PPD-Adobe: \"4.3\"\n")), ElementsAre("28 "));
    EXPECT_THAT(errorsOf(*parseText("\xFF\xFE\x01binary")), ElementsAre("28 "));
    EXPECT_THAT(errorsOf(*parseText("")), ElementsAre("18 "));
    EXPECT_THAT(errorsOf(*parseFile("/nonexistent/file.ppd")), ElementsAre("18 "));
    EXPECT_THAT(errorsOf(*parseFile("/")), ElementsAre("18 "));
    const ZANPPD noFile(CFURLCreateWithString(cfString("http://example.com/x.ppd")), acceptAll, nullptr);
    EXPECT_THAT(errorsOf(noFile), ElementsAre("18 "));
}

// A description that is as large as the limits allow is read; one more ends the parse.
TEST(Descriptions, EachElementCountsUpToTheLimit) {
    const std::size_t inFrame = 7;
    const std::vector<std::pair<std::string, std::size_t>> cases{
        {"*%ZANPropPage Page2/P: True\n", 1},
        {"*%ZANGroupName G/G: True\n*%ZANParent G/Pane: True|Rolldown\n", 2},
        {"*%ZANSubGroupName G/G: True\n", 1},
        {popupText("Key"), 4},
        {controlText("One|Two|Three", "Group", "*%ZANRange *Key/K: 0;1;1;0;\"<*Key>\"\n"), 4},
        {controlText("", "Group",
                     "*OpenUI *Key/K: Boolean\n*DefaultKey: True\n*Key True: \"\"\n*CloseUI: *Key\n"),
         2},
        {"*%ZANJobNote *Key/Note: \n", 1},
        {"*%QVShortcut *Key\n", 1},
        {"*%ZANSpecialOption *Key: 1\n", 1},
        {"*UIConstraints: *A 1 *B\n*%ZANUIRequires: *A *B\n", 2}};
    for (const auto& [lines, count] : cases) {
        ParseSettings settings;
        settings.limits.elements = inFrame + count;
        const std::string text = frame + lines + "*% the last line\n";
        const auto read = parseText(text, settings);
        EXPECT_FALSE(read->HasFatalError()) << lines;
        --settings.limits.elements;
        const auto ended = parseText(text + popupText("Later"), settings);
        EXPECT_TRUE(ended->HasFatalError()) << lines;
        EXPECT_EQ(errorsOf(*ended).back(), "38 ") << lines;
        EXPECT_EQ(find(*ended, "*Later"), nullptr) << lines;
    }
}

TEST(Descriptions, AFileMayHaveTheMaximumOfBytes) {
    ParseSettings settings;
    settings.limits.bytes = frame.size();
    EXPECT_FALSE(parseText(frame, settings)->HasFatalError());
    --settings.limits.bytes;
    EXPECT_THAT(errorsOf(*parseText(frame, settings)), ElementsAre("39 "));
}

TEST(Descriptions, ParsingStopsAtTheFirstErrorWhenAsked) {
    const std::string text = frame + popupText("Before") + "*%ZANFlags\n" + popupText("After");
    EXPECT_NE(find(*parseText(text), "*After"), nullptr);
    const auto stopped = parseText(text, {.stopOnFirstError = true});
    EXPECT_THAT(errorsOf(*stopped), ElementsAre("16 "));
    EXPECT_NE(find(*stopped, "*Before"), nullptr);
    EXPECT_EQ(find(*stopped, "*After"), nullptr);
}

} // namespace
} // namespace torka::tests
