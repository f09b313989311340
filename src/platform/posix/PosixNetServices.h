// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/NetServices.h"

namespace torka::platform {

// Host look-up and ICMP echo of the operating system. It has no state; any thread may call it.
class PosixNetServices final : public NetServices {
public:
    std::vector<HostAddress> ResolveHostAddresses(const std::string& name,
                                                  std::chrono::milliseconds limit) override;
    bool ResolveHost(const std::string& name, HostAddress& address) override;
    int IcmpProtocol() override;
    std::unique_ptr<IcmpSocket> OpenIcmpSocket(int protocol, int& error) override;
    std::uint32_t ProcessIdentifier() const override;
    int TimeOfDay(ClockTime& time) override;
    int SteadyTime(ClockTime& time) override;
};

} // namespace torka::platform
