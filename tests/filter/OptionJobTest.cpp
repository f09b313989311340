// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/OptionJob.h"

#include "connection/ZANCorvianPrinterPList.h"
#include "jobsettings/OptionText.h"
#include "tests/connection/RecordPPD.h"
#include "tests/filter/FilterHarness.h"

#include <gmock/gmock.h>
#include <sstream>

// Tickets from the options of jobs, as the print server passes them.

namespace torka::tests {
namespace {

using namespace filter;
using ::testing::HasSubstr;
using ::testing::Not;

const std::string sample = TORKA_SOURCE_DIR "/samples/torka-production.ppd";
const std::string definition = "0,0,0,200,30,30,0,0,0,450,0,0,90,Helvetica-Bold,";

std::optional<OptionJob> read(const std::string& options, const std::string& ppd = sample,
                              SecretNotes secrets = SecretNotes::refused,
                              const std::string& type = "application/pdf",
                              const std::string& printerClass = {}) {
    const char* arguments[] = {"torkafilter", "1", "anna", "title", "1", options.c_str()};
    FilterJob job = *readFilterJob(6, arguments);
    job.queue = "Proofs";
    job.printerClass = printerClass;
    job.description = ppd;
    job.contentType = type;
    return readOptionJob(job, secrets);
}

struct Made {
    std::string refusal;
    std::string entries; // the suppressed keywords stand in brackets
    std::string told;
};

// A job that has settings.
template <typename... Arguments>
Made made(const Arguments&... arguments) {
    const std::optional<OptionJob> given = read(arguments...);
    EXPECT_TRUE(given);
    const OptionJob job = given.value_or(OptionJob());
    Made texts{job.refusal, "", ""};
    for (const TicketEntry& entry : job.ticket.entries) {
        texts.entries += entry.site == siteSuppressedKeyword ? "[" + entry.bytes + "]\n" : entry.bytes;
    }
    for (const std::string& line : job.told) {
        texts.told += line + "\n";
    }
    return texts;
}

TEST(OptionJob, ReadsEachKindOfSetting) {
    const FilterHarness harness;
    const auto feature = [](const std::string& text) { return "%%BeginFeature: *" + text + "\n"; };
    const std::string noSaddle = "*QVStaple=Saddle does not go together with *QVFoldStyle=Half";
    const struct {
        std::string options;
        std::vector<std::string> expected; // in the ticket
        std::string told = {};             // "" for nothing
    } cases[] = {
        {"QVStaple=Saddle", {feature("QVStaple Saddle"), "[*QVStaple]"}},
        {"*qvstaple=saddle", {feature("QVStaple Saddle")}},
        {"QVStaple=Nope", {feature("QVStaple None")}, "QVStaple does not offer Nope"},
        {"QVNegative", {feature("QVNegative True")}}, // CUPS writes true values without "=true"
        {"noQVEdgeEnhance", {feature("QVEdgeEnhance False")}},
        {"QVMMInUse=on QVErrorSheet=no", {feature("QVMMInUse True"), feature("QVErrorSheet False")}},
        {"QVNegative=maybe", {feature("QVNegative False")}, "QVNegative takes True or False, not maybe"},
        {"QVOutProfile=Site4", {feature("QVOutProfile Site4")}}, // the controller adds profiles
        {"QVScale=50", {"RMXSetQVScale [ 0.50 ]"}},
        {"QVScale=999", {"RMXSetQVScale [ 4.00 ]"}, "QVScale does not take 999, but 400"},
        {"QVScale=50%n", {"RMXSetQVScale [ 1.00 ]"}, "QVScale takes a number, not 50%n"},
        {"QVGutter=87", {feature("QVGutter 85")}, "QVGutter does not take 87, but 85"},
        {"QVGamma=+1.8", {feature("QVGamma    1.8000")}},
        {"QVGamma=nan", {feature("QVGamma    2.2000")}, "QVGamma takes a number, not nan"},
        {"Notes1='from shelf 4'", {"%%ZANCustom1: from shelf 4\n", feature("Notes1 from shelf 4")}},
        {"Notes2=one\\ two", {"%%ZANCustom2: one two\n"}},
        {"Notes1=a\\\n%%EndComments", {"%%ZANCustom1: a %%EndComments\n"}},
        {"QVAccountId=000123", {feature("QVAccountId 000123")}},
        {"QVCostCenter=ab", {feature("QVCostCenter ab")}, "QVCostCenter must have at least 3 characters"},
        {"QVDSPassword=4711", {feature("QVDSPassword 4711")}}, // only masked
        {"Notes1=\xff", {}, "Notes1 has a value that is no UTF-8"},
        {"QVPrintSize=Custom.20x30cm",
         {feature("CustomPrintSize 567.00 850.00"), feature("QVPrintSize CustomPrintSize")}},
        {"CustomPrintSize='300 500'", {feature("CustomPrintSize 300.00 500.00")}},
        {"CustomPrintSize=3x5in",
         {feature("QVPrintSize SameAsPageSize")},
         "CustomPrintSize takes no size 3x5in"},
        {"PageSize=Custom.20x30cm QVNegative", {feature("QVNegative True")}},
        {"QVNegative number-up=2 landscape", {"%%MacCoreNUp: true\n", "%%Orientation: Portrait\n"}},
        {"QVNegative number-up=4 orientation-requested=4", {"%%Orientation: Landscape\n"}},
        {"QVNUpPages=4 number-up=2", {}, "number-up: the setting QVNUpPages already puts several"},
        {"sides=two-sided-short-edge", {feature("QVDuplex ShortEdge")}},
        {"sides=two-sided-short-edge QVDuplex=LongEdge", {feature("QVDuplex LongEdge")}},
        {"torka-watermark=draft", {}, "the queue keeps no watermark draft"},
        {"torka-watermark=" + definition + "PROOF", {"Helvetica-Bold"}},
        {"torka-watermark=none QVNegative", {feature("QVNegative True")}},
        {"QVStaple=Saddle QVFoldStyle=Half", {feature("QVFoldStyle Half"), "[*QVFoldStyle]"}, noSaddle},
        {"QVStaple=Saddle QVFoldStyle=Half torka-conflicts=Resolve",
         {feature("QVStaple Saddle"), feature("QVFoldStyle None"), "[*QVFoldStyle]"},
         "because of a conflict, QVFoldStyle=None instead of Half"},
        {"QVStaple=Saddle PageSize=Statement torka-conflicts=resolve", // the pages are laid out
         {feature("QVStaple Top")},
         "because of a conflict, QVStaple=Top instead of Saddle"},
        {"QVStaple=Saddle media=Statement", {}, "*PageSize=Statement"},
        {"qvStapel=Saddle", {feature("QVStaple None")}, "the description has no setting qvStapel"},
        {"*torka-watermark=x", {}, "the description has no setting *torka-watermark"},
        {"QVNegative torka-conflicts=perhaps",
         {},
         "torka-conflicts takes print, resolve or stop, not perhaps"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.options);
        const Made job = made(each.options);
        EXPECT_EQ(job.refusal, "");
        for (const std::string& expected : each.expected) {
            EXPECT_THAT(job.entries, HasSubstr(expected));
        }
        EXPECT_THAT(job.told, HasSubstr(each.told));
        EXPECT_EQ(job.told.empty(), each.told.empty()) << job.told;
        // The print server's own code stays for the page size, the collation, and choices of several.
        for (const char* keyword : {"PageSize", "PageRegion", "Collate", "QVMarks"}) {
            EXPECT_THAT(job.entries, Not(HasSubstr("[*" + std::string(keyword) + "]")));
            EXPECT_THAT(job.entries, Not(HasSubstr("%%BeginFeature: *" + std::string(keyword) + " ")));
        }
    }
}

TEST(OptionJob, LeavesOtherJobsAlone) {
    const FilterHarness harness;
    for (const char* options :
         {"", "copies=2 media=A3 sides=one-sided number-up=2 job-uuid=urn:uuid:1 print-quality=5",
          "PageSize=A3 collate=true", "sides=one-sided", "nonsense=1 =x %n%s=%s ''=''",
          "torka-conflicts=Print", "*=1"}) {
        EXPECT_FALSE(read(options)) << options;
    }
    const TemporaryFolder folder;
    for (const std::string& ppd : {std::string("/nowhere"), (folder / "").string(),
                                   folder.Write("other.ppd", smallPPD + onlySheet("595 842")).string()}) {
        EXPECT_FALSE(read("QVStaple=Saddle PageSize=A4", ppd)) << ppd;
    }
}

TEST(OptionJob, HoldsForThousandsOfOptionsAndLongTexts) {
    const FilterHarness harness;
    std::string options = "Notes1=" + std::string(60'000, 'a') + " QVStaple=" + std::string(30'000, '%');
    for (int i = 0; i < 3000; ++i) {
        options += " x" + std::to_string(i) + "=\"\\n\x01 '{" + "\"";
    }
    const Made job = made(options);
    EXPECT_THAT(job.entries, HasSubstr("%%ZANCustom1: " + std::string(60'000, 'a') + "\n"));
    EXPECT_THAT(job.told, HasSubstr("Notes1 must have at most 63 characters"));
    EXPECT_THAT(job.told, HasSubstr("QVStaple does not offer %%%"));
}

TEST(OptionJob, StopsForSecretsAndWhenItIsToldTo) {
    const FilterHarness harness;
    const std::string secret = "74915362";
    for (const char* keyword : {"Resume", "*resume", "DeptPassword", "QVUserPassword", "QVUserAuthPwd"}) {
        const Made job = made(std::string(keyword) + "=" + secret + "\xff QVNegative");
        EXPECT_THAT(job.refusal, HasSubstr("is protected and cannot be an option")) << keyword;
        EXPECT_THAT(job.refusal + job.told + job.entries, Not(HasSubstr(secret)));
    }
    EXPECT_THAT(made("QVStaple=Saddle QVFoldStyle=Half torka-conflicts=stop").refusal,
                HasSubstr("*QVFoldStyle=Half"));
    EXPECT_THAT(made("QVScale=x torka-conflicts=stop").refusal, HasSubstr("QVScale takes a number"));
    EXPECT_EQ(made("QVScale=50 torka-conflicts=stop").refusal, "");
    EXPECT_THAT(made("QVNegative torka-conflicts=stop", sample, SecretNotes::leftOut).refusal,
                HasSubstr("its print settings belong to another job"));
    // The queue's default is in conflict with what the server takes.
    const TemporaryFolder folder;
    std::string text = readFile(sample);
    const std::string usual = "*DefaultQVStaple: None";
    ASSERT_NE(text.find(usual), std::string::npos);
    const std::string ppd =
        folder.Write("q.ppd", text.replace(text.find(usual), usual.size(), "*DefaultQVStaple: Saddle"));
    EXPECT_THAT(made("media=Statement torka-conflicts=stop", ppd).refusal, HasSubstr("PageSize=Statement"));
    EXPECT_THAT(made("media=Statement torka-conflicts=resolve", ppd).told, HasSubstr("QVStaple=Top instead"));

    const Made bare =
        made("Resume=" + secret + " QVDSPassword=" + secret + " Notes1=x", sample, SecretNotes::leftOut);
    EXPECT_EQ(bare.refusal, "");
    EXPECT_THAT(bare.entries, HasSubstr("%%ZANCustom1: x\n"));
    EXPECT_THAT(bare.entries + bare.told, Not(HasSubstr(secret)));
    EXPECT_THAT(bare.told, HasSubstr("QVDSPassword is left out\nResume is left out"));
}

// The server's filters know no such names.
TEST(OptionJob, TakesSettingsWithAnAsteriskItselfOrSaysThatTheyAreLost) {
    const FilterHarness harness;
    const Made marks = made("*QVMarks=Fold *PageSize=letter");
    EXPECT_THAT(marks.entries, HasSubstr("%%BeginFeature: *QVMarks Fold\n"));
    EXPECT_THAT(marks.entries, HasSubstr("[*QVMarks]"));
    EXPECT_EQ(marks.told, "") << "the default";
    for (const std::string lost : {"*PageSize=A3", "*collate=False"}) {
        const Made job = made(lost);
        EXPECT_THAT(job.told, HasSubstr(lost + " is not followed"));
        EXPECT_THAT(job.entries, Not(HasSubstr("*Page")));
        EXPECT_THAT(made(lost + " torka-conflicts=stop").refusal, HasSubstr(lost));
    }
    const Made own = made("*PageSize=A3", sample, SecretNotes::refused, "application/vnd.cups-postscript");
    EXPECT_THAT(own.entries, HasSubstr("%%BeginFeature: *PageSize A3\n"));
    EXPECT_EQ(own.told, "");
}

// Nothing of the server's stands in a document that its filters have not seen.
TEST(OptionJob, CarriesEverythingForADocumentThatTheServersFiltersHaveNotSeen) {
    const FilterHarness harness;
    const Made job =
        made("QVNegative PageSize=A3", sample, SecretNotes::refused, "application/vnd.cups-postscript");
    EXPECT_THAT(job.entries, HasSubstr("%%BeginFeature: *PageSize A3\n"));
    EXPECT_THAT(job.entries, HasSubstr("%%BeginFeature: *QVMarks Crop\n"));
}

TEST(OptionJob, FindsTheWatermarksThatItsQueueKeeps) {
    const FilterHarness harness;
    const TemporaryFolder folder;
    ZANCorvianPrinterPList list(std::make_unique<FilePropertyListStore>(folder / "list.plist"));
    list.Add(cfString("Proofs"), cfString(""), false);
    std::vector<DataRow> rows(2);
    (definition + "Draft").copy(rows[0].data(), 200);
    (definition + "DRAFT").copy(rows[1].data(), 200);
    list.AddDataBlob(cfString("Proofs"), 2, 1, rows);
    ASSERT_TRUE(list.Save());
    std::istringstream record(
        readFile(writeRecordPPD(folder, "QVDriverPreference", readFile(folder / "list.plist"), true)));
    std::string lines;
    for (std::string line; std::getline(record, line);) {
        lines += line.starts_with("*QVDriverPreference") ? line + "\n" : "";
    }
    const std::string ppd = folder.Write("Proofs.ppd", "*PPD-Adobe: \"4.3\"\n" + lines + readFile(sample));
    for (const auto& [name, hex] :
         {std::pair{"DRAFT", "<4452414654>"}, {"Draft", "<4472616674>"}, {"dRAFT", "<4472616674>"}}) {
        const Made job = made(std::string("torka-watermark=") + name, ppd);
        EXPECT_EQ(job.told, "");
        EXPECT_THAT(job.entries, HasSubstr(hex)) << name;
    }
    // A print server that does not tell the first printer of a class: the entry's name finds the list.
    const auto forClass = [&] {
        return made("torka-watermark=DRAFT", folder.Write("Second.ppd", readFile(sample)).string(),
                    SecretNotes::refused, "application/pdf", "Proofs");
    };
    std::filesystem::remove(folder / "QVDriverPreference.ppd");
    EXPECT_EQ(forClass().told, "");
    folder.Write("Third.ppd", readFile(ppd));
    EXPECT_THAT(forClass().told, HasSubstr("the print server does not tell the first printer of the class"));
}

TEST(OptionText, ReadsSizes) {
    for (const auto& [text, width, height] :
         {std::tuple<const char*, double, double>{"Custom.100x200", 100, 200},
          {"10x20cm", 283.46, 566.93},
          {"1X2IN", 72, 144},
          {"custom.25.4x50.8mm", 72, 144},
          {"1x2ft", 864, 1728},
          {"1x1m", 2834.65, 2834.65},
          {"300 500", 300, 500}}) {
        const OptionSize size = sizeOf(text).value_or(OptionSize{});
        EXPECT_NEAR(size.width, width, 0.01) << text;
        EXPECT_NEAR(size.height, height, 0.01) << text;
    }
    for (const char* none : {"5x", "x5", "-5x5", "1e999x5", "5x5furlong", "", "Custom.", "infxnan"}) {
        EXPECT_FALSE(sizeOf(none)) << none;
    }
}

} // namespace
} // namespace torka::tests
