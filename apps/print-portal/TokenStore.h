// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/cups/CupsQueue.h"

#include <QString>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace torka::portal {

// A job that waits for its document.
struct PreparedJob {
    QString title;      // of the document, as far as the program told it
    QString askedTitle; // the title of the call that prepared it, which may be a general one such as "Print"
    QString outputFile; // the file to write; "" for a queue
    std::string queue;
    platform::JobOptions options; // with the path of the ticket
};

// The prepared jobs by their tokens. A token is random, counts once, for one holder, and for a limited time.
class TokenStore {
public:
    // Returns the token, which is never 0. Drops the oldest job when the store is full.
    std::uint32_t Keep(PreparedJob job, const QString& holder);
    // nullopt for a token that is unknown, used, expired or another holder's. The last does not use it up.
    std::optional<PreparedJob> Take(std::uint32_t token, const QString& holder);
    // Whether no unexpired job waits.
    bool IsEmpty();

private:
    void DropExpired();

    struct Waiting {
        PreparedJob job;
        QString holder;
        std::chrono::steady_clock::time_point expires;
    };
    std::map<std::uint32_t, Waiting> waiting;
};

} // namespace torka::portal
