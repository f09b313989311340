#pragma once

#include <cups/cups.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

// Owners of what libcups gives out, and the questions that its adapters share.

namespace torka::platform {

struct FreeIpp {
    void operator()(ipp_t* message) const { ippDelete(message); }
};
using IppMessage = std::unique_ptr<ipp_t, FreeIpp>;

// Options of a job, as libcups takes them.
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

// The address by which a queue is meant in a request; "" for a name that cannot be one.
std::string queueUri(const std::string& queueName);
// The server's answer about a queue or a job, null when there is none; cupsLastErrorString() tells why.
IppMessage printerAttributes(const std::string& queueName, const std::vector<const char*>& names);
// Texts of an attribute's values; empty when it is absent.
std::vector<std::string> attributeTexts(ipp_t* message, const char* name);
// -1 when it is absent.
int attributeInteger(ipp_t* message, const char* name);

} // namespace torka::platform
