// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "output/FeatureEmission.h"
#include "platform/TextEncoding.h"
#include "spooler/SpliceFile.h"
#include "spooler/TicketReader.h"
#include "tests/pane/PaneFixture.h"

#include <gtest/gtest.h>

#include <fstream>

// Compares whole tickets with those in tests/pane/golden, which were reviewed line by line. A file begins
// with its situation, lines of "# WHAT: KEY TEXT". The key is one word. Writes a ticket that differs to
// golden/ in the build folder, for diff.

namespace torka::tests {

namespace {

struct Fact {
    std::string what, key, text;
};

struct Situation {
    explicit Situation(const std::filesystem::path& file)
        : name(file.stem()) {
        std::ifstream lines(file);
        for (std::string line; lines.peek() == '#' && std::getline(lines, line);) {
            head += line + "\n";
            for (const auto& [written, meant] : {std::pair{"\\n", '\n'}, {"\\r", '\r'}}) {
                for (std::size_t at = 0; (at = line.find(written)) != std::string::npos;) {
                    line.replace(at, 2, 1, meant);
                }
            }
            const std::size_t colon = line.find(':');
            const std::string rest = line.substr(std::min(colon + 2, line.size()));
            const std::size_t blank = std::min(rest.find(' '), rest.size());
            facts.push_back({line.substr(2, colon - 2), rest.substr(0, blank),
                             rest.substr(std::min(blank + 1, rest.size()))});
        }
    }
    const Fact* Find(const std::string& what) const {
        const auto found = std::ranges::find(facts, what, &Fact::what);
        return found == facts.end() ? nullptr : &*found;
    }

    std::string name, head;
    std::vector<Fact> facts;
};

void PrintTo(const Situation& situation, std::ostream* stream) { *stream << situation.name; }

std::vector<Situation> situations() {
    std::vector<Situation> all;
    for (const auto& file : std::filesystem::directory_iterator(TORKA_SOURCE_DIR "/tests/pane/golden")) {
        all.emplace_back(file.path());
    }
    return all;
}

// Every control with special handling, and one without.
std::string smallDescription(const std::string& version, const std::string& language) {
    return paneHeader + "*LanguageVersion: " + language + "\n*%QVVersion: \"" +
           (language == "English" ? "4.2" : "3.1") + "\"\n" +
           (version == "-" ? "" : "*%ZANSpecialOption *QVUTF8_Version: " + version + "\n") +
           popup("PageSize", {"A4", "Letter"}) + popup("QVDuplex", {"None", "Tumble"}) +
           popup("QVOrientation", {"Portrait", "Landscape"}) + popup("Collate", {"True", "False"}) +
           popup("QVPrintSize", {"SameAsPageSize", "A4", "Letter", "CustomPrintSize"}) +
           "*%ParamCustomPrintSize Width: 1 points 283.46 936\n"
           "*%ParamCustomPrintSize Height: 2 points 419.53 1368\n" +
           popup("QVOutProfile", {"Coated", "Plain"}) + popup("QVSimulation", {"None", "Press"}) +
           popup("QVCurveAdjust", {"None", "Soft"}) + popup("QVControlBar", {"Narrow", "True", "Wide"}) +
           range("QVScale", "5;400;1;100") + popup("QVDestination", {"Print", "File"}) +
           jobNote("QVMailboxName") + jobNote("Notes1");
}

std::string shown(std::string_view bytes) {
    const bool isText = decodeText(bytes, kCFStringEncodingUTF8).has_value();
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const bool isMark = bytes.substr(i).starts_with("\xEF\xBB\xBF");
        if (byte == '\n') {
            text += i + 1 < bytes.size() ? "\n    |" : "";
            text += i + 1 < bytes.size() && bytes[i + 1] != '\n' ? " " : "";
        } else if (isMark) {
            text += "<EF><BB><BF>";
            i += 2;
        } else if (byte < ' ' || (byte >= 0x80 && !isText)) {
            constexpr char digits[] = "0123456789ABCDEF";
            text += {'<', digits[byte >> 4U], digits[byte & 15U], '>'};
        } else {
            text += bytes[i];
        }
    }
    return text +
           (bytes.ends_with('\n') || bytes.find('\n') == std::string_view::npos ? "" : "<no line end>");
}

std::string shown(const ZANJobTicket& ticket) {
    std::string text;
    for (const ZANJobTicket::Entry& entry : ticket.Entries()) {
        const std::string site = std::to_string(entry.site);
        text += std::string(4 - std::min<std::size_t>(site.size(), 4), ' ') + site + "| " +
                shown(entry.bytes) + "\n";
    }
    return text;
}

Pane paneOf(const Situation& situation) {
    if (const Fact* sample = situation.Find("sample")) {
        return Pane::OfFile(TORKA_SOURCE_DIR "/samples/" + sample->key);
    }
    const Fact* small = situation.Find("description");
    return Pane(small == nullptr ? paneHeader : smallDescription(small->key, small->text));
}

// Takes the facts in their order.
void prepare(Pane& pane, HostApplication& host, const Situation& situation) {
    PDEData& data = *pane.data;
    data.SetIPAddressEnabled(situation.Find("two-way") != nullptr);
    data.SetPageSizeFromOS(situation.Find("page-size-from-system") != nullptr);
    const std::map<std::string, SettingList*> lists = {{"mixed-media", &data.MixedMediaList()},
                                                       {"pad-cover", &data.PadCoverList()},
                                                       {"slip-sheet", &data.SlipSheetList()},
                                                       {"cover-page", &data.CoverPageList()}};
    const std::map<std::string, std::string*> texts = {{"host-identifier", &host.bundleIdentifier},
                                                       {"host-version", &host.shortVersionString},
                                                       {"host-name", &host.processName}};
    std::size_t accounts = 0;
    for (const auto& [what, key, text] : situation.facts) {
        const WideSetting pair{wideFromUtf8(key), wideFromUtf8(text)};
        if (what == "orientation") {
            pane.format->orientation = static_cast<std::uint16_t>(std::stoi(key));
        } else if (what == "set") {
            pane.Set(key.c_str(), text.c_str());
        } else if (what == "pages-on-a-sheet") {
            const std::string layout = "com.apple.print.PrintSettings.PMLayout";
            pane.Store(layout + "NUp", CFBooleanCreate(true));
            pane.Store(layout + "Columns", CFNumberCreate(std::stoi(key)));
        } else if (what == "account") {
            data.AccountPairs()[accounts++] = pair;
        } else if (what == "made-note") { // a panel makes such notes for choices that the controller supplies
            auto* note = new PPDXJobNote(key.c_str(), cfString(key), nullptr, nullptr, 0, nullptr, 255,
                                         jobNoteUTF8, 0);
            note->SetNotes(text.c_str());
            pane.model->GetControls()->Add(note); // takes the ownership
        } else if (what == "watermark") {
            data.Watermarks().Append(std::make_unique<ZANWatermark>(key.c_str()));
            data.Watermarks().Select(0);
        } else if (const auto place = texts.find(what); place != texts.end()) {
            *place->second = key;
        } else if (const auto list = lists.find(what); list != lists.end()) {
            list->second->Append(pair);
        }
    }
}

class GoldenTicket : public ::testing::TestWithParam<Situation> {
protected:
    static void SetUpTestSuite() { spliced = std::make_unique<TemporaryFolder>(); }
    // One run takes the documents of all tickets.
    static void TearDownTestSuite() {
        std::vector<std::string> documents;
        for (const auto& file : std::filesystem::directory_iterator(spliced->Path())) {
            documents.push_back(file.path());
        }
        EXPECT_EQ(runGhostscript("nullpage", documents), "");
        spliced.reset();
    }
    static inline std::unique_ptr<TemporaryFolder> spliced;
};

TEST_P(GoldenTicket, IsTheReviewedOneAndItsDocumentRuns) {
    const Situation& situation = GetParam();
    ScopedMemorySystem system;
    system->host = {"org.torka.editor", "2.1", "Page Editor"};
    Pane pane = paneOf(situation);
    const bool isPrinted = situation.Find("printed") != nullptr;
    prepare(pane, system->host, situation);
    PrintSettingsTicket dictionary(pane.session, pane.settings);
    ZANJobTicket ticket(&dictionary, pane.settings, cfString("ZAN.PSData"));
    EXPECT_EQ(
        pane.data->OutPostscriptData(ticket, pane.session,
                                     isPrinted ? EmissionPurpose::printJob : EmissionPurpose::keepSettings),
        0);
    const std::string text = situation.head + shown(ticket);
    const std::string golden = TORKA_SOURCE_DIR "/tests/pane/golden/" + situation.name + ".txt";
    if (readFile(golden) != text) {
        const std::filesystem::path folder = TORKA_BINARY_DIR "/golden";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / (situation.name + ".txt"), std::ios::binary) << text;
        ADD_FAILURE() << "diff " << golden << " " << (folder / (situation.name + ".txt")).string();
    }

