#pragma once

#include <chrono>
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
// at once. Entries are forgotten after a day; of each kind a sender has at most 100, the oldest go first.
class FilterNotes {
public:
    static constexpr std::chrono::seconds lifetime = std::chrono::hours(24);
    static constexpr std::size_t limitOfSender = 100;
    static constexpr std::size_t limitOfAll = 5000;

    // Behind the sender's others of its kind. False when it could not be written.
    static bool Add(const Sender& sender, NoteKind kind, std::string_view value);
    // In place of the sender's others of its kind.
    static bool Set(const Sender& sender, NoteKind kind, std::string_view value);
    // The first one, which is taken out.
    static std::optional<std::string> TakeFirst(const Sender& sender, NoteKind kind);
    // The last one.
    static std::optional<std::string> Get(const Sender& sender, NoteKind kind);
    static bool Has(const Sender& sender, NoteKind kind, std::string_view value);
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
