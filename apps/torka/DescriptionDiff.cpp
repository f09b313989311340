// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/DescriptionDiff.h"

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConstraintForest.h"
#include "apps/torka/ModelJson.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace torka::tool {

namespace {

using Changes = std::vector<DescriptionChange>;
using Values = std::map<std::string, std::string>;

// What a description says, by keyword.
struct Option {
    std::string type;
    Values properties; // by the name of the JSON
    std::string text;
    std::string byDefault;
    Values choices; // texts by keyword
    std::string order;
    Values code; // by choice
};

std::string textOf(const Json& json) { return json.is_string() ? json.get<std::string>() : json.dump(); }

std::string bytesOf(const unsigned char* code, long length) {
    return code == nullptr
               ? std::string()
               : std::string(reinterpret_cast<const char*>(code), static_cast<std::size_t>(length));
}

// Reports what only one side has, and values that differ.
void compareValues(const Values& before, const Values& after, const std::string& what,
                   const std::string& prefix, Changes& changes) {
    for (const auto& [name, value] : before) {
        const auto other = after.find(name);
        if (other == after.end()) {
            changes.push_back({what, prefix + name, value, std::nullopt});
        } else if (other->second != value) {
            changes.push_back({what, prefix + name, value, other->second});
        }
    }
    for (const auto& [name, value] : after) {
        if (!before.contains(name)) {
            changes.push_back({what, prefix + name, std::nullopt, value});
        }
    }
}

// The keyword alone for the code of a control without choices.
std::string choiceName(const std::string& keyword, const std::string& choice) {
    std::string name = keyword;
    name.append(choice.empty() ? "" : "=").append(choice);
    return name;
}

void compareText(const std::string& before, const std::string& after, const std::string& what,
                 const std::string& subject, Changes& changes) {
    if (before != after) {
        changes.push_back({what, subject, before, after});
    }
}

Option optionOf(const Json& control) {
    Option option;
    for (const auto& [name, value] : control.items()) {
        if (name == "type") {
            option.type = textOf(value);
        } else if (name == "name") {
            option.text = textOf(value);
        } else if (name == "default") {
            option.byDefault = textOf(value);
        } else if (name == "items") {
            for (const Json& item : value) {
                const auto keyword = item.at("keyword").get<std::string>();
                option.choices.emplace(keyword, textOf(item.at("name")));
                option.order += (option.order.empty() ? "" : " ") + keyword;
            }
        } else if (name != "keyword" && (name != "value" || control.at("type") == "specialOption")) {
            option.properties.emplace(name, textOf(value));
        }
    }
    return option;
}

std::map<std::string, Option> optionsOf(const ZANPPD& description, const Json& model) {
    std::map<std::string, Option> options;
    for (const Json& control : model.at("controls")) {
        options.insert_or_assign(control.at("keyword").get<std::string>(), optionOf(control));
    }
    description.GetControls()->ForEach([&options](const PPDXControl* control) {
        Values& code = options[jsonText(control->Keyword())].code;
        if (const auto* popup = dynamic_cast<const PPDXPopupControl*>(control)) {
            popup->ForEachItem([&code](const _PopupItem& item) {
                code.emplace(jsonText(item.keyword.Buffer()), bytesOf(item.psData, item.psLength));
            });
        } else if (const auto* boolean = dynamic_cast<const PPDXBooleanControl*>(control)) {
            code.emplace("True", boolean->Code(true));
            code.emplace("False", boolean->Code(false));
        } else {
            code.emplace("", bytesOf(control->PSData(), control->PSLength()));
        }
    });
    return options;
}

void compareOption(const std::string& keyword, const Option& before, const Option& after, Changes& changes) {
    compareText(before.type, after.type, "property", keyword + " type", changes);
    compareText(before.text, after.text, "text", keyword, changes);
    compareText(before.byDefault, after.byDefault, "default", keyword, changes);
    compareValues(before.properties, after.properties, "property", keyword + " ", changes);
    for (const auto& [choice, text] : before.choices) {
        const auto other = after.choices.find(choice);
        if (other == after.choices.end()) {
            changes.push_back({"choice", choiceName(keyword, choice), text, std::nullopt});
        } else {
            compareText(text, other->second, "text", choiceName(keyword, choice), changes);
        }
    }
    for (const auto& [choice, text] : after.choices) {
        if (!before.choices.contains(choice)) {
            changes.push_back({"choice", choiceName(keyword, choice), std::nullopt, text});
        }
    }
    const bool hasSameChoices = std::ranges::equal(before.choices, after.choices, {},
                                                   &Values::value_type::first, &Values::value_type::first);
    if (hasSameChoices) {
        compareText(before.order, after.order, "order", keyword, changes);
    }
    for (const auto& [choice, code] : before.code) {
        if (const auto other = after.code.find(choice); other != after.code.end()) {
            compareText(code, other->second, "code", choiceName(keyword, choice), changes);
        }
    }
}

void compareOptions(const std::map<std::string, Option>& before, const std::map<std::string, Option>& after,
                    Changes& changes) {
    for (const auto& [keyword, option] : before) {
        const auto other = after.find(keyword);
        if (other == after.end()) {
            changes.push_back({"option", keyword, option.text, std::nullopt});
        } else {
            compareOption(keyword, option, other->second, changes);
        }
    }
    for (const auto& [keyword, option] : after) {
        if (!before.contains(keyword)) {
            changes.push_back({"option", keyword, std::nullopt, option.text});
        }
    }
}

// Every recorded line as "KEY=OPTION KEY=OPTION", sorted.
std::vector<std::string> linesOf(const ZANPPD& description, const ConstraintForest& forest) {
    const CStringSoup& strings = *description.GetUIConstraints()->GetConstraintStrings();
    std::vector<std::string> lines;
    forest.ForEach([&](std::int64_t key, std::int64_t option, const KeyOption& other) {
        lines.push_back(jsonText(strings.Find(key)) + "=" + jsonText(strings.Find(option)) + " " +
                        jsonText(strings.Find(other.key)) + "=" + jsonText(strings.Find(other.option)));
        return true;
    });
    std::ranges::sort(lines);
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    return lines;
}

void compareLists(const std::vector<std::string>& before, const std::vector<std::string>& after,
                  const std::string& what, Changes& changes) {
    std::vector<std::string> removed;
    std::ranges::set_difference(before, after, std::back_inserter(removed));
    for (std::string& line : removed) {
        changes.push_back({what, std::move(line), "", std::nullopt});
    }
    std::vector<std::string> added;
    std::ranges::set_difference(after, before, std::back_inserter(added));
    for (std::string& line : added) {
        changes.push_back({what, std::move(line), std::nullopt, ""});
    }
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

std::vector<std::string> sorted(std::vector<std::string> list) {
    std::ranges::sort(list);
    return list;
}

// An element that one side lacks is a change of its own, and the order is then not compared.
void compareOrder(const std::vector<std::string>& before, const std::vector<std::string>& after,
                  const std::string& subject, Changes& changes) {
    if (sorted(before) == sorted(after)) {
        compareText(joined(before), joined(after), "order", subject, changes);
    }
}

std::vector<std::string> keywordsOf(const Json& elements) {
    std::vector<std::string> keywords;
    for (const Json& element : elements) {
        keywords.push_back(textOf(element.at("keyword")));
    }
    return keywords;
}

std::vector<std::string> templateLines(const ZANPPD& description) {
    std::vector<std::string> lines;
    std::string_view text = description.DMTXmlData();
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        lines.emplace_back(line);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return lines;
}

// The pane searches the template as one text, so that the order of its lines counts.
void compareTemplates(const std::vector<std::string>& before, const std::vector<std::string>& after,
                      Changes& changes) {
    compareLists(sorted(before), sorted(after), "template", changes);
    compareOrder(before, after, "template", changes);
}

std::string hiddenMark(const Json& element) { return element.at("visible").get<bool>() ? "" : " (hidden)"; }

std::string rollDownText(const Json& rollDown) {
    return textOf(rollDown.at("name")) + hiddenMark(rollDown) + ": " + rollDown.at("controls").dump();
}

// Pages, scroll panes and roll-downs by keyword: their texts, states and controls.
Values pagesOf(const Json& model) {
    Values values;
    if (model.contains("installableOptions")) {
        const Json& installable = model.at("installableOptions");
        values.emplace(textOf(installable.at("keyword")), rollDownText(installable));
    }
    for (const Json& page : model.at("pages")) {
        const auto keyword = page.at("keyword").get<std::string>();
        std::string pane;
        if (page.contains("scrollPane")) {
            const Json& scrollPane = page.at("scrollPane");
            pane = ", scroll pane " + textOf(scrollPane.at("keyword")) + hiddenMark(scrollPane);
            for (const Json& group : scrollPane.at("rollDowns")) {
                pane += " " + textOf(group.at("keyword"));
                values.emplace(keyword + "/" + textOf(group.at("keyword")), rollDownText(group));
            }
        }
        values.emplace(keyword, textOf(page.at("name")) + hiddenMark(page) + ", in the pane " +
                                    page.at("showInApp").dump() + ", in the properties " +
                                    page.at("showInPrintProp").dump() + pane);
    }
    return values;
}

Values headerOf(const Json& model) {
    Values values;
    for (const auto& [name, value] : model.at("header").items()) {
        if (!value.is_null()) {
            values.emplace(name, textOf(value));
        }
    }
    return values;
}

std::vector<std::string_view> effectiveLines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
        if (!line.empty() && (!line.starts_with("*%") || line.starts_with("*%ZAN"))) {
            lines.push_back(line);
        }
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    std::ranges::sort(lines);
    return lines;
}

} // namespace

