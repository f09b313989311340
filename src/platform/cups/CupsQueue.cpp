// SPDX-License-Identifier: Apache-2.0
#include "platform/cups/CupsQueue.h"

#include "platform/cups/CupsHandles.h"

#include <cups/ppd.h>

#include <algorithm>
#include <array>

// libcups marks its PPD functions as deprecated and offers no others for a queue with a description.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace torka::platform {

namespace {

bool succeeded() { return cupsLastError() <= IPP_STATUS_OK_CONFLICTING; }

// Whether the server answers a request within the limit in seconds. Any answer counts, a refusal too. Without
// a limit of its own a request repeats for the better part of a minute.
bool answersRequests(http_t* connection, int timeout) {
    httpSetTimeout(
        connection, timeout, [](http_t*, void*) { return 0; }, nullptr);
    return httpOptions(connection, "*") == 0 && httpUpdate(connection) != HTTP_STATUS_ERROR;
}

constexpr const char* stateNames[] = {"printer-name",
                                      "device-uri",
                                      "printer-make-and-model",
                                      "printer-state",
                                      "printer-state-message",
                                      "printer-state-reasons",
                                      "printer-is-accepting-jobs"};

// The attribute's text; "" when it has another type.
std::string textOf(ipp_attribute_t* attribute, int index = 0) {
    const char* text = ippGetString(attribute, index, nullptr);
    return text == nullptr ? std::string() : text;
}

void takeAttribute(ipp_attribute_t* attribute, QueueState& queue) {
    const std::string_view name = ippGetName(attribute);
    if (name == "printer-name") {
        queue.name = textOf(attribute);
    } else if (name == "device-uri") {
        queue.deviceUri = textOf(attribute);
    } else if (name == "printer-make-and-model") {
        queue.makeAndModel = textOf(attribute);
    } else if (name == "printer-state") {
        queue.state = ippGetInteger(attribute, 0);
    } else if (name == "printer-state-message") {
        queue.message = textOf(attribute);
    } else if (name == "printer-is-accepting-jobs") {
        queue.acceptsJobs = ippGetBoolean(attribute, 0) != 0;
    } else if (name == "printer-state-reasons") {
        for (int i = 0; i < ippGetCount(attribute); ++i) {
            queue.reasons.push_back(textOf(attribute, i));
        }
    }
}

// The queues of an answer: each is a group of attributes.
std::vector<QueueState> statesOf(ipp_t* answer) {
    std::vector<QueueState> queues;
    bool isInGroup = false;
    for (ipp_attribute_t* attribute = ippFirstAttribute(answer); attribute != nullptr;
         attribute = ippNextAttribute(answer)) {
        if (ippGetGroupTag(attribute) != IPP_TAG_PRINTER || ippGetName(attribute) == nullptr) {
            isInGroup = false;
            continue;
        }
        if (!isInGroup) {
            queues.emplace_back();
            isInGroup = true;
        }
        takeAttribute(attribute, queues.back());
    }
    return queues;
}

constexpr std::string_view printersFolder = "/printers/";
constexpr std::string_view classesFolder = "/classes/";

// The name behind `folder` in the URI of a queue; "" for another URI.
std::string nameBehind(std::string_view folder, const std::string& uri) {
    std::array<char, HTTP_MAX_URI> scheme{};
    std::array<char, HTTP_MAX_URI> user{};
    std::array<char, HTTP_MAX_URI> host{};
    std::array<char, HTTP_MAX_URI> path{};
    int port = 0;
    const bool isRead = httpSeparateURI(HTTP_URI_CODING_ALL, uri.c_str(), scheme.data(), HTTP_MAX_URI,
                                        user.data(), HTTP_MAX_URI, host.data(), HTTP_MAX_URI, &port,
                                        path.data(), HTTP_MAX_URI) >= HTTP_URI_STATUS_OK;
    const std::string_view name(path.data());
    return isRead && name.starts_with(folder) ? std::string(name.substr(folder.size())) : std::string();
}

// Adds the printers of a class behind those that are known: its own first, then those of its classes. False
// when the server does not tell them.
bool addPrinters(const std::string& queueName, int depth, std::vector<std::string>& printers) {
    const IppMessage answer = printerAttributes(queueName, {"member-uris"});
    if (!answer) {
        return false;
    }
    const std::vector<std::string> members = attributeTexts(answer.get(), "member-uris");
    for (const std::string& uri : members) {
        std::string name = nameBehind(printersFolder, uri);
        if (!name.empty() && std::ranges::find(printers, name) == printers.end()) {
            printers.push_back(std::move(name));
        }
    }
    constexpr int deepest = 3; // as in libcups; a class may contain itself
    for (const std::string& uri : members) {
        const std::string name = depth < deepest ? nameBehind(classesFolder, uri) : std::string();
        if (!name.empty() && !addPrinters(name, depth + 1, printers)) {
            return false;
        }
    }
    return true;
}

} // namespace

