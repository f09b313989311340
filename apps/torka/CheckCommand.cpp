// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConflictPairs.h"
#include "PPDX/KVEngine/ConstraintsEngine.h"
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/ModelJson.h"
#include "apps/torka/PersonsLanguage.h"
#include "pane/data/ControlTables.h"

#include <memory>

namespace torka::tool {

namespace {

struct CheckOptions {
    std::string path;
    std::vector<std::string> settings;
    bool solve = false;
    bool json = false;
};

bool takesPartInConstraints(const PPDXControl& control) {
    return control.Type() == CNTL_TYPE::popup || control.Type() == CNTL_TYPE::boolean;
}

// The settings as one change set. The constraint store knows popups and booleans only.
KVCache changeSet(const ZANPPD& description, const std::vector<Setting>& settings) {
    // A colour option takes texts that the description does not list. Insert gives such a text an identifier:
    // the identifier for "not found" would match every option of the key.
    CStringSoup& strings = *description.GetUIConstraints()->GetConstraintStrings();
    KVCache changes;
    for (const Setting& setting : settings) {
        if (takesPartInConstraints(*description.GetPPDXControlForKey(cfString(setting.key)))) {
            changes.Insert(strings.Insert(setting.key), strings.Insert(setting.value));
        }
    }
    return changes;
}

// Every choice of the options that say what hardware the printer has: a solution installs none.
KVCache installableOptions(const ZANPPD& description) {
    const CStringSoup& strings = *description.GetUIConstraints()->GetConstraintStrings();
    KVCache options;
    description.GetControls()->ForEach([&](const PPDXControl* control) {
        if (takesPartInConstraints(*control) && isInstallableOption(*control)) {
            options.Insert(strings.Find(control->Keyword()), -1);
        }
    });
    return options;
}

// What is selected once the changes are applied.
KVCache selectionsAfter(const UIConstraints& constraints, const KVCache& changes) {
    KVCache selections(*constraints.GetCurrentSelections());
    selections.merge(changes);
    return selections;
}

// Tests the changes, and the defaults that stay: these may be in conflict with each other.
ConstraintsEngine::Answer testWhole(ConstraintsEngine& engine, const UIConstraints& constraints,
                                    const KVCache& changes) {
    ConstraintsEngine::Answer answer = engine.Test(changes);
    KVCache tested(changes);
    for (const auto& [one, other] : conflictPairs(constraints, selectionsAfter(constraints, changes))) {
        if (answer.conflicts.Lookup(one) < 0 && answer.conflicts.Lookup(other) < 0) {
            tested.Insert(one.key, one.option);
            tested.Insert(other.key, other.option);
        }
    }
    return tested.size() > changes.size() ? engine.Test(tested) : answer;
}

// Adds changes until nothing is in conflict. The search itself ends the conflicts of the change set only. Of
// two defaults in conflict one is kept, the first one if that has a solution.
bool solveWhole(ConstraintsEngine& engine, const UIConstraints& constraints, KVCache& changes) {
    constexpr int maximumRounds = 100;
    if (engine.Solve(changes, true).conflicts.size() > 0) {
        return false;
    }
    for (int round = 0; round < maximumRounds; ++round) {
        const auto pairs = conflictPairs(constraints, selectionsAfter(constraints, changes));
        if (pairs.empty()) {
            return true;
        }
        const auto isSolvedKeeping = [&](const KeyOption& kept) {
            KVCache further(changes);
            further.Insert(kept.key, kept.option);
            const bool isSolved = engine.Solve(further, true).conflicts.size() == 0;
            changes = isSolved ? further : changes;
            return isSolved;
        };
        if (!isSolvedKeeping(pairs.front().first) && !isSolvedKeeping(pairs.front().second)) {
            return false;
        }
    }
    return false;
}

// The solution without the defaults that it keeps; the given settings stay in it.
KVCache realChanges(const KVCache& solution, const KVCache& given, const UIConstraints& constraints) {
    KVCache changes;
    for (const KeyOption& pair : solution.Pairs()) {
        if (given.FindKey(pair.key) != nullptr || constraints.GetCurrentSelections()->Lookup(pair) < 0) {
            changes.add(pair);
        }
    }
    return changes;
}

Json pairsJson(const ZANPPD& description, const KVCache& pairs) {
    const CStringSoup& strings = *description.GetUIConstraints()->GetConstraintStrings();
    Json json = Json::array();
    for (const KeyOption& pair : pairs.Pairs()) {
        json.push_back(
            {{"key", jsonText(strings.Find(pair.key))}, {"option", jsonText(strings.Find(pair.option))}});
    }
    return json;
}

void addIfConstrained(Json& list, const ZANPPD& description, const char* keyword, const char* option) {
    if (description.IsKVConstrained(keyword, option)) {
        list.push_back({{"key", jsonText(keyword)}, {"option", jsonText(option)}});
    }
}

Json constrainedJson(const ZANPPD& description) {
    Json list = Json::array();
    description.GetControls()->ForEach([&](PPDXControl* control) {
        if (auto* popup = dynamic_cast<PPDXPopupControl*>(control)) {
            for (const _PopupItem* item = popup->FirstItem(); item != nullptr; item = popup->NextItem()) {
                addIfConstrained(list, description, control->Keyword(), item->keyword.Buffer());
            }
        } else if (control->Type() == CNTL_TYPE::boolean) {
            addIfConstrained(list, description, control->Keyword(), "True");
            addIfConstrained(list, description, control->Keyword(), "False");
        }
    });
    return list;
}

void printPairs(const char* title, const Json& pairs) {
    print(inPersonsLanguage(title) +
          (pairs.empty() ? ": " + inPersonsLanguage("none") + "\n" : std::string(":\n")));
    for (const Json& pair : pairs) {
        print("  " + printable(pair["key"].get<std::string>()) + "=" +
              printable(pair["option"].get<std::string>()) + "\n");
    }
}

void printAnswer(const Json& answer) {
    printPairs("Conflicts with what is selected", answer["conflicts"]);
    printPairs("Choices that would not conflict", answer["alternatives"]);
    printPairs("Forbidden once the settings are applied", answer["constrained"]);
    if (answer.contains("solved")) {
        const bool isSolved = answer["solved"].get<bool>();
        print(inPersonsLanguage(isSolved ? "A resolution was found." : "No resolution was found.") + "\n");
        if (isSolved) {
            printPairs("Changes", answer["changes"]);
        }
    }
}

ExitStatus check(const CheckOptions& options) {
    const auto read = readUsableDescription(options.path);
    if (!read) {
        return unusable(read.Why());
    }
    const std::unique_ptr<ZANPPD>& description = *read;
    const auto settings = parseSettings(*description, options.settings);
    if (!settings) {
        return unusable(settings.Why());
    }
    const UIConstraints& constraints = *description->GetUIConstraints();
    const KVCache locked = installableOptions(*description);
    ConstraintsEngine engine(constraints.GetCurrentSelections(), constraints.GetConstraintForest(),
                             constraints.GetKeyForest(), &locked);
    const KVCache changes = changeSet(*description, *settings);
    const ConstraintsEngine::Answer answer = testWhole(engine, constraints, changes);
    Json json = Json::object();
    json["conflicts"] = pairsJson(*description, answer.conflicts);
    json["alternatives"] = pairsJson(*description, answer.alternatives);
    Json solution = Json::object();
    if (options.solve) {
        KVCache solved = changes;
        const bool isSolved = solveWhole(engine, constraints, solved);
        solution["solved"] = isSolved;
        solution["changes"] =
            isSolved ? pairsJson(*description, realChanges(solved, changes, constraints)) : Json::array();
    }
    const std::vector<std::string> changedNumbers = applySettings(*description, *settings);
    for (const std::string& change : changedNumbers) {
        warn(change);
    }
    json["constrained"] = constrainedJson(*description);
    if (options.solve) {
        json.update(solution);
    }
    if (options.json) {
        print(jsonDocument(json));
    } else {
        printAnswer(json);
    }
    return answer.conflicts.size() == 0 && changedNumbers.empty() ? ExitStatus::good : ExitStatus::findings;
}

} // namespace

void addCheckCommand(CLI::App& app, ExitStatus& status) {
    const auto options = std::make_shared<CheckOptions>();
    CLI::App* command = app.add_subcommand("check", "Tell which choices settings conflict with or forbid");
    command->add_option("PPD", options->path, "Extended PPD file")->required();
    command->add_option("SETTING", options->settings, settingHelp)->option_text("KEY=VALUE");
    command->add_flag("--solve", options->solve, "Find changes of other settings that end the conflicts");
    command->add_flag("--json", options->json, "As JSON");
    describe(*command,
             {.examples = {"torka check samples/torka-production.ppd QVInterlvMedia=True --solve"},
              .findings = "something is in conflict, or a number does not fit",
              .details =
                  "Treats the settings as one change against the defaults of the description. Defaults that "
                  "conflict with each other count too. A solution keeps the given settings and the installed "
                  "hardware."});
    command->callback([options, &status] { status = check(*options); });
}

} // namespace torka::tool
