// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/Description.h"
#include "apps/torka/QueueAddresses.h"
#include "connection/AddressText.h"
#include "connection/ZANCorvianPrinterPList.h"
#include "platform/System.h"
#include "platform/cups/CupsQueue.h"

#include <memory>
#include <system_error>

namespace torka::tool {

namespace {

constexpr std::size_t maximumInputBytes = 0x4000000;

struct AddressOptions {
    std::string file;
    std::string ppd;
    std::string queue;
    std::string name;
    std::string address;
    bool twoWay = false;
    bool noTwoWay = false;
    bool json = false;
    bool force = false;
};

Json rowsJson(const std::vector<CFStringRef>& rows) {
    Json json = Json::array();
    for (const CFStringRef& row : rows) {
        json.push_back(utf8Text(row));
    }
    return json;
}

Json addressJson(const PrinterAddressEntry& entry) {
    Json blocks = Json::array();
    for (const auto& block : entry.blocks) {
        blocks.push_back({{"id", block.id}, {"rows", rowsJson(block.rows)}});
    }
    return {{"name", utf8Text(entry.name)},
            {"address", utf8Text(entry.address)},
            {"twoWay", entry.ipEnabled},
            {"format", utf8Text(entry.format)},
            {"blocks", std::move(blocks)}};
}

void printAddress(const PrinterAddressEntry& entry) {
    const std::string address = utf8Text(entry.address);
    print(printable(utf8Text(entry.name)) + ": " + (address.empty() ? "no address" : printable(address)) +
          (entry.ipEnabled ? ", two-way" : "") + "\n");
    for (const auto& block : entry.blocks) {
        print("  block " + std::to_string(block.id) + ":\n");
        for (const CFStringRef& row : block.rows) {
            print("    " + printable(utf8Text(row)) + "\n");
        }
    }
}

std::unique_ptr<PropertyListStore> storeOf(const AddressOptions& options) {
    if (!options.ppd.empty()) {
        return std::make_unique<DescriptionPropertyListStore>(options.ppd);
    }
    return std::make_unique<FilePropertyListStore>(options.file);
}

// An address list together with the place that Save writes it to.
class OpenList {
public:
    ZANCorvianPrinterPList& operator*() const { return queue ? queue->List() : *list; }
    ZANCorvianPrinterPList* operator->() const { return &**this; }

