// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/MailboxFile.h"

#include "bidi/commands/BidiFilePaths.h"
#include "spooler/ByteSink.h"
#include "spooler/filter/NoteFields.h"
#include "spooler/filter/ServerMessages.h"
#include "spooler/filter/TicketStore.h"
#include "spooler/filter/TwoWayFolder.h"

#include <algorithm>
#include <optional>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace torka::filter {

namespace {

constexpr std::string_view mailboxLock = "TorkaMailboxes.lock";
constexpr std::string_view ownerSuffix = ".owner";
constexpr std::size_t maximumName = 200; // bytes; leaves room for the suffix of the owner's file
constexpr std::size_t maximumOwner = 4096;

std::string ownerFile(const std::string& name) { return name + std::string(ownerSuffix); }

Fault cannotWrite(const std::string& name, const std::error_code& error) {
    return {"The mailbox " + name + " cannot be written: " + error.message() + "."};
}

Fault othersMailbox(const std::string& name) {
    return {"The mailbox " + name + " belongs to somebody else."};
}

struct MailboxOwner {
    std::string user;
    std::string run; // of the job that filled the mailbox
};

std::string ownerText(const MailboxOwner& owner) {
    std::string line;
    appendField(line, owner.user);
    appendField(line, owner.run);
    return line += '\n';
}

// Returns nothing for a file that cannot be read. Also reads a file that holds the user's name alone, as
// earlier versions of the filter wrote it.
std::optional<MailboxOwner> ownerOf(const std::string& name) {
    const FileResult<std::string> text = PrivateFolder::Read(ownerFile(name), maximumOwner);
    if (!text) {
        return std::nullopt;
    }
    std::string_view line = *text;
    const std::optional<std::string> user = takeField(line);
    const std::optional<std::string> run = takeField(line);
    return user && run ? MailboxOwner{*user, *run} : MailboxOwner{*text, ""};
}

bool endsInLine(int file) {
    char last = '\n';
    const off_t size = ::lseek(file, 0, SEEK_END);
    return size <= 0 || ::pread(file, &last, 1, size - 1) != 1 || last == '\n' || last == '\r';
}

// Writes one document behind the other into the third file.
std::error_code join(int first, int second, const PartFile& target) {
    if (const std::error_code error = target.Append(first)) {
        return error;
    }
    if (!endsInLine(first)) {
        if (const int error = DescriptorSink(target.Descriptor()).Write("\n"); error != 0) {
            return {error, std::generic_category()};
        }
    }
    return target.Append(second);
}

} // namespace

bool MailboxFile::IsName(std::string_view name) {
    constexpr std::string_view others[] = {".", "Torka", "ConnectionErrorInfoFile", "zan_", "ZAN."};
    return isFileName(name) && name.size() <= maximumName && !name.ends_with(ownerSuffix) &&
           std::ranges::none_of(others, [name](std::string_view start) { return name.starts_with(start); });
}

Result<MailboxFile> MailboxFile::Create(const Sender& sender, std::string_view path, std::string run) {
    std::string name(lastComponent(path));
    if (!IsName(name)) {
        return Fault{"The destination of this job is a mailbox without a usable name."};
    }
    if (!FilterNotes::Has(sender.user, NoteKind::mailbox, name)) {
        return Fault{"The mailbox " + name +
                     " was not named ahead of this job. Print it again from its application."};
    }
    if (PrivateFolder::Exists(name)) {
        const std::optional<MailboxOwner> owner = ownerOf(name);
        if (!owner || owner->user != sender.user) {
            return othersMailbox(name);
        }
    }
    FileResult<PartFile> opened = PartFile::Create();
    if (!opened) {
        return cannotWrite(name, opened.Why());
    }
    return MailboxFile(std::move(name), sender.user, std::move(run), *std::move(opened));
}

MailboxFile::MailboxFile(std::string mailboxName, std::string mailboxUser, std::string jobRun,
                         PartFile opened)
    : name(std::move(mailboxName))
    , user(std::move(mailboxUser))
    , run(std::move(jobRun))
    , part(std::move(opened)) {}

Result<void> MailboxFile::Commit() {
    const FileResult<OpenFile> lock = PrivateFolder::Lock(mailboxLock);
    if (!lock) {
        return cannotWrite(name, lock.Why());
    }
    if (!PrivateFolder::Exists(name)) {
        return PutInPlace(part);
    }
    // Another job may have filled the mailbox since Create.
    const std::optional<MailboxOwner> owner = ownerOf(name);
    if (!owner || owner->user != user) {
        return othersMailbox(name);
    }
    if (run.empty() || owner->run != run) {
        Result<void> done = PutInPlace(part);
        if (done && run.empty()) {
            tellWarning("The document in the mailbox " + name +
                        " was replaced: the print server does not tell whether it belongs to the same job.");
        }
        return done;
    }
    const FileResult<OpenFile> earlier = PrivateFolder::Open(name);
    if (!earlier && earlier.Why() == std::errc::no_such_file_or_directory) {
        return PutInPlace(part); // the program that empties mailboxes took it
    }
    FileResult<PartFile> whole = earlier ? PartFile::Create() : earlier.Why();
    const std::error_code error =
        whole ? join(earlier->Descriptor(), part.Descriptor(), *whole) : whole.Why();
    return error ? cannotWrite(name, error) : PutInPlace(*whole);
}

Result<void> MailboxFile::PutInPlace(PartFile& whole) const {
    const TerminationLater untilItHasItsName;
    if (const std::error_code error = PrivateFolder::Write(ownerFile(name), ownerText({user, run}))) {
        return cannotWrite(name, error);
    }
    if (const std::error_code error = whole.TakeName(name)) {
        // The document of an earlier job stays: the next document of this run must replace it.
        static_cast<void>(PrivateFolder::Write(ownerFile(name), ownerText({user, ""})));
        return Fault{"The mailbox " + name + " cannot take its name: " + error.message() + "."};
    }
    return {};
}

} // namespace torka::filter
