// SPDX-License-Identifier: Apache-2.0
#include "platform/cups/FetchedPPD.h"

#include <cups/cups.h>
#include <cups/ppd.h>

#include <filesystem>
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

std::string FetchedPPD::Fetch(const std::string& queueName) {
    Forget();
    if (queueName.empty()) {
        return {};
    }
    const char* fetched = cupsGetPPD(queueName.c_str());
    if (fetched == nullptr) {
        return {};
    }
    copy = fetched;
    std::error_code error;
    const std::filesystem::path path(copy);
    if (!std::filesystem::is_symlink(path, error)) {
        NameAsDescription();
        return copy;
    }
    const std::filesystem::path target = std::filesystem::canonical(path, error);
    Forget();
    return error ? std::string() : target.string();
}

} // namespace torka::platform
