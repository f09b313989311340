// SPDX-License-Identifier: Apache-2.0
// Takes a whole job through: a random description, random settings, the ticket, and a random document with
// the ticket spliced in.
//
// - A control writes as many bytes as it announces.
// - A choice is forbidden exactly when the oracle of the constraint store says so.
// - The saved ticket is read back entry by entry, and its property list is written again byte for byte.
// - The spliced document has the pages and page bodies of the document, and every setup entry as it is.
// - A protected note's text is in no entry, in no message and not in the document, as it is or as digits.
//
// Input: choices for the generator below, one byte each. The end of the input reads as zeros.

#include "fuzz/ConstraintOracle.h"
#include "fuzz/PaneFuzzing.h"
#include "fuzz/SampleKeys.h"
#include "output/FeatureEmission.h"
#include "output/ZANJobNote.h"
#include "output/ZANJobTicket.h"
#include "platform/PropertyList.h"
#include "spooler/Splicer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace torka;
using namespace torka::fuzz;

// Nothing else in a job holds it: the other texts lack its letters.
constexpr std::string_view secretMark = "Zq7pWx9K";

class Dice {
public:
    Dice(const std::uint8_t* data, std::size_t size)
        : bytes(data, size) {}
    unsigned Below(unsigned limit) {
        const unsigned value = bytes.empty() ? 0 : bytes.front();
        bytes = bytes.subspan(bytes.empty() ? 0 : 1);
        return value % limit;
    }
    bool Chance(unsigned one) { return Below(one) == one - 1; }
    // Characters with a meaning for descriptions, PostScript, comments, hex strings and property lists.
    std::string Text(unsigned most) {
        static constexpr std::array pieces = {
            "a",     "b",        "(",  ")",  "\\",  "%",  "<", ">", "/", "\n", "*",
            ":",     "\r",       "\t", ";",  "|",   "&",  ",", "{", "}", "0",  "-1",
            "%%End", "\xC3\xA9", " ",  "[{", "]]>", "//", "~", "#", "=", "\f", "\xE5\x8D\xB0",
            "<*a>"};
        std::string text;
        for (unsigned i = Below(most + 1); i > 0; --i) {
            text += pieces[Below(pieces.size())];
        }
        for (unsigned i = Chance(16) ? Below(8) : 0; i > 0 && text.size() < 8192; --i) {
            text += text; // longer than what a ticket takes
        }
        return text;
    }

private:
    std::span<const std::uint8_t> bytes;
};

struct Choices {
    std::vector<std::string> options;
    std::string current;
};

struct Job {
    std::string description;
    std::map<std::string, Choices> choices; // popups and booleans, by keyword
    std::vector<std::string> keywords;      // of the other controls
    std::vector<std::string> secrets;       // keywords of protected notes
    oracle::Store store;
};

// A quoted value: it must hold no quote, and no line that begins with "*".
std::string quoted(std::string text) {
    for (std::size_t at = text.find_first_of("\r\n"); at != std::string::npos;
         at = text.find_first_of("\r\n", at + 1)) {
        text.insert(at + 1, " ");
    }
    return "\"" + text + "\"\n";
}

void addChoices(Dice& dice, Job& job, const std::string& keyword, bool isBoolean) {
    Choices& made = job.choices[keyword];
    if (isBoolean) {
        made.options = {"True", "False"};
    } else {
        made.options = {"C0", "C1", "C2", "C3", "None", "False", "CustomPrintSize", "File"};
        made.options.resize(1 + dice.Below(8));
    }
    made.current = made.options[dice.Below(static_cast<unsigned>(made.options.size()))];
    const bool isMakers = dice.Chance(4);
    job.description += std::string("*OpenUI") + (isMakers ? "ZAN *" : " *") + keyword + "/" + keyword + ": " +
                       (isBoolean ? "Boolean" : "PickOne") + "\n*Default" + keyword + ": " + made.current +
                       "\n";
    for (const std::string& option : made.options) {
        job.description += "*" + keyword + " " + option + ": " + quoted(dice.Text(24));
        job.store.record("*" + keyword, option);
    }
    job.description += std::string("*CloseUI") + (isMakers ? "ZAN" : "") + ": *" + keyword + "\n";
}

