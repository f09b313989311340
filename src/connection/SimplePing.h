#pragma once

#include "platform/NetServices.h"

#include <cstdint>
#include <memory>
#include <span>

// Whether a host answers ICMP echo requests (RFC 792). All results are error numbers, 0 is success; messages
// go to the standard streams. The network is platform::netServices().

namespace torka {

inline constexpr int pingNotPermitted = 1;     // no socket, or a failure without a number
inline constexpr int pingInvalidArgument = 22; // EINVAL where these numbers come from
inline constexpr int pingNoProtocol = 46;
inline constexpr int pingNoReply = 64;
inline constexpr int pingHostNotFound = 65;

inline constexpr std::size_t echoMessageBytes = 48;

// Sends `count` echo requests, one after the reply to the other. Each reply is waited for `timeoutSeconds`,
// or until the first datagram or second without one with `singleReceive`. 0 when all were answered.
int SimplePing(const char* host, int count, int timeoutSeconds, bool singleReceive);

// A dotted IPv4 address or a name to look up: 0, 22 for a null argument, 65.
int LookupHostAddress(const char* host, HostAddress* address);
// Null with an error number in the result: 46, 1, or the system's.
int CreateSocketForCommunicationWithHost(std::unique_ptr<IcmpSocket>& socket);
int CreateAndSendICMPPacket(IcmpSocket& socket, const HostAddress& address, int sequence);
// Waits until `timeoutSeconds` have gone by, or for one receive. `replied` becomes 1 when a reply came.
int WaitAndPrintICMPs(IcmpSocket& socket, int timeoutSeconds, bool singleReceive, int* replied);

// The Internet checksum of a message whose checksum field is 0 (RFC 1071), to be stored in network order.
std::uint16_t internetChecksum(std::span<const std::uint8_t> message);
// Whether a datagram, its IPv4 header first, holds a whole echo reply.
bool isEchoReply(std::span<const std::uint8_t> datagram);

} // namespace torka
