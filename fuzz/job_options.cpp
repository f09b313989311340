// SPDX-License-Identifier: Apache-2.0
// Makes tickets from the options of jobs. The text of a protected note is in no ticket and no message, every
// entry of the header is one comment, and each feature block stays one.
//
// Input: the options text of a filter.

#include "fuzz/Fuzzing.h"
#include "platform/posix/PosixSystem.h"
#include "spooler/filter/OptionJob.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

namespace {

using namespace torka;

constexpr std::string_view description =
    R"PPD(*PPD-Adobe: "4.3"
*FormatVersion: "4.3"
*FileVersion: "1.0"
*LanguageVersion: English
*LanguageEncoding: ISOLatin1
*PCFileName: "T.PPD"
*Manufacturer: "T"
*Product: "(T)"
*PSVersion: "(3010) 1"
*ModelName: "T"
*ShortNickName: "T"
*NickName: "T"
*%QVVersion: "4.2"
*%ZANPropPage Page/Page: True
*%ZANGroupName Pane/Pane: True
*%ZANParent Pane/Page: True|Scrollpane
*%ZANGroupName Group/Group: True
*%ZANParent Group/Pane: True|Rolldown
*%ZANFlags *PageSize: Dynamic
*%ZANGroup *PageSize: Group
*OpenUI *PageSize/PageSize: PickOne
*DefaultPageSize: A4
*PageSize A4: ""
*PageSize A3: ""
*CloseUI: *PageSize
*OpenUI *PageRegion: PickOne
*DefaultPageRegion: A4
*PageRegion A4: ""
*PageRegion A3: ""
*CloseUI: *PageRegion
*DefaultImageableArea: A4
*ImageableArea A4: "0 0 595 842"
*ImageableArea A3: "0 0 842 1191"
*DefaultPaperDimension: A4
*PaperDimension A4: "595 842"
*PaperDimension A3: "842 1191"
*%ParamCustomPrintSize Width: 1 points 283.46 936
*%ParamCustomPrintSize Height: 2 points 419.53 1368
*%ZANFlags *QVPrintSize: Dynamic
*%ZANGroup *QVPrintSize: Group
*OpenUI *QVPrintSize/QVPrintSize: PickOne
*DefaultQVPrintSize: SameAsPageSize
*QVPrintSize SameAsPageSize: ""
*QVPrintSize CustomPrintSize: ""
*CloseUI: *QVPrintSize
*%ZANFlags *QVDuplex: Dynamic
*%ZANGroup *QVDuplex: Group
*OpenUI *QVDuplex/QVDuplex: PickOne
*DefaultQVDuplex: None
*QVDuplex None: ""
*QVDuplex LongEdge: "(long)"
*CloseUI: *QVDuplex
*%ZANFlags *QVMarks: Dynamic
*%ZANGroup *QVMarks: Group
*OpenUI *QVMarks/QVMarks: PickMany
*DefaultQVMarks: Crop
*QVMarks Crop: ""
*QVMarks Fold: ""
*CloseUI: *QVMarks
*%ZANFlags *QVMirror: Dynamic
*%ZANGroup *QVMirror: Group
*OpenUI *QVMirror/QVMirror: Boolean
*DefaultQVMirror: False
*QVMirror True: "(mirror)"
*QVMirror False: ""
*CloseUI: *QVMirror
*%ZANFlags *QVOutProfile: Dynamic
*%ZANGroup *QVOutProfile: Group
*OpenUI *QVOutProfile/QVOutProfile: PickOne
*DefaultQVOutProfile: Press
*QVOutProfile Press: ""
*CloseUI: *QVOutProfile
*%ZANFlags *QVScale: Dynamic
*%ZANGroup *QVScale: Group
*%ZANRange *QVScale/Scale: 25;400;1;100;"<*QVScale>"
*%ZANFlags *QVGamma: Dynamic
*%ZANGroup *QVGamma: Group
*%ZANFloatRange *QVGamma/Gamma: 0.5;4.0;0.1;2.2;"<*QVGamma>"
*%ZANFlags *Notes1: Dynamic
*%ZANGroup *Notes1: Group
*%ZANJobNote *Notes1/Note: 63
*%Notes1: "(<*Notes1>)"
*%ZANFlags *Resume: Dynamic
*%ZANGroup *Resume: Group
*%ZANJobNote *Resume/Code: 8|Password|Encrypt
*%Resume: "(<*Resume>)"
*UIConstraints: *QVDuplex LongEdge *QVMirror True
*UIConstraints: *QVMirror True *QVDuplex LongEdge
)PPD";

// Begins a secret that nothing else in the ticket could be by chance.
const std::string mark = "s3cret-";

struct Description {
    Description() {
        std::string pattern = (std::filesystem::temp_directory_path() / "torka-fuzz-XXXXXX").string();
        fuzz::require(mkdtemp(pattern.data()) != nullptr);
        folder = pattern;
        path = folder / "T.ppd";
        std::ofstream(path) << description;
        platform::PosixSystemOptions options;
        options.root = folder;
        platform::setSystem(std::make_unique<platform::PosixSystem>(options));
        platform::setLogSink(std::make_shared<fuzz::NoLog>());
    }
    Description(const Description&) = delete;
    Description& operator=(const Description&) = delete;
    ~Description() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    std::filesystem::path folder;
    std::filesystem::path path;
};

void check(const filter::OptionJob& job, std::string_view secret) {
    const auto isClean = [secret](std::string_view text) {
        fuzz::require(secret.empty() || text.find(secret) == std::string_view::npos);
    };
    isClean(job.refusal);
    for (const std::string& text : job.told) {
        isClean(text);
    }
    for (const TicketEntry& entry : job.ticket.entries) {
        isClean(entry.bytes);
        if (entry.site == siteJobNote) {
            fuzz::require(entry.bytes.starts_with("%%") && entry.bytes.find('\n') + 1 == entry.bytes.size());
        }
        if (entry.site == siteDocumentSetup && entry.bytes.starts_with("%%BeginFeature")) {
            fuzz::require(entry.bytes.find("\n%%BeginFeature") == std::string::npos);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Description root;
    std::string options(reinterpret_cast<const char*>(data), size);
    options.resize(std::min(options.find('\0'), options.size())); // a program's arguments end at a NUL
    if (options.find(mark) != std::string::npos) {
        return 0; // the mutator has learnt it
    }
    const char* arguments[] = {"torkafilter", "1", "anna", "title", "1", options.c_str()};
    filter::FilterJob job = *filter::readFilterJob(6, arguments);
    job.queue = "Proofs";
    job.description = root.path;
    const std::string secret = job.options.contains("Resume") ? mark + job.options["Resume"] : "";
    if (!secret.empty()) {
        job.options["Resume"] = secret;
    }
    if (job.options.contains("Notes1")) {
        fuzz::require(filter::readOptionJob(job, filter::SecretNotes::refused).has_value());
    }
    for (const auto secrets : {filter::SecretNotes::refused, filter::SecretNotes::leftOut}) {
        if (const auto made = filter::readOptionJob(job, secrets)) {
            fuzz::require(secret.empty() || secrets == filter::SecretNotes::leftOut ||
                          !made->refusal.empty());
            check(*made, secret);
        }
    }
    return 0;
}
