// SPDX-License-Identifier: Apache-2.0
#include "jobsettings/Findings.h"

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConflictPairs.h"
#include "PPDX/KVEngine/UIConstraints.h"
#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "PPDX/Utilities/ModelState.h"
#include "PPDX/Utilities/NarrowText.h"
#include "ZANUtils/FieldKeys.h"
#include "output/ZANJobNote.h"
#include "platform/System.h"

namespace torka {

namespace {

std::string shown(const char* text) { return text == nullptr ? std::string() : utf8Text(cfString(text)); }

} // namespace

std::vector<std::string> conflictTexts(const ZANPPD& description) {
    const UIConstraints& constraints = *description.GetUIConstraints();
    const CStringSoup& strings = *constraints.GetConstraintStrings();
    const auto named = [&strings](const KeyOption& setting) {
        return shown(strings.Find(setting.key)) + "=" + shown(strings.Find(setting.option));
    };
    std::vector<std::string> texts;
    for (const auto& [one, other] : conflictPairs(constraints, *constraints.GetCurrentSelections())) {
        texts.push_back(named(one) + " does not go together with " + named(other));
    }
    return texts;
}

std::vector<std::string> brokenRuleTexts(const PPDXJobNote& note) {
    std::vector<std::string> texts;
    for (const BrokenNoteRule& rule : note.BrokenRules()) {
        texts.push_back(shown(note.Keyword()) + " " + rule.Words());
    }
    return texts;
}

std::string lostTextReason(const ZANPPD& description, const PPDXJobNote& note, std::string_view text) {
    const CFStringEncoding encoding = narrowTextEncoding();
    const std::u16string outside = charactersOutside(cfString(text)->units, encoding);
    if (outside.empty()) {
        return {};
    }
    const std::string characters =
        isSecretNote(description, &note) ? "some of its characters" : "\"" + utf8FromUtf16(outside) + "\"";
    return std::string(encodingName(encoding)) + ", the encoding of its text, does not have " + characters;
}

std::string leftOutReason(LeftOutReason reason) {
    switch (reason) {
    case LeftOutReason::noFieldKeys:
        return "it is protected and no keys are installed in " +
               platform::system().Resolve(FieldKeys::installedPath).string();
    case LeftOutReason::tooLong:
        return "it is too long to be protected";
    case LeftOutReason::plainDestination:
        break;
    }
    return "it is protected, and a file destination would name it in plain: the job has no file destination";
}

std::string leftOutReason(const LeftOutSetting& setting) {
    if (setting.isBelowZero) {
        return "its value is below 0";
    }
    return "its code has " + std::to_string(setting.bytes) + " bytes, and a job takes " +
           std::to_string(setting.maximum);
}

} // namespace torka
