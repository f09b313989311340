// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/TicketStore.h"
#include "spooler/filter/Commands.h"
#include "spooler/filter/TicketOwner.h"
#include "spooler/filter/TicketRoom.h"
#include "tests/filter/FilterHarness.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

// Tickets that arrive by commands: pairing, names, ownership, age and space.

namespace torka::tests {

namespace {

using namespace filter;
using std::chrono::hours;

const Sender anna{"Proofs", "anna", "localhost"};
const Sender bert{"Proofs", "bert", "localhost"};
const JobIdentity command{"7", "urn:uuid:7"};
const JobIdentity job{"8", "urn:uuid:8"};
const JobIdentity otherJob{"9", "urn:uuid:9"};

std::string contentOf(const Sender& sender, const std::string& path, const JobIdentity& user = job) {
    const Result<OpenFile> file = TicketStore::Open(sender, user, path);
    const FileResult<std::string> text = PrivateFolder::Read(lastComponent(path), 100000);
    return file && text ? *text : "? " + (file ? text.Why().message() : file.Why().text);
}

// "" or what failed.
std::string failureOf(const Result<void>& done) { return done ? "" : done.Why().Line(); }

std::string announce(const Sender& sender, std::string_view named, std::string_view path) {
    return failureOf(TicketStore::Announce(sender, named, path));
}

std::string store(const Sender& sender, const JobIdentity& by, std::string_view named,
                  std::string_view content) {
    return failureOf(TicketStore::Store(sender, by, named, content));
}

bool isRefused(const std::string& content, const std::string& reason) {
    return content.starts_with("? ") && content.find(reason) != std::string::npos;
}

std::string nameOf(int number) { return std::string(lastComponent(ticketPath(number))); }

void makeOlder(const std::filesystem::path& file, std::chrono::seconds age) {
    std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() - age);
}

TEST(TicketStore, ANameThatTravelsWithTheTextDecidesWhateverTheOrder) {
    const FilterHarness harness;
    EXPECT_EQ(announce(anna, nameOf(1), ticketPath(1) + "\n"), "");
    EXPECT_EQ(announce(anna, nameOf(2), ticketPath(2)), "");
    EXPECT_EQ(store(anna, command, nameOf(2), "two"), "");
    EXPECT_EQ(store(anna, command, nameOf(3), "three"), "") << "before its name was sent";
    EXPECT_EQ(announce(anna, nameOf(3), ticketPath(3)), "");
    EXPECT_EQ(store(anna, command, nameOf(1), "one"), "");
    EXPECT_EQ(contentOf(anna, ticketPath(1)), "one");
    EXPECT_EQ(contentOf(anna, ticketPath(2)), "two");
    EXPECT_EQ(contentOf(anna, "elsewhere/" + nameOf(3)), "three") << "only the last component counts";
    // Option and text that differ, an option that is no valid name, the name of another user.
    EXPECT_NE(announce(anna, nameOf(4), ticketPath(5)), "");
    EXPECT_NE(announce(bert, nameOf(1), ticketPath(1)), "");
    EXPECT_NE(store(anna, command, "Torka.temp", "text"), "");
    EXPECT_NE(store(bert, command, nameOf(1), "text"), "");
    EXPECT_EQ(contentOf(anna, ticketPath(1)), "one");
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(harness.Cache(nameOf(1))).permissions(), perms(0600));
    EXPECT_EQ(std::filesystem::status(harness.Cache()).permissions(), perms(0711));
}

// A foreign sender gives no name. The text then belongs to the only name announced for its queue, user and
// host, or to none.
TEST(TicketStore, ATextWithoutItsNameIsPairedOrRefusedNeverGuessed) {
    const FilterHarness harness;
    const Sender elsewhere{"Proofs", "anna", "pc 7\n%"};
    const Sender other{"Finals", "anna", "localhost"};
    int number = 0;
    for (const Sender& sender : {anna, bert, elsewhere, other}) {
        EXPECT_EQ(announce(sender, "", ticketPath(++number)), "");
        EXPECT_EQ(announce(sender, "", ticketPath(number)), "") << "restarted";
    }
    EXPECT_EQ(store(other, command, "", "four"), "");
    EXPECT_EQ(store(elsewhere, command, "", "three"), "");
    EXPECT_EQ(store(anna, command, "", "one"), "");
    EXPECT_NE(store(anna, command, "", "nobody's"), "");
    EXPECT_EQ(contentOf(anna, ticketPath(1)), "one");
    EXPECT_EQ(contentOf(anna, ticketPath(3)), "three") << "another address of the same user";
    EXPECT_EQ(contentOf(anna, ticketPath(4)), "four") << "the job was moved to another queue";
    // With two names waiting, both jobs are refused. The next pair matches again.
    EXPECT_EQ(announce(bert, "", ticketPath(5)), "");
    for (int i = 0; i < 2; ++i) {
        EXPECT_NE(store(bert, command, "", "whose?").find("2 names wait"), std::string::npos);
    }
    EXPECT_TRUE(isRefused(contentOf(bert, ticketPath(2)), "missing"));
    EXPECT_TRUE(isRefused(contentOf(bert, ticketPath(5)), "missing"));
    EXPECT_EQ(announce(bert, "", ticketPath(6)), "");
    EXPECT_EQ(store(bert, command, "", "six"), "");
    EXPECT_EQ(contentOf(bert, ticketPath(6)), "six");
}

