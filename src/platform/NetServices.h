// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Network functions: host look-up, ICMP echo over IPv4, and the services announced on the local network.
//
// One instance of NetServices serves the process. REQUIRES: setNetServices is called at start, before the
// first use. Error numbers are the system's (errno); 0 is success.

namespace torka::platform {

inline constexpr int addressFamilyIPv4 = 2;

struct HostAddress {
    int family = 0;                       // addressFamilyIPv4, another system number, or 0 for none
    std::array<std::uint8_t, 16> bytes{}; // network byte order; an IPv4 address takes the first four
    bool operator==(const HostAddress&) const = default;
};

// Parses four decimal numbers with dots. False, with an empty address, for anything else.
bool parseIPv4Address(const std::string& text, HostAddress& address);
// Parses a numeric IPv4 or IPv6 address; an IPv6 address may stand in brackets. An IPv4-mapped IPv6 address
// (RFC 4291, 2.5.5.2) becomes the IPv4 address. False, with an empty address, for anything else, including
// names and addresses with a zone.
bool parseNumericAddress(std::string_view text, HostAddress& address);
// Whether the text has only letters, digits, hyphens and dots (RFC 952, RFC 1123 section 2.1), and at least
// one.
bool isHostName(std::string_view text);
// Whether two texts mean the same address. Compares numeric addresses by value, and names as text without
// ASCII letter case. Looks up nothing.
bool isSameAddress(std::string_view one, std::string_view other);
// Dotted IPv4, or IPv6 in the form of RFC 5952; "" for other families.
std::string addressText(const HostAddress& address);

// A time in two parts, as an echo request carries it.
struct ClockTime {
    std::int64_t seconds = 0;
    std::int64_t microseconds = 0;
};

// A datagram socket for ICMP. The destructor closes it.
class IcmpSocket {
public:
    IcmpSocket() = default;
    IcmpSocket(const IcmpSocket&) = delete;
    IcmpSocket& operator=(const IcmpSocket&) = delete;
    virtual ~IcmpSocket();
    virtual int SetReceiveBuffer(int bytes) = 0;
    virtual int SetReceiveTimeout(std::chrono::milliseconds timeout) = 0;
    // Returns the number of bytes sent, or -1 with `error`.
    virtual std::int64_t Send(std::span<const std::uint8_t> message, const HostAddress& to, int& error) = 0;
    // Receives one datagram, which begins with its IPv4 header, cut to the size of the buffer. Returns its
    // length, or 0 when none arrived within the receive time-out. A socket that cannot receive waits for that
    // time, too.
    virtual std::size_t Receive(std::span<std::uint8_t> buffer) = 0;
};

// The three names of a service on the local network, such as {"Office", "_ipp._tcp", "local."}.
struct NetService {
    std::string name; // UTF-8
    std::string type;
    std::string domain;
    bool operator==(const NetService&) const = default;
};

struct ResolvedService {
    std::string hostName;
    std::uint16_t port = 0;
    std::vector<HostAddress> addresses; // in the order of the network's answers
};

// Called on the host's main thread, and never within the call that began the search.
class ServiceBrowserDelegate {
public:
    ServiceBrowserDelegate() = default;
    ServiceBrowserDelegate(const ServiceBrowserDelegate&) = delete;
    ServiceBrowserDelegate& operator=(const ServiceBrowserDelegate&) = delete;
    virtual ~ServiceBrowserDelegate();
    virtual void didFindService(const NetService& service) = 0;
    virtual void didRemoveService(const NetService& service) = 0;
    // The search has failed; `reason` is for the log.
    virtual void didNotSearch(const std::string& reason) = 0;
};

class ServiceResolutionDelegate {
public:
    ServiceResolutionDelegate() = default;
    ServiceResolutionDelegate(const ServiceResolutionDelegate&) = delete;
    ServiceResolutionDelegate& operator=(const ServiceResolutionDelegate&) = delete;
    virtual ~ServiceResolutionDelegate();
    // The directory calls one of the two once. The arguments stay valid until the call returns, even when the
    // activity ends within it.
    virtual void netServiceDidResolveAddress(const NetService& service, const ResolvedService& resolved) = 0;
    virtual void didNotResolve(const NetService& service, const std::string& reason) = 0;
};

// A search or resolution under way. It ends with the object, and its delegate receives no further calls. The
// delegate may destroy it within a call.
class NetServiceActivity {
public:
    NetServiceActivity() = default;
    NetServiceActivity(const NetServiceActivity&) = delete;
    NetServiceActivity& operator=(const NetServiceActivity&) = delete;
    virtual ~NetServiceActivity();
};

// The services announced on the local network. A delegate must outlive its activity.
class ServiceDirectory {
public:
    ServiceDirectory() = default;
    ServiceDirectory(const ServiceDirectory&) = delete;
    ServiceDirectory& operator=(const ServiceDirectory&) = delete;
    virtual ~ServiceDirectory();
    // Never null. The delegate learns of an activity that cannot begin.
    virtual std::unique_ptr<NetServiceActivity> Browse(const std::string& type, const std::string& domain,
                                                       ServiceBrowserDelegate& delegate) = 0;
    virtual std::unique_ptr<NetServiceActivity> Resolve(const NetService& service,
                                                        std::chrono::milliseconds timeout,
                                                        ServiceResolutionDelegate& delegate) = 0;
};

class NetServices {
public:
    NetServices() = default;
    NetServices(const NetServices&) = delete;
    NetServices& operator=(const NetServices&) = delete;
    virtual ~NetServices();
    // The first IPv4 address of a host name. False, with an empty address, without one.
    virtual bool ResolveHost(const std::string& name, HostAddress& address) = 0;
    // All IPv4 and IPv6 addresses of a host name; empty when none is found within the limit. A limit of 0
    // means none.
    virtual std::vector<HostAddress> ResolveHostAddresses(const std::string& name,
                                                          std::chrono::milliseconds limit);
    // Whether ResolveHost caches its answers. flushHostCache clears the cache.
    virtual bool isHostCacheEnabled() const { return false; }
    virtual void flushHostCache() {}
    // The number of the protocol "icmp"; -1 when the system does not know it.
    virtual int IcmpProtocol() = 0;
    // Null, with `error`, when the system refuses. Unprivileged users need its permission (on Linux:
    // net.ipv4.ping_group_range).
    virtual std::unique_ptr<IcmpSocket> OpenIcmpSocket(int protocol, int& error) = 0;
    virtual std::uint32_t ProcessIdentifier() const = 0;
    // The time since 1970, and the time of a monotonic clock. Return an error number.
    virtual int TimeOfDay(ClockTime& time) = 0;
    virtual int SteadyTime(ClockTime& time) = 0;
};

NetServices& netServices();
void setNetServices(std::unique_ptr<NetServices> newServices);
bool hasNetServices();

// The directory set last; null before the first. Without a directory no service is found.
ServiceDirectory* serviceDirectory();
void setServiceDirectory(std::unique_ptr<ServiceDirectory> directory);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
