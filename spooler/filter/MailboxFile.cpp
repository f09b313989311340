// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/MailboxFile.h"

#include "bidi/commands/BidiFilePaths.h"
#include "platform/LastError.h"
#include "platform/System.h"
#include "spooler/filter/TicketStore.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace torka::filter {

namespace {

constexpr std::string_view ownerSuffix = ".owner";
constexpr std::size_t maximumName = 200; // bytes; leaves room for the suffix of the owner's file
constexpr std::size_t maximumOwner = 1024;

Fault cannotWrite(const std::string& name, const std::error_code& error) {
    return {"The mailbox " + name + " cannot be written: " + error.message() + "."};
}

// Returns false for a mailbox that does not exist yet.
bool isOthers(const Sender& sender, const std::string& name) {
    if (!PrivateFolder::Exists(name)) {
        return false;
    }
    const FileResult<std::string> owner = PrivateFolder::Read(name + std::string(ownerSuffix), maximumOwner);
    return !owner || *owner != sender.user;
}

} // namespace

bool MailboxFile::IsName(std::string_view name) {
    constexpr std::string_view others[] = {".", "Torka", "ConnectionErrorInfoFile", "zan_", "ZAN."};
    return isFileName(name) && name.size() <= maximumName && !name.ends_with(ownerSuffix) &&
           std::ranges::none_of(others, [name](std::string_view start) { return name.starts_with(start); });
}

Result<MailboxFile> MailboxFile::Create(const Sender& sender, std::string_view path) {
    std::string name(lastComponent(path));
    if (!IsName(name)) {
        return Fault{"The destination of this job is a mailbox without a usable name."};
    }
    if (!FilterNotes::Has(sender.user, NoteKind::mailbox, name)) {
        return Fault{"The mailbox " + name +
                     " was not named ahead of this job. Print it again from its application."};
    }
    if (isOthers(sender, name)) {
        return Fault{"The mailbox " + name + " belongs to somebody else."};
    }
    std::string temporary = (platform::system().Resolve(cachesFolder) / ".torka-XXXXXX").string();
    std::string user = sender.user;
    OpenFile opened(::mkostemp(temporary.data(), O_CLOEXEC)); // mode 0600
    if (!opened) {
        return cannotWrite(name, platform::lastError());
    }
    return MailboxFile(std::move(name), std::move(user), std::move(temporary), std::move(opened));
}

MailboxFile::MailboxFile(std::string mailboxName, std::string mailboxOwner, std::string temporaryPath,
                         OpenFile opened)
    : name(std::move(mailboxName))
    , owner(std::move(mailboxOwner))
    , temporary(std::move(temporaryPath))
    , file(std::move(opened)) {}

MailboxFile::~MailboxFile() {
    if (!temporary.empty() && file) {
        ::unlink(temporary.c_str());
    }
}

Result<void> MailboxFile::Commit() {
    // fsync may be the first call that reports a full disk.
    if (::fsync(file.Descriptor()) != 0) {
        return cannotWrite(name, platform::lastError());
    }
    if (const std::error_code error = PrivateFolder::Write(name + std::string(ownerSuffix), owner)) {
        return cannotWrite(name, error);
    }
    const std::string path = (platform::system().Resolve(cachesFolder) / name).string();
    if (::rename(temporary.c_str(), path.c_str()) != 0) {
        return Fault{"The mailbox " + name + " cannot take its name: " + platform::lastError().message() +
                     "."};
    }
    temporary.clear();
    return {};
}

} // namespace torka::filter
