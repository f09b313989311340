// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection/PropertyListStore.h"

#include <memory>
#include <string>

namespace torka::tests {

// Keeps an address list in a string.
class StringStore final : public PropertyListStore {
public:
    explicit StringStore(std::shared_ptr<std::string> keptXml)
        : xml(std::move(keptXml)) {}
    std::string Load() override { return *xml; }
    SaveResult Save(std::string_view text) override {
        *xml = text;
        return {noErr, true};
    }

private:
    std::shared_ptr<std::string> xml;
};

} // namespace torka::tests
