// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/memory/MemoryPrinting.h"
#include "platform/memory/MemorySpooler.h"
#include "platform/memory/MemorySystem.h"

namespace torka::tests {

// Counts the calls into the doubles below. One of them fails with the result that its interface describes, or
// this one and all later ones. Single-threaded.
inline struct FailingCalls {
    template <class Call>
    auto Try(const char* name, const Call& call) {
        using Result = decltype(call());
        calls.emplace_back(name);
        if (calls.size() < first || (calls.size() > first && !staysBroken)) {
            return call();
        }
        if constexpr (std::is_same_v<Result, std::error_code>) {
            return std::make_error_code(staysBroken ? std::errc::permission_denied : std::errc::io_error);
        } else if constexpr (std::is_same_v<Result, OSStatus>) {
            return kPMGeneralError;
        } else {
            return Result(); // false, null or empty
        }
    }

    std::size_t first = SIZE_MAX; // counted from 1
    bool staysBroken = false;
    std::vector<std::string> calls;
} failing;

#define TORKA_FAILING(Result, call, parameters, arguments)                                                   \
    Result call parameters override {                                                                        \
        return failing.Try(#call, [&] { return Base::call arguments; });                                     \
    }

class FailingSystem final : public MemorySystem {
    using Base = MemorySystem;
    using Path = const std::filesystem::path&;
    using Text = std::string_view;
    TORKA_FAILING(bool, Sleep, (std::chrono::milliseconds time), (time))
    TORKA_FAILING(std::error_code, MakeFolder, (Path path), (path))
    TORKA_FAILING(std::error_code, WriteFile, (Path path, Text text, unsigned mode), (path, text, mode))
    TORKA_FAILING(std::error_code, ReadFile, (Path p, std::size_t n, std::string& text), (p, n, text))
};

class FailingSpooler final : public MemorySpooler {
    using Base = MemorySpooler;
    using Name = const std::string&;
    TORKA_FAILING(bool, GetJobs, (std::vector<SpoolerJob> & list), (list))
    TORKA_FAILING(std::string, JobMessage, (int job), (job))
    TORKA_FAILING(bool, GetDestinations, (std::vector<SpoolerDestination> & list), (list))
    TORKA_FAILING(std::string, FetchPPD, (Name name), (name))
    Result<StandingOptionList> StandingOptions(Name name) override {
        const bool isDone = failing.Try("StandingOptions", [] { return true; });
        return isDone ? Base::StandingOptions(name) : Fault{"no answer"};
    }
    std::string ChangeStandingOptions(Name name, const std::vector<std::string>& removed,
                                      const StandingOptionList& added) override {
        const bool isDone = failing.Try("ChangeStandingOptions", [] { return true; });
        return isDone ? Base::ChangeStandingOptions(name, removed, added) : "no answer";
    }
};

class FailingPrintSettings final : public MemoryPrintSettings {
    using Base = MemoryPrintSettings;
    using Key = const CFStringRef&;
    TORKA_FAILING(CFDictionaryRef, CopyAsDictionary, () const, ())
    TORKA_FAILING(OSStatus, SetValue, (Key key, const CFTypeRef& value, bool locks), (key, value, locks))
};

class FailingSession final : public MemorySession {
    using Base = MemorySession;
    TORKA_FAILING(OSStatus, CurrentPrinter, (PMPrinter & answer) const, (answer))
};

class FailingPrinter final : public MemoryPrinter {
    using Base = MemoryPrinter;
    using Text = const CFStringRef&;
    using Options = const CFDictionaryRef&;
    TORKA_FAILING(OSStatus, CopyDescriptionURL, (Text type, CFURLRef& url) const, (type, url))
    TORKA_FAILING(OSStatus, CopyDeviceURI, (CFURLRef & uri) const, (uri))
    TORKA_FAILING(OSStatus, MakeAndModelName, (CFStringRef & text) const, (text))
    TORKA_FAILING(OSStatus, State, (std::uint16_t & answer) const, (answer))
    TORKA_FAILING(OSStatus, CopyState, (CFDictionaryRef & answer) const, (answer))
    TORKA_FAILING(OSStatus, PaperList, (std::vector<Paper> & list) const, (list))
    TORKA_FAILING(OSStatus, SendCommand, (Text text, Text title, Options all), (text, title, all))
};

} // namespace torka::tests
