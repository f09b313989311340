// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/QueuePolicy.h"

#include "bidi/commands/TicketCommands.h"
#include "output/BundleIdentifier.h"
#include "platform/System.h"
#include "platform/cups/CupsHandles.h"

#include <algorithm>
#include <array>
#include <span>

namespace torka::tool {

namespace {

using platform::IppMessage;

constexpr const char* authRemedy =
    "write AuthType for the jobs' operations into the server's policy (docs/spooler-filter.md)";
constexpr const char* valuesRemedy =
    "write JobPrivateValues all into the server's policy (docs/spooler-filter.md)";
constexpr const char* subscriptionsRemedy =
    "write SubscriptionPrivateValues all into the server's policy (docs/spooler-filter.md)";

struct Answer {
    http_status_t status = HTTP_STATUS_ERROR;
    IppMessage message;
    bool IsGood() const { return message && ippGetStatusCode(message.get()) <= IPP_STATUS_OK_CONFLICTING; }
};

IppMessage makeRequest(ipp_op_t operation, const std::string& queueName, const std::string& user) {
    IppMessage request(ippNewRequest(operation));
    ippAddString(request.get(), IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr,
                 platform::queueUri(queueName).c_str());
    ippAddString(request.get(), IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr,
                 user.c_str());
    return request;
}

// Sends a request without authentication. cupsDoRequest is unsuitable here: it authenticates when the server
// asks for it.
Answer askUnauthenticated(const IppMessage& request, const std::string& resource) {
    constexpr int timeout = 30000; // milliseconds
    const platform::HttpConnection connection(
        httpConnect2(cupsServer(), ippPort(), nullptr, AF_UNSPEC, cupsEncryption(), 1, timeout, nullptr));
    Answer answer;
    if (!connection) {
        return answer;
    }
    httpClearFields(connection.get());
    httpSetField(connection.get(), HTTP_FIELD_HOST, "localhost");
    httpSetField(connection.get(), HTTP_FIELD_CONTENT_TYPE, "application/ipp");
    httpSetLength(connection.get(), ippLength(request.get()));
    if (httpPost(connection.get(), resource.c_str()) != 0) {
        return answer;
    }
    ippSetState(request.get(), IPP_STATE_IDLE);
    while (ippGetState(request.get()) != IPP_STATE_DATA) {
        if (ippWrite(connection.get(), request.get()) == IPP_STATE_ERROR) {
            break; // the server refused the request before it read all of it; the status gives the reason
        }
    }
    do {
        answer.status = httpUpdate(connection.get());
    } while (answer.status == HTTP_STATUS_CONTINUE);
    if (answer.status != HTTP_STATUS_OK) {
        return answer;
    }
    answer.message.reset(ippNew());
    ipp_state_t state = IPP_STATE_IDLE;
    while (state != IPP_STATE_DATA && state != IPP_STATE_ERROR) {
        state = ippRead(connection.get(), answer.message.get());
    }
    if (state == IPP_STATE_ERROR) {
        answer.message.reset();
    }
    return answer;
}

// Whether an answer holds one of these attributes in any group.
bool holds(const IppMessage& message, std::span<const char* const> names) {
    return message && std::ranges::any_of(names, [&message](const char* name) {
               return ippFindAttribute(message.get(), name, IPP_TAG_ZERO) != nullptr;
           });
}

QueueFinding checkSenderNames(const std::string& queueName, const std::string& stranger) {
    const Answer answer =
        askUnauthenticated(makeRequest(IPP_OP_VALIDATE_JOB, queueName, stranger), "/printers/" + queueName);
    if (answer.IsGood()) {
        return {"sender-names", CheckState::open, "the server takes any name that a job's sender gives",
                authRemedy};
    }
    if (answer.status == HTTP_STATUS_UNAUTHORIZED) {
        return {"sender-names", CheckState::closed, "the server asks who somebody is before it takes a job"};
    }
    return {"sender-names", CheckState::unknown, "the server does not tell whether it would take a job"};
}

IppMessage jobsRequest(const std::string& queueName, const std::string& user,
                       std::span<const char* const> attributes) {
    IppMessage request = makeRequest(IPP_OP_GET_JOBS, queueName, user);
    ippAddString(request.get(), IPP_TAG_OPERATION, IPP_CONST_TAG(IPP_TAG_KEYWORD), "which-jobs", nullptr,
                 "all");
    ippAddStrings(request.get(), IPP_TAG_OPERATION, IPP_CONST_TAG(IPP_TAG_KEYWORD), "requested-attributes",
                  static_cast<int>(attributes.size()), nullptr, attributes.data());
    return request;
}

QueueFinding checkTicketNames(const std::string& queueName, const std::string& stranger) {
    const std::string path(ticketPathSetting);
    const std::string name(ticketNameOption);
    const std::array<const char*, 2> attributes{path.c_str(), name.c_str()};
    const std::string resource = "/printers/" + queueName;
    const Answer seen = askUnauthenticated(jobsRequest(queueName, stranger, attributes), resource);
    if (holds(seen.message, attributes)) {
        return {"ticket-names", CheckState::open,
                "anybody can read the names of other people's tickets in their jobs", valuesRemedy};
    }
    // Gives the owner's name without authentication.
    const Answer claimed = askUnauthenticated(jobsRequest(queueName, cupsUser(), attributes), resource);
    if (holds(claimed.message, attributes)) {
        return {"ticket-names", CheckState::open,
                "whoever gives the owner's name can read the names of tickets in jobs",
                "write AuthType for Get-Jobs and Get-Job-Attributes into the server's policy "
                "(docs/spooler-filter.md)"};
    }
    const bool isRefused = claimed.IsGood() || claimed.status == HTTP_STATUS_UNAUTHORIZED;
    const IppMessage own(isRefused ? cupsDoRequest(CUPS_HTTP_DEFAULT,
                                                   jobsRequest(queueName, cupsUser(), attributes).release(),
                                                   resource.c_str())
                                   : nullptr);
    if (holds(own, attributes)) {
        return {"ticket-names", CheckState::closed,
                "only who proves to be the owner can read tickets' names"};
    }
    return {"ticket-names", CheckState::unknown,
            "cannot be tested: the server has no job with print settings", valuesRemedy};
}

QueueFinding checkSubscriptions(const std::string& queueName, const std::string& stranger) {
    static constexpr std::array<const char*, 2> attributes{"notify-subscriber-user-name",
                                                           "notify-recipient-uri"};
    const Answer seen = askUnauthenticated(makeRequest(IPP_OP_GET_SUBSCRIPTIONS, queueName, stranger), "/");
    static constexpr std::array<const char*, 1> identifier{"notify-subscription-id"};
    if (holds(seen.message, attributes)) {
        return {"subscriptions", CheckState::open, "anybody can read who follows which jobs",
                subscriptionsRemedy};
    }
    if (holds(seen.message, identifier) || seen.status == HTTP_STATUS_UNAUTHORIZED) {
        return {"subscriptions", CheckState::closed, "who follows which jobs is hidden from strangers"};
    }
    return {"subscriptions", CheckState::unknown, "cannot be tested: the server has no subscription",
            subscriptionsRemedy};
}

} // namespace

std::vector<QueueFinding> checkQueuePolicy(const std::string& queueName) {
    // Nobody has this name: what the server shows to it, it shows to everybody.
    const std::string stranger = "torka-check-" + platform::system().CreateUuidString().substr(0, 8);
    return {checkSenderNames(queueName, stranger), checkTicketNames(queueName, stranger),
            checkSubscriptions(queueName, stranger)};
}

} // namespace torka::tool
