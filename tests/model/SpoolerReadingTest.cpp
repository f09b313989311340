// SPDX-License-Identifier: Apache-2.0
#include "tests/model/ZANPPDTestSupport.h"

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConstraintForest.h"

#include <cups/ppd.h>

#include <map>
#include <random>
#include <set>

// libcups marks its PPD functions as deprecated, but programs still use them.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

// Compares what the parser reads with what libcups reads from the same file.

namespace torka::tests {
namespace {

// Everything that both readers know, one text for each fact.
using Facts = std::set<std::string>;

constexpr std::array headerNames{"FormatVersion",   "FileVersion",      "PCFileName",
                                 "LanguageVersion", "LanguageEncoding", "ModelName"};

std::string optionFact(const std::string& keyword, const std::string& name, const std::string& option) {
    return "option " + keyword + "/" + name + " default " + option;
}

std::string choiceFact(const std::string& keyword, std::size_t place, const std::string& choice,
                       const std::string& name) {
    return "choice " + keyword + " " + std::to_string(place) + " " + choice + "/" + name;
}

Facts factsOf(const ZANPPD& model) {
    Facts facts;
    const CString* const values[] = {model.FormatVersion(),   model.FileVersion(),      model.PCFileName(),
                                     model.LanguageVersion(), model.LanguageEncoding(), model.ModelName()};
    for (std::size_t i = 0; i < headerNames.size(); ++i) {
        if (values[i] && values[i]->Buffer()) {
            facts.insert(std::string("header ") + headerNames[i] + " " + values[i]->Buffer());
        }
    }
    model.GetControls()->ForEach([&](PPDXControl* control) {
        const std::string keyword = std::string(control->Keyword()).substr(1);
        const std::string name = utf8Text(control->CFStringUserName());
        if (auto* popup = dynamic_cast<PPDXPopupControl*>(control)) {
            facts.insert(optionFact(keyword, name, popup->GetDefaultKeyword()));
            std::size_t place = 0;
            for (const _PopupItem* item = popup->FirstItem(); item; item = popup->NextItem()) {
                facts.insert(choiceFact(keyword, place++, std::string(item->keyword.View()),
                                        utf8Text(item->LocalName())));
            }
        } else if (auto* boolean = dynamic_cast<PPDXBooleanControl*>(control)) {
            facts.insert(optionFact(keyword, name, boolean->DefaultState() ? "True" : "False"));
        }
    });
    const CStringSoup& texts = *model.GetUIConstraints()->GetConstraintStrings();
    model.GetUIConstraints()->GetConstraintForest()->ForEach(
        [&](std::int64_t key, std::int64_t option, const KeyOption& other) {
            facts.insert(std::string("constraint ") + (texts.Find(key) + 1) + " " + texts.Find(option) + " " +
                         (texts.Find(other.key) + 1) + " " + texts.Find(other.option));
            return true;
        });
    return facts;
}

// The options that a constraint line of libcups means: one, or without an option all but None and False.
std::vector<std::string> meantOptions(ppd_file_t* ppd, const char* keyword, const char* choice) {
    if (*choice != '\0') {
        return {choice};
    }
    std::vector<std::string> result;
    if (const ppd_option_t* option = ppdFindOption(ppd, keyword)) {
        for (int i = 0; i < option->num_choices; ++i) {
            const std::string each = option->choices[i].choice;
            if (each != "None" && each != "False") {
                result.push_back(each);
            }
        }
    }
    return result;
}

Facts factsOf(ppd_file_t* ppd) {
    Facts facts;
    for (const char* name : headerNames) {
        if (const ppd_attr_t* value = ppdFindAttr(ppd, name, nullptr)) {
            facts.insert(std::string("header ") + name + " " + value->value);
        }
    }
    for (ppd_option_t* option = ppdFirstOption(ppd); option; option = ppdNextOption(ppd)) {
        facts.insert(optionFact(option->keyword, option->text, option->defchoice));
        // A boolean's names are not kept as items by the parser.
        for (int i = 0; i < option->num_choices && option->ui != PPD_UI_BOOLEAN; ++i) {
            facts.insert(choiceFact(option->keyword, static_cast<std::size_t>(i), option->choices[i].choice,
                                    option->choices[i].text));
        }
    }
    for (int i = 0; i < ppd->num_consts; ++i) {
        const ppd_const_t& line = ppd->consts[i];
        for (const std::string& first : meantOptions(ppd, line.option1, line.choice1)) {
            for (const std::string& second : meantOptions(ppd, line.option2, line.choice2)) {
                facts.insert(std::string("constraint ") + line.option1 + " " + first + " " + line.option2 +
                             " " + second);
            }
        }
    }
    return facts;
}

// The one difference here that docs/extended-ppd.md ("Beside libcups") explains: libcups adds a choice
// "Custom".
bool isExplained(const std::string& libcupsFact) {
    return libcupsFact.find(" Custom ") != std::string::npos || libcupsFact.ends_with(" Custom") ||
           libcupsFact.ends_with(" Custom/Custom");
}

// Reads the file with both and returns what the parser reads.
Facts compare(const std::filesystem::path& path) {
    const std::unique_ptr<ppd_file_t, void (*)(ppd_file_t*)> ppd(ppdOpenFile(path.c_str()), ppdClose);
    EXPECT_TRUE(ppd) << path;
    const Facts ours = factsOf(*parseFile(path));
    const Facts theirs = ppd ? factsOf(ppd.get()) : Facts();
    for (const std::string& fact : ours) {
        EXPECT_TRUE(theirs.contains(fact)) << path << " only ours: " << fact;
    }
    for (const std::string& fact : theirs) {
        EXPECT_TRUE(ours.contains(fact) || isExplained(fact)) << path << " only libcups: " << fact;
    }
    return ours;
}

// What both need to read a file at all.
const std::string heading = "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*LanguageVersion: English\n";

std::string option(const std::string& keyword, const std::string& between = {},
                   const std::string& closing = "*CloseUI: ") {
    return "*%ZANFlags *" + keyword + ":\n*OpenUI *" + keyword + "/" + keyword + ": PickOne\n*Default" +
           keyword + ": B\n*" + keyword + " A/Eins: \"(a)\"\n" + between + "*" + keyword +
           " B/Zwei: \"(b)\"\n" + (closing.empty() ? "" : closing + "*" + keyword + "\n");
}

const std::string neighbours =
    "*UIConstraints: *M A *N B\n*UIConstraints: *N B *M A\n*PCFileName: \"P.PPD\"\n"
    "*ModelName: \"Model\"\n*LanguageEncoding: ISOLatin1\n";

// A forgotten closing line, a line of another element between options, and blanks before colons cost nothing.
TEST(SpoolerReading, NeighboursAndBlanksAreReadAsLibcupsReadsThem) {
    const std::string m = option("M");
    const std::string n = option("N");
    std::string spaced = heading + neighbours + m + n;
    // libcups keeps a blank behind a translation, and the parser drops it: these lines have none.
    for (const std::string keyword :
         {"UIConstraints", "PCFileName", "ModelName", "LanguageEncoding", "DefaultM", "DefaultN",
          "LanguageVersion", "CloseUI", "FormatVersion"}) {
        for (std::size_t at = 0; (at = spaced.find(keyword + ':', at)) != std::string::npos;) {
            at += keyword.size();
            spaced.insert(at, at % 2 == 0 ? " " : " \t");
        }
    }
    const std::string cases[] = {
        heading + neighbours + m + n,
        spaced,
        heading + "*OpenGroup : InstallableOptions/Units\n" + m + n + "*CloseGroup : InstallableOptions\n" +
            neighbours,
        heading + option("M", neighbours) + n,
        heading + option("M", {}, {}) + neighbours + n,
        heading + "*OpenGroup: Other/Other\n" + option("M", {}, {}) + "*CloseGroup: Other\n" + neighbours + n,
    };
    const TemporaryFolder folder;
    for (const std::string& each : cases) {
        SCOPED_TRACE(each);
        const Facts read = compare(folder.Write("case.ppd", each));
        for (const char* fact : {"constraint M A N B", "constraint N B M A", "header PCFileName P.PPD",
                                 "header LanguageEncoding ISOLatin1", "option M/M default B"}) {
            EXPECT_TRUE(read.contains(fact)) << fact;
        }
    }
}

// A line or a name for which libcups refuses a whole description is a finding, and no other is.
TEST(SpoolerReading, LintTellsTheLinesThatLibcupsRefuses) {
    const std::string part = option("M", "*Other X/Y: \"one\ntwo\"\n*End\n") + neighbours;
    const std::string_view pieces[] = {
        "*",  "%",  ":",    "\"",      " ",      "\t",
        "/",  "A",  "\n",   "\x7f",    "\xE9",   "\x1A",
        "\f", "\v", "\x01", {"\0", 1}, "\n*%\"", "QQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQQ"};
    const TemporaryFolder folder;
    std::mt19937 random(5);
    std::map<bool, int> seen;
    for (int trial = 0; trial < 800; ++trial) {
        std::string text = part;
        for (std::size_t changes = 1 + random() % 3; changes > 0; --changes) {
            text.replace(random() % text.size(), random() % 2, pieces[random() % std::size(pieces)]);
        }
        const std::string path = folder.Write("case.ppd", heading + text);
        const std::unique_ptr<ppd_file_t, void (*)(ppd_file_t*)> ppd(ppdOpenFile(path.c_str()), ppdClose);
        int line = 0;
        const ppd_status_t status = ppd ? PPD_OK : ppdLastError(&line);
        const bool isRefused = status == PPD_MISSING_ASTERISK || status == PPD_ILLEGAL_MAIN_KEYWORD ||
                               status == PPD_ILLEGAL_OPTION_KEYWORD;
        if (!ppd && !isRefused) {
            continue; // it stopped at something else
        }
        PPDLint lint;
        const auto model = parseFile(path, {.lint = &lint});
        const auto first = std::ranges::find_if(lint.Notes(), [](const PPDLintNote& note) {
            return note.kind == PPDLintKind::lineWithoutAsterisk || note.kind == PPDLintKind::refusedName;
        });
        ASSERT_EQ(first != lint.Notes().end(), isRefused) << text;
        // libcups counts the lines up to the end of a value, and not the one of a byte 0x1A alone.
        ASSERT_LE(isRefused ? first->line : line, line + std::ranges::count(text, '\x1A')) << text;
        ++seen[isRefused];
    }
    EXPECT_GT(seen[true], 100);
    EXPECT_GT(seen[false], 100);
}

// The descriptions that the spooler's own compiler makes of its sample drivers, and random ones.
TEST(SpoolerReading, MadeDescriptionsAreReadAsLibcupsReadsThem) {
    const TemporaryFolder folder;
    const CommandResult made = runCommand({"ppdc", "-d", folder / "plain", "/usr/share/cups/drv/sample.drv"});
    ASSERT_EQ(made.status, 0) << made.errors;
    runPython(R"(
import pathlib, random, runpy, sys
scripts, folder = sys.argv[1:]
plain = pathlib.Path(folder, 'plain')
def run(script, *arguments):
    sys.argv = [script, *map(str, arguments)]
    runpy.run_path(scripts + script, run_name='__main__')
for seed in range(120):
    rng = random.Random(seed)
    sizes = rng.randint(4, 12), rng.randint(4, 6), 2 * rng.randint(0, 12)
    run('make-ppd', '--seed', seed, *sizes, plain / f'{seed}.ppd')
for each in plain.iterdir():
    run('announce-ppd', each, f'{folder}/{each.name}')
)",
              {TORKA_SOURCE_DIR "/scripts/", folder.Path()});
    int compared = 0;
    for (const auto& each : std::filesystem::directory_iterator(folder.Path())) {
        if (each.is_regular_file()) {
            EXPECT_GT(compare(each.path()).size(), 15U) << each.path();
            ++compared;
        }
    }
    EXPECT_GT(compared, 130);
}

} // namespace
} // namespace torka::tests
