#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What is asked of the network: host look-up, ICMP echo over IPv4, and the services announced on the local
// net.
//
// One instance of NetServices serves the process. It is chosen once at start with setNetServices; until then
// the first use fails. Error numbers are the system's (errno), 0 is success.

namespace torka::platform {

inline constexpr int addressFamilyIPv4 = 2;

struct HostAddress {
    int family = 0;                       // addressFamilyIPv4, another system number, 0 for none
    std::array<std::uint8_t, 16> bytes{}; // network order; an IPv4 address fills the first four
    bool operator==(const HostAddress&) const = default;
};

// Four decimal numbers with dots. False, with an empty address, for anything else.
bool parseIPv4Address(const std::string& text, HostAddress& address);
// An IPv4 or IPv6 address in numbers, never a name; an IPv6 address may stand in brackets. An IPv4 address
// that is mapped into IPv6 (RFC 4291, 2.5.5.2) becomes that IPv4 address. False, with an empty address, for
// anything else, an address with a zone included.
bool parseNumericAddress(std::string_view text, HostAddress& address);
// Whether two texts mean one address: numbers are compared as numbers, names as text without ASCII letter
// case. Nothing is looked up.
bool isSameAddress(std::string_view one, std::string_view other);
// Dotted, or in the colon form of RFC 5952; "" for other families.
std::string addressText(const HostAddress& address);

// A time in two parts, as an echo request carries it.
struct ClockTime {
    std::int64_t seconds = 0;
    std::int64_t microseconds = 0;
};

// A datagram socket for ICMP; closed with the object.
class IcmpSocket {
public:
    IcmpSocket() = default;
    IcmpSocket(const IcmpSocket&) = delete;
    IcmpSocket& operator=(const IcmpSocket&) = delete;
    virtual ~IcmpSocket();
    virtual int SetReceiveBuffer(int bytes) = 0;
    virtual int SetReceiveTimeout(std::chrono::milliseconds timeout) = 0;
    // The number of bytes sent, -1 with `error` when none were.
    virtual std::int64_t Send(std::span<const std::uint8_t> message, const HostAddress& to, int& error) = 0;
    // One datagram, its IPv4 header first, cut to the buffer: its length. 0 when none came within the
    // receive time-out; a socket that cannot receive lets that time pass too.
    virtual std::size_t Receive(std::span<std::uint8_t> buffer) = 0;
};

// A service of the local net by its three names, such as {"Office", "_ipp._tcp", "local."}.
struct NetService {
    std::string name; // UTF-8
    std::string type;
    std::string domain;
    bool operator==(const NetService&) const = default;
};

struct ResolvedService {
    std::string hostName;
    std::uint16_t port = 0;
    std::vector<HostAddress> addresses; // in the order in which the network gave them
};

// Told on the host's main thread, never from within the call that began the search.
class ServiceBrowserDelegate {
public:
    ServiceBrowserDelegate() = default;
    ServiceBrowserDelegate(const ServiceBrowserDelegate&) = delete;
    ServiceBrowserDelegate& operator=(const ServiceBrowserDelegate&) = delete;
    virtual ~ServiceBrowserDelegate();
    virtual void didFindService(const NetService& service) = 0;
    virtual void didRemoveService(const NetService& service) = 0;
    // The search is over; `reason` is for the log.
    virtual void didNotSearch(const std::string& reason) = 0;
};

class ServiceResolutionDelegate {
public:
    ServiceResolutionDelegate() = default;
    ServiceResolutionDelegate(const ServiceResolutionDelegate&) = delete;
    ServiceResolutionDelegate& operator=(const ServiceResolutionDelegate&) = delete;
    virtual ~ServiceResolutionDelegate();
    // One of the two, once. What is handed over lasts until the call returns, also when the activity ends
    // within it.
    virtual void netServiceDidResolveAddress(const NetService& service, const ResolvedService& resolved) = 0;
    virtual void didNotResolve(const NetService& service, const std::string& reason) = 0;
};

// A search or resolution under way; it ends, and its delegate hears no more, with the object. The delegate
// may destroy it from within a call.
class NetServiceActivity {
public:
    NetServiceActivity() = default;
    NetServiceActivity(const NetServiceActivity&) = delete;
    NetServiceActivity& operator=(const NetServiceActivity&) = delete;
    virtual ~NetServiceActivity();
};

// The services announced on the local net. Delegates must outlive the activity they are given to.
class ServiceDirectory {
public:
    ServiceDirectory() = default;
    ServiceDirectory(const ServiceDirectory&) = delete;
    ServiceDirectory& operator=(const ServiceDirectory&) = delete;
    virtual ~ServiceDirectory();
    // Never null: what cannot be begun is told to the delegate.
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
    // The first IPv4 address of a host name. False, with an empty address, when there is none.
    virtual bool ResolveHost(const std::string& name, HostAddress& address) = 0;
    // All addresses of a host name, IPv4 and IPv6; none when there is none, or none was found within the
    // limit. 0: as long as the system takes.
    virtual std::vector<HostAddress> ResolveHostAddresses(const std::string& name,
                                                          std::chrono::milliseconds limit);
    // Whether the answers of ResolveHost are kept and given again; if so, they can be forgotten.
    virtual bool isHostCacheEnabled() const { return false; }
    virtual void flushHostCache() {}
    // The number of the protocol "icmp", -1 when the host's tables do not know it.
    virtual int IcmpProtocol() = 0;
    // Null with `error` when the system gives none: unprivileged users need its permission (on Linux
    // net.ipv4.ping_group_range).
    virtual std::unique_ptr<IcmpSocket> OpenIcmpSocket(int protocol, int& error) = 0;
    virtual std::uint32_t ProcessIdentifier() const = 0;
    // The time since 1970, and one that nobody sets back. Each answers an error number.
    virtual int TimeOfDay(ClockTime& time) = 0;
    virtual int SteadyTime(ClockTime& time) = 0;
};

NetServices& netServices();
void setNetServices(std::unique_ptr<NetServices> newServices);
bool hasNetServices();

// The chosen directory, null until one was chosen: then no service is ever found.
ServiceDirectory* serviceDirectory();
void setServiceDirectory(std::unique_ptr<ServiceDirectory> directory);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
