// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/PPDLintTexts.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "tests/model/ModelFixtures.h"
#include "tests/support/TestSupport.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Writes small descriptions to a folder, parses them, and returns their defects as text.

namespace torka::tests {

inline constexpr _PARSE_OPTIONS_ acceptAll = kAcceptOrphans | kAcceptHidden;

// A page "Page" with the scroll pane "Pane" and the roll-downs "Group" and "Other".
inline const std::string frame = "*PPD-Adobe: \"4.3\"\n"
                                 "*LanguageVersion: English\n"
                                 "*LanguageEncoding: ISOLatin1\n"
                                 "*PCFileName: \"TEST.PPD\"\n"
                                 "*%ZANPropPage Page/The Page: True\n"
                                 "*%ZANGroupName Pane/The Pane: True\n"
                                 "*%ZANGroupName Group/The Group: True\n"
                                 "*%ZANGroupName Other/The Other: True\n"
                                 "*%ZANParent Pane/Page: True|Scrollpane\n"
                                 "*%ZANParent Group/Pane: True|Rolldown\n"
                                 "*%ZANParent Other/Pane: True|Rolldown\n";

// The lines of a popup with the options A and B, in "Group".
inline std::string popupText(const std::string& keyword, const std::string& defaultOption = "A") {
    return "*%ZANFlags *" + keyword + ": Dynamic\n*%ZANGroup *" + keyword + ": Group\n*OpenUI *" + keyword +
           "/" + keyword + ": PickOne\n*Default" + keyword + ": " + defaultOption + "\n*" + keyword +
           " A/Name A: \"(a)\"\n*" + keyword + " B/Name B: \"(b)\"\n*CloseUI: *" + keyword + "\n";
}

struct ParseSettings {
    _PARSE_OPTIONS_ options = acceptAll;
    _EXTENSIONS_SUPPORT_ extensions = kAllExtensions;
    bool stopOnFirstError = false;
    DescriptionLimits limits = {};
    PPDLint* lint = nullptr;
};

inline std::unique_ptr<ZANPPD> parseFile(const std::filesystem::path& path,
                                         const ParseSettings& settings = {}) {
    auto model = std::make_unique<ZANPPD>(settings.options);
    model->SetFile(FSRef{path.string()});
    model->SetExtensions(settings.extensions);
    model->SetStopOnFirstError(settings.stopOnFirstError);
    model->SetLimits(settings.limits);
    model->SetLint(settings.lint);
    model->Build();
    return model;
}

inline std::unique_ptr<ZANPPD> parseText(std::string_view text, const ParseSettings& settings = {}) {
    const TemporaryFolder folder;
    return parseFile(folder.Write("test.ppd", text), settings);
}

// "23 *KEY" of each error, in order.
inline std::vector<std::string> errorsOf(const ZANPPD& model) {
    std::vector<std::string> result;
    for (const PPDXErrorObj* error = model.Errors()->First(); error; error = model.Errors()->Next()) {
        result.push_back(std::to_string(error->Code()) + " " + error->Keyword());
    }
    return result;
}

// Each error's line, code and keyword, and each finding's line and name with its suggestion behind "?", in
// line order; `subjects` adds the keyword and text of each finding.
using Findings = std::vector<std::pair<long, std::string>>;

inline Findings findingsOf(const ZANPPD& model, const PPDLint& lint, bool subjects = false) {
    Findings found;
    for (const PPDXErrorObj* error = model.Errors()->First(); error; error = model.Errors()->Next()) {
        const std::string keyword = error->Keyword();
        found.emplace_back(error->Line(),
                           std::to_string(error->Code()) + (keyword.empty() ? "" : " " + keyword));
    }
    for (const PPDLintNote& note : lint.Notes()) {
        std::string what = ppdLintName(note.kind) + (note.suggestion.empty() ? "" : "?" + note.suggestion);
        for (const std::string& subject : {note.keyword, note.text}) {
            what += subjects && !subject.empty() ? " | " + subject : "";
        }
        found.emplace_back(note.line, what);
    }
    std::ranges::stable_sort(found, {}, &Findings::value_type::first);
    return found;
}

inline PPDXControl* find(const ZANPPD& model, const char* keyword) {
    return model.GetPPDXControlForKey(cfString(keyword));
}

// Calls back with each choice of a popup or boolean, while it is selected, and once with the value of others.
template <class Use>
void forEachChoice(PPDXControl& control, Use use) {
    if (auto* popup = dynamic_cast<PPDXPopupControl*>(&control)) {
        for (std::size_t i = 1; i <= popup->ItemCount(); ++i) {
            popup->SetValue(static_cast<int>(i));
            use(valueOf(control));
        }
    } else if (control.Type() == CNTL_TYPE::boolean) {
        for (const char* value : {"True", "False"}) {
            control.SetCurrentControlWithCFString(cfString(value));
            use(value);
        }
    } else {
        use(valueOf(control));
    }
}

inline std::string valueOf(const ZANPPD& model, const char* keyword) {
    return utf8Text(model.CopyValueForKey(cfString(keyword)));
}

} // namespace torka::tests
