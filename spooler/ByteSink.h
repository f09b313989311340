#pragma once

#include <string>
#include <string_view>

namespace torka {

// Where a document goes.
class ByteSink {
public:
    virtual ~ByteSink() = default;
    // Takes all the bytes, or answers the errno value that tells why not; 0 is success.
    virtual int Write(std::string_view bytes) = 0;
};

// An open descriptor, blocking or not; not closed here.
class DescriptorSink final : public ByteSink {
public:
    explicit DescriptorSink(int openDescriptor)
        : descriptor(openDescriptor) {}
    int Write(std::string_view bytes) override;

private:
    int descriptor;
};

class StringSink final : public ByteSink {
public:
    int Write(std::string_view bytes) override {
        text.append(bytes);
        return 0;
    }
    std::string text;
};

} // namespace torka
