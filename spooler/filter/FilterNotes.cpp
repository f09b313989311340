#include "spooler/filter/FilterNotes.h"

#include "bidi/BidiFilePaths.h"
#include "platform/System.h"
#include "spooler/filter/PrivateFolder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <fcntl.h>
#include <functional>
#include <sys/file.h>

namespace torka::filter {

namespace {

constexpr std::string_view notesFile = "TorkaFilterNotes";
constexpr std::string_view lockFile = "TorkaFilterNotes.lock";
constexpr std::size_t mostBytes = std::size_t{8} * 1024 * 1024;
constexpr std::size_t mostField = 1024; // bytes; a longer one is no honest name
constexpr std::array<std::string_view, 3> kindNames{"ticket", "language", "mailbox"};

bool isPlain(char c) { return c > ' ' && c < 0x7f && c != '%'; }

// Each field is a word: what could end it is written as "%" and two digits.
void appendField(std::string& line, std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    line += '=';
    for (const char c : text) {
        if (isPlain(c)) {
            line += c;
        } else {
            const auto value = static_cast<unsigned char>(c);
            line.append({'%', digits[value >> 4U], digits[value & 15U]});
        }
    }
    line += ' ';
}

std::optional<std::string_view> nextField(std::string_view& line) {
    const std::size_t end = line.find(' ');
    if (end == std::string_view::npos || !line.starts_with('=')) {
        return std::nullopt;
    }
    const std::string_view field = line.substr(1, end - 1);
    line.remove_prefix(end + 1);
    return field;
}

std::optional<std::string> plainField(std::string_view& line) {
    const std::optional<std::string_view> field = nextField(line);
    if (!field) {
        return std::nullopt;
    }
    std::string text;
    for (std::size_t i = 0; i < field->size(); ++i) {
        if ((*field)[i] != '%') {
            text += (*field)[i];
            continue;
        }
        unsigned value = 0;
        const char* digits = field->data() + i + 1;
        if (i + 2 >= field->size() || std::from_chars(digits, digits + 2, value, 16).ptr != digits + 2) {
            return std::nullopt;
        }
        text += static_cast<char>(value);
        i += 2;
    }
    return text;
}

// Reads the list, lets `change` work on it, and writes it when that answers true. False when it could not be
// read or written.
bool withNotes(const std::function<bool(std::vector<FilterNote>&)>& change) {
    if (PrivateFolder::Prepare()) {
        return false;
    }
    const std::string lockPath = (platform::system().Resolve(cachesFolder) / lockFile).string();
    const OpenFile lock(::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!lock || ::flock(lock.Descriptor(), LOCK_EX) != 0) {
        return false;
    }
    std::string text;
    const std::error_code error = PrivateFolder::Read(notesFile, mostBytes, text);
    if (error && error != std::errc::no_such_file_or_directory && error != std::errc::file_too_large) {
        return false;
    }
    std::vector<FilterNote> notes;
    const std::int64_t oldest = std::time(nullptr) - FilterNotes::lifetime.count();
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::optional<FilterNote> note = readNoteLine(rest.substr(0, end));
        if (note && note->time >= oldest) {
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
    return std::max({sender.queue.size(), sender.user.size(), sender.host.size(), value.size()}) > mostField;
}

void append(std::vector<FilterNote>& notes, const Sender& sender, NoteKind kind, std::string_view value) {
    const auto isSame = isOf(sender, kind);
    if (static_cast<std::size_t>(std::ranges::count_if(notes, isSame)) >= FilterNotes::limitOfSender) {
        notes.erase(std::ranges::find_if(notes, isSame));
    }
    if (notes.size() >= FilterNotes::limitOfAll) {
        notes.erase(notes.begin());
    }
    notes.push_back({sender, kind, std::time(nullptr), std::string(value)});
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
    const auto kind = plainField(line);
    const auto time = plainField(line);
    const auto queue = plainField(line);
    const auto user = plainField(line);
    const auto host = plainField(line);
    const auto value = plainField(line);
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

std::optional<std::string> FilterNotes::TakeFirst(const Sender& sender, NoteKind kind) {
    std::optional<std::string> value;
    const bool done = withNotes([&](std::vector<FilterNote>& notes) {
        const auto first = std::ranges::find_if(notes, isOf(sender, kind));
        if (first == notes.end()) {
            return false;
        }
        value = first->value;
        notes.erase(first);
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

bool FilterNotes::Has(const Sender& sender, NoteKind kind, std::string_view value) {
    bool found = false;
    withNotes([&](const std::vector<FilterNote>& notes) {
        const auto isSame = isOf(sender, kind);
        found = std::ranges::any_of(
            notes, [&](const FilterNote& note) { return isSame(note) && note.value == value; });
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