TEST(TicketStore, ATicketBelongsToTheFirstJobThatUsesIt) {
    const FilterHarness harness;
    for (int i = 1; i <= 4; ++i) {
        ASSERT_EQ(store(anna, command, nameOf(i), "text"), "");
    }
    EXPECT_TRUE(isRefused(contentOf(bert, ticketPath(1)), "somebody else"));
    EXPECT_EQ(contentOf(anna, ticketPath(1), job), "text");
    EXPECT_EQ(contentOf(anna, ticketPath(1), job), "text") << "its next document, or restarted";
    for (const JobIdentity& borrower : {otherJob, JobIdentity{job.number, "urn:uuid:x"},
                                        JobIdentity{"9", job.uuid}, JobIdentity{job.number, ""}}) {
        EXPECT_TRUE(
            isRefused(contentOf(anna, ticketPath(1), borrower), "its print settings belong to another job"));
    }
    // Of many filters at the same time, one job gets the ticket.
    std::vector<std::string> contents(16);
    std::vector<std::jthread> filters;
    for (std::size_t i = 0; i < contents.size(); ++i) {
        filters.emplace_back([&contents, i] {
            contents[i] = contentOf(anna, ticketPath(2), {std::to_string(i), "urn:uuid:2"});
        });
    }
    filters.clear(); // waits for them
    EXPECT_EQ(std::ranges::count(contents, "text"), 1);

    // With two texts for one name, no new job prints with either; a job that has begun goes on. A restarted
    // command is no second text.
    EXPECT_EQ(store(anna, command, nameOf(3), "text"), "");
    EXPECT_NE(store(anna, otherJob, nameOf(3), "forged"), "");
    EXPECT_TRUE(isRefused(contentOf(anna, ticketPath(3)), "came twice"));
    EXPECT_NE(store(anna, otherJob, nameOf(1), "forged"), "");
    EXPECT_EQ(contentOf(anna, ticketPath(1)), "text");
    EXPECT_NE(store(bert, otherJob, nameOf(4), "forged"), "") << "somebody else's command";
    EXPECT_EQ(contentOf(anna, ticketPath(4)), "text");

    // A filter was killed, or the disk was full, while it wrote the job into the record.
    ASSERT_EQ(store(anna, command, nameOf(5), "text"), "");
    std::ofstream(harness.Cache(nameOf(5) + ".owner"), std::ios::app) << "=used =12345";
    EXPECT_EQ(contentOf(anna, ticketPath(5)), "text");
    EXPECT_TRUE(isRefused(contentOf(anna, ticketPath(5), otherJob), "another job"));
    // An invalid record.
    ASSERT_FALSE(PrivateFolder::Write(nameOf(5) + ".owner", "anna"));
    EXPECT_TRUE(isRefused(contentOf(anna, ticketPath(5)), "cannot be read"));
}

