// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/torka/QueueFinding.h"
#include "platform/Result.h"

#include <filesystem>
#include <string>
#include <vector>

// Switches the pane on in the print dialogs of other programs: variables of the environment that the sessions
// of this machine, or of one person, get at their start. docs/applications.md tells what they do.

namespace torka::tool {

struct ApplicationPlaces {
    std::filesystem::path environment; // a file for environment.d(5)
    std::filesystem::path session;     // sourced by the X session's start; "" for one person
    std::filesystem::path plugIn;      // what Qt 6 programs load
    std::filesystem::path plugInPath;  // for QT_PLUGIN_PATH; "" for Qt's own folder

    // Root's switch is everybody's. `programs`: the folder of this program.
    static ApplicationPlaces Of(bool isRoot, const std::filesystem::path& programs);
    bool IsOn() const;
};

// The texts of the two files. `withGtk`: programs of GTK ask the print portal, too.
std::string environmentText(const ApplicationPlaces& places, bool withGtk);
std::string sessionText(const ApplicationPlaces& places, bool withGtk);

// Each returns the files that were written or removed.
Result<std::vector<std::filesystem::path>> switchApplicationsOn(const ApplicationPlaces& places,
                                                                bool withGtk);
Result<std::vector<std::filesystem::path>> switchApplicationsOff(const ApplicationPlaces& places);

// Whether the pane stands in the dialogs of other programs, for everybody or for this person.
QueueFinding applicationsFinding(const std::filesystem::path& programs);

} // namespace torka::tool
