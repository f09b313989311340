// SPDX-License-Identifier: Apache-2.0
#include "apps/print-portal/TokenStore.h"

#include "platform/System.h"

#include <QRandomGenerator>
#include <algorithm>
#include <utility>

namespace torka::portal {

namespace {

// A program draws its document between the two calls, and a long document takes its time.
constexpr std::chrono::minutes life{60};
constexpr std::size_t mostTokens = 256;

} // namespace

std::uint32_t TokenStore::Keep(PreparedJob job, const QString& holder) {
    DropExpired();
    if (waiting.size() >= mostTokens) {
        waiting.erase(
            std::ranges::min_element(waiting, {}, [](const auto& entry) { return entry.second.expires; }));
    }
    std::uint32_t token = 0;
    while (token == 0 || waiting.contains(token)) {
        token = QRandomGenerator::system()->generate();
    }
    waiting.emplace(token, Waiting{std::move(job), holder, platform::system().Now() + life});
    return token;
}

std::optional<PreparedJob> TokenStore::Take(std::uint32_t token, const QString& holder) {
    DropExpired();
    const auto found = waiting.find(token);
    if (found == waiting.end() || found->second.holder != holder) {
        return std::nullopt;
    }
    PreparedJob job = std::move(found->second.job);
    waiting.erase(found);
    return job;
}

bool TokenStore::IsEmpty() {
    DropExpired();
    return waiting.empty();
}

void TokenStore::DropExpired() {
    const auto now = platform::system().Now();
    std::erase_if(waiting, [now](const auto& entry) { return entry.second.expires <= now; });
}

} // namespace torka::portal
