// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Echo.h"

#include <system_error>

namespace torka::tool {

std::string pingFailure(int error) {
    switch (error) {
    case pingHostNotFound:
        return "the host is not known";
    case pingNoProtocol:
        return "this system does not know the protocol icmp";
    case pingNotPermitted:
        return "this user may not open ICMP sockets; the group must lie in net.ipv4.ping_group_range "
               "(sysctl tells it)";
    default:
        return std::generic_category().message(error);
    }
}

int exchangeEcho(IcmpSocket& socket, const HostAddress& address, int sequence, int timeout, int& replied) {
    int error = CreateAndSendICMPPacket(socket, address, sequence);
    for (int second = 0; error == 0 && replied == 0 && second < timeout; ++second) {
        error = WaitAndPrintICMPs(socket, 1, true, &replied);
    }
    return error;
}

} // namespace torka::tool
