// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Bundle.h"

#include <map>

namespace torka::platform {

// A bundle in memory. Its public members may be changed at any time. Not thread-safe.
class MemoryBundle final : public Bundle {
public:
    CFStringRef Identifier() const override { return cfString(identifier); }
    CFTypeRef InfoValue(std::u16string_view key) const override {
        const auto place = info.find(key);
        return place == info.end() ? nullptr : place->second;
    }
    std::filesystem::path Path() const override { return path; }
    std::filesystem::path ResourcePath(std::string_view fileName) const override {
        return path / "Contents" / "Resources" / std::filesystem::path(fileName);
    }
    CFStringRef LocalizedString(const CFStringRef& key, const CFStringRef& defaultText,
                                std::string_view table) const override {
        const auto place = strings.find(std::string(table) + "/" + utf8Text(key));
        return place != strings.end() ? cfString(place->second) : defaultText ? defaultText : key;
    }
    Result<std::unique_ptr<PDEPlugIn>> InstantiatePrincipalClass() const override {
        return Fault{"no class"};
    }

    std::string identifier;
    std::map<std::u16string, CFTypeRef, std::less<>> info;
    std::filesystem::path path = "/bundle";
    std::map<std::string, std::string> strings; // by "TABLE/KEY"
};

} // namespace torka::platform
