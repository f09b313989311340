// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Keeps what a command job leaves for later jobs: names of expected tickets, a language, a mailbox.

namespace torka::filter {

// Jobs of one sender belong together.
struct Sender {
    std::string queue;
    std::string user;
    std::string host;
    bool operator==(const Sender&) const = default;
};

enum class NoteKind { ticketName, language, mailbox };

// A list in a file of the private folder. Each change takes a lock, because filters of several queues run at
// once. A sender has at most 100 entries of each kind; the oldest goes first. When the list is full, the
// oldest entry of the host that uses most of it goes. One host cannot crowd out the others by inventing user
// names.
class FilterNotes {
public:
    // How long an entry is kept. A mailbox waits as long as a ticket does, because its job may be held.
    static std::chrono::seconds Lifetime(NoteKind kind);
    static constexpr std::size_t limitOfSender = 100;
    static constexpr std::size_t limitOfAll = 5000;
    static constexpr std::size_t maximumBytes = std::size_t{1024} * 1024; // of the file

    // Adds the entry behind the sender's others of its kind, without duplicates. Returns false when the list
    // cannot be written.
    static bool Add(const Sender& sender, NoteKind kind, std::string_view value);
    // Replaces the sender's entries of this kind.
    static bool Set(const Sender& sender, NoteKind kind, std::string_view value);
    // Removes and returns the sender's entry of this kind when it is the only one; nothing otherwise. `count`
    // gets the number of such entries.
    static std::optional<std::string> TakeOnly(const Sender& sender, NoteKind kind, std::size_t& count);
    // Returns the last entry.
    static std::optional<std::string> Get(const Sender& sender, NoteKind kind);
    // Tells whether a user has such an entry on any queue and host: a job may be moved, and one client may
    // have two addresses.
    static bool Has(std::string_view user, NoteKind kind, std::string_view value);
    // Removes the entry with this value and the earlier ones of its sender and kind. Returns false when there
    // is none.
    static bool ForgetUpTo(const Sender& sender, NoteKind kind, std::string_view value);
};

// Writes and reads the line of one entry, with escaped fields. Public for tests.
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
