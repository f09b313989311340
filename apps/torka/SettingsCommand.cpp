// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/Description.h"
#include "jobsettings/Findings.h"
#include "jobsettings/OptionSettings.h"
#include "jobsettings/OptionText.h"
#include "jobsettings/SettingCheck.h"
#include "jobsettings/StandingSettings.h"
#include "output/ZANJobNote.h"
#include "platform/cups/CupsPrinting.h"
#include "platform/cups/CupsQueue.h"
#include "platform/cups/CupsSpooler.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

// The settings that a person keeps for the jobs of all programs.

namespace torka::tool {

namespace {

struct SettingsOptions {
    std::string queue;
    std::vector<std::string> texts; // KEY=VALUE, or KEY for clear
    bool json = false;
};

// A queue with its description.
struct OpenQueue {
    std::string name;
    PMPrinter printer; // keeps the description's file
    std::unique_ptr<ZANPPD> description;
};

Result<OpenQueue> openQueue(const std::string& queue) {
    if (std::string problem = platform::queueProblem(queue); !problem.empty()) {
        return Fault{std::move(problem)};
    }
    const auto session = std::make_shared<CupsSession>(queue);
    OpenQueue opened;
    CFURLRef url;
    if (PMSessionGetCurrentPrinter(session, opened.printer) != noErr) {
        return Fault{"the print server has no queue " + queue};
    }
    opened.name = utf8Text(PMPrinterGetName(opened.printer));
    if (PMPrinterCopyDescriptionURL(opened.printer, cfString("PMPPDDescriptionType"), url) != noErr) {
        return Fault{opened.name + ": the queue has no description"};
    }
    auto description = readUsableDescription(CFURLCopyFileSystemPath(url));
    if (!description) {
        return description.Why();
    }
    opened.description = *std::move(description);
    return opened;
}

std::string withoutAsterisk(const std::string& key) { return key.substr(key.starts_with('*') ? 1 : 0); }

// An option of our own; nothing for a setting of the description.
std::optional<Result<Setting>> ownOption(const std::string& text) {
    constexpr std::array<std::string_view, 3> policies{"print", "resolve", "stop"};
    const std::size_t equals = std::min(text.find('='), text.size());
    const std::string name = text.substr(0, equals);
    if (name != "torka-conflicts" && name != "torka-watermark") {
        return std::nullopt;
    }
    Setting setting;
    setting.key = name;
    setting.value = equals == text.size() ? "" : text.substr(equals + 1);
    if (!apps::isUtf8(setting.value)) {
        return Fault{name + " has a value that is no UTF-8"};
    }
    if (name == "torka-conflicts" && std::ranges::find(policies, setting.value) == policies.end()) {
        return Fault{"torka-conflicts takes print, resolve or stop, not " + setting.value};
    }
    return setting;
}

Result<std::vector<Setting>> readSettings(const ZANPPD& description, const std::vector<std::string>& texts) {
    std::vector<Setting> settings;
    std::vector<std::string> others;
    for (const std::string& text : texts) {
        if (auto own = ownOption(text)) {
            if (!*own) {
                return own->Why();
            }
            settings.push_back(**own);
        } else {
            others.push_back(text);
        }
    }
    auto parsed = parseSettings(description, others);
    if (parsed) {
        settings.insert(settings.end(), parsed->begin(), parsed->end());
    }
    return parsed ? Result<std::vector<Setting>>(std::move(settings)) : parsed;
}

ExitStatus show(const SettingsOptions& options) {
    const Result<OpenQueue> queue = openQueue(options.queue);
    if (!queue) {
        return unusable(queue.Why());
    }
    CupsSpooler spooler;
    const Result<platform::StandingOptionList> kept =
        standingSettings(spooler, queue->name, *queue->description);
    if (!kept) {
        return unusable(kept.Why());
    }
    Json json = Json::object();
    ExitStatus status = ExitStatus::good;
    for (const auto& [name, value] : *kept) {
        if (isFormerSetting(*queue->description, name)) {
            status = ExitStatus::findings;
            warn(name + " is not in this description (torka settings clear removes it)");
        }
        if (options.json) {
            json[jsonText(name.c_str())] = jsonText(value.c_str());
        } else {
            print(printable(name) + "=" + printable(value) + "\n");
        }
    }
    if (options.json) {
        print(jsonDocument(json));
    }
    return status;
}

// The settings in force with those that are kept, for the warnings.
void warnOfConflicts(CupsSpooler& spooler, const OpenQueue& queue) {
    const Result<platform::StandingOptionList> kept =
        standingSettings(spooler, queue.name, *queue.description);
    if (!kept) {
        warn(kept.Why().Line());
        return;
    }
    for (const auto& [name, value] : *kept) {
        queue.description->SetValueForKey(cfString("*" + withoutAsterisk(name)), cfString(value));
    }
    for (const std::string& conflict : conflictTexts(*queue.description)) {
        warn(conflict);
    }
}

ExitStatus set(const SettingsOptions& options) {
    const Result<OpenQueue> queue = openQueue(options.queue);
    if (!queue) {
        return unusable(queue.Why());
    }
    const Result<std::vector<Setting>> settings = readSettings(*queue->description, options.texts);
    if (!settings) {
        return unusable(settings.Why());
    }
    const std::vector<std::string> changedNumbers = applySettings(*queue->description, *settings);
    platform::StandingOptionList added;
    for (const Setting& setting : *settings) {
        const PPDXControl* control = queue->description->GetPPDXControlForKey(cfString(setting.key));
        if (isSecretNote(*queue->description, control)) {
            warn(setting.key + " is a password or protected: it is not kept, because others can read the "
                               "options of a job; nothing is changed");
            return ExitStatus::findings;
        }
        // A number that fits keeps all its digits; the control's text of one has three decimals.
        const bool isChanged =
            control != nullptr && !changedNumber(*control, setting.value, setting.shown).empty();
        added.emplace_back(withoutAsterisk(setting.key),
                           isChanged ? utf8Text(control->CopyCurrentControlValueString()) : setting.value);
    }
    CupsSpooler spooler;
    if (const std::string problem = spooler.ChangeStandingOptions(queue->name, {}, added); !problem.empty()) {
        return unusable(problem);
    }
    for (const std::string& change : changedNumbers) {
        warn(change);
    }
    warnOfConflicts(spooler, *queue);
    return changedNumbers.empty() ? ExitStatus::good : ExitStatus::findings;
}

ExitStatus clear(const SettingsOptions& options) {
    const Result<OpenQueue> queue = openQueue(options.queue);
    if (!queue) {
        return unusable(queue.Why());
    }
    CupsSpooler spooler;
    const Result<platform::StandingOptionList> kept = spooler.StandingOptions(queue->name);
    const auto settings = standingSettings(spooler, queue->name, *queue->description);
    if (!kept || !settings) {
        return unusable(kept ? settings.Why() : kept.Why());
    }
    std::vector<std::string> removed;
    for (const std::string& key : options.texts) {
        const std::string name = withoutAsterisk(key);
        // A key of an earlier description may have any name that is not the print server's.
        const bool isFormer = !OptionSettings::IsLeftAlone(name) && name != "sides" &&
                              std::ranges::any_of(*kept, [&name](const auto& option) {
                                  return isSameAscii(withoutAsterisk(option.first), name);
                              });
        if (!isFormer && !isStandingSetting(*queue->description, name)) {
            return unusable("the description has no option *" + name);
        }
        removed.push_back(name);
        removed.push_back("*" + name);
    }
    if (options.texts.empty()) {
        for (const auto& [former, value] : *settings) {
            removed.push_back(former);
        }
    }
    const std::string problem = spooler.ChangeStandingOptions(queue->name, removed, {});
    return problem.empty() ? ExitStatus::good : unusable(problem);
}

} // namespace

void addSettingsCommand(CLI::App& app, ExitStatus& status) {
    const auto options = std::make_shared<SettingsOptions>();
    CLI::App* command = app.add_subcommand("settings", "Settings that you keep for all programs");
    command->require_subcommand(1);
    describe(*command, {.examples = {"torka settings set -d office QVDuplex=LongEdge"}});
    const auto add = [&](const char* name, const char* help, ExitStatus (*run)(const SettingsOptions&)) {
        CLI::App* each = command->add_subcommand(name, help);
        each->add_option("-d,--queue", options->queue, "Queue; otherwise the default queue")
            ->option_text("QUEUE");
        each->callback([options, run, &status] { status = run(*options); });
        return each;
    };
    CLI::App* shown = add("show", "Print the settings that are kept", show);
    shown->add_flag("--json", options->json, "As JSON");
    describe(*shown, {.examples = {"torka settings show -d office"},
                      .findings = "a setting is kept that the description does not have"});

    CLI::App* kept = add("set", "Keep settings for the jobs of all programs", set);
    kept->add_option("SETTING", options->texts, settingHelp)->option_text("KEY=VALUE")->required();
    describe(*kept,
             {.examples = {"torka settings set -d office QVDuplex=LongEdge Notes1=draft"},
              .findings =
                  "a setting is a password or protected, so that nothing is kept, or a number does not fit",
              .details = "The settings go into ~/.cups/lpoptions, or for root into "
                         "/etc/cups/lpoptions, where they count for everybody. Programs add them to "
                         "their jobs as options, which others can read. torka-watermark and "
                         "torka-conflicts can be kept, too."});

    CLI::App* dropped = add("clear", "Keep settings no longer", clear);
    dropped->add_option("KEY", options->texts, "Setting; otherwise all of the queue");
    describe(*dropped, {.examples = {"torka settings clear -d office QVDuplex"}});
}

} // namespace torka::tool
