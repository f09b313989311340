// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/SpecialConstraint.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace torka {

class CStringSoup;
class ConstraintForest;
class ConstraintsEngine;
class KeyForest;
class KVCache;

// The constraint store of one printer description. Holds every option of each keyword, every constraint and
// requirement between two options, and the current selections.
//
// Owns all of it and the resolution engine; the description owns the store. Keys and options are identifiers
// in one string table; -1 means "not found" or "any". Texts end at their first NUL. Not thread-safe: only the
// host's main thread uses it.
class UIConstraints {
public:
    UIConstraints();
    virtual ~UIConstraints();
    UIConstraints(const UIConstraints&) = delete;
    UIConstraints& operator=(const UIConstraints&) = delete;

    // Records options of a key, in the order of the calls. The same option may be recorded twice.
    void KVSInsert(std::int64_t key, std::span<const std::int64_t> optionIds);

    // Records one constraint line; a requirement demands instead of forbidding. An empty option text means
    // every option of that key and waits for Resolve(). REQUIRES: no NUL in any text.
    void Add(std::string_view key1Text, std::string_view option1Text, std::string_view key2Text,
             std::string_view option2Text, bool requirement);

    // Resolves the lines with empty options: they mean the options recorded so far, except "None" and
    // "False". Call it when the whole description is read. Those lines do not affect options recorded later.
    void Resolve();

    // Makes option the current selection of key. Ignores a negative key.
    void UpdateKVCache(std::string_view keyText, std::string_view optionText);
    void UpdateKVCache(std::int64_t key, std::int64_t option);

    // Tells whether selecting option for key would conflict with the current selections. An unknown key is
    // never constrained. An unknown option (-1) means every option of the key. Adds nothing to the string
    // table.
    bool IsKVConstrained(std::string_view keyText, std::string_view optionText);
    bool IsKVConstrained(std::int64_t key, std::int64_t option);

    // The store owns what these return. None returns null.
    ConstraintForest* GetConstraintForest() const { return constraints.get(); }
    ConstraintForest* GetRequiresForest() const { return requirements.get(); }
    CStringSoup* GetConstraintStrings() const { return strings.get(); }
    const KVCache* GetCurrentSelections() const { return selections.get(); }
    const KeyForest* GetKeyForest() const { return options.get(); }

    // Returns the engine for the live selections, without a locked list. Creates it at the first call.
    ConstraintsEngine* GetEngine();

    // Given interface; no caller here
    // As KVSInsert above, for one option, by identifier or by name.
    void KVSInsert(std::int64_t key, std::int64_t option) { KVSInsert(key, std::span(&option, 1)); }
    void KVSInsert(std::string_view keyText, std::string_view optionText);
    // Returns true when the change set has no conflicts with the selections that result from it.
    bool ValidateDelta(const KVCache& changeSet);

private:
    std::unique_ptr<ConstraintForest> constraints;
    std::unique_ptr<ConstraintForest> requirements;
    std::unique_ptr<CStringSoup> strings;
    std::unique_ptr<ConstraintsEngine> engine;
    std::unique_ptr<KVCache> selections;
    std::unique_ptr<KeyForest> options;
    std::vector<SpecialConstraint> deferred;
    SpecialConstraint lastLine; // that Add took
};

} // namespace torka
