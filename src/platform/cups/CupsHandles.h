// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cups/cups.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

// Owners of libcups objects, and requests that the adapters share.

namespace torka::platform {

struct FreeIpp {
    void operator()(ipp_t* message) const { ippDelete(message); }
};
using IppMessage = std::unique_ptr<ipp_t, FreeIpp>;

struct CloseHttp {
    void operator()(http_t* connection) const { httpClose(connection); }
};
using HttpConnection = std::unique_ptr<http_t, CloseHttp>;

// Options of a job in the form of libcups.
class CupsOptions {
public:
    CupsOptions() = default;
    explicit CupsOptions(const std::vector<std::pair<std::string, std::string>>& pairs) {
        for (const auto& [name, value] : pairs) {
            Add(name, value);
        }
    }
    CupsOptions(const CupsOptions&) = delete;
    CupsOptions& operator=(const CupsOptions&) = delete;
    ~CupsOptions() { cupsFreeOptions(count, options); }
    void Add(const std::string& name, const std::string& value) {
        count = cupsAddOption(name.c_str(), value.c_str(), count, &options);
    }
    int Count() const { return count; }
    cups_option_t* Data() const { return options; }

private:
    int count = 0;
    cups_option_t* options = nullptr;
};

// The URI that names a queue in a request; "" for an invalid name.
std::string queueUri(const std::string& queueName);
// The server's answer about a queue; null without one. cupsLastErrorString() then gives the reason.
IppMessage printerAttributes(const std::string& queueName, const std::vector<const char*>& names);
// The texts of an attribute's values; empty when the attribute is absent.
std::vector<std::string> attributeTexts(ipp_t* message, const char* name);
// -1 when the attribute is absent.
int attributeInteger(ipp_t* message, const char* name);

} // namespace torka::platform
