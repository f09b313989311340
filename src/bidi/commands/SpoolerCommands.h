// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The titles and texts of the command jobs by which the pane gives work to the queue's filter, and the
// filter's parser for a text. docs/commands.md describes the exchange.

namespace torka {

enum class SpoolerCommand {
    updateCommands,
    deleteUpdateFiles,
    writePresetData,
    localeCode,
    popupJnData,
    psTempFileName,
    writePSTemp,
    printerLocalPresets,
    psqvDestination,
    zanPrefs,
    getServerData,
    allBidi,
};

// Maximum size, in bytes, of a command's text that becomes a record of the queue's PPD. It is limited because
// every client reads the whole PPD.
inline constexpr std::size_t maximumRecordText = std::size_t{256} * 1024;

inline constexpr std::string_view argumentDelimiter = "::DELIMIT::";

// The title for a new job. It has a new UUID when the command's title ends in one.
std::string commandTitle(SpoolerCommand command);
// The command that a job's title names. nullopt unless the text is exactly a command's title.
std::optional<SpoolerCommand> commandFromTitle(std::string_view title);
// Whether the command prepares a print job, so that it goes to the job's queue, which may be a class of
// printers. The others go to the class's described printer: its records, files and language are used.
bool isForPrintJob(SpoolerCommand command);

// True for a valid identifier of a request: 1 to 64 letters, digits and "-", the characters of a UUID.
bool isRequestIdentifier(std::string_view identifier);

// A NAME=VALUE line of a request. A later line replaces an earlier one of the same name.
using RequestLine = std::pair<std::string, std::string>;
// Leaves out a line whose name or value holds a line end or a delimiter, or whose name holds "=".
std::string requestText(std::span<const RequestLine> lines);
// The line for `getDynamicPPDKeys`: "keys=" and, joined by commas, the keywords of the controls whose values
// the server may change. "" for none.
std::string dynamicPPDKeys(std::span<const std::string> keywords);

struct UpdateRequest {
    std::string identifier;
    std::string printerAddress;
    std::vector<RequestLine> lines; // each name once, in the order of first appearance
};
// The value of a line, "" when there is none of that name.
std::string_view valueOf(const UpdateRequest& request, std::string_view name);
// Whether one answer serves both requests. Address, language, dynamic keywords and wanted records must be
// equal, and neither request may be on behalf of another user than that of its job.
bool asksTheSame(const UpdateRequest& one, const UpdateRequest& other);
// Joins identifier, address and request text by delimiters. Removes delimiters from the address.
std::string updateRequestText(std::string_view identifier, std::string_view printerAddress,
                              std::string_view request);
// nullopt when the text does not have three arguments, the identifier is invalid, the address has more than
// 255 bytes, or the text more than 65,536. Skips lines that are not NAME=VALUE.
std::optional<UpdateRequest> parseUpdateRequest(std::string_view text);

// Composes the requests for server data and remembers the identifier of the last one.
class ServerDataRequests {
public:
    struct Request {
        std::string title;
        std::string text;
    };
    // The request that `launchFullProperties:` sends, under a new identifier. First calls
    // `resetJPServerpresetKeys` when the address differs from that of the previous request: presets of
    // another server are invalid.
    Request Compose(std::string_view printerAddress, std::string_view request, std::string_view dynamicKeys,
                    const std::function<void()>& resetJPServerpresetKeys);
    // The identifier of the last request; "" before the first.
    const std::string& randomStringForBIDIFile() const { return identifier; }

private:
    std::string identifier;
    std::optional<std::string> previousIP;
};

// Given interface; no caller here
// Sends "Command_UpdateCommands": the request, then the caller's command (further request lines). True when
// the printing system accepts it.
bool sendUpdateCommandToCFFWithCommand(const PMPrinter& printer, std::string_view identifier,
                                       std::string_view printerAddress, std::string_view request,
                                       std::string_view command);
// Sends "Command_DeleteUpdateFiles" with the text unchanged: file names, one a line.
void deleteFileCommandToCFF(const PMPrinter& printer, std::string_view files);

// For the tests; no caller here
// "Command_UpdateCommands" and so on, without the UUID that some titles end in.
std::string_view commandName(SpoolerCommand command);

} // namespace torka
