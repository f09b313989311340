// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection/BonjourModuleController.h"

#include <string>

namespace torka::tests {

// A panel model with one address.
class MemoryAddressOwner final : public BonjourModuleOwner {
public:
    BonjourModuleController* GetsBonjourModuleController() const override { return controller; }
    void setsBonjourModuleController(BonjourModuleController* newController) override {
        controller = newController;
    }
    CFStringRef storedPrinterAddress() override { return cfString(address); }
    CFStringRef queueServiceName() override { return cfString(service); }
    bool storePrinterAddress(const CFStringRef& newAddress, bool newTwoWay) override {
        address = utf8Text(newAddress);
        twoWay = newTwoWay;
        ++stores;
        return true;
    }
    void showPrinterAddress(const CFStringRef& newAddress) override { shown = utf8Text(newAddress); }
    CFStringRef bidiString(std::string_view key, std::string_view english) override {
        return cfString(key.starts_with("DISCOVERY") ? key : english);
    }

    BonjourModuleController* controller = nullptr;
    std::string address;
    std::string service; // of the queue's device
    bool twoWay = false;
    int stores = 0;
    std::string shown;
};

} // namespace torka::tests
