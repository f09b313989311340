// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/BidiFailure.h"
#include "pane/panel/PanelServices.h"
#include "pane/panel/UI_Panel.h"
#include "platform/memory/MemoryAlerts.h"
#include "tests/pane/PaneFixture.h"
#include "tests/support/ScopedDouble.h"

#include <map>

namespace torka::tests {

// A panel that records the panel model's calls.
class MemoryPanel final : public PanelServices {
public:
    void setFullPropertiesButtonStatusON(bool on) override { buttons["properties"] = on; }
    void setDefaultsButtonStatusON(bool on) override { buttons["defaults"] = on; }
    void setCustomizeQuickAccessButtonButtonStatusON(bool on) override { buttons["quick access"] = on; }
    void showPrinterAddress(const CFStringRef&) override {}
    void bringToFront() override { ++timesInFront; }
    std::string LocalizedString(std::string_view key, std::string_view defaultText,
                                std::string_view) const override {
        const auto text = texts.find(key);
        return text == texts.end() ? std::string(defaultText) : text->second;
    }
    const CFStringRef& bundleVersion() const override { return version; }
    std::filesystem::path bundlePath() const override { return "/bundles/TorkaFeatures.bundle"; }
    PMPrinter currentPrinter() const override { return printer; }
    BidiFailure& bidiFailure() override { return failure; }

    std::map<std::string, bool> buttons;
    int timesInFront = 0;
    std::map<std::string, std::string, std::less<>> texts;
    CFStringRef version = cfString("7.1.0.2345678901234");
    PMPrinter printer;
    BidiFailure failure;
};

// Stands in for a person who answers alerts while the object lives.
using ScopedAlerts = ScopedDouble<MemoryAlerts, setAlerts>;

inline std::string valueOf(const Pane& pane, const char* keyword) {
    return utf8Text(pane.model->CopyValueForKey(cfString(keyword)));
}

inline std::vector<std::string> pairsOf(const SDMKeyValueList& list) {
    std::vector<std::string> pairs;
    for (const SDMKeyValue& item : std::span(list.items, list.count)) {
        pairs.push_back(utf8FromWide(item.szKey) + "=" + utf8FromWide(item.szValue));
    }
    return pairs;
}

} // namespace torka::tests
