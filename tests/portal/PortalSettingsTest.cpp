// SPDX-License-Identifier: Apache-2.0
#include "apps/print-portal/TokenStore.h"
#include "apps/print-portal/settings/PrintChoices.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>
#include <limits>
#include <set>

// What a program sends, what it gets back, and what is refused.

namespace torka::tests {

namespace {

using namespace torka::portal;

QVariantMap back(const QVariantMap& sent, LaidOutBy laidOutBy, QStringList* problems = nullptr) {
    QStringList found;
    const QVariantMap settings = writeSettings(readChoices(sent, {}, found), laidOutBy, sent);
    (problems == nullptr ? found : *problems) = found;
    return settings;
}

TEST(PortalSettings, ComeBackAsTheProgramHasToDrawThem) {
    // byServer: null: the key is gone
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"n-copies", "3", "1", "3"},
        {"collate", "true", "false", "true"},
        {"reverse", "true", "false", "true"},
        {"number-up", "4", "1", "4"},
        {"number-up-layout", "rlbt", "lrtb", "rlbt"},
        {"page-set", "even", "even", "even"},
        {"print-pages", "current", "current", "current"},
        {"duplex", "vertical", "vertical", "vertical"},
        {"orientation", "reverse_landscape", "reverse_landscape", "reverse_landscape"},
        {"use-color", "false", "false", "false"},
        {"scale", "85.5", "85.5", "85.5"},
        {"output-file-format", "svg", "pdf", "pdf"},
        {"printer", "Press", "Press", "Press"},
        {"cups-StapleIt", "Corner", "Corner", "Corner"},
        {"cups-~Staple!", "Corner", "Corner", "Corner"},
        {"printer-lpi", "150", "150", "150"},
        // Keys of other dialogs become the printer's options.
        {"default-source", "Lower", nullptr, nullptr},
        {"resolution", "600", nullptr, nullptr},
        {"a-key-of-its-own", "kept", "kept", "kept"},
        // Not valid: gone, or as if it had not been sent.
        {"n-copies", "0", "1", nullptr},
        {"n-copies", "1e9", "1", nullptr},
        {"n-copies", "2.5", "1", nullptr},
        {"number-up", "3", "1", nullptr},
        {"duplex", "sideways", nullptr, nullptr},
    };
    for (const auto& [key, sent, byServer, byProgram] : cases) {
        for (const auto& [by, expected] :
             {std::pair(LaidOutBy::Server, byServer), std::pair(LaidOutBy::Program, byProgram)}) {
            const QVariantMap settings = back({{key, QString::fromLatin1(sent)}}, by);
            EXPECT_EQ(settings.value(key).toString().toStdString(), expected == nullptr ? "" : expected)
                << key << "=" << sent;
        }
    }
    const QVariantMap pages =
        back({{"print-pages", QStringLiteral("ranges")}, {"page-ranges", QStringLiteral("0-2,4,9--1")}},
             LaidOutBy::Server);
    EXPECT_TRUE(pages.value("page-ranges").toString().startsWith("0-2,4,9-"));
    QStringList problems;
    const PrintChoices other = readChoices({{"default-source", QStringLiteral("Lower")},
                                            {"quality", QStringLiteral("draft")},
                                            {"resolution", QStringLiteral("600")}},
                                           {}, problems);
    const QList<std::pair<QString, QString>> expected{
        {"InputSlot", "Lower"}, {"print-quality", "3"}, {"Resolution", "600dpi"}};
    EXPECT_EQ(other.printerOptions, expected);
    EXPECT_TRUE(problems.isEmpty()) << problems.join("; ").toStdString();
}