TEST(TicketStore, OnlyItsOwnUserMayHaveATicketDeleted) {
    const FilterHarness harness;
    ASSERT_EQ(store(anna, command, nameOf(1), "text"), "");
    FolderSource source("/");
    FilterJob deletion;
    deletion.queue = "Proofs";
    deletion.title = "Command_DeleteUpdateFiles";
    deletion.user = "bert";
    EXPECT_EQ(runCommand(deletion, ticketPath(1) + "\n" + nameOf(1) + ".owner\n", source), 0);
    EXPECT_EQ(contentOf(anna, ticketPath(1)), "text");
    deletion.user = "anna";
    EXPECT_EQ(runCommand(deletion, ticketPath(1), source), 0);
    EXPECT_FALSE(PrivateFolder::Exists(nameOf(1)));
    EXPECT_FALSE(PrivateFolder::Exists(nameOf(1) + ".owner"));
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
        EXPECT_NE(announce(anna, "", hostile), "") << hostile;
        EXPECT_TRUE(contentOf(anna, hostile).starts_with("? ")) << hostile;
    }
    EXPECT_NE(store(anna, command, "", "text"), "") << "none of them was kept";

    // An existing file is never overwritten, and neither a link nor a pipe is read. What the link names would
    // be a good ticket and a good owner record.
    const std::string record = ticketRecordText({"anna", "localhost", command, 4, {}, false});
    const std::filesystem::path secret = harness.root.Write("secret", record);
    const auto link = [&](const std::string& file) { std::filesystem::create_symlink(secret, file); };
    const auto pipe = [](const std::string& file) { ASSERT_EQ(mkfifo(file.c_str(), 0600), 0); };
    const auto write = [](const std::string& text) {
        return [text](const std::string& file) { std::ofstream(file) << text; };
    };
    using Place = std::function<void(const std::string&)>;
    const std::pair<Place, Place> places[] = {// the ticket, its owner record
                                              {link, nullptr},
                                              {link, write(record)},
                                              {pipe, write(record)},
                                              {write("text"), link},
                                              {write("text"), nullptr}};
    for (const auto& [ticket, owner] : places) {
        ticket(harness.Cache(name));
        owner ? owner(harness.Cache(name + ".owner")) : void();
        EXPECT_TRUE(contentOf(anna, ticketPath(1)).starts_with("? "));
        EXPECT_NE(store(anna, otherJob, name, "text"), "");
        EXPECT_TRUE(contentOf(anna, ticketPath(1)).starts_with("? "));
        EXPECT_EQ(readFile(secret), record);
        std::filesystem::remove(harness.Cache(name));
        std::filesystem::remove(harness.Cache(name + ".owner"));
    }
    // A folder with write permission for others is not used.
    std::filesystem::permissions(harness.Cache(), std::filesystem::perms(0777));
    EXPECT_NE(announce(anna, "", ticketPath(2)), "");
}

TEST(TicketStore, UnusedTicketsStayAMonthUsedOnesAWeekAndHalvesAnHour) {
    const FilterHarness harness;
    constexpr int day = 24;
    const struct {
        bool isUsed;
        const char* missing; // suffix of the missing half
        std::chrono::seconds age;
        bool isKept;
    } cases[] = {{false, nullptr, hours(29 * day), true},
                 {false, nullptr, hours(31 * day), false},
                 {true, nullptr, hours(6 * day), true},
                 {true, nullptr, hours(8 * day), false},
                 {false, "", hours(0), true},
                 {false, "", hours(2), false},
                 {false, ".owner", hours(0), true},
                 {false, ".owner", hours(2), false}};
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const int number = static_cast<int>(i);
        ASSERT_EQ(store(anna, command, nameOf(number), "text"), "");
        if (cases[i].isUsed) {
            EXPECT_EQ(contentOf(anna, ticketPath(number)), "text");
        }
        makeOlder(harness.Cache(nameOf(number)), cases[i].age);
        makeOlder(harness.Cache(nameOf(number) + ".owner"), cases[i].age);
        if (cases[i].missing != nullptr) {
            PrivateFolder::Remove(nameOf(number) + cases[i].missing);
        }
    }
    // A ticket that is used again after six days is kept for another week.
    EXPECT_EQ(contentOf(anna, ticketPath(2)), "text");
    EXPECT_GT(PrivateFolder::Changed(nameOf(2) + ".owner"), std::time(nullptr) - 60);
    const std::tuple<const char*, hours, bool> others[] = {
        {"ConnectionErrorInfoFileAB-1.txt", hours(25), false},
        {"zan_timeout_override.txt", hours(9999), true},
        {"Team-7", hours(9999), true},
        {".torka-abcdef", hours(25), false},
        {".torka-ghijkl", hours(1), true}};
    for (const auto& [name, age, isKept] : others) {
        PrivateFolder::Write(name, "");
        makeOlder(harness.Cache(name), age);
    }
    TicketStore::SweepSometimes();
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const std::string name = nameOf(static_cast<int>(i));
        const bool isThere = PrivateFolder::Exists(name) || PrivateFolder::Exists(name + ".owner");
        EXPECT_EQ(isThere, cases[i].isKept) << i;
    }
    for (const auto& [name, age, isKept] : others) {
        EXPECT_EQ(PrivateFolder::Exists(name), isKept) << name;
    }
}

