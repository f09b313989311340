// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/Interrupt.h"
#include "apps/torka/JobEmission.h"
#include "bidi/module/ExchangeLists.h"
#include "bidi/module/JobPropertiesHost.h"
#include "bidi/module/JobPropertiesSession.h"
#include "bidi/module/JobPropertiesState.h"
#include "bidi/records/CFileHdlr.h"
#include "output/ZANJobNote.h"
#include "pane/panel/UI_Panel.h"
#include "platform/System.h"
#include "platform/TextEncoding.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <unordered_map>

// Runs one session of a Job Properties module from the command line. The module receives the record that the
// pane would pass; the command prints what the module returns.

namespace torka::tool {

namespace {

constexpr std::size_t templateLimit = std::size_t{16} * 1024 * 1024;

struct ModuleOptions {
    EmissionOptions job;
    std::string module;
    std::string script;
    std::string data;
    std::string address = "localhost";
    std::string templatePath;
    std::vector<std::string> watermarks;
    bool changed = false;
    bool json = false;
};

// Stands in for the pane in the module's callbacks.
class CommandHost final : public JobPropertiesHost {
public:
    CommandHost() { setJobPropertiesHost(this); }
    ~CommandHost() override { setJobPropertiesHost(nullptr); }
    std::shared_ptr<const std::string> getBidiDataCopy() const override { return data; }
    PMPrinter CurrentPrinter() const override { return nullptr; }
    std::string TemplateText() const override { return templateText; }
    std::string WindowTitle() const override { return "Printing Preferences"; }
    WaitObserver Observer() override { return showingWait("the module (Ctrl+C ends it)"); }

    // Fails when a named file cannot be read.
    Result<void> Read(const ModuleOptions& options) {
        Result<std::string> content = ReadFile(options.data, maximumDataFile);
        if (!content) {
            return content.Why();
        }
        Result<std::string> text = ReadFile(options.templatePath, templateLimit);
        if (!text) {
            return text.Why();
        }
        data = std::make_shared<std::string>(*std::move(content));
        templateText = *std::move(text);
        return {};
    }

private:
    // Returns "" for an empty path.
    static Result<std::string> ReadFile(const std::string& path, std::size_t limit) {
        std::string content;
        const std::error_code error =
            path.empty() ? std::error_code() : platform::system().ReadFile(path, limit, content);
        return error ? Fault{"cannot be read: " + error.message(), path} : Result<std::string>(content);
    }

