// SPDX-License-Identifier: Apache-2.0
#include "connection/SimplePing.h"

#include "platform/memory/MemoryNetServices.h"
#include "platform/posix/PosixNetServices.h"
#include "tests/support/ScopedDouble.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>

namespace torka {
namespace {

using Bytes = MemoryNetServices::Bytes;

// SimplePing's result and its output on the two standard streams.
struct PingResult {
    int error;
    std::string output;
    std::string errors;
};

PingResult ping(const char* host, int count, int timeoutSeconds, bool singleReceive) {
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    const int error = SimplePing(host, count, timeoutSeconds, singleReceive);
    return {error, ::testing::internal::GetCapturedStdout(), ::testing::internal::GetCapturedStderr()};
}

class SimplePingTest : public ::testing::Test {
protected:
    SimplePingTest() { parseIPv4Address("10.1.2.3", net->hosts["torka"]); }

    void Answer(std::size_t requests, std::size_t headerBytes = 20) {
        net->onSend = [this, requests, headerBytes](const MemoryNetServices::Sent& request) {
            return net->sent.size() <= requests
                       ? std::optional(MemoryNetServices::EchoReply(request.message, headerBytes))
                       : std::nullopt;
        };
    }

    tests::ScopedDouble<MemoryNetServices, setNetServices> net;
};

TEST_F(SimplePingTest, CountsAnsweredEchoes) {
    Answer(3, 24);
    EXPECT_EQ(SimplePing("torka", 3, 2, false), 0);
    ASSERT_EQ(net->sent.size(), 3U);
    EXPECT_EQ(addressText(net->sent[0].to), "10.1.2.3");
    for (std::size_t i = 0; i < 3; ++i) {
        const Bytes& message = net->sent[i].message;
        ASSERT_EQ(message.size(), 48U);
        const Bytes head = {8, 0, message[2], message[3], 0x12, 0x34, 0, static_cast<std::uint8_t>(i)};
        EXPECT_TRUE(std::equal(head.begin(), head.end(), message.begin()));
        EXPECT_EQ(internetChecksum(message), 0); // a message with a correct checksum sums up to 0
        EXPECT_THAT(std::span(message).subspan(24), ::testing::Each(0));
    }
    std::int64_t sentAt = 0;
    std::memcpy(&sentAt, &net->sent[0].message[8], sizeof(sentAt));
    EXPECT_EQ(sentAt, 1'000'000);
    EXPECT_EQ(net->receiveBuffer, 51200);
    EXPECT_EQ(net->receiveTimeout, std::chrono::seconds(1));
    EXPECT_EQ(net->openSockets, 0);
}

TEST_F(SimplePingTest, OneMissingReplyEndsIt) {
    // Two seconds for each echo; a single datagram is waited for one second.
    for (const auto& [timeout, isSingle, waited] : {std::tuple{2, false, 4}, {9, true, 1}}) {
        net->sent.clear();
        Answer(1);
        const auto start = net->now;
        const PingResult result = ping("torka", 3, timeout, isSingle);
        EXPECT_EQ(result.error, 64);
        EXPECT_EQ(result.output + result.errors, "");
        EXPECT_EQ(net->sent.size(), 2U);
        EXPECT_EQ(net->now - start, std::chrono::seconds(waited));
        EXPECT_EQ(net->openSockets, 0);
    }
}

TEST_F(SimplePingTest, ReportsEachFailure) {
    const std::string lookUp = "\nError: Unable to ping host: ";
    const std::string wait = "\nError: Error waiting for packet response: ";
    const auto nothing = [](MemoryNetServices&) {};
    using Spoil = std::function<void(MemoryNetServices&)>;
    for (const auto& [host, count, spoil, error, told] :
         std::vector<std::tuple<const char*, int, Spoil, int, std::string>>{
             {nullptr, 1, nothing, 22, "Invalid arguments to SimplePing\n"},
             {"torka", 0, nothing, 22, "Invalid arguments to SimplePing\n"},
             {"elsewhere", 1, nothing, 65, ""},
             {"torka", 1, [](auto& services) { services.icmpProtocol = -1; }, 46, ""},
             {"torka", 1, [](auto& services) { services.openError = EACCES; }, 1, ""},
             {"torka", 1, [](auto& services) { services.receiveTimeoutError = EDOM; }, EDOM, ""},
             {"torka", 1, [](auto& services) { services.receiveBufferError = ENOBUFS; }, 0, ""}, // harmless
             {"torka", 1, [](auto& services) { services.sendShort = 1; }, 1, ""},
             {"torka", 1, [](auto& services) { services.sendError = EHOSTUNREACH; }, EHOSTUNREACH,
              lookUp + std::strerror(EHOSTUNREACH) + "\n"},
             {"torka", 1,
              [](auto& services) {
                  services.onSend = [&services](const auto&) {
                      services.clockError = EIO;
                      return std::nullopt;
                  };
              },
              EIO, wait + std::strerror(EIO) + "\n"},
         }) {
        tests::ScopedDouble<MemoryNetServices, setNetServices> fresh;
        parseIPv4Address("10.1.2.3", fresh->hosts["torka"]);
        fresh->onSend = [](const MemoryNetServices::Sent& request) {
            return std::optional(MemoryNetServices::EchoReply(request.message, 20));
        };
        spoil(*fresh);
        const PingResult result = ping(host, count, 1, true);
        EXPECT_EQ(result.error, error);
        if (!told.empty()) {
            EXPECT_EQ(result.output + result.errors, told);
        }
        EXPECT_EQ(fresh->openSockets, 0);
    }
    EXPECT_EQ(ping("torka", 1, 0, true).error, 22);
}

TEST_F(SimplePingTest, LooksUpAddressesAndNames) {
    HostAddress address;
    EXPECT_EQ(LookupHostAddress(nullptr, &address), 22);
    EXPECT_EQ(LookupHostAddress("torka", nullptr), 22);
    EXPECT_EQ(LookupHostAddress("192.0.2.255", &address), 0);
    EXPECT_EQ(address.family, 2);
    EXPECT_EQ(addressText(address), "192.0.2.255");
    EXPECT_EQ(LookupHostAddress("192.0.2.256", &address), 65);
    EXPECT_EQ(address.family, 0);
    EXPECT_EQ(LookupHostAddress("torka", &address), 0);
    EXPECT_EQ(addressText(address), "10.1.2.3");

    PosixNetServices real;
    EXPECT_TRUE(real.ResolveHost("localhost", address));
    EXPECT_EQ(address.bytes[0], 127);
    EXPECT_FALSE(real.ResolveHost("", address));
    EXPECT_EQ(address.family, 0);
    EXPECT_EQ(real.IcmpProtocol(), 1);
}

TEST(EchoReply, NeedsItsHeaderAndFortyEightBytes) {
    const auto datagram = [](std::size_t headerBytes, std::size_t rest, std::uint8_t type) {
        Bytes bytes(headerBytes + rest, 0);
        bytes[0] = static_cast<std::uint8_t>(0x40U | headerBytes / 4);
        if (rest > 0) {
            bytes[headerBytes] = type;
        }
        return bytes;
    };
    EXPECT_TRUE(isEchoReply(datagram(20, 48, 0)));
    EXPECT_TRUE(isEchoReply(datagram(60, 100, 0)));
    EXPECT_FALSE(isEchoReply(datagram(20, 47, 0)));
    EXPECT_FALSE(isEchoReply(datagram(20, 48, 8)));
    EXPECT_FALSE(isEchoReply(datagram(60, 0, 0)));
    EXPECT_FALSE(isEchoReply({}));
    EXPECT_FALSE(isEchoReply(Bytes{0x4F}));
}

TEST(InternetChecksum, IsThatOfItsDefinition) {
    const Bytes published = {0x00, 0x01, 0xf2, 0x03, 0xf4, 0xf5, 0xf6, 0xf7}; // RFC 1071, section 3
    EXPECT_EQ(internetChecksum(published), 0xFFFF - 0xddf2);
    EXPECT_EQ(internetChecksum(Bytes{}), 0xFFFF);
    EXPECT_EQ(internetChecksum(Bytes{0x12}), 0xFFFF - 0x1200); // an odd last byte is the high byte
    EXPECT_EQ(internetChecksum(Bytes(48, 0xFF)), 0);
}

} // namespace
} // namespace torka
