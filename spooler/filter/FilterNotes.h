#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What one command job leaves for the jobs that follow it: names of tickets to come, a language, a mailbox.

namespace torka::filter {

// Whose jobs belong together.
struct Sender {
    std::string queue;
    std::string user;
    std::string host;
    bool operator==(const Sender&) const = default;
};

enum class NoteKind { ticketName, language, mailbox };

// A list in a file of the private folder, taken under a lock for each change: filters of several queues run
// at once. Of each kind a sender has at most 100 entries, the oldest go first. When the list is full, the
// oldest entry of the host that fills most of it goes: one host cannot crowd the others out, whatever names
// it gives its users.
class FilterNotes {
public:
    // How long an entry is kept. A mailbox waits for its job, which may be held, as tickets do.
    static std::chrono::seconds Lifetime(NoteKind kind);
    static constexpr std::size_t limitOfSender = 100;
    static constexpr std::size_t limitOfAll = 5000;
    static constexpr std::size_t mostBytes = std::size_t{1024} * 1024; // of the file

    // Behind the sender's others of its kind, once. False when it could not be written.
    static bool Add(const Sender& sender, NoteKind kind, std::string_view value);
    // In place of the sender's others of its kind.
    static bool Set(const Sender& sender, NoteKind kind, std::string_view value);
    // Takes out the sender's entry of this kind when it is the only one; nothing otherwise. `count` tells how
    // many there were.
    static std::optional<std::string> TakeOnly(const Sender& sender, NoteKind kind, std::size_t& count);
    // The last one.
    static std::optional<std::string> Get(const Sender& sender, NoteKind kind);
    // Whether a user has such an entry, of any queue and host: a job may be moved, and one client can show
    // two addresses.
    static bool Has(std::string_view user, NoteKind kind, std::string_view value);
    // Takes out the entry of this value and those of its sender and kind before it; false when there is none.
    static bool ForgetUpTo(const Sender& sender, NoteKind kind, std::string_view value);
};

// One line for an entry, fields escaped; for tests.
struct FilterNote {
    Sender sender;
    NoteKind kind = NoteKind::ticketName;
    std::int64_t time = 0; // seconds since 1970
    std::string value;
    bool operator==(const FilterNote&) const = default;
};
std::string noteLine(const FilterNote& note);
std::optional<FilterNote> readNoteLine(std::string_view line);

} // namespace torka::filter
