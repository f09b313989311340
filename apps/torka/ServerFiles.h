// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// The print server's own files on this machine, and who may use them. For a local server only.

namespace torka::tool {

// What the server's cups-files.conf says. Where it cannot be read or says nothing: the server's defaults.
struct ServerSetup {
    std::filesystem::path programs = "/usr/lib/cups"; // ServerBin
    std::string user = "lp";                          // User: filters run as this user
};
ServerSetup serverSetup();

// The path of torkafilter in the server's folder of filters.
std::filesystem::path filterPath(const ServerSetup& setup);
// Why the server cannot run the filter at the path; "" when it can. The server refuses a program that others
// than root could replace.
std::string filterProblem(const std::filesystem::path& filter, const std::string& user);

struct FolderRule {
    std::string_view path; // below the system root
    unsigned mode;         // permissions that everybody or the user needs
    bool isOwned;          // by the filter's user, who makes it when it is missing
};
// Why the filter or its clients cannot use the folder; "" when they can. `remedy` receives what to do.
std::string folderProblem(const FolderRule& rule, const std::string& user, std::string& remedy);

} // namespace torka::tool
