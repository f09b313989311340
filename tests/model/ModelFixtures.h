// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/KVCache.h"
#include "PPDX/KVEngine/UIConstraints.h"
#include "PPDX/PPDObjects/Controls/PPDXControls.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace torka::tests {

// A definition with the PostScript `ps`. REQUIRES: `ps` outlives the control.
inline ControlDefinition definitionOf(const char* keyword, std::string_view ps = {},
                                      UIConstraints* store = nullptr) {
    ControlDefinition definition;
    definition.keyword = keyword;
    definition.localName = cfString("A name");
    definition.constraints = store;
    definition.psData = reinterpret_cast<const unsigned char*>(ps.data());
    definition.psLength = static_cast<long>(ps.size());
    return definition;
}

// The option that the store holds as selected for a key; "" for none.
inline std::string selectedIn(const UIConstraints& store, const char* key) {
    const CStringSoup& strings = *store.GetConstraintStrings();
    const std::int64_t option = store.GetCurrentSelections()->GetItem(strings.Find(key));
    return option < 0 ? "" : std::string(strings.Find(option));
}

inline _PopupItem itemOf(const char* keyword, std::string_view ps = {}) {
    return {keyword, cfString(std::string("Name of ") + keyword),
            reinterpret_cast<const unsigned char*>(ps.data()), static_cast<long>(ps.size())};
}

inline PopupItems itemsOf(const std::vector<const char*>& keywords) {
    PopupItems items;
    for (const char* keyword : keywords) {
        items.push_back(itemOf(keyword));
    }
    return items;
}

// Asks for the size and then for the bytes, as the print path does. Checks that the byte behind them stays
// unchanged.
template <class Emit>
std::string emitted(Emit emit) {
    const long size = emit(nullptr);
    std::vector<unsigned char> bytes(static_cast<std::size_t>(size) + 1, 0xA5);
    EXPECT_EQ(emit(bytes.data()), size);
    EXPECT_EQ(bytes.back(), 0xA5);
    return std::string(bytes.begin(), bytes.end() - 1);
}

inline std::string postScriptOf(PPDXControl& control) {
    return emitted([&](unsigned char* out) { return control.PostScript(out); });
}

inline std::string valueOf(PPDXControl& control) { return utf8Text(control.CopyCurrentControlValueString()); }

} // namespace torka::tests
