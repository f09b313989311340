#include "spooler/filter/TicketStore.h"
#include "tests/filter/FilterHarness.h"

#include <chrono>
#include <gtest/gtest.h>
#include <sys/stat.h>

// Tickets that come by commands: pairing, names, ownership, age.

namespace torka::tests {

namespace {

using namespace filter;

const Sender anna{"Proofs", "anna", "localhost"};

std::string contentOf(const Sender& sender, const std::string& path) {
    std::string problem;
    const OpenFile file = TicketStore::Open(sender, path, problem);
    std::string text;
    return file && !PrivateFolder::Read(lastComponent(path), 100000, text) ? text : "? " + problem;
}

TEST(TicketStore, PairsMeetByQueueUserAndHostInTheirOrder) {
    const FilterHarness harness;
    const Sender bert{"Proofs", "bert", "localhost"};
    const Sender elsewhere{"Proofs", "anna", "pc 7\n%"};
    const Sender other{"Finals", "anna", "localhost"};
    EXPECT_EQ(TicketStore::Announce(anna, ticketPath(1)), "");
    EXPECT_EQ(TicketStore::Announce(bert, ticketPath(2)), "");
    EXPECT_EQ(TicketStore::Announce(anna, ticketPath(3) + "\n"), "");
    EXPECT_EQ(TicketStore::Announce(elsewhere, ticketPath(4)), "");
    EXPECT_EQ(TicketStore::Announce(other, ticketPath(5)), "");
    EXPECT_EQ(TicketStore::Store(other, "five"), "");
    EXPECT_EQ(TicketStore::Store(anna, "one"), "");
    EXPECT_EQ(TicketStore::Store(elsewhere, "four"), "");
    EXPECT_EQ(TicketStore::Store(anna, "three"), "");
    EXPECT_EQ(TicketStore::Store(bert, "two"), "");
    EXPECT_NE(TicketStore::Store(bert, "nobody's"), "");

    EXPECT_EQ(contentOf(anna, ticketPath(1)), "one");
    EXPECT_EQ(contentOf(bert, ticketPath(2)), "two");
    EXPECT_EQ(contentOf(anna, "elsewhere/" + std::string(lastComponent(ticketPath(3)))), "three")
        << "only the last component counts";
    EXPECT_EQ(contentOf(elsewhere, ticketPath(4)), "four");
    EXPECT_TRUE(contentOf(bert, ticketPath(1)).starts_with("? ")) << "somebody else's";
    struct stat facts {};
    ASSERT_EQ(stat(harness.Cache(lastComponent(ticketPath(1))).c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);
    ASSERT_EQ(stat(harness.Cache().c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0711U);
}

TEST(TicketStore, ATicketThatNeverCameDoesNotShiftTheOnesBehindIt) {
    const FilterHarness harness;
    TicketStore::Announce(anna, ticketPath(1)); // its text is lost
    TicketStore::Announce(anna, ticketPath(2));
    EXPECT_EQ(TicketStore::Store(anna, "two"), ""); // taken for the first
    EXPECT_TRUE(contentOf(anna, ticketPath(2)).find("missing") != std::string::npos);
    TicketStore::Announce(anna, ticketPath(3));
    EXPECT_EQ(TicketStore::Store(anna, "three"), "");
    EXPECT_EQ(contentOf(anna, ticketPath(3)), "three");
}

TEST(TicketStore, RefusesNamesAndFilesThatCouldLeadAway) {
    const FilterHarness harness;
    ASSERT_FALSE(PrivateFolder::Prepare());
    const std::string name(lastComponent(ticketPath(1)));
    for (const std::string& hostile :
         {std::string(), std::string("/"), std::string(".."), std::string("/etc/passwd"), name + "/..",
          name + "x", name.substr(1), "Torka.temp" + std::string(36, 'A'),
          "Torka.temp" + std::string(36, '-'), "torka.temp" + name.substr(10), name + std::string("\0x", 2),
          name.substr(0, 45) + "/", std::string(5000, 'A'),
          std::string("Torka.temp$(id)D2E7A41-9C3B-4F60-8E17-12345678")}) {
        EXPECT_NE(TicketStore::Announce(anna, hostile), "") << hostile;
        EXPECT_TRUE(contentOf(anna, hostile).starts_with("? ")) << hostile;
    }
    EXPECT_NE(TicketStore::Store(anna, "text"), "") << "none of them was kept";

    // What is there already is never written over, nor is a link followed.
    const std::filesystem::path secret = harness.root.Write("secret", "untouched");
    std::filesystem::create_symlink(secret, harness.Cache(name));
    TicketStore::Announce(anna, ticketPath(1));
    EXPECT_NE(TicketStore::Store(anna, "text"), "");
    EXPECT_EQ(readFile(secret), "untouched");
    EXPECT_TRUE(contentOf(anna, ticketPath(1)).starts_with("? "));
    // A ticket without an owner is none.
    std::filesystem::remove(harness.Cache(name));
    ASSERT_FALSE(PrivateFolder::Write(name, "text"));
    EXPECT_TRUE(contentOf(anna, ticketPath(1)).starts_with("? "));
    // A folder that others may write to is not used at all.
    std::filesystem::permissions(harness.Cache(), std::filesystem::perms(0777));
    EXPECT_NE(TicketStore::Announce(anna, ticketPath(2)), "");
}

TEST(TicketStore, OldTicketsGoAndNothingElse) {
    const FilterHarness harness;
    for (int i = 1; i <= 2; ++i) {
        TicketStore::Announce(anna, ticketPath(i));
        TicketStore::Store(anna, "text");
    }
    PrivateFolder::Write("ConnectionErrorInfoFileAB-1.txt", "");
    PrivateFolder::Write("zan_timeout_override.txt", "");
    const std::string old(lastComponent(ticketPath(1)));
    const auto before = std::filesystem::file_time_type::clock::now() - std::chrono::hours(25);
    for (const std::string& name : {old, old + ".owner", std::string("ConnectionErrorInfoFileAB-1.txt"),
                                    std::string("zan_timeout_override.txt")}) {
        std::filesystem::last_write_time(harness.Cache(name), before);
    }
    TicketStore::RemoveOld();
    EXPECT_FALSE(PrivateFolder::Exists(old));
    EXPECT_FALSE(PrivateFolder::Exists(old + ".owner"));
    EXPECT_FALSE(PrivateFolder::Exists("ConnectionErrorInfoFileAB-1.txt"));
    EXPECT_TRUE(PrivateFolder::Exists("zan_timeout_override.txt"));
    EXPECT_EQ(contentOf(anna, ticketPath(2)), "text");
}

TEST(FilterNotes, KeepTheirOrderAndTheirBounds) {
    const FilterHarness harness;
    for (std::size_t i = 0; i < FilterNotes::limitOfSender + 5; ++i) {
        ASSERT_TRUE(FilterNotes::Add(anna, NoteKind::ticketName, std::to_string(i)));
    }
    EXPECT_EQ(FilterNotes::TakeFirst(anna, NoteKind::ticketName), "5") << "the oldest went";
    ASSERT_TRUE(FilterNotes::Set(anna, NoteKind::language, "de"));
    ASSERT_TRUE(FilterNotes::Set(anna, NoteKind::language, "ja"));
    EXPECT_EQ(FilterNotes::TakeFirst(anna, NoteKind::language), "ja");
    EXPECT_EQ(FilterNotes::Get(anna, NoteKind::language), std::nullopt);
    EXPECT_FALSE(FilterNotes::Add(anna, NoteKind::ticketName, std::string(5000, 'x')));

    // A damaged list loses what is damaged.
    const FilterNote note{{"q =", "u\n%41", ""}, NoteKind::mailbox, 17, std::string("a\0b", 3)};
    const std::string line = noteLine(note);
    EXPECT_EQ(readNoteLine(line.substr(0, line.size() - 1)), note);
    for (std::size_t cut = 0; cut + 1 < line.size(); ++cut) {
        EXPECT_EQ(readNoteLine(line.substr(0, cut)), std::nullopt) << cut;
    }
    std::string list = readFile(harness.Cache("TorkaFilterNotes"));
    PrivateFolder::Write("TorkaFilterNotes",
                         "rubbish\n=ticket =x = = = = \n\n" + list.substr(0, list.size() / 2));
    EXPECT_EQ(FilterNotes::TakeFirst(anna, NoteKind::ticketName), "6");
}

} // namespace

} // namespace torka::tests
