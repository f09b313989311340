// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/NetServices.h"

#include <cstdint>
#include <memory>
#include <span>

// Checks whether a host answers ICMP echo requests (RFC 792). Every result is an error number; 0 is success.
// Messages go to the standard streams. Uses platform::netServices().

namespace torka {

inline constexpr int pingNotPermitted = 1;     // no socket, or a failure without a number
inline constexpr int pingInvalidArgument = 22; // EINVAL of the system that these numbers come from
inline constexpr int pingNoProtocol = 46;
inline constexpr int pingNoReply = 64;
inline constexpr int pingHostNotFound = 65;

inline constexpr std::size_t echoMessageBytes = 48;

// Parses a dotted IPv4 address or looks up a name. Returns 0, pingInvalidArgument for a null argument, or
// pingHostNotFound.
int LookupHostAddress(const char* host, HostAddress* address);
// Returns 0, or with a null socket pingNoProtocol, pingNotPermitted, or the system's error number.
int CreateSocketForCommunicationWithHost(std::unique_ptr<IcmpSocket>& socket);
int CreateAndSendICMPPacket(IcmpSocket& socket, const HostAddress& address, int sequence);
// Receives until `timeoutSeconds` have passed; with `singleReceive`, once. `replied` becomes 1 when a reply
// came.
int WaitAndPrintICMPs(IcmpSocket& socket, int timeoutSeconds, bool singleReceive, int* replied);

// The Internet checksum (RFC 1071) of a message whose checksum field is 0. Store it in network byte order.
std::uint16_t internetChecksum(std::span<const std::uint8_t> message);
// Whether a datagram, which begins with its IPv4 header, holds a complete echo reply.
bool isEchoReply(std::span<const std::uint8_t> datagram);

// Given interface; no caller here
// Sends `count` echo requests, each after the reply to the one before. Waits `timeoutSeconds` for each reply.
// With `singleReceive`, waits only for the first datagram, one second at most. 0 when all requests were
// answered.
int SimplePing(const char* host, int count, int timeoutSeconds, bool singleReceive);

} // namespace torka
