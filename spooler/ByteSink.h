// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace torka {

// The target of a document's bytes.
class ByteSink {
public:
    virtual ~ByteSink() = default;
    // Writes all bytes. Returns 0, or the errno value of the failure.
    virtual int Write(std::string_view bytes) = 0;
};

// Writes to an open descriptor, blocking or not. Does not close it.
class DescriptorSink final : public ByteSink {
public:
    explicit DescriptorSink(int openDescriptor)
        : descriptor(openDescriptor) {}
    int Write(std::string_view bytes) override;

private:
    int descriptor;
};

// For the tests; no caller here
class StringSink final : public ByteSink {
public:
    int Write(std::string_view bytes) override {
        text.append(bytes);
        return 0;
    }
    std::string text;
};

} // namespace torka
