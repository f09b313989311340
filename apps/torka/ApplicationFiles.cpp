// SPDX-License-Identifier: Apache-2.0
// The texts of the files that switch the pane on.
#include "apps/torka/Applications.h"

#include <string_view>

namespace torka::tool {

namespace {

constexpr std::string_view comment = "# Written by \"torka setup applications on\"; \"off\" removes it.\n";

struct Variable {
    std::string name;
    std::string value;
    char separator; // of the values of other programs; '\0' when the variable has one value
};

std::vector<Variable> variables(const ApplicationPlaces& places, bool withGtk) {
    std::vector<Variable> all{{"QT_QPA_GENERIC_PLUGINS", "torka", ','}};
    if (!places.plugInPath.empty()) {
        all.push_back({"QT_PLUGIN_PATH", places.plugInPath.string(), ':'});
    }
    if (withGtk) {
        all.push_back({"GTK_USE_PORTAL", "1", '\0'});
        all.push_back({"GDK_DEBUG", "portals", ','});
    }
    return all;
}

} // namespace

// environment.d(5): a value may refer to the variable as it stands.
std::string environmentText(const ApplicationPlaces& places, bool withGtk) {
    std::string text(comment);
    for (const Variable& variable : variables(places, withGtk)) {
        text += variable.name + '=';
        if (variable.separator != '\0') {
            text += "${" + variable.name + ":+$" + variable.name + variable.separator + '}';
        }
        text += variable.value + '\n';
    }
    return text;
}

// A session may start programs of both kinds, so the value may be there already. Without the plug-in Qt would
// complain at every start.
std::string sessionText(const ApplicationPlaces& places, bool withGtk) {
    std::string text = std::string(comment) + "if [ -e " + places.plugIn.string() + " ]; then\n";
    for (const auto& [name, value, separator] : variables(places, withGtk)) {
        if (separator == '\0') {
            text.append("    export ").append(name).append("=").append(value).append("\n");
            continue;
        }
        const std::string mark(1, separator);
        text.append("    case \"")
            .append(mark)
            .append("${")
            .append(name)
            .append("-}")
            .append(mark)
            .append("\" in\n");
        text.append("    *").append(mark).append(value).append(mark).append("*) ;;\n");
        text.append("    *) export ").append(name).append("=\"");
        text.append("${").append(name).append(":+$").append(name).append(mark).append("}").append(value);
        text.append("\" ;;\n").append("    esac\n");
    }
    return text + "fi\n";
}

} // namespace torka::tool
