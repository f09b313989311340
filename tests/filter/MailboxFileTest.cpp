// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/MailboxFile.h"
#include "tests/filter/FilterHarness.h"

#include <algorithm>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <latch>
#include <set>
#include <thread>
#include <unistd.h>

// Documents on their way into the mailboxes of their users.

namespace torka::tests {

namespace {

using namespace filter;
using ::testing::HasSubstr;

const Sender boxUser{"Proofs", "anna", "localhost"};

void nameMailbox(const Sender& sender, const std::string& mailbox) {
    ASSERT_FALSE(PrivateFolder::Prepare());
    ASSERT_TRUE(FilterNotes::Add(sender, NoteKind::mailbox, mailbox));
}

Result<MailboxFile> begun(const Sender& sender, const std::string& mailbox, const std::string& run,
                          const std::string& document) {
    Result<MailboxFile> file = MailboxFile::Create(sender, mailbox, run);
    if (file) {
        EXPECT_EQ(::write(file->Descriptor(), document.data(), document.size()),
                  static_cast<ssize_t>(document.size()));
    }
    return file;
}

std::set<std::string> filesOf(const FilterHarness& harness) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(harness.Cache())) {
        names.insert(entry.path().filename());
    }
    return names;
}

TEST(MailboxFile, HoldsTheDocumentsOfOneRunOfItsUsersJob) {
    FilterHarness harness;
    nameMailbox(boxUser, "box");
    const struct {
        std::string run;
        std::string document;
        std::string expected;   // in the mailbox
        std::string owner = {}; // what the owner's file holds before
    } cases[] = {
        {"uuid-1/100/", "one", "one"},
        {"uuid-1/100/", "two\n", "one\ntwo\n"},
        {"uuid-1/100/", "three", "one\ntwo\nthree"},
        {"uuid-1/100/101", "one", "one"}, // a restart
        {"uuid-2/100/101", "other job", "other job"},
        {"", "unknown", "unknown"},
        {"", "unknown too", "unknown too"},
        {"uuid-2/100/101", "one", "one"},
        {"uuid-2/100/101", "by an older filter", "by an older filter", "anna"},
        {"uuid-2/100/101", "refused", "by an older filter", "mallory"},
        {"uuid-2/100/101", "refused", "by an older filter", "=mallory =uuid-2/100/101 \n"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.document);
        if (!each.owner.empty()) {
            ASSERT_FALSE(PrivateFolder::Write("box.owner", each.owner));
        }
        harness.Forget();
        Result<MailboxFile> file = begun(boxUser, "box", each.run, each.document);
        EXPECT_EQ(file && file->Commit(), each.document != "refused");
        EXPECT_EQ(readFile(harness.Cache("box")), each.expected);
        EXPECT_EQ(harness.Told().find("WARNING: ") != std::string::npos, each.run.empty()) << harness.Told();
    }
    // The program that empties mailboxes has taken the first document.
    ASSERT_FALSE(PrivateFolder::Write("box.owner", "anna"));
    ASSERT_TRUE(begun(boxUser, "box", "uuid-3/1/", "one")->Commit());
    std::filesystem::remove(harness.Cache("box"));
    ASSERT_TRUE(begun(boxUser, "box", "uuid-3/1/", "two")->Commit());
    EXPECT_EQ(readFile(harness.Cache("box")), "two");
}

TEST(MailboxFile, OfManyUsersOneGetsTheName) {
    const FilterHarness harness;
    for (int round = 0; round < 20; ++round) {
        const std::string mailbox = "box" + std::to_string(round);
        constexpr int users = 8;
        std::latch begin(users);
        std::vector<int> stored(users);
        std::vector<std::jthread> filters;
        for (int i = 0; i < users; ++i) {
            const Sender sender{"Proofs", "user" + std::to_string(i), "localhost"};
            nameMailbox(sender, mailbox);
            filters.emplace_back([&, i, file = begun(sender, mailbox, "", sender.user)]() mutable {
                begin.arrive_and_wait();
                stored[static_cast<std::size_t>(i)] = file->Commit() ? 1 : 0;
            });
        }
        filters.clear(); // waits for them
        ASSERT_EQ(std::ranges::count(stored, 1), 1);
        const std::string winner = "user" + std::to_string(std::ranges::find(stored, 1) - stored.begin());
        EXPECT_EQ(readFile(harness.Cache(mailbox)), winner);
        EXPECT_THAT(readFile(harness.Cache(mailbox + ".owner")), HasSubstr("=" + winner + " "));
    }
}

// A filter that is ended leaves its open files to the system.
TEST(MailboxFile, HasNoNameBeforeItIsWhole) {
    const FilterHarness harness;
    nameMailbox(boxUser, "box");
    const std::set<std::string> before = filesOf(harness);
    const OpenFile probe(::open(harness.Cache().c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    {
        const Result<MailboxFile> file = begun(boxUser, "box", "uuid-1/100/", "half");
        EXPECT_EQ(filesOf(harness) == before, static_cast<bool>(probe)) << "the file system allows it";
    }
    EXPECT_EQ(filesOf(harness), before);
    ASSERT_TRUE(begun(boxUser, "box", "uuid-1/100/", "whole")->Commit());
    std::set<std::string> after = filesOf(harness);
    for (const char* made : {"box", "box.owner", "TorkaMailboxes.lock"}) {
        EXPECT_EQ(after.erase(made), 1U) << made;
    }
    EXPECT_EQ(after, before);
    EXPECT_EQ(std::filesystem::status(harness.Cache("box")).permissions(), std::filesystem::perms(0600));
}

} // namespace

} // namespace torka::tests
