// SPDX-License-Identifier: Apache-2.0
#include "platform/Log.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace torka {
namespace {

using ::testing::ElementsAre;

TEST(Log, TextsAreNoFormatsAndMayBeNull) {
    tests::CapturingLog log;
    const std::string name = "50%s%n";
    myNSLog(nullptr);
    myNSLog8(nullptr);
    myNSLog(name.c_str());
    myNSLogC("%s", (name + std::string(5000, 'x')).c_str());
    EXPECT_THAT(log.Lines(), ElementsAre("myNSLog msg nil", "myNSLog8 nil", "myNSLog msg '50%s%n'",
                                         name + std::string(4089, 'x')));
    EXPECT_DEATH(TORKA_ASSERT(name.empty(), "a test"), "");
}

} // namespace
} // namespace torka
