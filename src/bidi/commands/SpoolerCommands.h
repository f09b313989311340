#pragma once

#include "platform/Printing.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The command jobs by which the pane asks the queue's filter for work: titles, texts, and how the filter
// takes a text apart. docs/commands.md describes the whole exchange.

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

// Longest text of a command that becomes a record of the queue's PPD, in bytes: every client reads the whole
// PPD.
inline constexpr std::size_t mostRecordText = std::size_t{256} * 1024;

inline constexpr std::string_view argumentDelimiter = "::DELIMIT::";

// "Command_UpdateCommands" and so on, without the UUID that some titles end in.
std::string_view commandName(SpoolerCommand command);
// The title of a job that is to be sent now, with a new UUID where the command's title has one.
std::string commandTitle(SpoolerCommand command);
// The command that a job's title names. None for anything that is not exactly a command's title.
std::optional<SpoolerCommand> commandFromTitle(std::string_view title);

// True for what may identify a request: 1 to 64 letters, digits and "-", as a UUID's text is made of.
bool isRequestIdentifier(std::string_view identifier);

// What a request asks for, one NAME=VALUE a line. A later line of the same name stands for an earlier one.
using RequestLine = std::pair<std::string, std::string>;
// A line whose name or value would break it (a line end, a delimiter, "=" in the name) is left out.
std::string requestText(std::span<const RequestLine> lines);
// The line that `getDynamicPPDKeys` stands for: "keys=" and the keywords of the controls whose values the
// server may change, joined by commas. "" for none.
std::string dynamicPPDKeys(std::span<const std::string> keywords);

struct UpdateRequest {
    std::string identifier;
    std::string printerAddress;
    std::vector<RequestLine> lines; // each name once, in the order of first appearance
};
// The value of a line, "" when there is none of that name.
std::string_view valueOf(const UpdateRequest& request, std::string_view name);
// Whether one answer serves both: the address, the language, the dynamic keywords and the wanted records are
// the same, and neither is on behalf of another user than its job's.
bool asksTheSame(const UpdateRequest& one, const UpdateRequest& other);
// Identifier, address and request text, joined by delimiters. A delimiter inside the address is taken out.
std::string updateRequestText(std::string_view identifier, std::string_view printerAddress,
                              std::string_view request);
// None when the text has not three arguments, the identifier is none, the address is longer than 255 bytes or
// the text longer than 65,536. Lines that are not NAME=VALUE are passed over.
std::optional<UpdateRequest> parseUpdateRequest(std::string_view text);

// Sends "Command_UpdateCommands": the request, then the caller's command (further request lines). True when
// the printing system took it.
bool sendUpdateCommandToCFFWithCommand(const PMPrinter& printer, std::string_view identifier,
                                       std::string_view printerAddress, std::string_view request,
                                       std::string_view command);
// Sends "Command_DeleteUpdateFiles" with the text as it is: file names, one a line.
void deleteFileCommandToCFF(const PMPrinter& printer, std::string_view files);

// Requests of server data: who is asked, and under which identifier the answer is looked for.
class ServerDataRequests {
public:
    struct Request {
        std::string title;
        std::string text;
    };
    // What `launchFullProperties:` sends: a request under a new identifier. When the address is not that of
    // the request before, `resetJPServerpresetKeys` is called first: the presets of another server mean
    // nothing.
    Request Compose(std::string_view printerAddress, std::string_view request, std::string_view dynamicKeys,
                    const std::function<void()>& resetJPServerpresetKeys);
    // Identifier of the last request; "" before the first.
    const std::string& randomStringForBIDIFile() const { return identifier; }

private:
    std::string identifier;
    std::optional<std::string> previousIP;
};

} // namespace torka
