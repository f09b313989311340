// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <memory>
#include <string_view>

// The system log.
//
// A sink receives one line a call. The default sink is syslog, which keeps the order of the lines, so that no
// call has to sleep between lines. Tests collect lines with a sink of their own.

namespace torka::platform {

class LogSink {
public:
    LogSink() = default;
    LogSink(const LogSink&) = delete;
    LogSink& operator=(const LogSink&) = delete;
    virtual ~LogSink();
    virtual void Line(std::string_view text) = 0;
};

// Logs the formatted text, cut at 4,095 bytes.
void myNSLogC(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Logs "Assertion failed: EXPRESSION (SOURCE)" and ends the process. For faults of the program only: no input
// from outside may lead here.
[[noreturn]] void assertionFailed(const char* expression, const char* source);

// Given interface; no caller here
// Logs "myNSLog msg '%s'"; "myNSLog msg nil" for null; "myNSLog msg [empty]" for an empty text.
void myNSLog(const char* text);
// Logs "myNSLog8 '%@'"; "myNSLog8 nil" for null.
void myNSLog8(const CFStringRef& text);

// For the tests; no caller here
// Null restores the default.
void setLogSink(std::shared_ptr<LogSink> sink);

} // namespace torka::platform

#define TORKA_ASSERT(expression, source)                                                                     \
    ((expression) ? static_cast<void>(0) : ::torka::platform::assertionFailed(#expression, source))