    // The printer receives the file destination only when a job is printed.
    ASSERT_EQ(pane.printer->sent.size(), isPrinted ? 1U : 0U);
    if (isPrinted) {
        EXPECT_EQ(utf8Text(pane.printer->sent[0].title), "Command_PSQVDestination");
        EXPECT_EQ(utf8Text(pane.printer->sent[0].command), "/Library/Caches/ZAN/proofs");
    }
    if (!situation.Find("two-way") && situation.Find("made-note")) {
        const std::string key = situation.Find("made-note")->key;
        EXPECT_STREQ(pane.model->GetControls()->FindJobNote(key.c_str(), true)->GetNotes(), "");
    }
    // The same input gives the same bytes.
    ZANJobTicket again(&dictionary, pane.settings, cfString("ZAN.PSData"));
    pane.data->OutPostscriptData(again, pane.session, EmissionPurpose::keepSettings);
    EXPECT_EQ(situation.head + shown(again), text);

    const Result<Ticket> read = readTicket(CFDataGetBytes(ticket.Save()));
    ASSERT_TRUE(read) << read.Why().Line();
    const std::string document = *spliced / situation.name;
    const SpliceOutcome outcome = spliceFile(TORKA_SOURCE_DIR "/samples/brochure.ps", *read, document);
    ASSERT_EQ(outcome.status, SpliceStatus::ok) << outcome.errorText;
}

INSTANTIATE_TEST_SUITE_P(Situations, GoldenTicket, ::testing::ValuesIn(situations()),
                         [](const ::testing::TestParamInfo<Situation>& each) {
                             std::string name = each.param.name;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

} // namespace

} // namespace torka::tests
