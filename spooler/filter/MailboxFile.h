// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Result.h"
#include "spooler/filter/FilterNotes.h"
#include "spooler/filter/PrivateFolder.h"

#include <string>
#include <string_view>

namespace torka::filter {

// The file that receives a job whose destination is a mailbox. It lies in the filter's folder with mode 0600
// and appears whole or not at all. Only its user may replace it.
//
// A name is valid when a command of the job's user named it before and the job's own ticket names it too.
class MailboxFile {
public:
    // Tells whether a mailbox may have this name: a file name that no other file of the folder can have.
    static bool IsName(std::string_view name);

    // Creates the file under a temporary name. `path` comes from the ticket; its last component is the name.
    static Result<MailboxFile> Create(const Sender& sender, std::string_view path);
    MailboxFile(MailboxFile&&) = default;
    MailboxFile(const MailboxFile&) = delete;
    MailboxFile& operator=(const MailboxFile&) = delete;
    MailboxFile& operator=(MailboxFile&&) = delete;
    // Removes the temporary file unless it was committed.
    ~MailboxFile();

    int Descriptor() const { return file.Descriptor(); }
    // Gives the file its name.
    Result<void> Commit();

private:
    MailboxFile(std::string mailboxName, std::string mailboxOwner, std::string temporaryPath,
                OpenFile opened);

    std::string name;
    std::string owner;
    std::string temporary; // "" once the file has its name
    OpenFile file;
};

} // namespace torka::filter
