// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Applications.h"
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/PersonsLanguage.h"
#include "platform/posix/InstalledSystem.h"

#include <CLI/Validators.hpp>

#include <memory>
#include <unistd.h>

namespace torka::tool {

namespace {

struct SetupOptions {
    std::string action = "show";
    bool gtk = false;
};

ExitStatus setUpApplications(const SetupOptions& options) {
    if (options.action == "show") {
        const QueueFinding finding = applicationsFinding(platform::programFolder());
        print(printable(inPersonsLanguage(finding.text)) + "\n" +
              (finding.remedy.empty() ? "" : "    " + printable(finding.remedy) + "\n"));
        return finding.state == CheckState::fault ? ExitStatus::findings : ExitStatus::good;
    }
    const bool isRoot = ::geteuid() == 0;
    const ApplicationPlaces places = ApplicationPlaces::Of(isRoot, platform::programFolder());
    const bool isOn = options.action == "on";
    const auto changed = isOn ? switchApplicationsOn(places, options.gtk) : switchApplicationsOff(places);
    if (!changed) {
        return unusable(changed.Why());
    }
    for (const std::filesystem::path& path : *changed) {
        print(printable(inPersonsLanguage((isOn ? "Written: " : "Removed: ") + path.string())) + "\n");
    }
    const bool staysOn = !isOn && !isRoot && ApplicationPlaces::Of(true, platform::programFolder()).IsOn();
    print(inPersonsLanguage(staysOn ? "It stays on for everybody: root has switched it on, and only root "
                                      "switches it off."
                            : changed->empty() ? "It was off."
                                               : "It counts from the next login on.") +
          "\n");
    return ExitStatus::good;
}

} // namespace

void addSetupCommand(CLI::App& app, ExitStatus& status) {
    const auto options = std::make_shared<SetupOptions>();
    CLI::App* setup = app.add_subcommand("setup", "Set up this machine or this account");
    setup->require_subcommand(1);
    describe(*setup, {.examples = {"torka setup applications show"}});
    CLI::App* applications =
        setup->add_subcommand("applications", "Switch the pane in the print dialogs of other programs");
    applications->add_option("ACTION", options->action, "on, off, or show what is set")
        ->option_text("on|off|show")
        ->check(CLI::IsMember({"on", "off", "show"}));
    applications->add_flag("--gtk", options->gtk, "Let programs of GTK ask the print portal");
    describe(*applications,
             {.examples = {"sudo torka setup applications on", "torka setup applications show"},
              .findings = "the plug-in is switched on but missing",
              .details =
                  "Root switches it for everybody: /etc/environment.d is for what the systemd user manager "
                  "starts, /etc/X11/Xsession.d for X sessions. Everybody else writes an own environment.d. "
                  "Values of other programs stay, and ours comes after them. The change counts from the next "
                  "login on. With --gtk, programs of GTK have their file choosers from the portal, too. "
                  "Switch it off before the plug-in is removed by hand: Qt complains at every start "
                  "about a plug-in that it does not find."});
    applications->callback([options, &status] { status = setUpApplications(*options); });
}

} // namespace torka::tool
