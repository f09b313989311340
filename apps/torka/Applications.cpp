// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Applications.h"

#include "platform/System.h"
#include "platform/posix/InstalledSystem.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>

namespace torka::tool {

namespace fs = std::filesystem;

namespace {

constexpr const char* fileName = "90-torka.conf";
// Neither file's syntax gets a character with a meaning.
bool isPlain(const std::string& path) {
    return std::ranges::all_of(path, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               std::string_view("/._+-").find(c) != std::string_view::npos;
    });
}

Result<void> writeFile(const fs::path& path, const std::string& text, bool isShared) {
    std::error_code failure;
    if (isShared) {
        fs::create_directories(path.parent_path(), failure);
    } else {
        failure = platform::system().MakeFolder(path.parent_path());
    }
    if (!failure) {
        failure = platform::system().WriteFile(path, text, 0644);
    }
    return failure ? Result<void>(Fault{"cannot be written: " + failure.message(), path.string()})
                   : Result<void>();
}

} // namespace

ApplicationPlaces ApplicationPlaces::Of(bool isRoot, const fs::path& programs) {
    ApplicationPlaces places;
    const auto& system = platform::system();
    if (isRoot) {
        places.environment = system.Resolve(std::string("/etc/environment.d/") + fileName);
        places.session = system.Resolve("/etc/X11/Xsession.d/90torka");
    } else {
        places.environment = system.ConfigFolder() / "environment.d" / fileName;
    }
    const fs::path folder = platform::installedQtPlugIns(programs);
    places.plugIn = folder / "generic/libtorkaprintdialog.so";
    places.plugInPath = folder == platform::ownQtPlugIns() ? fs::path() : folder;
    return places;
}

bool ApplicationPlaces::IsOn() const {
    std::error_code ignored;
    return fs::exists(environment, ignored) || (!session.empty() && fs::exists(session, ignored));
}

Result<std::vector<fs::path>> switchApplicationsOn(const ApplicationPlaces& places, bool withGtk) {
    std::error_code ignored;
    if (!fs::exists(places.plugIn, ignored)) {
        return Fault{"is not installed: Qt would complain at every start of a program",
                     places.plugIn.string()};
    }
    if (!isPlain(places.plugIn.string())) {
        return Fault{"has a name that these files cannot hold", places.plugIn.string()};
    }
    std::vector<fs::path> written{places.environment};
    const bool isShared = !places.session.empty();
    if (const auto done = writeFile(places.environment, environmentText(places, withGtk), isShared); !done) {
        return done.Why();
    }
    // A machine without X sessions has no such folder.
    if (isShared && fs::is_directory(places.session.parent_path(), ignored)) {
        if (const auto done = writeFile(places.session, sessionText(places, withGtk), true); !done) {
            return done.Why();
        }
        written.push_back(places.session);
    }
    return written;
}

Result<std::vector<fs::path>> switchApplicationsOff(const ApplicationPlaces& places) {
    std::vector<fs::path> removed;
    for (const fs::path& path : {places.environment, places.session}) {
        std::error_code failure;
        if (!path.empty() && fs::remove(path, failure)) {
            removed.push_back(path);
        } else if (failure) {
            return Fault{"cannot be removed: " + failure.message(), path.string()};
        }
    }
    return removed;
}

QueueFinding applicationsFinding(const fs::path& programs) {
    const ApplicationPlaces everybody = ApplicationPlaces::Of(true, programs);
    const ApplicationPlaces person = ApplicationPlaces::Of(false, programs);
    std::error_code ignored;
    const std::string who = everybody.IsOn() ? "everybody" : person.IsOn() ? "you" : "";
    if (who.empty()) {
        return {"applications", CheckState::good, "print dialogs of other Qt 6 programs have no pane",
                "torka setup applications on"};
    }
    if (!fs::exists(everybody.plugIn, ignored)) {
        return {"applications", CheckState::fault,
                "the pane is switched on for other programs, but " + everybody.plugIn.string() +
                    " is missing",
                "install torka-print-dialog, or torka setup applications off"};
    }
    const char* loaded = std::getenv("QT_QPA_GENERIC_PLUGINS");
    const bool isHere = loaded != nullptr && std::string_view(loaded).find("torka") != std::string_view::npos;
    return {"applications", CheckState::good,
            "print dialogs of other Qt 6 programs have the pane for " + who +
                (isHere ? "" : " from the next login on")};
}

} // namespace torka::tool