void addNote(Dice& dice, Job& job, const std::string& keyword) {
    static constexpr std::array words = {"UTF8",    "Password",     "Alpha",  "LengthReq", "MinLength4",
                                         "PopupJN", "TwoCharField", "Hyphen", "Encrypt",   "AESEncrypt"};
    std::string line =
        "*%ZANJobNote *" + keyword + "/" + keyword + ": " + std::to_string(8 + dice.Below(248));
    bool isSecret = keyword == "QVUserAuthPwd";
    for (unsigned i = dice.Below(4); i > 0; --i) {
        const std::string word = words[dice.Below(words.size())];
        line += "|" + word;
        isSecret = isSecret || word.find("Encrypt") != std::string::npos;
    }
    job.description += line + "\n";
    if (dice.Chance(4)) {
        job.description += "*%Default" + keyword + ": " + quoted(dice.Text(4));
    }
    static constexpr std::array templates = {"(", "%% ", "<<", "% ("};
    job.description += "*%" + keyword + ": " +
                       quoted(templates[dice.Below(4)] + std::string("<*") + keyword + ">)" + dice.Text(4));
    (isSecret ? job.secrets : job.keywords).push_back(keyword);
}

void addControl(Dice& dice, Job& job, std::vector<std::string>& left) {
    const auto at = left.begin() + dice.Below(static_cast<unsigned>(left.size()));
    const std::string keyword = *at;
    left.erase(at);
    static constexpr std::array flags = {"Dynamic", "Command", "Spooler", "Setup|MacFJN", "NoTorkaDriverUI"};
    job.description += "*%ZANFlags *" + keyword + ": " + flags[dice.Below(5)] + "\n*%ZANGroup *" + keyword +
                       ": " + (dice.Chance(8) ? "Dark" : "Group") + "\n";
    switch (dice.Below(5)) {
    case 0:
        return addChoices(dice, job, keyword, true);
    case 1:
        return addNote(dice, job, keyword);
    case 2: {
        const bool isFloat = dice.Chance(2);
        job.description += std::string(isFloat ? "*%ZANFloatRange *" : "*%ZANRange *") + keyword + "/" +
                           keyword + ": " + std::to_string(dice.Below(256)) + ";" +
                           std::to_string(dice.Below(256) * 99U) + ";" + std::to_string(dice.Below(4)) + ";" +
                           std::to_string(dice.Below(256)) + ";" +
                           quoted("<*" + keyword + ">" + dice.Text(8));
        job.keywords.push_back(keyword);
        return;
    }
    default:
        return addChoices(dice, job, keyword, false);
    }
}

void addConstraint(Dice& dice, Job& job) {
    const auto pair = [&]() -> std::pair<std::string, std::string> {
        const auto end = static_cast<unsigned>(job.choices.size());
        const unsigned which = dice.Below(end + 1);
        if (which == end) {
            return {"Unknown", "C1"};
        }
        const auto& [keyword, made] = *std::next(job.choices.begin(), which);
        const auto count = static_cast<unsigned>(made.options.size());
        const unsigned option = dice.Below(count + 2);
        return {keyword, option < count ? made.options[option] : option == count ? "" : "Lost"};
    };
    const auto [key1, option1] = pair();
    const auto [key2, option2] = pair();
    static constexpr std::array forms = {"UIConstraints", "%ZANUIConstraints", "%ZANUIRequires"};
    const unsigned form = dice.Below(3);
    job.description +=
        std::string("*") + forms[form] + ": *" + key1 + " " + option1 + " *" + key2 + " " + option2 + "\n";
    job.store.addLine("*" + key1, option1, "*" + key2, option2, form == 2);
}

