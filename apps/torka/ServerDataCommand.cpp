// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/Description.h"
#include "apps/torka/QueueServerData.h"
#include "apps/torka/TextTable.h"
#include "bidi/JobPropertiesModule.h"
#include "bidi/records/CFileHdlr.h"
#include "bidi/records/RecordText.h"
#include "bidi/serverdata/ServerRecords.h"
#include "platform/System.h"
#include "platform/TextEncoding.h"

#include <array>
#include <list>
#include <memory>
#include <optional>

namespace torka::tool {

namespace {

struct ServerDataOptions {
    std::string path;
    std::string queue;
    std::string address;
    bool json = false;
};

std::string utf8(std::wstring_view text) { return platform::utf8FromWide(text); }

// A count or percentage as text. RFC 3805 gives the meanings of -1, -2 and -3.
std::string amount(std::int32_t value, const char* unit) {
    switch (value) {
    case SDM_LEVEL_UNKNOWN:
        return "unknown";
    case SDM_LEVEL_UNLIMITED:
        return "unlimited";
    case SDM_LEVEL_SOME:
        return "some";
    default:
        return std::to_string(value) + unit;
    }
}

std::string tonerState(const TonerView& toner) {
    if (!needsAttention(toner)) {
        return "";
    }
    return toner.kind == SDM_SUPPLY_WASTE ? "full" : "low";
}

std::string tonerKind(std::int32_t kind) {
    switch (kind) {
    case SDM_SUPPLY_TONER:
        return "toner";
    case SDM_SUPPLY_INK:
        return "ink";
    case SDM_SUPPLY_WASTE:
        return "waste";
    default:
        return "other";
    }
}

// Reads the records of a file one by one and remembers whether one was broken.
class ServerDataFile {
public:
    ServerDataFile(const std::string& filePath, std::string_view content)
        : path(filePath)
        , records(content) {}

    bool HasRecords() const { return !records.Names().empty(); }
    bool HasBroken() const { return broken; }