Result<int> submitFile(const std::string& queueName, const std::string& path, const std::string& title,
                       const JobOptions& options) {
    const CupsOptions jobOptions(options);
    const int job = cupsPrintFile2(CUPS_HTTP_DEFAULT, queueName.c_str(), path.c_str(), title.c_str(),
                                   jobOptions.Count(), jobOptions.Data());
    return job == 0 ? Result<int>(Fault{cupsLastErrorString()}) : job;
}

JobStatus jobStatus(int job) {
    static constexpr const char* names[] = {"job-state", "job-printer-state-message"};
    const std::string uri = "ipp://localhost/jobs/" + std::to_string(job);
    ipp_t* request = ippNewRequest(IPP_OP_GET_JOB_ATTRIBUTES);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "job-uri", nullptr, uri.c_str());
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
    ippAddStrings(request, IPP_TAG_OPERATION, IPP_CONST_TAG(IPP_TAG_KEYWORD), "requested-attributes", 2,
                  nullptr, names);
    const IppMessage answer(cupsDoRequest(CUPS_HTTP_DEFAULT, request, "/jobs"));
    JobStatus status;
    const int state = answer ? attributeInteger(answer.get(), names[0]) : -1;
    if (state < 0) {
        status.message = cupsLastErrorString();
        status.isGone = cupsLastError() == IPP_STATUS_ERROR_NOT_FOUND;
        return status;
    }
    status.state = state;
    const std::vector<std::string> messages = attributeTexts(answer.get(), names[1]);
    if (!messages.empty()) {
        status.message = messages.front();
    }
    return status;
}

std::string cancelJob(const std::string& queueName, int job) {
    const bool isCancelled =
        cupsCancelJob2(CUPS_HTTP_DEFAULT, queueName.c_str(), job, 0) <= IPP_STATUS_OK_CONFLICTING;
    return isCancelled ? "" : cupsLastErrorString();
}

std::string serverProblem() {
    constexpr int timeout = 10; // seconds, to connect and to answer
    const std::string server = cupsServer();
    const std::string place = server.starts_with('/') ? server : server + ":" + std::to_string(ippPort());
    const HttpConnection connection(httpConnect2(server.c_str(), ippPort(), nullptr, AF_UNSPEC,
                                                 cupsEncryption(), 1, timeout * 1000, nullptr));
    if (!connection) {
        // libcups gives no reason that a person could use, such as "Bad file descriptor".
        return "Cannot reach the print server at " + place +
               ": it does not run there, or CUPS_SERVER names another place";
    }
    return answersRequests(connection.get(), timeout) ? ""
                                                      : "The print server at " + place +
                                                            " takes connections but does not answer: it is "
                                                            "overloaded or stopped, or another program "
                                                            "listens there";
}

std::string queueProblem(const std::string& queueName) {
    if (std::string problem = serverProblem(); !problem.empty()) {
        return problem;
    }
    const std::string name = queueName.empty() ? defaultQueue() : queueName;
    if (name.empty()) {
        return "the print server has no default queue: name one with -d QUEUE";
    }
    if (!queueNameProblem(name).empty()) {
        return "the print server has no queue " + name;
    }
    if (printerAttributes(name, {"printer-name"})) {
        return {};
    }
    return cupsLastError() == IPP_STATUS_ERROR_NOT_FOUND
               ? "the print server has no queue " + name
               : "the print server tells nothing about the queue " + name + ": " + cupsLastErrorString();
}

std::string defaultQueue() {
    const char* name = cupsGetDefault();
    return name == nullptr ? "" : name;
}

void neverAskForPasswords() {
    cupsSetPasswordCB2(
        [](const char*, http_t*, const char*, const char*, void*) -> const char* { return nullptr; },
        nullptr);
}

