// SPDX-License-Identifier: Apache-2.0
#include "platform/memory/MemoryNetServices.h"

#include <algorithm>

namespace torka::platform {

namespace {

class MemoryIcmpSocket final : public IcmpSocket {
public:
    explicit MemoryIcmpSocket(MemoryNetServices& owner)
        : net(owner) {
        ++net.openSockets;
    }
    ~MemoryIcmpSocket() override { --net.openSockets; }

    int SetReceiveBuffer(int bytes) override {
        net.receiveBuffer = bytes;
        return net.receiveBufferError;
    }
    int SetReceiveTimeout(std::chrono::milliseconds timeout) override {
        net.receiveTimeout = timeout;
        return net.receiveTimeoutError;
    }
    std::int64_t Send(std::span<const std::uint8_t> message, const HostAddress& to, int& error) override {
        error = net.sendError;
        if (error != 0) {
            return -1;
        }
        net.sent.push_back({{message.begin(), message.end()}, to});
        if (net.onSend) {
            if (auto answer = net.onSend(net.sent.back())) {
                net.waiting.push_back(std::move(*answer));
            }
        }
        return static_cast<std::int64_t>(message.size()) - net.sendShort;
    }
    std::size_t Receive(std::span<std::uint8_t> buffer) override {
        if (net.waiting.empty()) {
            net.now += net.receiveTimeout;
            return 0;
        }
        const MemoryNetServices::Bytes datagram = std::move(net.waiting.front());
        net.waiting.erase(net.waiting.begin());
        const std::size_t length = std::min(datagram.size(), buffer.size());
        std::copy_n(datagram.begin(), length, buffer.begin());
        return length;
    }

private:
    MemoryNetServices& net;
};

} // namespace

bool MemoryNetServices::ResolveHost(const std::string& name, HostAddress& address) {
    const auto place = hosts.find(name);
    address = place == hosts.end() ? HostAddress{} : place->second;
    return place != hosts.end();
}

std::unique_ptr<IcmpSocket> MemoryNetServices::OpenIcmpSocket(int /*protocol*/, int& error) {
    error = openError;
    return error != 0 ? nullptr : std::make_unique<MemoryIcmpSocket>(*this);
}

int MemoryNetServices::TimeOfDay(ClockTime& time) { return SteadyTime(time); }

int MemoryNetServices::SteadyTime(ClockTime& time) {
    time = {now.count() / 1'000'000, now.count() % 1'000'000};
    return clockError;
}

MemoryNetServices::Bytes MemoryNetServices::EchoReply(const Bytes& request, std::size_t headerBytes) {
    Bytes datagram(headerBytes, 0);
    if (!datagram.empty()) {
        datagram[0] = static_cast<std::uint8_t>(0x40U | headerBytes / 4);
    }
    datagram.insert(datagram.end(), request.begin(), request.end());
    if (request.size() >= 4) {
        std::uint8_t* message = &datagram[headerBytes];
        message[0] = 0;
        // RFC 1624: when a word decreases by 0x0800, the checksum increases by it.
        const std::uint32_t sum = (static_cast<std::uint32_t>(message[2]) << 8U | message[3]) + 0x0800U;
        const std::uint32_t folded = (sum & 0xFFFFU) + (sum >> 16U);
        message[2] = static_cast<std::uint8_t>(folded >> 8U);
        message[3] = static_cast<std::uint8_t>(folded);
    }
    return datagram;
}

} // namespace torka::platform
