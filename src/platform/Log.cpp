// SPDX-License-Identifier: Apache-2.0
#include "platform/Log.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <syslog.h>

namespace torka::platform {

namespace {

class SyslogSink final : public LogSink {
public:
    void Line(std::string_view text) override {
        // Texts come from outside. A line break in a text must not begin a new entry.
        std::string line(text);
        std::replace_if(
            line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
        syslog(LOG_USER | LOG_NOTICE, "%s", line.c_str());
    }
};

std::mutex sinkLock;

std::shared_ptr<LogSink>& sinkSlot() {
    static std::shared_ptr<LogSink> slot = std::make_shared<SyslogSink>();
    return slot;
}

void logLine(std::string_view text) {
    std::shared_ptr<LogSink> sink;
    {
        const std::lock_guard guard(sinkLock);
        sink = sinkSlot();
    }
    sink->Line(text);
}

} // namespace

LogSink::~LogSink() = default;

void setLogSink(std::shared_ptr<LogSink> sink) {
    if (!sink) {
        sink = std::make_shared<SyslogSink>();
    }
    const std::lock_guard guard(sinkLock);
    sinkSlot() = std::move(sink);
}

void myNSLog(const char* text) {
    if (!text) {
        logLine("myNSLog msg nil");
    } else if (*text == '\0') {
        logLine("myNSLog msg [empty]");
    } else {
        logLine("myNSLog msg '" + std::string(text) + "'");
    }
}

void myNSLogC(const char* format, ...) {
    std::array<char, 4096> line{};
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(line.data(), line.size(), format, arguments);
    va_end(arguments);
    if (length >= 0) {
        logLine({line.data(), std::min(static_cast<std::size_t>(length), line.size() - 1)});
    }
}

void myNSLog8(const CFStringRef& text) {
    logLine(text ? "myNSLog8 '" + utf8Text(text) + "'" : std::string("myNSLog8 nil"));
}

void assertionFailed(const char* expression, const char* source) {
    logLine("Assertion failed: " + std::string(expression) + " (" + source + ")");
    std::abort();
}

} // namespace torka::platform
