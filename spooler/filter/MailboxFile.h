// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Result.h"
#include "spooler/filter/FilterNotes.h"
#include "spooler/filter/PartFile.h"

#include <string>
#include <string_view>

namespace torka::filter {

// The file that receives a job whose destination is a mailbox. It lies in the filter's folder with mode 0600,
// and each document appears in it whole or not at all. Only its user may replace it or add to it.
//
// A name is valid when a command of the job's user named it before and the job's own ticket names it too.
class MailboxFile {
public:
    // Tells whether a mailbox may have this name: a file name that no other file of the folder can have.
    static bool IsName(std::string_view name);

    // Creates a file for a document. `path` comes from the ticket; its last component is the name. `run` is
    // that of the job (FilterJob::Run).
    static Result<MailboxFile> Create(const Sender& sender, std::string_view path, std::string run);

    int Descriptor() const { return part.Descriptor(); }
    // Puts the document into the mailbox: behind the earlier documents of the same run, in the place of any
    // others.
    Result<void> Commit();

private:
    MailboxFile(std::string mailboxName, std::string mailboxUser, std::string jobRun, PartFile opened);
    Result<void> PutInPlace(PartFile& whole) const;

    std::string name;
    std::string user;
    std::string run; // "" when the server does not tell it
    PartFile part;
};

} // namespace torka::filter