TEST(PortalSettings, RefuseWhatHasAWrongTypeFormOrRangeAndSayWhich) {
    const auto text = [](const char* value) { return QVariant(QString::fromLatin1(value)); };
    const std::pair<const char*, QVariant> hostile[] = {
        {"n-copies", 3},
        {"n-copies", QVariantMap{{"a", 1}}},
        {"n-copies", text("0x10")},
        {"collate", text("yes")},
        {"page-ranges", text("3-1")},
        {"page-ranges", text("-5")},
        {"page-ranges", text("1,,2")},
        {"page-ranges", text("99999999999999999999")},
        {"scale", text("nan")},
        {"scale", text("inf")},
        {"paper-width", text("-1")},
        {"printer", text("a\nb")},
        {"printer", QString(5000, 'p')},
        {"number-up-layout", text("lrtblr")},
        // A ticket belongs to the person's own dialog only.
        {"cups-ZAN.PSData.org.torka.print.pde.5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85.PInf", text("/tmp/x")},
        {"cups-", text("x")},
        {"cups-Two Words", text("x")},
        {"cups-DeleteAtTheEndOfIt\x7f", text("x")},
        {"cups-InputSlot", text("Lower\x1b[2J")},
    };
    for (const auto& [key, value] : hostile) {
        QStringList problems;
        const PrintChoices choices = readChoices({{key, value}}, {}, problems);
        ASSERT_EQ(problems.size(), 1) << key;
        EXPECT_TRUE(problems[0].contains(QString(key).left(20))) << problems[0].toStdString();
        EXPECT_FALSE(problems[0].contains('\x1b') || problems[0].contains('\n'));
        EXPECT_TRUE(!choices.copies && !choices.collate && !choices.scale && !choices.paper &&
                    choices.printer.isEmpty() && choices.ranges.isEmpty() && choices.printerOptions.isEmpty())
            << key;
    }
    QVariantMap many;
    for (int i = 0; i < 2000; ++i) {
        many.insert("cups-K" + QString::number(i), QStringLiteral("v"));
    }
    QStringList problems;
    EXPECT_TRUE(readChoices(many, {}, problems).printerOptions.isEmpty());
    EXPECT_EQ(problems.size(), 1);
}

TEST(PortalSettings, ThePageSetupComesBackAndWrongLengthsAreRefused) {
    const QVariantMap setup{{"PPDName", QStringLiteral("A4")},
                            {"DisplayName", QStringLiteral("A4")},
                            {"Name", QStringLiteral("iso_a4")},
                            {"Width", 210.0},
                            {"Height", 297.0},
                            {"MarginTop", 5.0},
                            {"MarginBottom", 6.0},
                            {"MarginLeft", 7.0},
                            {"MarginRight", 8.0},
                            {"Orientation", QStringLiteral("landscape")}};
    QStringList problems;
    const PrintChoices choices = readChoices({}, setup, problems);
    EXPECT_TRUE(problems.isEmpty());
    EXPECT_EQ(writePageSetup(choices, setup), setup);
    EXPECT_EQ(writeSettings(choices, LaidOutBy::Server, {}).value("paper-format"), "iso_a4");
    for (const QVariant& wrong : {QVariant(std::numeric_limits<double>::quiet_NaN()), QVariant(-1.0),
                                  QVariant(1e12), QVariant("210")}) {
        QVariantMap broken = setup;
        broken["Width"] = wrong;
        QStringList told;
        EXPECT_FALSE(readChoices({}, broken, told).paper);
        EXPECT_EQ(told.size(), 1);
    }
}

TEST(PortalTokens, CountOnceForTheirHolderAndForALimitedTime) {
    const ScopedMemorySystem system;
    TokenStore store;
    const auto jobFor = [](const std::string& queue) {
        PreparedJob job;
        job.queue = queue;
        return job;
    };
    std::set<std::uint32_t> tokens;
    for (int i = 0; i < 1000; ++i) {
        tokens.insert(store.Keep(jobFor(std::to_string(i)), "reader"));
    }
    EXPECT_EQ(tokens.size(), 1000U);
    EXPECT_FALSE(tokens.contains(0));
    const std::uint32_t token = store.Keep(jobFor("Press"), "reader");
    EXPECT_FALSE(store.Take(token, "another program"));
    EXPECT_FALSE(store.Take(token + 1, "reader"));
    const auto job = store.Take(token, "reader");
    ASSERT_TRUE(job);
    EXPECT_EQ(job->queue, "Press");
    EXPECT_FALSE(store.Take(token, "reader")) << "used";
    const std::uint32_t old = store.Keep(jobFor(""), "reader");
    system->now += std::chrono::hours(2);
    EXPECT_FALSE(store.Take(old, "reader"));
    EXPECT_TRUE(store.IsEmpty());
}

} // namespace

} // namespace torka::tests
