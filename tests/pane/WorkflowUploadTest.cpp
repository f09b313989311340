// SPDX-License-Identifier: Apache-2.0
#include "output/WorkflowUpload.h"
#include "output/FeatureEmission.h"
#include "platform/posix/PosixLibraryLoader.h"
#include "tests/pane/UIPanelFixture.h"
#include "tests/support/ScopedDouble.h"

#include <algorithm>
#include <cstdlib>

// Tests the workflow job with the client library in tests/pane/workflow, which records its calls.

namespace torka::tests {

namespace {

const std::string controls = jobNote("QVUserName") + jobNote("QVUserPassword", "127|Password|UTF8") +
                             jobNote("QVIP") + jobNote("QVWorkflowName") + jobNote("QVWorkflowFolder") +
                             jobNote("QVKestrelJobId") + jobNote("QVKSNewJobID");

class WorkflowUpload : public ::testing::Test {
protected:
    void SetUp() override {
        system->root = folder.Path() / "root";
        setenv("WORKFLOW_CALLS", (folder / "calls").c_str(), 1);
    }
    void Install() const {
        const std::filesystem::path place = folder.Path() / "root/var/lib/torka/ZAN/lib/libks2client.dylib";
        std::filesystem::create_directories(place.parent_path());
        std::filesystem::copy_file(TORKA_WORKFLOW_LIBRARY, place);
    }
    std::string TakeCalls() const {
        const std::filesystem::path file = folder / "calls";
        const std::string calls = std::filesystem::exists(file) ? readFile(file) : "";
        std::filesystem::remove(file);
        return calls;
    }
    static std::string Identifiers(const Pane& pane) {
        return valueOf(pane, "*QVKestrelJobId") + "|" + valueOf(pane, "*QVKSNewJobID");
    }
    static void FillIn(Pane& pane) {
        pane.Set("*QVUserName", "anna");
        pane.Set("*QVUserPassword", "pass%s%n");
        pane.Set("*QVIP", "10.0.0.9");
        pane.Set("*QVWorkflowName", "Books; $(id)");
        pane.Set("*QVWorkflowFolder", "Night");
        pane.Store("com.apple.print.JobInfo.PMJobName", cfString("Brochure"));
    }

    ScopedMemorySystem system;
    ScopedDouble<PosixLibraryLoader, setLibraryLoader> loader;
    TemporaryFolder folder;
};

TEST_F(WorkflowUpload, CallsTheLibraryAndStoresTheIdentifier) {
    Pane pane(paneHeader + controls);
    FillIn(pane);
    UploadKestrelXMLFiles(*pane.model, pane.settings, 2);
    EXPECT_EQ(TakeCalls(), "") << "a missing library does nothing";
    EXPECT_EQ(Identifiers(pane), "|");

    Install();
    UploadKestrelXMLFiles(*pane.model, pane.settings, 1);
    EXPECT_EQ(TakeCalls(), "KSOpenSession(10.0.0.9|anna|pass%s%n|english)\n"
                           "KSCloseSession(the session|||)\n");
    UploadKestrelXMLFiles(*pane.model, pane.settings, 2);
    EXPECT_EQ(TakeCalls(), "KSOpenSession(10.0.0.9|anna|pass%s%n|english)\n"
                           "KSCreateNewJobEx(the session|Night|Brochure|/tmp/Books; $(id).xml)\n"
                           "KSCloseSession(the session|||)\n");
    EXPECT_EQ(Identifiers(pane), "job-42|job-42");

    pane.Set("*QVIP", "nobody");
    UploadKestrelXMLFiles(*pane.model, pane.settings, 2);
    EXPECT_EQ(TakeCalls(), "KSOpenSession(nobody|anna|pass%s%n|english)\n");

    // Texts are cut to the size of their fields.
    pane.Set("*QVIP", "10.0.0.9");
    pane.Store("com.apple.print.JobInfo.PMJobName", cfString(std::string(1'000'000, 'j')));
    UploadKestrelXMLFiles(*pane.model, pane.settings, 2);
    EXPECT_NE(TakeCalls().find("|" + std::string(255, 'j') + "|"), std::string::npos);

    Pane nameless(paneHeader + jobNote("QVIP"));
    UploadKestrelXMLFiles(*nameless.model, nameless.settings, 2);
    EXPECT_EQ(TakeCalls(), "");
}

// The description's encoding lacks the character, before and during the upload.
TEST_F(WorkflowUpload, KeepsAnIdentifierBeyondTheDescriptionsEncoding) {
    Install();
    Pane pane(paneHeader + "*LanguageEncoding: MacStandard\n*%ZANSpecialOption *Rondure: True\n" + controls);
    FillIn(pane);
    pane.data->SetIPAddressEnabled(true);
    const std::string name = "#\xE5\x8D\xB0\xC3\xA9";
    pane.Store("com.apple.print.JobInfo.PMJobName", cfString(name));
    pane.Set("*QVIP", "\xE5\x8D\xB0");
    ASSERT_EQ(valueOf(pane, "*QVIP"), "") << "the encoding holds it";
    ZANJobTicket ticket(nullptr, pane.settings, cfString("ZAN.PSData"));
    pane.data->OutPostscriptData(ticket, pane.session, EmissionPurpose::printJob);
    EXPECT_EQ(Identifiers(pane), "job-42" + name + "|job-42" + name);
    const bool isSent = std::ranges::any_of(ticket.Entries(), [&name](const ZANJobTicket::Entry& entry) {
        return entry.bytes.find("*QVKSNewJobID job-42" + name + "\n") != std::string::npos;
    });
    EXPECT_TRUE(isSent);
    // An identifier that the encoding can represent is sent in that encoding.
    pane.Store("com.apple.print.JobInfo.PMJobName", cfString("#\xC3\xA9"));
    UploadKestrelXMLFiles(*pane.model, pane.settings, 2);
    EXPECT_EQ(Identifiers(pane), "job-42#\xC3\xA9|job-42#\xC3\xA9");
}

TEST_F(WorkflowUpload, HappensWhenAJobIsPrintedWithTwoWayCommunicationOnly) {
    Install();
    using enum EmissionPurpose;
    for (const auto& [hasRondure, isTwoWay, purpose, isUploaded] : {std::tuple{true, true, printJob, true},
                                                                    {false, true, printJob, false},
                                                                    {true, false, printJob, false},
                                                                    {true, true, keepSettings, false}}) {
        Pane pane(paneHeader + (hasRondure ? "*%ZANSpecialOption *Rondure: True\n" : "") + controls);
        FillIn(pane);
        pane.data->SetIPAddressEnabled(isTwoWay);
        ZANJobTicket ticket(nullptr, pane.settings, cfString("ZAN.PSData"));
        pane.data->OutPostscriptData(ticket, pane.session, purpose);
        EXPECT_EQ(!TakeCalls().empty(), isUploaded);
    }
}

} // namespace

} // namespace torka::tests
