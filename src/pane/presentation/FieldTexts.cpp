// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/FieldTexts.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "StringUtils.h"
#include "pane/presentation/NumberScale.h"

#include <algorithm>

namespace torka {
namespace {

constexpr std::size_t maximumReasons = 3; // named one by one

std::string shownNumber(const PaneTexts& texts, const PaneField& field, std::string_view value) {
    const NumberScale scale(field);
    const std::string number = texts.Number(realValue(value) * scale.Unit().factor, scale.Decimals());
    return scale.Unit().name.empty() ? number : number + ' ' + scale.Unit().name;
}

} // namespace

std::string shownSize(const PaneTexts& texts, const PaperSize& size) {
    const SizeScale scale(texts.language.metric);
    const auto side = [&](double points) { return texts.Number(points / scale.points, scale.decimals); };
    return side(size.width) + " × " + side(size.height) + ' ' + texts.Say(scale.unit);
}

std::string shownChoice(const PaneTexts& texts, const PPDXControl& control, std::string_view choice) {
    std::string name = choiceName(control, choice);
    if (control.Type() == CNTL_TYPE::boolean && name == choice) {
        return texts.Say(choice == "True" ? words::on : words::off);
    }
    return name;
}

std::string shownValue(const PaneTexts& texts, const PaneField& field, std::string_view value) {
    switch (field.control->Type()) {
    case CNTL_TYPE::popup: {
        std::vector<std::string> names;
        while (!value.empty()) {
            const std::size_t end = std::min(value.find('\n'), value.size());
            names.push_back(shownChoice(texts, *field.control, value.substr(0, end)));
            value.remove_prefix(std::min(end + 1, value.size()));
        }
        return names.empty() ? texts.Say(words::chooseSeveral) : joined(names);
    }
    case CNTL_TYPE::boolean:
        return shownChoice(texts, *field.control, value);
    case CNTL_TYPE::range:
    case CNTL_TYPE::floatRange:
        return shownNumber(texts, field, value);
    case CNTL_TYPE::customPageSize:
        return shownSize(texts, paperOfText(value).value_or(PaperSize{0, 0}));
    default:
        break;
    }
    if (!isSecret(*field.control) || value.empty()) {
        return std::string(value);
    }
    return "••••••••"; // a fixed number, because the length is a secret too
}

std::string shownSetting(const PaneTexts& texts, const PaneSetting& setting) {
    const PPDXControl* control = texts.editor.FindControl(setting.keyword);
    if (control == nullptr) {
        return texts.Say(words::settingIs, setting.keyword, setting.choice);
    }
    return texts.Say(words::settingIs, nameOf(*control), shownChoice(texts, *control, setting.choice));
}

std::string shownChanges(const PaneTexts& texts, const std::vector<PaneSetting>& changes) {
    std::vector<std::string> parts;
    for (const PaneSetting& change : changes) {
        if (const PPDXControl* control = texts.editor.FindControl(change.keyword)) {
            parts.push_back(
                texts.Say(words::setTo, nameOf(*control), shownChoice(texts, *control, change.choice)));
        }
    }
    return joined(parts);
}

std::string shownPlace(const PaneTexts& texts, const PaneField& field) {
    const PanePage& page = texts.editor.Catalog().Pages()[field.page];
    return page.installable ? texts.Say(words::installed)
                            : texts.Say(words::matches, page.name, page.groups[field.group].name);
}

std::string shownReset(const PaneTexts& texts, const PaneField& field) {
    const std::string shown = shownValue(texts, field, PaneEditor::DefaultValue(*field.control));
    return texts.Say(words::backTo, shown.empty() ? "–" : shown);
}

std::string whyLocked(const PaneTexts& texts, const PPDXControl& control) {
    switch (texts.editor.LockOf(control)) {
    case PaneLock::system:
        return texts.Say(words::lockedBySystem);
    case PaneLock::administrator:
        return texts.Say(words::lockedByAdministrator);
    case PaneLock::none:
        break;
    }
    return {};
}

std::string whyForbidden(const PaneTexts& texts, const PPDXControl& control, const PaneChoice& choice) {
    const auto reasons = texts.editor.ForbiddenBy(control.Keyword(), choice.keyword);
    if (reasons.empty()) {
        return {};
    }
    std::vector<std::string> names;
    for (std::size_t i = 0; i < std::min(reasons.size(), maximumReasons); ++i) {
        names.push_back(shownSetting(texts, reasons[i]));
    }
    if (reasons.size() > maximumReasons) {
        names.push_back(texts.Say(words::moreReasons, std::to_string(reasons.size() - maximumReasons)));
    }
    return texts.Say(words::notAvailableWith, shownChoice(texts, control, choice.keyword), joined(names));
}

namespace {

// The forbidden choices of the control, at most twelve, and the number of the others.
std::pair<std::vector<PaneChoice>, std::size_t> forbiddenOf(const PaneTexts& texts,
                                                            const PPDXControl& control) {
    constexpr std::size_t maximumLines = 12;
    const std::vector<bool> forbidden = texts.editor.Forbidden(control);
    std::vector<PaneChoice> choices = choicesOf(control);
    std::erase_if(choices, [&, i = std::size_t{0}](const PaneChoice&) mutable {
        const std::size_t place = i++;
        return place >= forbidden.size() || !forbidden[place];
    });
    const std::size_t more = choices.size() - std::min(choices.size(), maximumLines);
    choices.resize(choices.size() - more);
    return {std::move(choices), more};
}

} // namespace

std::string whyForbidden(const PaneTexts& texts, const PPDXControl& control) {
    const auto [choices, more] = forbiddenOf(texts, control);
    std::vector<std::string> lines;
    for (const PaneChoice& choice : choices) {
        lines.push_back(whyForbidden(texts, control, choice));
    }
    if (more > 0) {
        lines.push_back(texts.Say(words::moreReasons, std::to_string(more)));
    }
    return joined(lines, "\n");
}

ForbiddenChoices forbiddenChoices(const PaneTexts& texts, const PPDXControl& control) {
    const auto [choices, more] = forbiddenOf(texts, control);
    ForbiddenChoices all;
    for (const PaneChoice& choice : choices) {
        const PaneResolution way = texts.editor.WayTo(control, choice.keyword);
        const bool isOffered = way.solved && PaneEditor::Value(control) != choice.keyword;
        all.choices.push_back(
            {choice.keyword, whyForbidden(texts, control, choice),
             isOffered ? texts.Say(words::resolveChanges, shownChanges(texts, way.changes)) : std::string(),
             way.changes.size() > 2 ? &words::changeAll : &words::changeBoth});
    }
    if (more > 0) {
        all.more = texts.Say(words::moreReasons, std::to_string(more));
    }
    return all;
}

std::string whySizeIsUnused(const PaneTexts& texts) {
    const PaneSetting custom{"*QVPrintSize", "CustomPrintSize"};
    const PPDXControl* printSize = texts.editor.FindControl(custom.keyword);
    const bool used = printSize == nullptr || PaneEditor::Value(*printSize) == custom.choice;
    return used ? std::string() : texts.Say(words::onlyWith, shownSetting(texts, custom));
}

CheckBoxState checkBoxState(const PaneTexts& texts, const PPDXControl& control, bool isOn) {
    const std::vector<bool> forbidden = texts.editor.Forbidden(control);
    const std::size_t present = isOn ? 0 : 1;
    const std::size_t other = 1 - present;
    CheckBoxState state;
    if (forbidden[other]) {
        state.whyOtherForbidden = whyForbidden(texts, control, choicesOf(control)[other]);
    }
    state.canChange = state.whyOtherForbidden.empty() || forbidden[present];
    return state;
}

} // namespace torka