std::vector<DescriptionChange> compareDescriptions(const ZANPPD& before, const ZANPPD& after) {
    const Json first = modelJson(before);
    const Json second = modelJson(after);
    Changes changes;
    compareValues(headerOf(first), headerOf(second), "header", "", changes);
    compareOptions(optionsOf(before, first), optionsOf(after, second), changes);
    compareLists(linesOf(before, *before.GetUIConstraints()->GetConstraintForest()),
                 linesOf(after, *after.GetUIConstraints()->GetConstraintForest()), "constraint", changes);
    compareLists(linesOf(before, *before.GetUIConstraints()->GetRequiresForest()),
                 linesOf(after, *after.GetUIConstraints()->GetRequiresForest()), "requirement", changes);
    compareValues(pagesOf(first), pagesOf(second), "page", "", changes);
    compareOrder(keywordsOf(first.at("pages")), keywordsOf(second.at("pages")), "pages", changes);
    compareTemplates(templateLines(before), templateLines(after), changes);
    compareText(first.at("shortcuts").dump(), second.at("shortcuts").dump(), "shortcuts", "", changes);
    return changes;
}

std::vector<DescriptionChange> compareLines(std::string_view before, std::string_view after) {
    const std::vector<std::string_view> first = effectiveLines(before);
    const std::vector<std::string_view> second = effectiveLines(after);
    std::vector<std::string_view> removed;
    std::vector<std::string_view> added;
    std::ranges::set_difference(first, second, std::back_inserter(removed));
    std::ranges::set_difference(second, first, std::back_inserter(added));
    if (removed.empty() && added.empty()) {
        return {};
    }
    return {
        {"lines", "", std::to_string(removed.size()) + " lines", std::to_string(added.size()) + " lines"}};
}

} // namespace torka::tool
