// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/Echo.h"

#include <memory>

namespace torka::tool {

namespace {

constexpr int maximumEchoes = 1'000'000;
constexpr int maximumSeconds = 3600;

struct PingOptions {
    std::string host;
    int count = 3;
    int timeout = 1; // seconds
};

ExitStatus runPing(const PingOptions& options) {
    const auto fail = [&options](int error) { return unusable(options.host + ": " + pingFailure(error)); };
    HostAddress address;
    if (const int error = LookupHostAddress(options.host.c_str(), &address)) {
        return fail(error);
    }
    std::unique_ptr<IcmpSocket> socket;
    if (const int error = CreateSocketForCommunicationWithHost(socket)) {
        return fail(error);
    }
    const std::string who = printable(options.host) + " (" + addressText(address) + ")";
    for (int sequence = 0; sequence < options.count; ++sequence) {
        int replied = 0;
        if (const int error = exchangeEcho(*socket, address, sequence, options.timeout, replied)) {
            return fail(error);
        }
        std::string line = who;
        line.append(replied == 0 ? ": no reply to echo " : ": reply to echo ");
        line.append(std::to_string(sequence + 1))
            .append(" of ")
            .append(std::to_string(options.count))
            .append("\n");
        print(line);
        if (replied == 0) {
            return ExitStatus::findings;
        }
        if (outputFailed()) {
            break; // the reader has gone
        }
    }
    return ExitStatus::good;
}

} // namespace

void addPingCommand(CLI::App& app, ExitStatus& status) {
    const auto options = std::make_shared<PingOptions>();
    CLI::App* command = app.add_subcommand("ping", "Tell whether a host answers ICMP echo requests");
    command->add_option("HOST", options->host, "Host name or IPv4 address")->required();
    command->add_option("--count", options->count, "Number of echo requests")
        ->check(CLI::Range(1, maximumEchoes))
        ->capture_default_str();
    command->add_option("--timeout", options->timeout, "Seconds to wait for each reply")
        ->option_text("SECONDS")
        ->check(CLI::Range(1, maximumSeconds))
        ->capture_default_str();
    describe(*command, {.examples = {"torka ping --count 3 localhost"}, .findings = "a reply is missing"});
    command->callback([options, &status] { status = runPing(*options); });
}

} // namespace torka::tool
