// SPDX-License-Identifier: Apache-2.0
#include "connection/SimplePing.h"

#include "bidi/text/StandardStreams.h"

#include <array>
#include <cstring>
#include <string>
#include <system_error>

namespace torka {

namespace {

constexpr int receiveBufferBytes = 51200;
constexpr std::chrono::seconds receiveTimeout{1};
constexpr std::size_t datagramBytes = 2048;
constexpr std::uint8_t echoReplyType = 0;
constexpr std::uint8_t echoRequestType = 8;

void putWord(std::span<std::uint8_t> message, std::size_t position, std::uint32_t value) {
    message[position] = static_cast<std::uint8_t>(value >> 8U);
    message[position + 1] = static_cast<std::uint8_t>(value);
}

void printError(const char* what, int error) {
    standardStreams().Error(std::string(what) + ": " + std::generic_category().message(error) + "\n");
}

int exchangeEchoes(IcmpSocket& socket, const HostAddress& address, int count, int timeoutSeconds,
                   bool singleReceive) {
    for (int sequence = 0; sequence < count; ++sequence) {
        if (const int error = CreateAndSendICMPPacket(socket, address, sequence)) {
            printError("\nError: Unable to ping host", error);
            return error;
        }
        int replied = 0;
        if (const int error = WaitAndPrintICMPs(socket, timeoutSeconds, singleReceive, &replied)) {
            printError("\nError: Error waiting for packet response", error);
            return error;
        }
        if (replied == 0) {
            return pingNoReply;
        }
    }
    return 0;
}

} // namespace

int SimplePing(const char* host, int count, int timeoutSeconds, bool singleReceive) {
    if (!host || count < 1 || timeoutSeconds < 1) {
        standardStreams().Output("Invalid arguments to SimplePing\n");
        return pingInvalidArgument;
    }
    HostAddress address;
    if (const int error = LookupHostAddress(host, &address)) {
        return error;
    }
    std::unique_ptr<IcmpSocket> socket;
    if (const int error = CreateSocketForCommunicationWithHost(socket)) {
        return error;
    }
    return exchangeEchoes(*socket, address, count, timeoutSeconds, singleReceive);
}

int LookupHostAddress(const char* host, HostAddress* address) {
    if (!host || !address) {
        return pingInvalidArgument;
    }
    const bool found = parseIPv4Address(host, *address) || netServices().ResolveHost(host, *address);
    return found ? 0 : pingHostNotFound;
}

int CreateSocketForCommunicationWithHost(std::unique_ptr<IcmpSocket>& socket) {
    socket = nullptr;
    const int protocol = netServices().IcmpProtocol();
    if (protocol < 0) {
        return pingNoProtocol;
    }
    int error = 0;
    std::unique_ptr<IcmpSocket> opened = netServices().OpenIcmpSocket(protocol, error);
    if (!opened) {
        return pingNotPermitted;
    }
    opened->SetReceiveBuffer(receiveBufferBytes); // a failure is harmless: a smaller buffer suffices
    error = opened->SetReceiveTimeout(receiveTimeout);
    if (error == 0) {
        socket = std::move(opened);
    }
    return error;
}

int CreateAndSendICMPPacket(IcmpSocket& socket, const HostAddress& address, int sequence) {
    std::array<std::uint8_t, echoMessageBytes> message{};
    message[0] = echoRequestType;
    putWord(message, 4, netServices().ProcessIdentifier());
    putWord(message, 6, static_cast<std::uint32_t>(sequence));
    ClockTime now;
    if (const int error = netServices().TimeOfDay(now)) {
        return error;
    }
    std::memcpy(&message[8], &now.seconds, sizeof(now.seconds));
    std::memcpy(&message[16], &now.microseconds, sizeof(now.microseconds));
    putWord(message, 2, internetChecksum(message));

    int error = 0;
    const std::int64_t sent = socket.Send(message, address, error);
    if (sent == static_cast<std::int64_t>(message.size())) {
        return 0;
    }
    return error != 0 ? error : 1;
}

int WaitAndPrintICMPs(IcmpSocket& socket, int timeoutSeconds, bool singleReceive, int* replied) {
    if (timeoutSeconds < 1 || !replied) {
        return pingInvalidArgument;
    }
    *replied = 0;
    ClockTime start;
    if (const int error = netServices().SteadyTime(start)) {
        return error;
    }
    std::array<std::uint8_t, datagramBytes> buffer{};
    while (true) {
        const std::size_t length = socket.Receive(buffer);
        if (isEchoReply(std::span(buffer).first(length))) {
            *replied = 1;
        }
        ClockTime now;
        if (const int error = netServices().SteadyTime(now)) {
            return error;
        }
        const std::int64_t elapsed =
            now.seconds - start.seconds - (now.microseconds < start.microseconds ? 1 : 0);
        if (singleReceive || elapsed >= timeoutSeconds) {
            return 0;
        }
    }
}

std::uint16_t internetChecksum(std::span<const std::uint8_t> message) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < message.size(); i += 2) {
        const std::uint32_t low = i + 1 < message.size() ? message[i + 1] : 0U;
        sum += static_cast<std::uint32_t>(message[i]) << 8U | low;
        sum = (sum & 0xFFFFU) + (sum >> 16U);
    }
    return static_cast<std::uint16_t>(~sum & 0xFFFFU);
}

bool isEchoReply(std::span<const std::uint8_t> datagram) {
    if (datagram.empty()) {
        return false;
    }
    const std::size_t header = static_cast<std::size_t>(datagram[0] & 0x0FU) * 4;
    return datagram.size() >= header + echoMessageBytes && datagram[header] == echoReplyType;
}

} // namespace torka
