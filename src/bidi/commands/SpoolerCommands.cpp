// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/SpoolerCommands.h"

#include "platform/NetServices.h"
#include "platform/System.h"

#include <algorithm>
#include <array>

namespace torka {

namespace {

struct CommandEntry {
    SpoolerCommand command;
    std::string_view name;
    bool hasUuid;
};

constexpr std::array<CommandEntry, 12> commands{{
    {SpoolerCommand::updateCommands, "Command_UpdateCommands", false},
    {SpoolerCommand::deleteUpdateFiles, "Command_DeleteUpdateFiles", false},
    {SpoolerCommand::writePresetData, "Command_WritePresetData", true},
    {SpoolerCommand::localeCode, "Command_LocaleCode", false},
    {SpoolerCommand::popupJnData, "command_PopupJnData", false},
    {SpoolerCommand::psTempFileName, "Command_PSTempFileName", false},
    {SpoolerCommand::writePSTemp, "Command_WritePSTemp", false},
    {SpoolerCommand::printerLocalPresets, "Command_PRINTERLOCALPRESETS", false},
    {SpoolerCommand::psqvDestination, "Command_PSQVDestination", false},
    {SpoolerCommand::zanPrefs, "Command_ZANPrefs", true},
    {SpoolerCommand::getServerData, "Command_GetServerData", true},
    {SpoolerCommand::allBidi, "Command_AllBidi", true},
}};

constexpr std::size_t maximumRequestText = 65536;
constexpr std::size_t maximumAddress = 255;
constexpr std::size_t maximumIdentifier = 64;
constexpr int firstMinorWithAllBidi = 7;

const CommandEntry& entryOf(SpoolerCommand command) {
    return *std::find_if(commands.begin(), commands.end(),
                         [command](const CommandEntry& entry) { return entry.command == command; });
}

bool isHexadecimal(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

// Matches the text form of RFC 4122.
bool isUuid(std::string_view text) {
    if (text.size() != 36) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
        if (dash ? text[i] != '-' : !isHexadecimal(text[i])) {
            return false;
        }
    }
    return true;
}

bool staysOnItsLine(std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos &&
           text.find(argumentDelimiter) == std::string_view::npos;
}

std::string withoutDelimiters(std::string_view text) {
    std::string result(text);
    for (std::size_t at = 0; (at = result.find(argumentDelimiter)) != std::string::npos;) {
        result.erase(at, argumentDelimiter.size());
    }
    return result;
}

void addLine(std::vector<RequestLine>& lines, std::string_view line) {
    const std::size_t equals = line.find('=');
    if (equals == 0 || equals == std::string_view::npos) {
        return;
    }
    const std::string_view name = line.substr(0, equals);
    const std::string_view value = line.substr(equals + 1);
    const auto place = std::find_if(lines.begin(), lines.end(),
                                    [name](const RequestLine& known) { return known.first == name; });
    if (place != lines.end()) {
        place->second = value;
    } else {
        lines.emplace_back(name, value);
    }
}

} // namespace

std::string_view commandName(SpoolerCommand command) { return entryOf(command).name; }

std::string commandTitle(SpoolerCommand command) {
    const CommandEntry& entry = entryOf(command);
    std::string title(entry.name);
    if (entry.hasUuid) {
        title += system().CreateUuidString();
    }
    return title;
}

std::optional<SpoolerCommand> commandFromTitle(std::string_view title) {
    for (const CommandEntry& entry : commands) {
        if (entry.hasUuid ? title.starts_with(entry.name) && isUuid(title.substr(entry.name.size()))
                          : title == entry.name) {
            return entry.command;
        }
    }
    return std::nullopt;
}

bool isForPrintJob(SpoolerCommand command) {
    return command == SpoolerCommand::psTempFileName || command == SpoolerCommand::writePSTemp ||
           command == SpoolerCommand::psqvDestination;
}

bool isRequestIdentifier(std::string_view identifier) {
    return !identifier.empty() && identifier.size() <= maximumIdentifier &&
           std::all_of(identifier.begin(), identifier.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-';
           });
}

