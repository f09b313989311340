// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/UIConstraints.h"

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConstraintForest.h"
#include "PPDX/KVEngine/ConstraintsEngine.h"
#include "PPDX/KVEngine/KVCache.h"
#include "PPDX/KVEngine/KeyForest.h"

#include <unordered_map>

namespace torka {

UIConstraints::UIConstraints()
    : constraints(std::make_unique<ConstraintForest>())
    , requirements(std::make_unique<ConstraintForest>())
    , strings(std::make_unique<CStringSoup>())
    , selections(std::make_unique<KVCache>())
    , options(std::make_unique<KeyForest>()) {}

UIConstraints::~UIConstraints() {
    engine.reset(); // it refers to the selections and the forests
}

void UIConstraints::KVSInsert(std::string_view keyText, std::string_view optionText) {
    const std::int64_t key = strings->Insert(keyText);
    KVSInsert(key, strings->Insert(optionText));
}

void UIConstraints::KVSInsert(std::int64_t key, std::span<const std::int64_t> optionIds) {
    options->insert(key, optionIds);
}

void UIConstraints::Add(std::string_view key1Text, std::string_view option1Text, std::string_view key2Text,
                        std::string_view option2Text, bool requirement) {
    // Most descriptions name a pair twice, once from each side, or the same key in a row: looks there first.
    SpecialConstraint line;
    line.requirement = requirement;
    line.key1 = strings->InsertWhole(key1Text, lastLine.key2, lastLine.key1);
    SpecialConstraint guess;
    if (line.key1 == lastLine.key2) {
        guess = {-1, lastLine.option2, lastLine.key1, lastLine.option1};
    } else if (line.key1 == lastLine.key1) {
        guess = lastLine;
    }
    line.option1 = strings->InsertWhole(option1Text, guess.option1);
    line.key2 = strings->InsertWhole(key2Text, guess.key2);
    line.option2 = strings->InsertWhole(option2Text, guess.option2);
    if (option1Text.empty() || option2Text.empty()) {
        deferred.push_back(line);
    } else {
        (requirement ? requirements : constraints)->insert(line.key1, line.option1, line.key2, line.option2);
    }
    lastLine = line;
}

void UIConstraints::Resolve() {
    constraints->Settle();
    requirements->Settle();
    const std::int64_t empty = strings->Find("");
    if (empty < 0) {
        return;
    }
    const std::int64_t none = strings->Insert("None");
    const std::int64_t off = strings->Insert("False");

    // Null for a key without usable options: a line with it has no effect.
    std::unordered_map<std::int64_t, std::shared_ptr<const OptionRange>> ranges;
    const auto rangeOf = [&](std::int64_t key) {
        const auto [entry, isNew] = ranges.try_emplace(key);
        if (const auto recorded = options->GetOptions(key); isNew && recorded != nullptr) {
            const OptionRange range{recorded, recorded->Items().size(), {none, off}};
            if (!range.Empty()) {
                entry->second = std::make_shared<const OptionRange>(range);
            }
        }
        return entry->second;
    };

    for (const SpecialConstraint& line : deferred) {
        const bool many1 = line.option1 == empty;
        const bool many2 = line.option2 == empty;
        auto from = many1 ? rangeOf(line.key1) : nullptr;
        auto to = many2 ? rangeOf(line.key2) : nullptr;
        if ((many1 && from == nullptr) || (many2 && to == nullptr)) {
            continue;
        }
        (line.requirement ? requirements : constraints)
            ->InsertWildcard(line.key1, std::move(from), line.option1, std::move(to),
                             {line.key2, line.option2});
    }
    deferred = {};
}

void UIConstraints::UpdateKVCache(std::string_view keyText, std::string_view optionText) {
    const std::int64_t key = strings->Insert(keyText);
    UpdateKVCache(key, strings->Insert(optionText));
}

void UIConstraints::UpdateKVCache(std::int64_t key, std::int64_t option) { selections->Insert(key, option); }

bool UIConstraints::IsKVConstrained(std::string_view keyText, std::string_view optionText) {
    return IsKVConstrained(strings->Find(keyText), strings->Find(optionText));
}

bool UIConstraints::IsKVConstrained(std::int64_t key, std::int64_t option) {
    return GetEngine()->HasConflict(KeyOption{key, option});
}

bool UIConstraints::ValidateDelta(const KVCache& changeSet) { return !GetEngine()->HasConflict(changeSet); }

ConstraintsEngine* UIConstraints::GetEngine() {
    if (engine == nullptr) {
        engine =
            std::make_unique<ConstraintsEngine>(selections.get(), constraints.get(), options.get(), nullptr);
    }
    return engine.get();
}

} // namespace torka
