// SPDX-License-Identifier: Apache-2.0
#include "bidi/text/StandardStreams.h"

#include <cstdio>

namespace torka {

namespace {

class ProcessStreams final : public StandardStreams {
public:
    void Output(std::string_view text) override { Write(text, stdout); }
    void Error(std::string_view text) override { Write(text, stderr); }

private:
    static void Write(std::string_view text, std::FILE* stream) {
        std::fwrite(text.data(), 1, text.size(), stream);
        std::fflush(stream);
    }
};

std::shared_ptr<StandardStreams>& streamsSlot() {
    static std::shared_ptr<StandardStreams> slot = std::make_shared<ProcessStreams>();
    return slot;
}

} // namespace

StandardStreams::~StandardStreams() = default;

StandardStreams& standardStreams() { return *streamsSlot(); }

void setStandardStreams(std::shared_ptr<StandardStreams> streams) {
    if (streams) {
        streamsSlot() = std::move(streams);
    } else {
        streamsSlot() = std::make_shared<ProcessStreams>();
    }
}

} // namespace torka