std::string requestText(std::span<const RequestLine> lines) {
    std::string text;
    for (const auto& [name, value] : lines) {
        if (!name.empty() && name.find('=') == std::string::npos && staysOnItsLine(name) &&
            staysOnItsLine(value)) {
            text.append(name).append("=").append(value).append("\n");
        }
    }
    return text;
}

std::string dynamicPPDKeys(std::span<const std::string> keywords) {
    std::string value;
    for (const std::string& keyword : keywords) {
        if (!keyword.empty() && keyword.find(',') == std::string::npos && staysOnItsLine(keyword)) {
            value.append(value.empty() ? "" : ",").append(keyword);
        }
    }
    return value.empty() ? value : "keys=" + value + "\n";
}

std::string updateRequestText(std::string_view identifier, std::string_view printerAddress,
                              std::string_view request) {
    return std::string(identifier)
        .append(argumentDelimiter)
        .append(withoutDelimiters(printerAddress))
        .append(argumentDelimiter)
        .append(request);
}

std::optional<UpdateRequest> parseUpdateRequest(std::string_view text) {
    const std::size_t first = text.find(argumentDelimiter);
    if (text.size() > maximumRequestText || first == std::string_view::npos) {
        return std::nullopt;
    }
    const std::size_t addressStart = first + argumentDelimiter.size();
    const std::size_t second = text.find(argumentDelimiter, addressStart);
    if (second == std::string_view::npos || second - addressStart > maximumAddress ||
        !isRequestIdentifier(text.substr(0, first))) {
        return std::nullopt;
    }
    UpdateRequest request{std::string(text.substr(0, first)),
                          std::string(text.substr(addressStart, second - addressStart)),
                          {}};
    std::string_view rest = text.substr(second + argumentDelimiter.size());
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
        addLine(request.lines, rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return request;
}

std::string_view valueOf(const UpdateRequest& request, std::string_view name) {
    const auto line = std::ranges::find(request.lines, name, &RequestLine::first);
    return line == request.lines.end() ? std::string_view() : std::string_view(line->second);
}

bool asksTheSame(const UpdateRequest& one, const UpdateRequest& other) {
    const auto isSame = [&](std::string_view name) { return valueOf(one, name) == valueOf(other, name); };
    return isSameAddress(one.printerAddress, other.printerAddress) && isSame("address") && isSame("locale") &&
           isSame("keys") && isSame("records") && valueOf(one, "user").empty() &&
           valueOf(other, "user").empty();
}

bool sendUpdateCommandToCFFWithCommand(const PMPrinter& printer, std::string_view identifier,
                                       std::string_view printerAddress, std::string_view request,
                                       std::string_view command) {
    const std::string text =
        updateRequestText(identifier, printerAddress, std::string(request).append(command));
    return PMPrinterSendCommand(describedPrinter(printer), cfString(text),
                                cfString(commandTitle(SpoolerCommand::updateCommands)), nullptr) == noErr;
}

void deleteFileCommandToCFF(const PMPrinter& printer, std::string_view files) {
    PMPrinterSendCommand(describedPrinter(printer), cfString(files),
                         cfString(commandTitle(SpoolerCommand::deleteUpdateFiles)), nullptr);
}

ServerDataRequests::Request
ServerDataRequests::Compose(std::string_view printerAddress, std::string_view request,
                            std::string_view dynamicKeys,
                            const std::function<void()>& resetJPServerpresetKeys) {
    if (previousIP && *previousIP != printerAddress && resetJPServerpresetKeys) {
        resetJPServerpresetKeys();
    }
    previousIP = printerAddress;
    identifier = system().CreateUuidString();
    const SpoolerCommand command = system().MinorVersion() < firstMinorWithAllBidi
                                       ? SpoolerCommand::getServerData
                                       : SpoolerCommand::allBidi;
    return {commandTitle(command),
            updateRequestText(identifier, printerAddress, std::string(request).append(dynamicKeys))};
}

} // namespace torka