TEST(TicketStore, ANewTicketIsRefusedWhereThereIsNoRoomAndNoneIsThrownAway) {
    const std::size_t large = maximumOfSender.bytes / 4;
    const Sender away{"Proofs", "anna", "pc7"};
    const struct {
        const char* what;
        std::size_t number; // number of tickets, each of a different user unless isOneUser
        std::size_t bytes;
        bool isOneUser;
        bool hasRoom;     // for the tickets' user on the same host
        bool hasRoomAway; // for the same user on another host
    } cases[] = {{"one below the number", maximumOfSender.number - 1, 1, true, true, true},
                 {"the bytes", 4, large, true, false, true},
                 {"one byte below", 4, large - 1, true, true, true},
                 {"the host's bytes, whatever its users are called", 16, large, false, false, true},
                 {"everybody's bytes", 32, large, false, false, false}};
    for (const auto& c : cases) {
        const FilterHarness harness;
        ASSERT_FALSE(PrivateFolder::Prepare());
        for (std::size_t i = 0; i < c.number; ++i) { // as commands would, but faster
            const std::string user = c.isOneUser ? "anna" : "user" + std::to_string(i % 16);
            const std::string host = c.isOneUser || i < 16 ? "localhost" : "pc8";
            const std::filesystem::path ticket = harness.Cache(nameOf(static_cast<int>(i)));
            std::ofstream(ticket.string() + ".owner")
                << ticketRecordText({user, host, command, c.bytes, {}, false});
            std::ofstream{ticket};
            std::filesystem::resize_file(ticket, c.bytes);
        }
        EXPECT_EQ(store(anna, command, nameOf(90001), "text").empty(), c.hasRoom) << c.what;
        EXPECT_FALSE(store(anna, command, nameOf(90003), "text").empty()) << c.what << ": one more";
        EXPECT_EQ(store(away, command, nameOf(90002), "text").empty(), c.hasRoomAway) << c.what;
        EXPECT_EQ(PrivateFolder::Exists(nameOf(90001)), c.hasRoom);
        const auto entries = PrivateFolder::List();
        EXPECT_EQ(std::ranges::count_if(entries, [](const auto& entry) { return isTicketName(entry.name); }),
                  static_cast<std::ptrdiff_t>(c.number) + (c.hasRoom ? 1 : 0) + (c.hasRoomAway ? 1 : 0));
    }
}

TEST(TicketOwner, ARecordIsReadAsItWasWrittenOrNotAtAll) {
    for (const TicketRecord& record :
         {TicketRecord{"anna", "pc 7\n%", command, 17, {}, false}, TicketRecord{"", "", {}, 0, {}, true},
          TicketRecord{"=a \n", "h", command, 1, JobIdentity{"8", ""}, false}}) {
        const std::string text = ticketRecordText(record);
        EXPECT_EQ(readTicketRecord(text), record);
        const std::size_t first = text.find('\n');
        for (std::size_t cut = 0; cut < text.size(); ++cut) {
            const auto read = readTicketRecord(text.substr(0, cut));
            EXPECT_EQ(read.has_value(), cut > first) << cut;
            EXPECT_FALSE(read && (read->usedBy || read->isContested)) << cut;
        }
        // A line that ends too early, as by another version.
        for (std::size_t field = text.find(' '); field < first; field = text.find(' ', field + 1)) {
            const auto read = readTicketRecord(text.substr(0, field + 1) + "\n");
            EXPECT_EQ(read.has_value(), field + 1 == first) << field;
        }
        for (std::size_t field = 0; field < first; field = text.find(' ', field) + 1) {
            EXPECT_FALSE(readTicketRecord(std::string(text).insert(field + 1, "%z"))) << field;
        }
        for (const char* line : {"=used =8 \n", "=used =%z =8 \n"}) {
            EXPECT_FALSE(readTicketRecord(text.substr(0, first + 1) + line)->usedBy) << line;
        }
        // The first job counts. A word of another version is no job.
        EXPECT_EQ(readTicketRecord(text.substr(0, first + 1) + "=later =7 =x \n=used =8 =y \n=used =9 =z \n")
                      ->usedBy,
                  (JobIdentity{"8", "y"}));
    }
}