Job makeJob(Dice& dice) {
    Job job;
    static constexpr std::array languages = {"English", "Japanese", "Russian"};
    static constexpr std::array encodings = {"UTF-8", "ISOLatin1", "JIS83-RKSJ", "MacStandard"};
    job.description = std::string("*PPD-Adobe: \"4.3\"\n*LanguageVersion: ") + languages[dice.Below(3)] +
                      "\n*LanguageEncoding: " + encodings[dice.Below(4)] + "\n*%QVVersion: \"" +
                      std::to_string(3 + dice.Below(2)) +
                      ".1\"\n*%ZANPropPage Page/Page: True\n*%ZANGroupName Pane/Pane: True\n"
                      "*%ZANGroupName Group/Group: True\n*%ZANGroupName Dark/Dark: False\n"
                      "*%ZANParent Pane/Page: True|Scrollpane\n*%ZANParent Group/Pane: True|Rolldown\n"
                      "*%ZANParent Dark/Pane: False|Rolldown\n*%ZANSpecialOption *QVUTF8_Version: " +
                      std::to_string(dice.Below(8)) + "\n";
    for (const char* option : {"*UseSpecialKey: 5", "*UseSpecialAlgorithm: 2", "*CopierUserAuth: True",
                               "*QVCustomPgSzRoundingOff: True", "*ZANAuthenticateWithLDAP: True"}) {
        job.description += dice.Chance(4) ? std::string("*%ZANSpecialOption ") + option + "\n" : "";
    }
    std::vector<std::string> left = {"K0",
                                     "K1",
                                     "K2",
                                     "K3",
                                     "PageSize",
                                     "QVPrintSize",
                                     "QVScale",
                                     "QVDuplex",
                                     "QVOutProfile",
                                     "QVSimulation",
                                     "QVCurveAdjust",
                                     "QVControlBar",
                                     "Notes1",
                                     "Resume",
                                     "DeptPassword",
                                     "QVUserAuthName",
                                     "QVUserAuthPwd",
                                     "QVDSPassword",
                                     "QVDestination",
                                     "QVMailboxName",
                                     "Notes2",
                                     "K4"};
    for (unsigned i = 1 + dice.Below(12); i > 0; --i) {
        addControl(dice, job, left);
    }
    if (dice.Chance(2)) {
        job.description += "*%ParamCustomPrintSize Width: 1 points 283.46 936\n"
                           "*%ParamCustomPrintSize Height: 2 points 419.53 1368\n";
        job.keywords.emplace_back("CustomPrintSize");
    }
    for (unsigned i = dice.Below(12); i > 0; --i) {
        addConstraint(dice, job);
    }
    job.store.resolve();
    return job;
}

void choose(Dice& dice, Job& job, ZANPPD& model) {
    const auto set = [&model](const std::string& keyword, const std::string& value) {
        model.SetValueForKey(cfString("*" + keyword), cfString(value));
    };
    for (auto& [keyword, made] : job.choices) {
        if (dice.Chance(2)) {
            made.current = made.options[dice.Below(static_cast<unsigned>(made.options.size()))];
            set(keyword, made.current);
        }
        oracle::insert(job.store.current, job.store.find("*" + keyword), job.store.find(made.current));
        require(utf8Text(model.CopyValueForKey(cfString("*" + keyword))) == made.current);
    }
    for (const std::string& keyword : job.keywords) {
        set(keyword, keyword == "CustomPrintSize" ? std::to_string(dice.Below(256) * 9U) + " 601.5"
                     : dice.Chance(2)             ? std::to_string(dice.Below(256))
                                                  : dice.Text(20));
    }
    for (const std::string& keyword : job.secrets) {
        set(keyword, std::string(secretMark) + dice.Text(4));
    }
}

void checkConstraints(const Job& job, const ZANPPD& model) {
    for (const auto& [keyword, made] : job.choices) {
        for (const std::string& option : made.options) {
            const oracle::Id key = job.store.find("*" + keyword);
            const bool isForbidden = !job.store.test({{key, job.store.find(option)}}).conflicts.empty();
            require(model.IsKVConstrained(("*" + keyword).c_str(), option.c_str()) == isForbidden);
        }
    }
}