bool isServerLocal() {
    const std::string server = cupsServer();
    return server.starts_with('/') || server == "localhost" || server == "127.0.0.1" || server == "::1" ||
           server == "[::1]";
}

std::optional<std::vector<QueueState>> listQueues() {
    ipp_t* request = ippNewRequest(IPP_OP_CUPS_GET_PRINTERS);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
    ippAddStrings(request, IPP_TAG_OPERATION, IPP_CONST_TAG(IPP_TAG_KEYWORD), "requested-attributes",
                  static_cast<int>(std::size(stateNames)), nullptr, stateNames);
    const IppMessage answer(cupsDoRequest(CUPS_HTTP_DEFAULT, request, "/"));
    // A server without queues answers "not found".
    if (!answer || (!succeeded() && cupsLastError() != IPP_STATUS_ERROR_NOT_FOUND)) {
        return std::nullopt;
    }
    return statesOf(answer.get());
}

std::optional<QueueState> queueState(const std::string& queueName) {
    const IppMessage answer =
        printerAttributes(queueName, std::vector<const char*>(std::begin(stateNames), std::end(stateNames)));
    std::vector<QueueState> queues = answer ? statesOf(answer.get()) : std::vector<QueueState>();
    return queues.empty() ? std::nullopt : std::optional(std::move(queues.front()));
}

std::optional<std::vector<std::string>> printersOfClass(const std::string& queueName) {
    std::vector<std::string> printers;
    return addPrinters(queueName, 0, printers) ? std::optional(std::move(printers)) : std::nullopt;
}

std::optional<std::string> describedQueue(const std::string& queueName) {
    const std::optional<std::vector<std::string>> printers = printersOfClass(queueName);
    if (!printers) {
        return std::nullopt;
    }
    return printers->empty() ? queueName : printers->front();
}

std::string descriptionProblem(const std::string& path) {
    if (ppd_file_t* ppd = ppdOpenFile(path.c_str())) {
        ppdClose(ppd);
        return {};
    }
    int line = 0;
    const ppd_status_t status = ppdLastError(&line);
    return std::string(ppdErrorString(status)) + ", line " + std::to_string(line);
}

std::string removeQueue(const std::string& name) {
    const std::string uri = queueUri(name);
    ipp_t* request = ippNewRequest(IPP_OP_CUPS_DELETE_PRINTER);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri.c_str());
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
    const IppMessage answer(cupsDoRequest(CUPS_HTTP_DEFAULT, request, "/admin/"));
    return succeeded() ? "" : cupsLastErrorString();
}

std::string addQueue(const std::string& name, const std::string& deviceUri, const std::string& ppdPath) {
    const std::string uri = queueUri(name);
    ipp_t* request = ippNewRequest(IPP_OP_CUPS_ADD_MODIFY_PRINTER);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri.c_str());
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
    ippAddString(request, IPP_TAG_PRINTER, IPP_TAG_URI, "device-uri", nullptr, deviceUri.c_str());
    ippAddString(request, IPP_TAG_PRINTER, IPP_TAG_NAME, "printer-error-policy", nullptr, "abort-job");
    ippAddInteger(request, IPP_TAG_PRINTER, IPP_TAG_ENUM, "printer-state", IPP_PSTATE_IDLE);
    ippAddBoolean(request, IPP_TAG_PRINTER, "printer-is-accepting-jobs", 1);
    const IppMessage answer(cupsDoFileRequest(CUPS_HTTP_DEFAULT, request, "/admin/", ppdPath.c_str()));
    return succeeded() ? "" : cupsLastErrorString();
}

std::string queueNameProblem(const std::string& name) {
    constexpr std::size_t limit = 127;
    if (name.empty() || name.size() > limit) {
        return "a queue's name has 1 to 127 bytes";
    }
    const auto isForbidden = [](char c) {
        const auto value = static_cast<unsigned char>(c);
        return value <= ' ' || value == 0x7f ||
               std::string_view("/\\?'\"#").find(c) != std::string_view::npos;
    };
    return std::ranges::any_of(name, isForbidden)
               ? "a queue's name holds no blanks, quotes, \"/\", \"\\\", \"?\" or \"#\""
               : "";
}

} // namespace torka::platform
