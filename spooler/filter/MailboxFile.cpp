#include "spooler/filter/MailboxFile.h"

#include "bidi/commands/BidiFilePaths.h"
#include "platform/System.h"
#include "spooler/filter/TicketStore.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace torka::filter {

namespace {

constexpr std::string_view ownerSuffix = ".owner";
constexpr std::size_t mostName = 200; // bytes; leaves room for the suffix of the owner's file
constexpr std::size_t mostOwner = 1024;

std::string message(int error) { return std::generic_category().message(error); }

// Returns "" or why this user may not have the mailbox.
std::string ownerProblem(const Sender& sender, const std::string& name) {
    if (!PrivateFolder::Exists(name)) {
        return {};
    }
    std::string owner;
    return PrivateFolder::Read(name + std::string(ownerSuffix), mostOwner, owner) || owner != sender.user
               ? "The mailbox " + name + " belongs to somebody else."
               : "";
}

} // namespace

bool MailboxFile::IsName(std::string_view name) {
    constexpr std::string_view others[] = {".", "Torka", "ConnectionErrorInfoFile", "zan_", "ZAN."};
    return isFileName(name) && name.size() <= mostName && !name.ends_with(ownerSuffix) &&
           std::ranges::none_of(others, [name](std::string_view start) { return name.starts_with(start); });
}

std::optional<MailboxFile> MailboxFile::Create(const Sender& sender, std::string_view path,
                                               std::string& problem) {
    std::string name(lastComponent(path));
    if (!IsName(name)) {
        problem = "The destination of this job is a mailbox without a usable name.";
        return std::nullopt;
    }
    if (!FilterNotes::Has(sender.user, NoteKind::mailbox, name)) {
        problem =
            "The mailbox " + name + " was not named ahead of this job. Print it again from its application.";
        return std::nullopt;
    }
    problem = ownerProblem(sender, name);
    if (!problem.empty()) {
        return std::nullopt;
    }
    std::string temporary = (platform::system().Resolve(cachesFolder) / ".torka-XXXXXX").string();
    OpenFile opened(::mkostemp(temporary.data(), O_CLOEXEC)); // mode 0600
    if (!opened) {
        problem = "The mailbox " + name + " cannot be written: " + message(errno) + ".";
        return std::nullopt;
    }
    return MailboxFile(std::move(name), sender.user, std::move(temporary), std::move(opened));
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

std::string MailboxFile::Commit() {
    // fsync may be the first call that reports a full disk.
    if (::fsync(file.Descriptor()) != 0) {
        return "The mailbox " + name + " cannot be written: " + message(errno) + ".";
    }
    if (const std::error_code error = PrivateFolder::Write(name + std::string(ownerSuffix), owner)) {
        return "The mailbox " + name + " cannot be written: " + error.message() + ".";
    }
    const std::string path = (platform::system().Resolve(cachesFolder) / name).string();
    if (::rename(temporary.c_str(), path.c_str()) != 0) {
        return "The mailbox " + name + " cannot take its name: " + message(errno) + ".";
    }
    temporary.clear();
    return {};
}

} // namespace torka::filter
