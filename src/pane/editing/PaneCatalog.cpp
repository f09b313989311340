// SPDX-License-Identifier: Apache-2.0
#include "pane/editing/PaneCatalog.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "StringUtils.h"
#include "pane/data/ControlTables.h"
#include "platform/TextEncoding.h"

#include <algorithm>

namespace torka {
namespace {

std::string shownText(const CFStringRef& text, std::string_view fallback) {
    const std::string whole = utf8Text(text);
    const std::string_view trimmed = trimBlanks(whole);
    return std::string(trimmed.empty() ? fallback : trimmed);
}

// The name of a check box's state.
std::string stateName(const char* text, const char* fallback) {
    return shownText(text == nullptr ? nullptr : CFStringCreateWithCString(text, CFStringGetSystemEncoding()),
                     fallback);
}

bool isRange(const PPDXControl& control) {
    return control.Type() == CNTL_TYPE::range || control.Type() == CNTL_TYPE::floatRange;
}

// The name of a range ends in its unit, in parentheses: "Creep (1/100 mm)".
void splitUnit(PaneField& field) {
    const std::size_t open = field.name.rfind('(');
    if (!isRange(*field.control) || open == std::string::npos || open == 0 || field.name.back() != ')') {
        return;
    }
    const std::string inner = field.name.substr(open + 1, field.name.size() - open - 2);
    const std::string_view unit = trimBlanks(inner);
    const std::string_view name = trimBlanks(std::string_view(field.name).substr(0, open));
    constexpr std::size_t maximumUnitLength = 12; // bytes; a longer text in parentheses is no unit
    if (unit.empty() || unit.size() > maximumUnitLength || name.empty()) {
        return;
    }
    field.unit = unit;
    field.name = std::string(name);
}

bool isShown(const PPDXControl& control, const std::function<bool(std::string_view)>& hides) {
    const char* keyword = control.Keyword();
    return keyword != nullptr && control.IsVisible() && !control.IsNoTorkaDriverUI() &&
           !isBidiKeyword(keyword) && control.Type() != CNTL_TYPE::specialOption &&
           !(hides && hides(keyword));
}

} // namespace

std::string nameOf(const PPDXElement& element) {
    const char* keyword = element.Keyword();
    std::string_view fallback(keyword == nullptr ? "" : keyword);
    fallback.remove_prefix(fallback.starts_with('*') ? 1 : 0);
    return shownText(element.CFStringUserName(), fallback);
}

std::vector<PaneChoice> choicesOf(const PPDXControl& control) {
    std::vector<PaneChoice> choices;
    if (const auto* box = dynamic_cast<const PPDXBooleanControl*>(&control)) {
        choices.push_back({"True", stateName(box->TrueDisplayText(), "True")});
        choices.push_back({"False", stateName(box->FalseDisplayText(), "False")});
    } else if (const auto* popup = dynamic_cast<const PPDXPopupControl*>(&control)) {
        choices.reserve(popup->ItemCount());
        popup->ForEachItem([&](const _PopupItem& item) {
            std::string keyword(item.keyword.Buffer() == nullptr ? "" : item.keyword.Buffer());
            std::string name = shownText(item.localName.Copy(), keyword);
            choices.push_back({std::move(keyword), std::move(name)});
        });
    }
    return choices;
}

std::string choiceName(const PPDXControl& control, std::string_view choiceKeyword) {
    if (const auto* popup = dynamic_cast<const PPDXPopupControl*>(&control)) {
        const CFStringRef name = popup->GetKeywordCFLocalName(std::string(choiceKeyword).c_str());
        return shownText(name, choiceKeyword);
    }
    for (const PaneChoice& choice : choicesOf(control)) {
        if (choice.keyword == choiceKeyword) {
            return choice.name;
        }
    }
    return std::string(choiceKeyword);
}

PaneCatalog::PaneCatalog(const ZANPPD& ppd, const std::function<bool(std::string_view)>& hides) {
    AddPages(ppd, hides);
    AddInstallableOptions(ppd);
    for (std::size_t page = 0; page < pages.size(); ++page) {
        for (std::size_t group = 0; group < pages[page].groups.size(); ++group) {
            for (PaneField& field : pages[page].groups[group].fields) {
                field.page = page;
                field.group = group;
                byKeyword.try_emplace(field.keyword, &field);
            }
        }
    }
}

void PaneCatalog::AddPages(const ZANPPD& ppd, const std::function<bool(std::string_view)>& hides) {
    const PPDXControls& all = *ppd.GetControls();
    PPDXControl* customSize = nullptr;
    all.ForEach([&](PPDXControl* control) {
        if (control->Type() == CNTL_TYPE::customPageSize && isShown(*control, hides)) {
            customSize = control;
        }
    });
    const auto addField = [&](PaneGroup& group, PPDXControl* control) {
        if (!isShown(*control, hides)) {
            return;
        }
        // A job note that holds the value of a colour control is no field of its own.
        CNTL_TYPE type{};
        if (control->Type() == CNTL_TYPE::jobNote && all.Find(control->Keyword(), type, true) != control) {
            return;
        }
        group.fields.push_back(FieldOf(*control));
        if (customSize != nullptr && *control == "*QVPrintSize") {
            group.fields.push_back(FieldOf(*customSize));
            customSize = nullptr;
        }
    };
    ppd.GetProperties()->ForEach([&](PPDXProperty* property) {
        PPDXScrollPane* pane = property->GetScrollDown();
        if (!property->IsVisible() || !property->ShowInPrintProp() || pane == nullptr || !pane->IsVisible()) {
            return;
        }
        PanePage page{property->Keyword(), nameOf(*property), {}, false};
        pane->RollDowns().ForEach([&](PPDXGroup* element) {
            auto* rollDown = dynamic_cast<PPDXRollDown*>(element);
            if (rollDown == nullptr || !rollDown->IsVisible()) {
                return;
            }
            PaneGroup group{rollDown->Keyword(), nameOf(*rollDown), {}};
            group.fields.reserve(rollDown->Controls().ControlCount());
            rollDown->Controls().ForEach([&](PPDXControl* control) { addField(group, control); });
            if (!group.fields.empty()) {
                page.groups.push_back(std::move(group));
            }
        });
        if (!page.groups.empty()) {
            pages.push_back(std::move(page));
        }
    });
    if (customSize != nullptr && !pages.empty()) {
        pages.front().groups.front().fields.push_back(FieldOf(*customSize));
    }
}

void PaneCatalog::AddInstallableOptions(const ZANPPD& ppd) {
    PPDXRollDown* options = ppd.InstallableOptions();
    if (options == nullptr) {
        return;
    }
    PaneGroup group{options->Keyword(), nameOf(*options), {}};
    options->Controls().ForEach([&](PPDXControl* control) {
        if (isShown(*control, {})) {
            group.fields.push_back(FieldOf(*control));
        }
    });
    if (!group.fields.empty()) {
        pages.push_back({options->Keyword(), {}, {}, true});
        pages.back().groups.push_back(std::move(group));
    }
}

PaneField PaneCatalog::FieldOf(PPDXControl& control) {
    PaneField field;
    field.control = &control;
    field.keyword = control.Keyword();
    field.name = nameOf(control);
    splitUnit(field);
    return field;
}

const PaneField* PaneCatalog::Find(std::string_view keyword) const {
    const auto place = byKeyword.find(keyword);
    return place == byKeyword.end() ? nullptr : place->second;
}

void PaneCatalog::ForEach(const std::function<void(const PaneField&)>& visit) const {
    for (const PanePage& page : pages) {
        for (const PaneGroup& group : page.groups) {
            std::ranges::for_each(group.fields, visit);
        }
    }
}

} // namespace torka
