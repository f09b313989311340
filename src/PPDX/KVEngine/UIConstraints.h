#pragma once

#include "PPDX/KVEngine/SpecialConstraint.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace torka {

class CStringSoup;
class ConstraintForest;
class ConstraintsEngine;
class KeyForest;
class KVCache;

// The constraint store of one printer description: every option that each keyword offers, every constraint
// and requirement between two options, and what is selected now.
//
// Owns all of it, the resolution engine too; the description owns the store. Keys and options are identifiers
// in one string table; -1 stands for "not found" or "any". Texts end at their first NUL. Not thread-safe: the
// host's main thread uses it.
class UIConstraints {
public:
    UIConstraints();
    virtual ~UIConstraints();
    UIConstraints(const UIConstraints&) = delete;
    UIConstraints& operator=(const UIConstraints&) = delete;

    // Records an option that a key offers, in the order of the calls; the same option may be recorded twice.
    void KVSInsert(std::string_view keyText, std::string_view optionText);
    void KVSInsert(std::int64_t key, std::int64_t option);

    // Records one constraint line (requirement: the line demands instead of forbidding). An empty option text
    // means every option of that key and waits for Resolve(). REQUIRES: no NUL in any text.
    void Add(std::string_view key1Text, std::string_view option1Text, std::string_view key2Text,
             std::string_view option2Text, bool requirement);

    // Gives the lines with empty options their meaning: the options recorded so far, but for "None" and
    // "False". Call it once the whole description is read. Options recorded later are not touched by those
    // lines.
    void Resolve();

    // Makes option the current selection of key. A negative key is ignored.
    void UpdateKVCache(std::string_view keyText, std::string_view optionText);
    void UpdateKVCache(std::int64_t key, std::int64_t option);

    // Whether choosing option for key would conflict with what is selected now. A key never seen is never
    // constrained; an option never seen (-1) stands for every option of the key. Interns nothing.
    bool IsKVConstrained(std::string_view keyText, std::string_view optionText);
    bool IsKVConstrained(std::int64_t key, std::int64_t option);

    // True when the change set conflicts with nothing that would be selected after it.
    bool ValidateDelta(const KVCache& changeSet);

    // The store keeps ownership of what these return; none is ever null.
    ConstraintForest* GetConstraintForest() const { return constraints.get(); }
    ConstraintForest* GetRequiresForest() const { return requirements.get(); }
    CStringSoup* GetConstraintStrings() const { return strings.get(); }
    const KVCache* GetCurrentSelections() const { return selections.get(); }
    const KeyForest* GetKeyForest() const { return options.get(); }

    // The engine over the live selections, made on first use, without a locked list.
    ConstraintsEngine* GetEngine();

private:
    std::unique_ptr<ConstraintForest> constraints;
    std::unique_ptr<ConstraintForest> requirements;
    std::unique_ptr<CStringSoup> strings;
    std::unique_ptr<ConstraintsEngine> engine;
    std::unique_ptr<KVCache> selections;
    std::unique_ptr<KeyForest> options;
    std::vector<SpecialConstraint> deferred;
};

} // namespace torka
