// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/PosixNetServices.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace torka::platform {

namespace {

constexpr std::size_t ipHeaderBytes = 20; // without options

sockaddr_in socketAddress(const HostAddress& address) {
    sockaddr_in result{};
    result.sin_family = AF_INET;
    std::memcpy(&result.sin_addr, address.bytes.data(), sizeof(result.sin_addr));
    return result;
}

class PosixIcmpSocket final : public IcmpSocket {
public:
    explicit PosixIcmpSocket(int opened)
        : descriptor(opened) {}
    ~PosixIcmpSocket() override { close(descriptor); }

    int SetReceiveBuffer(int bytes) override { return SetOption(SO_RCVBUF, bytes); }
    int SetReceiveTimeout(std::chrono::milliseconds newTimeout) override {
        timeout = newTimeout;
        timeval time{};
        time.tv_sec = static_cast<time_t>(newTimeout.count() / 1000);
        time.tv_usec = static_cast<suseconds_t>(newTimeout.count() % 1000 * 1000);
        return SetOption(SO_RCVTIMEO, time);
    }
    std::int64_t Send(std::span<const std::uint8_t> message, const HostAddress& to, int& error) override {
        const sockaddr_in target = socketAddress(to);
        const ssize_t sent = sendto(descriptor, message.data(), message.size(), 0,
                                    reinterpret_cast<const sockaddr*>(&target), sizeof(target));
        error = sent < 0 ? errno : 0;
        return sent;
    }
    // Linux returns only the ICMP message. This function adds an IPv4 header with the known values.
    std::size_t Receive(std::span<std::uint8_t> buffer) override {
        if (buffer.size() < ipHeaderBytes) {
            return 0;
        }
        sockaddr_in from{};
        socklen_t fromSize = sizeof(from);
        const ssize_t received =
            recvfrom(descriptor, buffer.data() + ipHeaderBytes, buffer.size() - ipHeaderBytes, 0,
                     reinterpret_cast<sockaddr*>(&from), &fromSize);
        if (received < 0) {
            if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
                poll(nullptr, 0, static_cast<int>(timeout.count()));
            }
            return 0;
        }
        const std::size_t total = ipHeaderBytes + static_cast<std::size_t>(received);
        std::fill_n(buffer.begin(), ipHeaderBytes, std::uint8_t{0});
        buffer[0] = 0x45; // version 4, header of five words
        buffer[2] = static_cast<std::uint8_t>(total >> 8U);
        buffer[3] = static_cast<std::uint8_t>(total);
        buffer[9] = IPPROTO_ICMP;
        std::memcpy(&buffer[12], &from.sin_addr, sizeof(from.sin_addr));
        return total;
    }

private:
    template <typename T>
    int SetOption(int option, const T& value) {
        return setsockopt(descriptor, SOL_SOCKET, option, &value, sizeof(value)) == 0 ? 0 : errno;
    }

    int descriptor;
    std::chrono::milliseconds timeout{0};
};

std::vector<HostAddress> addressesOf(const addrinfo* found) {
    std::vector<HostAddress> addresses;
    for (const addrinfo* entry = found; entry != nullptr; entry = entry->ai_next) {
        std::array<char, INET6_ADDRSTRLEN> text{};
        HostAddress address;
        if (getnameinfo(entry->ai_addr, entry->ai_addrlen, text.data(), text.size(), nullptr, 0,
                        NI_NUMERICHOST) == 0 &&
            parseNumericAddress(text.data(), address)) {
            addresses.push_back(address);
        }
    }
    return addresses;
}

