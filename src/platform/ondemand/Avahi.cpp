// SPDX-License-Identifier: Apache-2.0
// The client library of Avahi, loaded at the first call. A program that links this file defines the functions
// that our code calls, so the linker leaves the library out: a command that asks the network nothing starts
// without it and without what it brings (D-Bus, systemd and compression). A program exports no symbols, so
// the calls that the library makes stay its own. A function whose type differs from its declaration in
// <avahi-...> does not compile.
#include "platform/ondemand/Library.h"

#include <avahi-client/client.h>
#include <avahi-client/lookup.h>
#include <avahi-common/error.h>
#include <avahi-common/timeval.h>

// NOLINTBEGIN(bugprone-macro-parentheses): a type in parentheses does not compile
#define FORWARD(Result, name, parameters, arguments)                                                         \
    Result name parameters {                                                                                 \
        static const auto function = reinterpret_cast<Result(*) parameters>(                                 \
            torka::platform::onDemand("libavahi-client.so.3", #name));                                       \
        return function arguments;                                                                           \
    }
// NOLINTEND(bugprone-macro-parentheses)

extern "C" {

FORWARD(AvahiUsec, avahi_age, (const struct timeval* a), (a))
FORWARD(int, avahi_client_errno, (AvahiClient * self), (self))
FORWARD(void, avahi_client_free, (AvahiClient * client), (client))
FORWARD(AvahiClient*, avahi_client_new,
        (const AvahiPoll* poll_api, AvahiClientFlags flags, AvahiClientCallback callback, void* userdata,
         int* error),
        (poll_api, flags, callback, userdata, error))
FORWARD(int, avahi_proto_to_af, (AvahiProtocol proto), (proto))
FORWARD(int, avahi_service_browser_free, (AvahiServiceBrowser * self), (self))
FORWARD(AvahiClient*, avahi_service_browser_get_client, (AvahiServiceBrowser * self), (self))
FORWARD(AvahiServiceBrowser*, avahi_service_browser_new,
        (AvahiClient * client, AvahiIfIndex interface, AvahiProtocol protocol, const char* type,
         const char* domain, AvahiLookupFlags flags, AvahiServiceBrowserCallback callback, void* userdata),
        (client, interface, protocol, type, domain, flags, callback, userdata))
FORWARD(int, avahi_service_resolver_free, (AvahiServiceResolver * r), (r))
FORWARD(AvahiClient*, avahi_service_resolver_get_client, (AvahiServiceResolver * self), (self))
FORWARD(AvahiServiceResolver*, avahi_service_resolver_new,
        (AvahiClient * client, AvahiIfIndex interface, AvahiProtocol protocol, const char* name,
         const char* type, const char* domain, AvahiProtocol aprotocol, AvahiLookupFlags flags,
         AvahiServiceResolverCallback callback, void* userdata),
        (client, interface, protocol, name, type, domain, aprotocol, flags, callback, userdata))
FORWARD(const char*, avahi_strerror, (int error), (error))

} // extern "C"

#undef FORWARD
