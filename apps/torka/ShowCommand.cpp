// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/ModelJson.h"

#include <memory>

namespace torka::tool {

namespace {

struct ShowOptions {
    std::string path;
    bool json = false;
};

std::string flagList(PPDXControl& control) {
    std::string list;
    for (const char* flag = control.FirstControlFlag(); flag != nullptr; flag = control.NextControlFlag()) {
        list += list.empty() ? " [" : "|";
        list += printable(jsonText(flag));
    }
    return list.empty() ? list : list + "]";
}

std::string choices(PPDXPopupControl& popup) {
    std::string text;
    for (const _PopupItem* item = popup.FirstItem(); item != nullptr; item = popup.NextItem()) {
        text += text.empty() ? "" : ", ";
        text += (item->selected != 0 ? "*" : "") + printable(jsonText(item->keyword.Buffer()));
    }
    return text;
}

void printControl(PPDXControl& control, const std::string& indent) {
    auto* popup = dynamic_cast<PPDXPopupControl*>(&control);
    const bool isMultiple = popup != nullptr && popup->CanSelectMultipleItems();
    std::string line = indent + printable(jsonText(control.Keyword())) + "  " +
                       printable(jsonText(control.CFStringUserName())) + "  (" + typeName(control.Type()) +
                       (isMultiple ? ", several choices)" : ")") + flagList(control);
    if (!control.IsVisible()) {
        line += " hidden";
    }
    print(line + "\n");
    if (popup != nullptr) {
        print(indent + "    " + choices(*popup) + "\n");
    } else {
        print(indent + "    " + printable(jsonText(control.CopyCurrentControlValueString())) + "\n");
    }
}

void printHeading(const PPDXElement& element, const std::string& indent, const char* kind) {
    print(indent + kind + " " + printable(jsonText(element.Keyword())) + ": " +
          printable(jsonText(element.CFStringUserName())) + (element.IsVisible() ? "\n" : " hidden\n"));
}

void printPages(const ZANPPD& description) {
    description.GetProperties()->ForEach([](const PPDXProperty* page) {
        printHeading(*page, "\n", "Page");
        const PPDXScrollPane* pane = page->GetScrollDown();
        if (pane == nullptr) {
            return;
        }
        printHeading(*pane, "  ", "Scroll pane");
        pane->RollDowns().ForEach([](PPDXGroup* group) {
            printHeading(*group, "    ", "Roll-down");
            if (const auto* rollDown = dynamic_cast<const PPDXRollDown*>(group)) {
                rollDown->Controls().ForEach([](PPDXControl* control) { printControl(*control, "      "); });
            }
        });
    });
}

void printOutsidePages(const ZANPPD& description) {
    if (const PPDXRollDown* installable = description.InstallableOptions()) {
        printHeading(*installable, "\n", "Installable options");
        installable->Controls().ForEach([](PPDXControl* control) { printControl(*control, "  "); });
    }
    print("\nOrphans\n");
    description.GetControls()->ForEach([](PPDXControl* control) {
        if (control->IsOrphan() && control->Type() != CNTL_TYPE::specialOption) {
            printControl(*control, "  ");
        }
    });
    print("\nSpecial options\n");
    description.GetControls()->ForEach([](PPDXControl* control) {
        if (control->Type() == CNTL_TYPE::specialOption) {
            print("  " + printable(jsonText(control->Keyword())) + " = " +
                  printable(jsonText(control->CopyCurrentControlValueString())) + "\n");
        }
    });
}

void printShortcuts(const ZANPPD& description) {
    print("\nShortcuts\n");
    PPDXShortcuts& shortcuts = *description.GetShortcuts();
    for (const PPDXControl* control = shortcuts.First(); control != nullptr; control = shortcuts.Next()) {
        print("  " + printable(jsonText(control->Keyword())) + "  " +
              printable(jsonText(control->CFStringUserName())) + "\n");
    }
}

void printHeader(const Json& header) {
    for (const auto& [name, value] : header.items()) {
        print(name + ": " + (value.is_null() ? "-" : printable(value.get<std::string>())) + "\n");
    }
}

ExitStatus show(const ShowOptions& options) {
    const auto read = readUsableDescription(options.path);
    if (!read) {
        return unusable(read.Why());
    }
    const std::unique_ptr<ZANPPD>& description = *read;
    if (options.json) {
        JsonPrinter printer;
        writeModel(printer, *description);
        return ExitStatus::good;
    }
    printHeader(headerJson(*description));
    printPages(*description);
    printOutsidePages(*description);
    printShortcuts(*description);
    if (const std::size_t count = description->Errors()->Count(); count > 0) {
        print("\n" + std::to_string(count) + " errors in the description: torka lint tells them\n");
    }
    return ExitStatus::good;
}

} // namespace

void addShowCommand(CLI::App& app, ExitStatus& status) {
    const auto options = std::make_shared<ShowOptions>();
    CLI::App* command = app.add_subcommand("show", "Print header, pages and options of a description");
    command->add_option("PPD", options->path, "Extended PPD file")->required();
    command->add_flag("--json", options->json, "As JSON");
    describe(*command, {.examples = {"torka show samples/torka-production.ppd"}});
    command->callback([options, &status] { status = show(*options); });
}

} // namespace torka::tool
