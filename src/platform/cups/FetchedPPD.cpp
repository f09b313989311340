// SPDX-License-Identifier: Apache-2.0
#include "platform/cups/FetchedPPD.h"

#include <cups/cups.h>
#include <cups/ppd.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <system_error>
#include <unistd.h>

// libcups marks its PPD functions as deprecated and offers no others for a queue with a description.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace torka::platform {

void FetchedPPD::Forget() {
    if (!copy.empty()) {
        unlink(copy.c_str());
        copy.clear();
    }
}

// libcups gives the copy a name without an ending. link() never replaces another file. The copy keeps its
// name when the new one is taken.
void FetchedPPD::NameAsDescription() {
    const std::string named = copy + ".ppd";
    if (!copy.ends_with(".ppd") && link(copy.c_str(), named.c_str()) == 0) {
        unlink(copy.c_str());
        copy = named;
    }
}

std::shared_ptr<FetchedPPD> FetchedPPD::Of(const std::string& queueName) {
    static std::map<std::string, std::weak_ptr<FetchedPPD>> known;
    std::shared_ptr<FetchedPPD> found = known[queueName].lock();
    if (!found) {
        found = std::make_shared<FetchedPPD>();
        known[queueName] = found;
    }
    return found;
}

std::string FetchedPPD::Fetch(const std::string& queueName) {
    const char* fetched = queueName.empty() ? nullptr : cupsGetPPD(queueName.c_str());
    if (fetched == nullptr) {
        return {};
    }
    std::error_code error;
    const std::filesystem::path path(fetched);
    if (std::filesystem::is_symlink(path, error)) {
        const std::filesystem::path target = std::filesystem::canonical(path, error);
        unlink(fetched);
        Forget();
        return error ? std::string() : target.string();
    }
    if (!copy.empty() && rename(fetched, copy.c_str()) == 0) {
        return copy;
    }
    Forget();
    copy = fetched;
    NameAsDescription();
    return copy;
}

} // namespace torka::platform