void checkSizes(const ZANPPD& model) {
    model.GetControls()->ForEach([](PPDXControl* control) {
        const long size = control->PostScript(nullptr);
        require(size >= 0);
        std::vector<unsigned char> out(static_cast<std::size_t>(size));
        require(control->PostScript(out.data()) == size);
    });
}

class Secrecy {
public:
    explicit Secrecy(bool isNeeded)
        : isOn(isNeeded) {
        for (const char each : secretMark) {
            constexpr std::string_view digits = "0123456789ABCDEF";
            hex += digits[static_cast<unsigned char>(each) / 16U];
            hex += digits[static_cast<unsigned char>(each) % 16U];
        }
    }
    void Check(std::string_view text) const {
        if (isOn) {
            std::string upper(text);
            std::ranges::transform(upper, upper.begin(), [](unsigned char each) {
                return each >= 'a' && each <= 'f' ? static_cast<char>(each - 32) : static_cast<char>(each);
            });
            require(text.find(secretMark) == std::string_view::npos && upper.find(hex) == std::string::npos);
        }
    }

private:
    bool isOn;
    std::string hex;
};

Ticket checkTicket(ZANJobTicket& written, const Secrecy& secrecy) {
    const CFDataRef xml = written.Save();
    require(xml && !written.SaveError());
    Result<Ticket> read = readTicket(CFDataGetBytes(xml));
    require(static_cast<bool>(read) && read->warnings.empty());
    const std::vector<ZANJobTicket::Entry> entries = written.Entries();
    require(std::ranges::equal(entries, read->entries, [](const auto& left, const TicketEntry& right) {
        return left.site == right.site && left.bytes == right.bytes;
    }));
    const CFPropertyListRef list = CFPropertyListCreateFromXMLData(xml);
    require(list && CFEqual(CFPropertyListCreateXMLData(list), xml));
    for (const TicketEntry& entry : read->entries) {
        secrecy.Check(entry.bytes);
    }
    return *std::move(read);
}

std::string makeDocument(Dice& dice, const Job& job) {
    const std::string header = "%!PS-Adobe-3.0\n";
    std::string text = header;
    const auto feature = [&] {
        const auto which = dice.Below(static_cast<unsigned>(job.choices.size()) + 1);
        const std::string keyword =
            which < job.choices.size() ? std::next(job.choices.begin(), which)->first : "Other";
        if (dice.Chance(4)) {
            text += "%%IncludeFeature: *" + keyword + " C0\n";
            return;
        }
        const bool isWrapped = dice.Chance(2);
        text += isWrapped ? "[{\n" : "";
        text += "%%BeginFeature: *" + keyword + " C0\n" + dice.Text(4) + "\n%%EndFeature\n";
        text += isWrapped && !dice.Chance(4) ? "} stopped cleartomark\n" : "";
    };
    if (dice.Chance(2)) {
        text += "%%Title: (a)\n%%EndComments\n";
    }
    if (dice.Chance(2)) {
        text += "%%BeginProlog\n/a { } def\n%%EndProlog\n";
    }
    if (dice.Chance(2)) {
        text += "%%BeginSetup\n";
        for (unsigned i = dice.Below(4); i > 0; --i) {
            feature();
        }
        text += "%%EndSetup\n";
    }
    for (unsigned page = 1, last = dice.Below(5); page <= last; ++page) {
        text += "%%Page: " + std::to_string(page) + " " + std::to_string(page) + "\n";
        if (dice.Chance(2)) {
            text += "%%BeginPageSetup\n";
            feature();
            text += "%%EndPageSetup\n";
        }
        text += "(page body " + std::to_string(dice.Below(256)) + ") show\n";
        if (dice.Chance(4)) {
            text += "%%BeginDocument: inner\n%!PS-Adobe-3.0\n%%Page: 1 1\n%%EOF\n%%EndDocument\n";
        }
        text += dice.Text(4) + "\nshowpage\n";
    }
    text += "%%Trailer\n%%EOF\n";
    if (dice.Chance(8)) { // cut behind its first line, without which it is no PostScript
        text.resize(header.size() + dice.Below(static_cast<unsigned>(text.size() - header.size())));
    }
    return text;
}

