// SPDX-License-Identifier: Apache-2.0
#include "platform/cups/CupsQueue.h"

#include "platform/cups/CupsHandles.h"

#include <algorithm>

namespace torka::platform {

namespace {

bool succeeded() { return cupsLastError() <= IPP_STATUS_OK_CONFLICTING; }

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