    // Reads a record with one of the readers of ServerRecords. nullopt when the record is absent (`isAbsent`
    // is true then), or when it is broken (one line on standard error gives the place).
    template <typename Entry>
    std::optional<std::vector<Entry>> Read(const char* name, RecordResult<Entry> (*read)(std::wstring_view)) {
        std::size_t size = 0;
        const RecordBlock payload = records.Read(name, &size);
        isAbsent = payload == nullptr;
        if (isAbsent) {
            return std::nullopt;
        }
        texts.push_back(wideFromPayload({payload.get(), size}));
        RecordResult<Entry> entries = size % sizeof(wchar_t) == 0
                                          ? read(texts.back())
                                          : Fault{"its size is no whole number of characters", "line 1"};
        if (entries) {
            return *std::move(entries);
        }
        broken = true;
        warn(path + ": record " + name + " is broken, " + entries.Why().Line());
        return std::nullopt;
    }
    // The line to show in place of a record that could not be read.
    std::string Absence(const char* name) const {
        return std::string("  ") + (isAbsent ? "no record " : "broken record ") + name + "\n";
    }

private:
    std::string path;
    RecordText records;
    std::list<std::wstring> texts; // the values refer to these texts
    bool isAbsent = false;
    bool broken = false;
};

std::string trayTable(const std::vector<TrayView>& trays) {
    TextTable table({"Tray", "Key", "Media", "Size", "Type", "Color", "Sheets", "Capacity"});
    table.AlignRight(6);
    table.AlignRight(7);
    for (const TrayView& tray : trays) {
        std::vector<std::string> cells;
        for (const auto& text : tray.texts) {
            cells.push_back(text ? utf8(*text) : "-");
        }
        cells.push_back(amount(tray.level, ""));
        cells.push_back(amount(tray.capacity, ""));
        table.Add(std::move(cells));
    }
    return table.Text();
}

std::string tonerTable(const std::vector<TonerView>& toners) {
    TextTable table({"Supply", "Kind", "Color", "Level", "State", "Low at", "Full at", "Pages"});
    for (const std::size_t column : {3U, 5U, 6U, 7U}) {
        table.AlignRight(column);
    }
    for (const TonerView& toner : toners) {
        table.Add({utf8(toner.name), tonerKind(toner.kind), toner.color ? utf8(*toner.color) : "-",
                   amount(toner.level, " %"), tonerState(toner), amount(toner.lowLevel, " %"),
                   amount(toner.highLevel, " %"), amount(toner.capacity, "")});
    }
    return table.Text();
}

std::string pairTable(const char* keyHeading, const std::vector<KeyValueView>& pairs) {
    TextTable table({keyHeading, "Value"});
    for (const auto& [key, value] : pairs) {
        table.Add({utf8(key), utf8(value)});
    }
    return table.Text();
}

std::string presetTable(const PresetView& preset) {
    TextTable table({"Set", "Setting", "Value"});
    constexpr std::array<const char*, presetSets.size()> names = {"job", "tessel", "preset"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        for (const auto& [key, value] : preset.sets[i]) {
            table.Add({names[i], utf8(key), utf8(value)});
        }
    }
    return table.Text();
}

void printTables(ServerDataFile& file) {
    const auto trays = file.Read("TrayInfo", readTrays);
    print("Trays\n" + (trays ? trayTable(*trays) : file.Absence("TrayInfo")));

    const auto toners = file.Read("TonerInfo", readToners);
    print("\nToner\n" + (toners ? tonerTable(*toners) : file.Absence("TonerInfo")));

    const auto names = file.Read("PresetsList", readPresetNames);
    std::string list = names ? "" : file.Absence("PresetsList");
    for (const std::wstring_view name : names.value_or(std::vector<std::wstring_view>())) {
        list += "  " + printable(utf8(name)) + "\n";
    }
    print("\nPresets\n" + (list.empty() ? "  none\n" : list));

    const auto presets = file.Read("PresetsData", readPresets);
    if (!presets) {
        print("\nPreset settings\n" + file.Absence("PresetsData"));
    }
    for (const PresetView& preset : presets.value_or(std::vector<PresetView>())) {
        print("\nPreset " + printable(utf8(preset.name)) + "\n" + presetTable(preset));
    }

    const auto information = file.Read("ServerInfo", readServerInfo);
    print("\nServer\n" + (information ? pairTable("Item", *information) : file.Absence("ServerInfo")));
}

Json textJson(const std::optional<std::wstring_view>& text) { return text ? Json(utf8(*text)) : Json(); }

Json pairsJson(const std::vector<KeyValueView>& pairs) {
    Json json = Json::array();
    for (const auto& [key, value] : pairs) {
        json.push_back({{"key", utf8(key)}, {"value", utf8(value)}});
    }
    return json;
}

Json trayJson(const TrayView& tray) {
    Json json = Json::object();
    constexpr std::array<const char*, 6> names = {"name",      "key",       "mediaName",
                                                  "mediaSize", "mediaType", "mediaColor"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        json[names[i]] = textJson(tray.texts[i]);
    }
    json["level"] = tray.level;
    json["capacity"] = tray.capacity;
    return json;
}

Json tonerJson(const TonerView& toner) {
    return {{"name", utf8(toner.name)},       {"level", toner.level},         {"lowLevel", toner.lowLevel},
            {"color", textJson(toner.color)}, {"highLevel", toner.highLevel}, {"capacity", toner.capacity},
            {"kind", tonerKind(toner.kind)}};
}

Json nameJson(const std::wstring_view& name) { return utf8(name); }

Json presetJson(const PresetView& preset) {
    return {{"name", utf8(preset.name)},
            {"jobValues", pairsJson(preset.sets[0])},
            {"tesselValues", pairsJson(preset.sets[1])},
            {"presetValues", pairsJson(preset.sets[2])}};
}

// The record's entries; JSON null when the record could not be read.
template <typename Entry>
Json entriesJson(ServerDataFile& file, const char* name, RecordResult<Entry> (*read)(std::wstring_view),
                 Json (*toJson)(const Entry&)) {
    const auto entries = file.Read(name, read);
    if (!entries) {
        return {};
    }
    Json json = Json::array();
    for (const Entry& entry : *entries) {
        json.push_back(toJson(entry));
    }
    return json;
}

void printJson(ServerDataFile& file) {
    Json json = Json::object();
    json["trays"] = entriesJson<TrayView>(file, "TrayInfo", readTrays, trayJson);
    json["toner"] = entriesJson<TonerView>(file, "TonerInfo", readToners, tonerJson);
    json["presetNames"] = entriesJson<std::wstring_view>(file, "PresetsList", readPresetNames, nameJson);
    json["presets"] = entriesJson<PresetView>(file, "PresetsData", readPresets, presetJson);
    const auto information = file.Read("ServerInfo", readServerInfo);
    json["server"] = information ? pairsJson(*information) : Json();
    print(jsonDocument(json));
}

ExitStatus showServerData(const ServerDataOptions& options) {
    std::string content;
    if (!options.queue.empty()) {
        Result<std::string> answer = queueServerData(options.queue, options.address);
        if (!answer) {
            return unusable(answer.Why());
        }
        content = *std::move(answer);
    } else if (const std::error_code error =
                   platform::system().ReadFile(options.path, maximumDataFile, content)) {
        return unusable(options.path + ": cannot be read: " + error.message());
    }
    const std::string& source = options.queue.empty() ? options.path : options.queue;
    ServerDataFile file(source, content);
    if (!file.HasRecords()) {
        return unusable(source + ": holds no records; a two-way data file is expected");
    }
    if (options.json) {
        printJson(file);
    } else {
        printTables(file);
    }
    return file.HasBroken() ? ExitStatus::unusable : ExitStatus::good;
}

} // namespace

void addServerDataCommand(CLI::App& app, ExitStatus& status) {
    CLI::App* command =
        app.add_subcommand("serverdata", "Show trays, toner, presets and server of a controller");
    const auto options = std::make_shared<ServerDataOptions>();
    CLI::Option_group* source = command->add_option_group("source");
    source->add_option("FILE", options->path, "Two-way data file");
    CLI::Option* queue =
        source->add_option("-d,--queue", options->queue, "Queue whose filter is asked")->option_text("QUEUE");
    source->require_option(1);
    command->add_option("--address", options->address, "Controller; otherwise the device's host")
        ->option_text("HOST")
        ->needs(queue);
    command->add_flag("--json", options->json, "As JSON");
    describe(*command, {.examples = {"torka serverdata -d office", "torka serverdata office.ppd --json"},
                        .details = "Names a record that is missing or broken on standard error and shows the "
                                   "others."});
    command->callback([options, &status] { status = showServerData(*options); });
}

} // namespace torka::tool
