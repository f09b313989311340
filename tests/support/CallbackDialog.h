// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/PrintDialogExtension.h"
#include "platform/memory/MemoryPrinting.h"

#include <functional>
#include <memory>

namespace torka::tests {

// A print dialog whose printer, session and settings are in memory.
class CallbackDialog final : public PDEPlugInCallback {
public:
    PMPrintSession printSession() const override { return session; }
    PMPrintSettings printSettings() const override {
        if (onSettings) {
            onSettings();
        }
        return settings;
    }
    PMPageFormat pageFormat() const override { return format; }
    std::shared_ptr<Printer> PMPrinter() const override { return printer; }

    std::function<void()> onSettings; // when set, called whenever the panel asks for the settings
    std::shared_ptr<MemoryPrintSettings> settings = std::make_shared<MemoryPrintSettings>();
    std::shared_ptr<MemoryPrinter> printer = std::make_shared<MemoryPrinter>();
    std::shared_ptr<MemorySession> session = std::make_shared<MemorySession>(printer);
    std::shared_ptr<MemoryPageFormat> format = std::make_shared<MemoryPageFormat>();
};

} // namespace torka::tests