// The look-up of a host name, in this thread or in one of the C library.
class LookUp {
public:
    explicit LookUp(std::string hostName)
        : name(std::move(hostName)) {
        hints.ai_family = AF_UNSPEC;
        hints.ai_socktype = SOCK_DGRAM;
        request.ar_name = name.c_str();
        request.ar_request = &hints;
    }
    LookUp(const LookUp&) = delete;
    LookUp& operator=(const LookUp&) = delete;
    ~LookUp() {
        if (request.ar_result != nullptr) {
            freeaddrinfo(request.ar_result);
        }
    }
    // All three return true when the look-up is over.
    bool Wait() {
        // The result stays null on failure, and a failure gives no address.
        static_cast<void>(getaddrinfo(name.c_str(), nullptr, &hints, &request.ar_result));
        return true;
    }
    bool WaitFor(std::chrono::milliseconds limit) {
        if (getaddrinfo_a(GAI_NOWAIT, list.data(), static_cast<int>(list.size()), nullptr) != 0) {
            return true;
        }
        const timespec time{static_cast<time_t>(limit.count() / 1000), limit.count() % 1000 * 1'000'000};
        const int result = gai_suspend(list.data(), static_cast<int>(list.size()), &time);
        return result == 0 || result == EAI_ALLDONE;
    }
    bool Cancel() { return gai_cancel(&request) != EAI_NOTCANCELED; }
    std::vector<HostAddress> Addresses() const { return addressesOf(request.ar_result); }

private:
    std::string name;
    addrinfo hints{};
    gaicb request{};
    std::array<gaicb*, 1> list{&request};
};

int readClock(clockid_t clock, ClockTime& time) {
    timespec now{};
    if (clock_gettime(clock, &now) != 0) {
        return errno;
    }
    time = {now.tv_sec, now.tv_nsec / 1000};
    return 0;
}

} // namespace

bool PosixNetServices::ResolveHost(const std::string& name, HostAddress& address) {
    address = {};
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    if (name.empty() || name.find('\0') != std::string::npos ||
        getaddrinfo(name.c_str(), nullptr, &hints, &found) != 0) {
        return false;
    }
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(found, &freeaddrinfo);
    sockaddr_in first{};
    if (found->ai_family != AF_INET || found->ai_addrlen < sizeof(first)) {
        return false;
    }
    std::memcpy(&first, found->ai_addr, sizeof(first));
    address.family = addressFamilyIPv4;
    std::memcpy(address.bytes.data(), &first.sin_addr, sizeof(first.sin_addr));
    return true;
}

std::vector<HostAddress> PosixNetServices::ResolveHostAddresses(const std::string& name,
                                                                std::chrono::milliseconds limit) {
    if (name.empty() || name.find('\0') != std::string::npos) {
        return {};
    }
    auto lookUp = std::make_unique<LookUp>(name);
    const bool isOver = limit.count() == 0 ? lookUp->Wait() : lookUp->WaitFor(limit);
    std::vector<HostAddress> addresses = isOver ? lookUp->Addresses() : std::vector<HostAddress>();
    if (!isOver && !lookUp->Cancel()) {
        // Leaks the object: the C library's thread still writes into it, and nobody learns when it is done.
        [[maybe_unused]] LookUp* abandoned = lookUp.release();
    }
    return addresses;
}

// Falls back to IANA's number on small systems without a table of protocols.
int PosixNetServices::IcmpProtocol() {
    protoent entry{};
    protoent* found = nullptr;
    std::array<char, 1024> buffer{};
    const bool known =
        getprotobyname_r("icmp", &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr;
    return known ? found->p_proto : IPPROTO_ICMP;
}

std::unique_ptr<IcmpSocket> PosixNetServices::OpenIcmpSocket(int protocol, int& error) {
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, protocol);
    error = descriptor < 0 ? errno : 0;
    return descriptor < 0 ? nullptr : std::make_unique<PosixIcmpSocket>(descriptor);
}

std::uint32_t PosixNetServices::ProcessIdentifier() const { return static_cast<std::uint32_t>(getpid()); }

int PosixNetServices::TimeOfDay(ClockTime& time) { return readClock(CLOCK_REALTIME, time); }

int PosixNetServices::SteadyTime(ClockTime& time) { return readClock(CLOCK_MONOTONIC, time); }

} // namespace torka::platform