    std::unique_ptr<QueueAddresses> queue;
    std::unique_ptr<ZANCorvianPrinterPList> list;
};

// Opens the list. Fails when the file holds no list, or when it is absent and `mayBeAbsent` is false.
Result<OpenList> openList(const AddressOptions& options, bool mayBeAbsent) {
    if (!options.queue.empty()) {
        auto queue = QueueAddresses::Open(options.queue);
        return queue ? OpenList{*std::move(queue), nullptr} : Result<OpenList>(queue.Why());
    }
    const std::string& path = options.ppd.empty() ? options.file : options.ppd;
    std::string content;
    const std::error_code failure = system().ReadFile(path, maximumInputBytes, content);
    const bool isAbsent = failure == std::errc::no_such_file_or_directory;
    if (failure && !(isAbsent && mayBeAbsent)) {
        return Fault{failure.message(), path};
    }
    auto list = std::make_unique<ZANCorvianPrinterPList>(storeOf(options));
    if (!list->Loaded() && !isAbsent) {
        return Fault{options.ppd.empty() ? "not a property list that is an array"
                                         : "no record QVDriverPreference that is an address list",
                     path};
    }
    return OpenList{nullptr, std::move(list)};
}

ExitStatus saveList(const OpenList& list, const std::string& path, const AddressChange& change) {
    if (list.queue) {
        return list.queue->Save(change);
    }
    change(*list);
    if (list->Save()) {
        return ExitStatus::good;
    }
    return unusable(path + ": " +
                    (list->Error() == PropertyListFile::memFullErr
                         ? "the list holds a text that XML cannot hold"
                         : std::generic_category().message(list->Error())));
}

ExitStatus listAddresses(const AddressOptions& options) {
    const Result<OpenList> opened = openList(options, false);
    if (!opened) {
        return unusable(opened.Why());
    }
    const OpenList& list = *opened;
    Json printers = Json::array();
    for (const PrinterAddressEntry& entry : list->Entries()) {
        if (options.json) {
            printers.push_back(addressJson(entry));
        } else {
            printAddress(entry);
        }
    }
    if (options.json) {
        Json json = Json::object();
        json["printers"] = std::move(printers);
        print(jsonDocument(json));
    }
    return ExitStatus::good;
}

ExitStatus setAddress(const AddressOptions& options) {
    // A pane looks up its own queue: no pane would find the entry of another name.
    if (const std::string problem = options.force ? std::string() : platform::queueProblem(options.name);
        !problem.empty()) {
        return unusable(problem + " (--force sets the entry all the same)");
    }
    const Result<OpenList> opened = openList(options, true);
    if (!opened) {
        return unusable(opened.Why());
    }
    const OpenList& list = *opened;
    const CFStringRef name = cfString(options.name);
    const bool twoWay = options.twoWay || (!options.noTwoWay && list->getIPEnabled(name));
    // With two-way communication off the pane takes any text.
    const AddressProblem problem = twoWay ? addressProblem(cfString(options.address)) : AddressProblem();
    if (!problem.english.empty()) {
        return unusable("'" + options.address + "': " + std::string(problem.english));
    }
    return saveList(list, options.file, [&](ZANCorvianPrinterPList& changed) {
        changed.Add(name, cfString(options.address), twoWay);
    });
}

ExitStatus removeAddress(const AddressOptions& options) {
    const Result<OpenList> opened = openList(options, false);
    if (!opened) {
        return unusable(opened.Why());
    }
    const OpenList& list = *opened;
    const CFStringRef name = cfString(options.name);
    bool isThere = false;
    list->Exists(name, isThere);
    if (!isThere) {
        warn(options.file + options.queue + ": no entry of \"" + options.name + "\"");
        return ExitStatus::findings;
    }
    return saveList(list, options.file, [&](ZANCorvianPrinterPList& changed) { changed.RemoveEntry(name); });
}

void addTarget(CLI::App& command, AddressOptions& options, const char* fileText) {
    CLI::Option_group* target = command.add_option_group("target");
    target->add_option("--file", options.file, fileText)->option_text("FILE");
    target->add_option("-d,--queue", options.queue, "Queue that keeps the list; its filter writes it")
        ->option_text("QUEUE");
    target->require_option(1);
}

} // namespace

void addAddressCommand(CLI::App& app, ExitStatus& status) {
    const auto options = std::make_shared<AddressOptions>();
    CLI::App* command = app.add_subcommand("address", "The printers' controller addresses");
    command->require_subcommand(1);
    describe(*command, {.examples = {"torka address set -d office office 10.0.0.7 --two-way"}});

    CLI::App* list = command->add_subcommand("list", "Print the entries");
    CLI::Option_group* source = list->add_option_group("source");
    source->add_option("--file", options->file, "Address list (XML property list)")->option_text("FILE");
    source->add_option("--ppd", options->ppd, "Description whose record keeps the list")->option_text("PPD");
    source->add_option("-d,--queue", options->queue, "Queue that keeps the list")->option_text("QUEUE");
    source->require_option(1);
    list->add_flag("--json", options->json, "As JSON");
    describe(*list,
             {.examples = {"torka address list -d office", "torka address list --file addresses.plist"}});
    list->callback([options, &status] { status = listAddresses(*options); });

    CLI::App* set = command->add_subcommand("set", "Add a printer's entry or change its address");
    addTarget(*set, *options, "Address list, made when it is not there");
    set->add_option("NAME", options->name, "Name of the queue; letter case does not matter")
        ->option_text("PRINTER")
        ->required();
    set->add_option("ADDRESS", options->address, "Host name or IP address of the controller")->required();
    CLI::Option* on = set->add_flag("--two-way", options->twoWay, "Two-way communication on");
    set->add_flag("--no-two-way", options->noTwoWay, "Two-way communication off")->excludes(on);
    set->add_flag("--force", options->force, "Set it although the server has no such queue");
    describe(*set, {.examples = {"torka address set -d office office 10.0.0.7 --two-way"}});
    set->callback([options, &status] { status = setAddress(*options); });

    CLI::App* remove = command->add_subcommand("remove", "Remove a printer's entry");
    addTarget(*remove, *options, "Address list (XML property list)");
    remove->add_option("NAME", options->name, "Name of the queue; letter case does not matter")
        ->option_text("PRINTER")
        ->required();
    describe(*remove,
             {.examples = {"torka address remove -d office office"}, .findings = "there is no such entry"});
    remove->callback([options, &status] { status = removeAddress(*options); });

    addDiscoverCommand(*command, status);
}

} // namespace torka::tool
