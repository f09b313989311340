// SPDX-License-Identifier: Apache-2.0
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

constexpr const char* tooLarge = "larger than 64 MiB, no ticket is";

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

Result<Ticket> readEntries(const CFArray& list) {
    Ticket ticket;
    ticket.entries.reserve(list.values.size() / 2);
    for (std::size_t i = 0; i < list.values.size(); i += 2) {
        const std::size_t entry = i / 2;
        const auto refuse = [entry](std::string text) {
            return Fault{std::move(text), "entry " + std::to_string(entry)};
        };
        const auto number = cfCast<CFNumber>(list.values[i]);
        if (!number || number->isReal) {
            return refuse("the site is " + std::string(kindName(list.values[i])) + ", not an integer");
        }
        using Limits = std::numeric_limits<PostScriptInjectionSite>;
        if (number->integer < Limits::min() || number->integer > Limits::max()) {
            return refuse("the site " + std::to_string(number->integer) + " does not fit into 32 bits");
        }
        const auto site = static_cast<PostScriptInjectionSite>(number->integer);
        if (i + 1 == list.values.size()) {
            return refuse("the list ends behind the site " + std::to_string(site) + ", its data is missing");
        }
        const auto data = cfCast<CFData>(list.values[i + 1]);
        if (!data) {
            return refuse("what follows the site " + std::to_string(site) + " is " +
                          std::string(kindName(list.values[i + 1])) + ", not data");
        }
        if (findInjectionSite(site) == nullptr) {
            ticket.warnings.push_back({entry, "the site " + std::to_string(site) + " is not known; its " +
                                                  std::to_string(data->bytes.size()) +
                                                  " bytes are passed over"});
            continue;
        }
        ticket.entries.push_back({site, std::string(data->bytes.begin(), data->bytes.end())});
    }
    return ticket;
}

Fault systemFault(const char* what, const std::string& name) {
    return {what + (": " + std::generic_category().message(errno)), name};
}

} // namespace

Result<Ticket> readTicket(std::span<const std::uint8_t> propertyList) {
    if (propertyList.size() > maximumTicketBytes) {
        return Fault{tooLarge};
    }
    std::string reason;
    const CFPropertyListRef root =
        CFPropertyListCreateFromXMLData(CFDataCreate(propertyList.data(), propertyList.size()), &reason);
    if (!root) {
        return Fault{"not an XML property list" + (reason.empty() ? std::string() : ": " + reason)};
    }
    const auto list = cfCast<CFArray>(root);
    if (!list) {
        return Fault{"the property list is " + std::string(kindName(root)) + ", a ticket is an array"};
    }
    return readEntries(*list);
}

Result<Ticket> readTicketFile(const std::string& path) {
    // Does not block: a pipe in place of the ticket must not stop the spooler.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0) {
        return systemFault("cannot be opened", path);
    }
    Result<Ticket> result = readTicketFile(descriptor, path);
    ::close(descriptor);
    return result;
}

Result<Ticket> readTicketFile(int descriptor, const std::string& name) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        return systemFault("cannot be read", name);
    }
    if (!S_ISREG(status.st_mode)) {
        return Fault{"not a regular file", name};
    }
    if (status.st_size > static_cast<off_t>(maximumTicketBytes)) {
        return Fault{tooLarge, name};
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
            return systemFault("cannot be read", name);
        }
        size += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    Result<Ticket> ticket = readTicket(std::span(bytes).first(size));
    return ticket ? std::move(ticket) : ticket.Why().In(name);
}

} // namespace torka