std::vector<std::string> pagesOf(std::string_view document) {
    std::vector<std::string> pages;
    for (std::size_t at = 0; at < document.size();) {
        const std::string_view text = document.substr(at, document.find('\n', at) - at);
        at += text.size() + 1;
        if (text.starts_with("%%Page:") || text.starts_with("(page body ") || text == "showpage") {
            pages.emplace_back(text);
        }
    }
    return pages;
}

void checkSplice(Dice& dice, const Job& job, Ticket ticket, const Secrecy& secrecy) {
    const std::string document = makeDocument(dice, job);
    if (dice.Chance(2)) {
        ticket.unguarded = unguardedNotes(job.description);
    }
    StringSink sink;
    Splicer splicer(ticket, sink);
    splicer.Write(document);
    const SpliceStatus status = splicer.Finish();
    require(status == SpliceStatus::ok || status == SpliceStatus::entriesLeft);
    const SpliceReport& report = splicer.Report();
    require(report.bytesWritten == sink.text.size() &&
            report.bytesWritten == document.size() - report.bytesRemoved + report.bytesInserted);
    require(pagesOf(sink.text) == pagesOf(document));
    secrecy.Check(sink.text);
    for (const std::string& warning : report.warnings) {
        secrecy.Check(warning);
    }
    if (status != SpliceStatus::ok) {
        return;
    }
    std::size_t from = 0;
    for (const PostScriptInjectionSite site : {sitePageSize, siteDocumentSetup, siteSetupEnd}) {
        for (const TicketEntry& entry : ticket.entries) {
            if (entry.site == site) {
                const std::size_t at = sink.text.find(entry.bytes, from);
                require(at != std::string::npos);
                from = at + entry.bytes.size();
            }
        }
    }
}

void fillSides(Dice& dice, PDEData& data) {
    for (SettingList* list : data.SideLists()) {
        for (unsigned i = dice.Chance(4) ? dice.Below(3) : 0; i > 0; --i) {
            list->Append({wideFromUtf8(dice.Text(4)), wideFromUtf8(dice.Text(8))});
        }
    }
    if (dice.Chance(4)) {
        const std::string definition =
            "0,0,0,200,0,0,0,0,0," + std::to_string(dice.Below(256)) + ",0,0,48,Helvetica," + dice.Text(12);
        data.Watermarks().Append(std::make_unique<ZANWatermark>(definition.c_str()));
        data.Watermarks().Select(0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    quietPane();
    Dice dice(bytes, size);
    installFieldKeys(dice.Chance(4) ? nullptr : sampleKeys());
    Job job = makeJob(dice);
    const std::unique_ptr<ZANPPD> model = parsedModel(job.description.c_str());
    choose(dice, job, *model);
    checkConstraints(job, *model);
    checkSizes(*model);

    const auto settings = std::make_shared<MemoryPrintSettings>();
    const std::unique_ptr<PDEData> data = paneData(*model, settings);
    data->SetPageFormat(std::make_shared<MemoryPageFormat>(static_cast<std::uint16_t>(1 + dice.Below(4))));
    data->SetIPAddressEnabled(dice.Chance(2));
    data->SetPageSizeFromOS(dice.Chance(4));
    fillSides(dice, *data);
    const auto session = std::make_shared<MemorySession>(std::make_shared<MemoryPrinter>());
    PrintSettingsTicket dictionary(session, settings);
    ZANJobTicket ticket(&dictionary, settings, cfString("ZAN.PSData"));
    data->OutPostscriptData(ticket, session,
                            dice.Chance(2) ? EmissionPurpose::printJob : EmissionPurpose::keepSettings);
    const Secrecy secrecy(!job.secrets.empty());
    checkSplice(dice, job, checkTicket(ticket, secrecy), secrecy);
    return 0;
}