    std::shared_ptr<const std::string> data;
    std::string templateText;
};

Result<void> loadModule(const std::string& path) {
    const ModuleAvailability module = loadJobPropertiesLibrary(std::filesystem::absolute(path));
    if (module.status == ModuleStatus::notInstalled) {
        return Fault{"there is no such module", path};
    }
    return module.status == ModuleStatus::loaded ? Result<void>()
                                                 : Fault{"the module does not load: " + module.reason};
}

// Runs the module on the panel's record. Afterwards the record holds the module's answer, and `handed` holds
// the settings that the module received.
void runSession(UI_Panel& panel, PDEData& data, const ModuleOptions& options, KeyValueList& handed) {
    SharedMemoryList& record = panel.Record();
    for (const std::string& definition : options.watermarks) {
        data.Watermarks().Append(std::make_unique<ZANWatermark>(definition.c_str()));
    }
    panel.makeJobNotesForSpecialControls();
    panel.GetWatermarks(record);
    panel.GetDefaultSettings(handed);
    writeSettings(record, handed.List());
    setField(record.bidiEnabled, options.data.empty() ? "0" : "1");
    setField(record.printerAddress, options.data.empty() ? std::string_view() : options.address);
    setField(record.jpResult, "-1");
    sharedList = &record;
    const Interruptible interruptible;
    mainJP();
    sharedList = nullptr;
}

using Pairs = std::vector<std::pair<std::string, std::string>>;

bool isSecret(const ZANPPD& description, std::string_view key) {
    const std::string keyword = (key.starts_with('*') ? "" : "*") + std::string(key);
    return isSecretNote(description, description.GetControls()->FindJobNote(keyword.c_str(), true));
}

// The record's settings; with `changed` only those that differ from `handed`. Asterisks replace the value of
// a secret note.
Pairs returnedSettings(const SharedMemoryList& record, const ZANPPD& description, const KeyValueList& handed,
                       bool changed) {
    std::unordered_map<std::string, std::string> before;
    for (std::size_t i = 0; changed && i < handed.Count(); ++i) {
        before.emplace(utf8FromWide(handed.Key(i)), utf8FromWide(handed.Value(i)));
    }
    KeyValueList list;
    Create_SDMList_From_SharedMemoryList(list, record);
    Pairs settings;
    for (std::size_t i = 0; i < list.Count(); ++i) {
        std::string key = utf8FromWide(list.Key(i));
        std::string value = utf8FromWide(list.Value(i));
        const auto known = before.find(key);
        if (known == before.end() || known->second != value) {
            if (!value.empty() && isSecret(description, key)) {
                value = "********";
            }
            settings.emplace_back(std::move(key), std::move(value));
        }
    }
    return settings;
}

std::string outcomeText(std::string_view result) {
    if (result == "0") {
        return "accepted";
    }
    return result == "1" ? "cancelled" : result == "-1" ? "no session" : "address refused";
}

void printOutcome(const std::string& outcome, const Pairs& settings,
                  const std::vector<std::string>& watermarks, bool asJson) {
    if (asJson) {
        Json json = Json::object();
        json["result"] = outcome;
        json["settings"] = Json::array();
        for (const auto& [key, value] : settings) {
            json["settings"].push_back({{"key", key}, {"value", value}});
        }
        json["watermarks"] = watermarks;
        print(jsonDocument(json));
        return;
    }
    for (const auto& [key, value] : settings) {
        print(printable(key) + "=" + printable(value) + "\n");
    }
}

ExitStatus runModule(ModuleOptions options) {
    options.job.twoWay = options.data.empty() ? TwoWay::off : TwoWay::on;
    CommandHost host;
    for (const std::string& definition : options.watermarks) {
        if (const Result<void> checked = checkWatermark(definition); !checked) {
            return unusable(checked.Why());
        }
    }
    const auto made = JobEmission::Make(options.job);
    if (!made) {
        return unusable(made.Why());
    }
    if (const Result<void> read = host.Read(options); !read) {
        return unusable(read.Why());
    }
    if (const Result<void> loaded = loadModule(options.module); !loaded) {
        return unusable(loaded.Why());
    }
    const std::unique_ptr<JobEmission>& job = *made;
    if (!options.script.empty()) {
        setenv("TORKA_JP_SCRIPT", options.script.c_str(), 1);
    }
    job->TellChangedNumbers();
    UI_Panel panel(&job->Data());
    job->ApplySettings(); // the panel has set *QVPrintSize; the pane, too, applies its settings when it shows
    KeyValueList handed;
    runSession(panel, job->Data(), options, handed);
    const std::string outcome = outcomeText(fieldText(panel.Record().jpResult));
    const bool isAccepted = outcome == "accepted";
    const Pairs settings =
        isAccepted ? returnedSettings(panel.Record(), job->Description(), handed, options.changed) : Pairs();
    const std::vector<std::string> watermarks =
        isAccepted ? watermarkDefinitions(panel.Record()) : std::vector<std::string>();
    unloadJobPropertiesLibrary();
    printOutcome(outcome, settings, watermarks, options.json);
    if (!isAccepted) {
        warn("the module's session ended without settings: " + outcome);
    }
    return isAccepted && !job->HasChangedNumbers() ? ExitStatus::good : ExitStatus::findings;
}

} // namespace

void addModuleCommand(CLI::App& app, ExitStatus& status) {
    CLI::App* group = app.add_subcommand("module", "Job Properties modules");
    group->require_subcommand(1);
    describe(*group,
             {.examples = {"torka module run --module libzanjp2.so --ppd samples/torka-production.ppd"}});
    CLI::App* command = group->add_subcommand("run", "Run a session of a module and print what it returns");
    const auto options = std::make_shared<ModuleOptions>();
    command->add_option("--module", options->module, "The module's library")
        ->option_text("LIBRARY")
        ->required();
    command->add_option("--ppd", options->job.description, "Extended PPD file")
        ->option_text("PPD")
        ->required();
    command->add_option("--settings", options->job.settings, settingHelp)->option_text("KEY=VALUE");
    command->add_option("--bidi", options->data, "Two-way data file; turns two-way communication on")
        ->option_text("FILE");
    command->add_option("--address", options->address, "Controller, with --bidi")
        ->option_text("HOST")
        ->capture_default_str();
    command->add_option("--template", options->templatePath, "The administrator's template")
        ->option_text("FILE");
    command->add_option("--watermark", options->watermarks, "Definitions of watermarks")
        ->option_text("DEFINITION");
    command->add_option("--script", options->script, "Script for the sample module, not its window")
        ->option_text("FILE");
    command->add_flag("--changed", options->changed, "Only settings that differ from the module's input");
    command->add_flag("--json", options->json, "As JSON");
    describe(*command,
             {.examples = {"torka module run --module libzanjp2.so --ppd samples/torka-production.ppd"},
              .findings = "nothing was accepted, or a number does not fit",
              .details =
                  "The module gets the same input as from the pane, and shows its window. The settings that "
                  "it returns are printed as one KEY=VALUE a line, the text of a secret note as ********."});
    command->callback([options, &status] { status = runModule(*options); });
}

} // namespace torka::tool
