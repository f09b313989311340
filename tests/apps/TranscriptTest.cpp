// SPDX-License-Identifier: Apache-2.0
#include "platform/SecretMemory.h"
#include "tests/apps/Tool.h"

#include <string_view>

// Whole outputs of the tool and the filter for many inputs. tests/apps/transcribe says how to renew a
// transcript.

namespace torka::tests {
namespace {

class Transcripts : public testing::TestWithParam<const char*> {};

TEST_P(Transcripts, SayWhatWasReviewed) {
    if (platform::hasAddressSanitizer && GetParam() == std::string_view("sessions")) {
        GTEST_SKIP() << "a sanitizer takes minutes to allocate the large blocks of the settings";
    }
    const std::string folder = TORKA_SOURCE_DIR "/tests/apps/";
    const std::string file = folder + "golden/" + GetParam() + ".transcript";
    const CommandResult said = runCommand({folder + "transcribe", TORKA_BINARY_DIR "/bin", file});
    EXPECT_EQ(runCommand({"diff", "-u", file, "-"}, said.output).output + said.errors, "");
}

INSTANTIATE_TEST_SUITE_P(Tool, Transcripts,
                         testing::Values("descriptions", "filter", "jobs", "records", "sessions"));

} // namespace
} // namespace torka::tests
