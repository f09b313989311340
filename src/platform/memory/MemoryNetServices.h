// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/NetServices.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace torka::platform {

// A network in memory with the answers that a test sets. Its clock moves only while a caller waits for a
// datagram. Public members may be changed at any time. Not thread-safe. Must outlive its sockets.
class MemoryNetServices : public NetServices {
public:
    using Bytes = std::vector<std::uint8_t>;
    struct Sent {
        Bytes message;
        HostAddress to;
    };

    bool ResolveHost(const std::string& name, HostAddress& address) override;
    bool isHostCacheEnabled() const override { return hostCacheEnabled; }
    void flushHostCache() override { ++hostCacheFlushes; }
    int IcmpProtocol() override { return icmpProtocol; }
    std::unique_ptr<IcmpSocket> OpenIcmpSocket(int protocol, int& error) override;
    std::uint32_t ProcessIdentifier() const override { return processIdentifier; }
    int TimeOfDay(ClockTime& time) override;
    int SteadyTime(ClockTime& time) override;

    // The datagram that answers an echo request: a header of `headerBytes`, then the message with type 0 and
    // an adapted checksum.
    static Bytes EchoReply(const Bytes& request, std::size_t headerBytes = 20);

    std::map<std::string, HostAddress> hosts;
    bool hostCacheEnabled = false;
    int hostCacheFlushes = 0;
    int icmpProtocol = 1;
    int openError = 0;
    int receiveBufferError = 0;
    int receiveTimeoutError = 0;
    int sendError = 0;
    std::int64_t sendShort = 0; // number of bytes that each sent message lacks
    int clockError = 0;
    std::uint32_t processIdentifier = 0x1234;
    std::chrono::microseconds now{1'000'000'250'000};
    // Called for each message sent. Its result is the next datagram received. Unset when nobody answers.
    std::function<std::optional<Bytes>(const Sent&)> onSend;

    std::vector<Sent> sent;
    std::vector<Bytes> waiting; // datagrams still to be received, in order
    int openSockets = 0;
    int receiveBuffer = 0;
    std::chrono::milliseconds receiveTimeout{0};
};

} // namespace torka::platform
