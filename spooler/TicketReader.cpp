#include "spooler/TicketReader.h"

#include "platform/PropertyList.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace torka {

namespace {

TicketResult refuse(TicketError::Code code, std::string text, std::optional<std::size_t> entry = {}) {
    if (entry) {
        text = "entry " + std::to_string(*entry) + ": " + text;
    }
    return {{}, {code, entry, std::move(text)}};
}

TicketResult refuseAsTooLarge() {
    return refuse(TicketError::Code::tooLarge, "larger than 64 MiB, no ticket is");
}

std::string_view kindName(const CFTypeRef& value) {
    switch (value->TypeID()) {
    case CFTypeID::string:
        return "a string";
    case CFTypeID::number:
        return cfCast<CFNumber>(value)->isReal ? "a real number" : "an integer";
    case CFTypeID::boolean:
        return "a boolean";
    case CFTypeID::data:
        return "data";
    case CFTypeID::array:
        return "an array";
    case CFTypeID::dictionary:
        return "a dictionary";
    case CFTypeID::url:
        return "a URL";
    }
    return "something else";
}

TicketResult readEntries(const CFArray& list) {
    TicketResult result;
    result.ticket.entries.reserve(list.values.size() / 2);
    for (std::size_t i = 0; i < list.values.size(); i += 2) {
        const std::size_t entry = i / 2;
        const auto number = cfCast<CFNumber>(list.values[i]);
        if (!number || number->isReal) {
            return refuse(TicketError::Code::badSite,
                          "the site is " + std::string(kindName(list.values[i])) + ", not an integer", entry);
        }
        using Limits = std::numeric_limits<PostScriptInjectionSite>;
        if (number->integer < Limits::min() || number->integer > Limits::max()) {
            return refuse(TicketError::Code::badSite,
                          "the site " + std::to_string(number->integer) + " does not fit into 32 bits",
                          entry);
        }
        const auto site = static_cast<PostScriptInjectionSite>(number->integer);
        if (i + 1 == list.values.size()) {
            return refuse(TicketError::Code::missingData,
                          "the list ends behind the site " + std::to_string(site) + ", its data is missing",
                          entry);
        }
        const auto data = cfCast<CFData>(list.values[i + 1]);
        if (!data) {
            return refuse(TicketError::Code::badData,
                          "what follows the site " + std::to_string(site) + " is " +
                              std::string(kindName(list.values[i + 1])) + ", not data",
                          entry);
        }
        if (findInjectionSite(site) == nullptr) {
            result.ticket.warnings.push_back(
                {entry, "the site " + std::to_string(site) + " is not known; its " +
                            std::to_string(data->bytes.size()) + " bytes are passed over"});
            continue;
        }
        result.ticket.entries.push_back({site, std::string(data->bytes.begin(), data->bytes.end())});
    }
    return result;
}

TicketResult withName(TicketResult result, const std::string& name) {
    if (result.error) {
        result.error.text = name + ": " + result.error.text;
    }
    return result;
}

std::string systemReason(int error) { return std::generic_category().message(error); }

} // namespace

TicketResult readTicket(std::span<const std::uint8_t> propertyList) {
    if (propertyList.size() > maximumTicketBytes) {
        return refuseAsTooLarge();
    }
    std::string reason;
    const CFPropertyListRef root =
        CFPropertyListCreateFromXMLData(CFDataCreate(propertyList.data(), propertyList.size()), &reason);
    if (!root) {
        return refuse(TicketError::Code::notAPropertyList,
                      "not an XML property list" + (reason.empty() ? std::string() : ": " + reason));
    }
    const auto list = cfCast<CFArray>(root);
    if (!list) {
        return refuse(TicketError::Code::notAnArray,
                      "the property list is " + std::string(kindName(root)) + ", a ticket is an array");
    }
    return readEntries(*list);
}

TicketResult readTicketFile(const std::string& path) {
    // Does not block: a pipe in place of the ticket must not stop the spooler.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0) {
        return withName(refuse(TicketError::Code::cannotRead, "cannot be opened: " + systemReason(errno)),
                        path);
    }
    TicketResult result = readTicketFile(descriptor, path);
    ::close(descriptor);
    return result;
}

TicketResult readTicketFile(int descriptor, const std::string& name) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        return withName(refuse(TicketError::Code::cannotRead, "cannot be read: " + systemReason(errno)),
                        name);
    }
    if (!S_ISREG(status.st_mode)) {
        return withName(refuse(TicketError::Code::notARegularFile, "not a regular file"), name);
    }
    if (status.st_size > static_cast<off_t>(maximumTicketBytes)) {
        return withName(refuseAsTooLarge(), name);
    }
    // One byte beyond the limit reveals a file that grows while it is read.
    std::vector<std::uint8_t> bytes;
    std::size_t size = 0;
    for (;;) {
        constexpr std::size_t step = std::size_t{256} * 1024;
        const std::size_t capacity = std::min(std::max(size * 2, step), maximumTicketBytes + 1);
        if (size == capacity) {
            break;
        }
        bytes.resize(capacity);
        const ssize_t count = ::read(descriptor, bytes.data() + size, capacity - size);
        if (count == 0) {
            break;
        }
        if (count < 0 && errno != EINTR) {
            return withName(refuse(TicketError::Code::cannotRead, "cannot be read: " + systemReason(errno)),
                            name);
        }
        size += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    return withName(readTicket(std::span(bytes).first(size)), name);
}

} // namespace torka
