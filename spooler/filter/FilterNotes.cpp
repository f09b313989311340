// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/FilterNotes.h"

#include "spooler/filter/NoteFields.h"
#include "spooler/filter/PrivateFolder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <functional>
#include <map>

namespace torka::filter {

namespace {

constexpr std::string_view notesFile = "TorkaFilterNotes";
constexpr std::string_view lockFile = "TorkaFilterNotes.lock";
constexpr std::size_t maximumRead = std::size_t{64} * 1024 * 1024; // more than any version wrote
constexpr std::size_t maximumField = 1024;                         // bytes; no honest name is longer
constexpr std::array<std::string_view, 3> kindNames{"ticket", "language", "mailbox"};

// Reads the list, passes it to `change`, and writes it when `change` returns true. Returns false when the
// list cannot be read or written.
bool withNotes(const std::function<bool(std::vector<FilterNote>&)>& change) {
    const FileResult<OpenFile> lock = PrivateFolder::Lock(lockFile);
    if (!lock) {
        return false;
    }
    const FileResult<std::string> read = PrivateFolder::Read(notesFile, maximumRead);
    if (!read && read.Why() != std::errc::no_such_file_or_directory) {
        return false;
    }
    std::string text = read ? *read : std::string();
    std::vector<FilterNote> notes;
    const std::int64_t now = std::time(nullptr);
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::optional<FilterNote> note = readNoteLine(rest.substr(0, end));
        if (note && note->time >= now - FilterNotes::Lifetime(note->kind).count()) {
            notes.push_back(*note);
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    if (!change(notes)) {
        return true;
    }
    text.clear();
    for (const FilterNote& note : notes) {
        text += noteLine(note);
    }
    return !PrivateFolder::Write(notesFile, text);
}

auto isOf(const Sender& sender, NoteKind kind) {
    return [&sender, kind](const FilterNote& note) { return note.kind == kind && note.sender == sender; };
}

bool isTooLong(const Sender& sender, std::string_view value) {
    return std::max({sender.queue.size(), sender.user.size(), sender.host.size(), value.size()}) >
           maximumField;
}

// Removes entries until the list is within its limits: each time the oldest one of the host whose entries
// take most bytes.
void trim(std::vector<FilterNote>& notes) {
    std::map<std::string, std::size_t, std::less<>> room; // bytes by host
    std::vector<std::size_t> sizes;
    std::size_t bytes = 0;
    for (const FilterNote& note : notes) {
        sizes.push_back(noteLine(note).size());
        room[note.sender.host] += sizes.back();
        bytes += sizes.back();
    }
    while (notes.size() > FilterNotes::limitOfAll || bytes > FilterNotes::maximumBytes) {
        const auto most = std::ranges::max_element(room, {}, [](const auto& entry) { return entry.second; });
        const auto oldest = std::ranges::find_if(
            notes, [&most](const FilterNote& note) { return note.sender.host == most->first; });
        const auto size = sizes.begin() + (oldest - notes.begin());
        most->second -= *size;
        bytes -= *size;
        sizes.erase(size);
        notes.erase(oldest);
    }
}

void append(std::vector<FilterNote>& notes, const Sender& sender, NoteKind kind, std::string_view value) {
    const auto isSame = isOf(sender, kind);
    // A restarted command adds the same value again.
    std::erase_if(notes, [&](const FilterNote& note) { return isSame(note) && note.value == value; });
    if (static_cast<std::size_t>(std::ranges::count_if(notes, isSame)) >= FilterNotes::limitOfSender) {
        notes.erase(std::ranges::find_if(notes, isSame));
    }
    notes.push_back({sender, kind, std::time(nullptr), std::string(value)});
    trim(notes);
}

} // namespace

std::string noteLine(const FilterNote& note) {
    std::string line;
    appendField(line, kindNames[static_cast<std::size_t>(note.kind)]);
    appendField(line, std::to_string(note.time));
    appendField(line, note.sender.queue);
    appendField(line, note.sender.user);
    appendField(line, note.sender.host);
    appendField(line, note.value);
    return line += '\n';
}

std::optional<FilterNote> readNoteLine(std::string_view line) {
    FilterNote note;
    const auto kind = takeField(line);
    const auto time = takeField(line);
    const auto queue = takeField(line);
    const auto user = takeField(line);
    const auto host = takeField(line);
    const auto value = takeField(line);
    const auto* const name = std::ranges::find(kindNames, kind.value_or(""));
    if (!value || !line.empty() || name == kindNames.end() ||
        std::from_chars(time->data(), time->data() + time->size(), note.time).ec != std::errc()) {
        return std::nullopt;
    }
    note.kind = static_cast<NoteKind>(name - kindNames.begin());
    note.sender = {*queue, *user, *host};
    note.value = *value;
    return note;
}

std::chrono::seconds FilterNotes::Lifetime(NoteKind kind) {
    constexpr std::chrono::seconds day = std::chrono::hours(24);
    return kind == NoteKind::mailbox ? 30 * day : day;
}

bool FilterNotes::Add(const Sender& sender, NoteKind kind, std::string_view value) {
    return !isTooLong(sender, value) && withNotes([&](std::vector<FilterNote>& notes) {
        append(notes, sender, kind, value);
        return true;
    });
}

bool FilterNotes::Set(const Sender& sender, NoteKind kind, std::string_view value) {
    return !isTooLong(sender, value) && withNotes([&](std::vector<FilterNote>& notes) {
        std::erase_if(notes, isOf(sender, kind));
        append(notes, sender, kind, value);
        return true;
    });
}

std::optional<std::string> FilterNotes::TakeOnly(const Sender& sender, NoteKind kind, std::size_t& count) {
    std::optional<std::string> value;
    count = 0;
    const bool done = withNotes([&](std::vector<FilterNote>& notes) {
        const auto isSame = isOf(sender, kind);
        count = static_cast<std::size_t>(std::ranges::count_if(notes, isSame));
        if (count != 1) {
            return false;
        }
        const auto only = std::ranges::find_if(notes, isSame);
        value = only->value;
        notes.erase(only);
        return true;
    });
    return done ? value : std::nullopt;
}

std::optional<std::string> FilterNotes::Get(const Sender& sender, NoteKind kind) {
    std::optional<std::string> value;
    withNotes([&](std::vector<FilterNote>& notes) {
        for (const FilterNote& note : notes) {
            if (isOf(sender, kind)(note)) {
                value = note.value;
            }
        }
        return false;
    });
    return value;
}

bool FilterNotes::Has(std::string_view user, NoteKind kind, std::string_view value) {
    bool found = false;
    withNotes([&](const std::vector<FilterNote>& notes) {
        found = std::ranges::any_of(notes, [&](const FilterNote& note) {
            return note.kind == kind && note.sender.user == user && note.value == value;
        });
        return false;
    });
    return found;
}

bool FilterNotes::ForgetUpTo(const Sender& sender, NoteKind kind, std::string_view value) {
    bool found = false;
    withNotes([&](std::vector<FilterNote>& notes) {
        const auto isSame = isOf(sender, kind);
        std::size_t end = notes.size();
        for (std::size_t i = 0; i < notes.size(); ++i) {
            if (isSame(notes[i]) && notes[i].value == value) {
                end = i + 1;
                found = true;
            }
        }
        std::size_t index = 0;
        std::erase_if(notes, [&](const FilterNote& note) { return index++ < end && isSame(note); });
        return found;
    });
    return found;
}

} // namespace torka::filter