TEST(FilterNotes, KeepTheirOrderAndTheirBounds) {
    EXPECT_FALSE(readNoteLine("=mailbox =%z =q =u =h =v ")) << "damaged";
    const FilterHarness harness;
    for (std::size_t i = 0; i < FilterNotes::limitOfSender + 5; ++i) {
        ASSERT_TRUE(FilterNotes::Add(anna, NoteKind::ticketName, std::to_string(i)));
    }
    EXPECT_FALSE(FilterNotes::Has("anna", NoteKind::ticketName, "4")) << "the oldest went";
    EXPECT_TRUE(FilterNotes::Has("anna", NoteKind::ticketName, "5"));
    ASSERT_TRUE(FilterNotes::Set(anna, NoteKind::language, "de"));
    ASSERT_TRUE(FilterNotes::Set(anna, NoteKind::language, "ja"));
    EXPECT_EQ(FilterNotes::Get(anna, NoteKind::language), "ja");
    EXPECT_FALSE(FilterNotes::Add(anna, NoteKind::ticketName, std::string(5000, 'x')));

    // A damaged list loses only its damaged lines.
    const FilterNote note{{"q =", "u\n%41", ""}, NoteKind::mailbox, 17, std::string("a\0b", 3)};
    const std::string line = noteLine(note);
    EXPECT_EQ(readNoteLine(line.substr(0, line.size() - 1)), note);
    for (std::size_t cut = 0; cut + 1 < line.size(); ++cut) {
        EXPECT_EQ(readNoteLine(line.substr(0, cut)), std::nullopt) << cut;
    }
    std::string list = readFile(harness.Cache("TorkaFilterNotes"));
    PrivateFolder::Write("TorkaFilterNotes",
                         "rubbish\n=ticket =x = = = = \n\n" + list.substr(0, list.size() / 2));
    EXPECT_TRUE(FilterNotes::Has("anna", NoteKind::ticketName, "6"));
    // Each kind has its own lifetime.
    const std::int64_t now = std::time(nullptr);
    constexpr std::int64_t day = 24 * 3600;
    std::string text;
    const std::pair<NoteKind, std::int64_t> lifetimes[] = {{NoteKind::language, day},
                                                           {NoteKind::mailbox, 30 * day}};
    for (const auto& [kind, limit] : lifetimes) {
        for (const std::int64_t age : {limit - 60, limit + 60}) {
            text += noteLine({anna, kind, now - age, std::to_string(age)});
        }
    }
    PrivateFolder::Write("TorkaFilterNotes", text);
    for (const auto& [kind, limit] : lifetimes) {
        EXPECT_TRUE(FilterNotes::Has("anna", kind, std::to_string(limit - 60)));
        EXPECT_FALSE(FilterNotes::Has("anna", kind, std::to_string(limit + 60)));
    }
}

// One host cannot displace the entries of others, with any number of user names of any length.
TEST(FilterNotes, OneHostCannotCrowdTheOthersOut) {
    for (const std::size_t length : {10U, 1000U}) {
        const FilterHarness harness;
        ASSERT_TRUE(FilterNotes::Add(anna, NoteKind::mailbox, "oldest of all"));
        std::string text = readFile(harness.Cache("TorkaFilterNotes"));
        const std::size_t enough =
            length == 10 ? FilterNotes::limitOfAll : FilterNotes::maximumBytes / length;
        const auto user = [&](std::size_t i) { return std::string(length, 'x') + std::to_string(i); };
        for (std::size_t i = 0; i < enough; ++i) {
            text +=
                noteLine({{"Proofs", user(i), "attacker"}, NoteKind::ticketName, std::time(nullptr), "name"});
        }
        PrivateFolder::Write("TorkaFilterNotes", text);
        ASSERT_TRUE(FilterNotes::Add({"Proofs", "one more", "attacker"}, NoteKind::ticketName, "newest"));
        EXPECT_TRUE(FilterNotes::Has("anna", NoteKind::mailbox, "oldest of all"));
        EXPECT_TRUE(FilterNotes::Has("one more", NoteKind::ticketName, "newest"));
        EXPECT_FALSE(FilterNotes::Has(user(0), NoteKind::ticketName, "name"));
        EXPECT_TRUE(FilterNotes::Has(user(enough - 1), NoteKind::ticketName, "name")) << "never all";
        EXPECT_LE(std::filesystem::file_size(harness.Cache("TorkaFilterNotes")), FilterNotes::maximumBytes);
    }
}

} // namespace

} // namespace torka::tests
