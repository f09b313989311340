#pragma once

#include "spooler/filter/FilterNotes.h"
#include "spooler/filter/PrivateFolder.h"

#include <optional>
#include <string>
#include <string_view>

namespace torka::filter {

// The file that a job is printed into when its destination is a mailbox: in the filter's folder, mode 0600,
// there whole or not at all. Its user alone may have it written anew.
//
// A name counts when a command of the job's user named it before and the job's own ticket names it, too.
class MailboxFile {
public:
    // Whether a mailbox may be called so: a file name that nothing else in the folder goes by.
    static bool IsName(std::string_view name);

    // Makes the file under a temporary name; none, with a line that says why, when it may not or cannot be.
    // `path` is what the ticket says: its last component is the name.
    static std::optional<MailboxFile> Create(const Sender& sender, std::string_view path,
                                             std::string& problem);
    MailboxFile(MailboxFile&&) = default;
    MailboxFile(const MailboxFile&) = delete;
    MailboxFile& operator=(const MailboxFile&) = delete;
    MailboxFile& operator=(MailboxFile&&) = delete;
    // Removes the temporary file unless it was committed.
    ~MailboxFile();

    int Descriptor() const { return file.Descriptor(); }
    // Gives the file its name. "" or what failed.
    std::string Commit();

private:
    MailboxFile(std::string mailboxName, std::string mailboxOwner, std::string temporaryPath,
                OpenFile opened);

    std::string name;
    std::string owner;
    std::string temporary; // "" once it has its name
    OpenFile file;
};

} // namespace torka::filter
