// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/TicketOwner.h"

#include "platform/LastError.h"
#include "spooler/filter/NoteFields.h"

#include <algorithm>
#include <charconv>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace torka::filter {

namespace {

// The print server gives names of 255 bytes at most; an escaped byte takes three.
constexpr std::string_view usedWord = "used";
constexpr std::string_view contestedWord = "contested";

std::string fileOf(std::string_view ticket) { return std::string(ticket).append(ticketOwnerSuffix); }

std::string usedLine(const JobIdentity& job) {
    std::string line;
    appendField(line, usedWord);
    appendField(line, job.number);
    appendField(line, job.uuid);
    return line += '\n';
}

std::string contestedLine() {
    std::string line;
    appendField(line, contestedWord);
    return line += '\n';
}

// Removes the next complete line from the text and returns it without its end.
std::optional<std::string_view> takeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 1);
    return line;
}

std::optional<TicketRecord> readFirstLine(std::string_view line) {
    const auto user = takeField(line);
    const auto host = takeField(line);
    const auto number = takeField(line);
    const auto uuid = takeField(line);
    const auto bytes = takeField(line);
    TicketRecord record;
    if (!bytes || !line.empty() ||
        std::from_chars(bytes->data(), bytes->data() + bytes->size(), record.bytes).ec != std::errc()) {
        return std::nullopt;
    }
    record.user = *user;
    record.host = *host;
    record.command = {*number, *uuid};
    return record;
}

} // namespace

std::string ticketRecordText(const TicketRecord& record) {
    std::string text;
    appendField(text, record.user);
    appendField(text, record.host);
    appendField(text, record.command.number);
    appendField(text, record.command.uuid);
    appendField(text, std::to_string(record.bytes));
    text += '\n';
    if (record.usedBy) {
        text += usedLine(*record.usedBy);
    }
    return record.isContested ? text + contestedLine() : text;
}

std::optional<TicketRecord> readTicketRecord(std::string_view text) {
    const std::optional<std::string_view> first = takeLine(text);
    std::optional<TicketRecord> record = first ? readFirstLine(*first) : std::nullopt;
    while (record) {
        std::optional<std::string_view> line = takeLine(text);
        if (!line) {
            break;
        }
        const auto word = takeField(*line);
        if (word == contestedWord) {
            record->isContested = true;
        } else if (word == usedWord && !record->usedBy) {
            const auto number = takeField(*line);
            const auto uuid = takeField(*line);
            if (uuid) {
                record->usedBy = JobIdentity{*number, *uuid};
            }
        }
    }
    return record;
}

FileResult<TicketOwner> TicketOwner::Create(std::string_view ticket, const TicketRecord& record) {
    const std::string text = ticketRecordText(record);
    FileResult<OpenFile> file = PrivateFolder::Create(fileOf(ticket), text);
    if (!file) {
        return file.Why();
    }
    return TicketOwner(*std::move(file), record, text.size());
}

FileResult<TicketOwner> TicketOwner::Open(std::string_view ticket) {
    const std::string name = fileOf(ticket);
    FileResult<OpenFile> file = PrivateFolder::OpenForChange(name);
    if (!file) {
        return file.Why();
    }
    struct stat facts {};
    if (::flock(file->Descriptor(), LOCK_EX) != 0 || ::fstat(file->Descriptor(), &facts) != 0) {
        return platform::lastError();
    }
    // The previous holder of the lock may have removed the file.
    if (facts.st_nlink == 0) {
        return std::make_error_code(std::errc::no_such_file_or_directory);
    }
    const FileResult<std::string> text = PrivateFolder::Read(name, maximumOwnerRecord);
    if (!text) {
        return text.Why();
    }
    std::optional<TicketRecord> record = readTicketRecord(*text);
    if (!record) {
        return std::make_error_code(std::errc::bad_message);
    }
    return TicketOwner(*std::move(file), *std::move(record), text->rfind('\n') + 1);
}

std::int64_t TicketOwner::Changed() const {
    struct stat facts {};
    return ::fstat(file.Descriptor(), &facts) == 0 ? facts.st_mtime : 0;
}

std::error_code TicketOwner::MarkUsed(const JobIdentity& job) {
    if (record.usedBy) {
        return ::futimens(file.Descriptor(), nullptr) == 0 ? std::error_code() : platform::lastError();
    }
    const std::error_code error = Append(usedLine(job));
    if (!error) {
        record.usedBy = job;
    }
    return error;
}

std::error_code TicketOwner::MarkContested() {
    const std::error_code error = record.isContested ? std::error_code() : Append(contestedLine());
    record.isContested = true;
    return error;
}

// Writes behind the last whole line. Cuts off a partial line that a killed filter or a full disk left.
std::error_code TicketOwner::Append(std::string_view line) {
    if (::ftruncate(file.Descriptor(), static_cast<off_t>(length)) != 0) {
        return platform::lastError();
    }
    const ssize_t written = ::write(file.Descriptor(), line.data(), line.size());
    if (written < 0) {
        return platform::lastError();
    }
    if (static_cast<std::size_t>(written) != line.size()) {
        return std::make_error_code(std::errc::no_space_on_device);
    }
    length += line.size();
    return {};
}

} // namespace torka::filter
