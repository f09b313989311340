// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/ModelJson.h"

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConstraintForest.h"

#include <array>
#include <charconv>
#include <utility>

namespace torka::tool {

namespace {

Json headerValue(const CString* value) {
    return value == nullptr ? Json(nullptr) : Json(jsonText(value->Buffer()));
}

// The shortest decimal that reads back as the same 32-bit number: 0.1, not 0.10000000149.
Json number(float value) {
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    double shortest = 0.0;
    std::from_chars(text.data(), end, shortest);
    return Json(shortest);
}

Json number(long value) { return Json(value); }

// addKind adds the properties that only one kind of control has.
void addKind(Json&, const PPDXControl&) {}

void addKind(Json& json, const PPDXPopupControl& popup) {
    json["default"] = jsonText(popup.GetDefaultKeyword());
    Json items = Json::array();
    popup.ForEachItem([&items](const _PopupItem& item) {
        items.push_back({{"keyword", jsonText(item.keyword.Buffer())}, {"name", jsonText(item.LocalName())}});
    });
    json["items"] = std::move(items);
}

void addKind(Json& json, const PPDXBooleanControl& control) { json["default"] = control.DefaultText(); }

void addKind(Json& json, const PPDXJobNote& note) {
    json["default"] = jsonText(note.CFDefaultNotes());
    json["maxLength"] = note.MaxLength();
    json["minLength"] = note.MinLength();
    Json words = Json::array();
    for (const JobNoteFlagRow& row : jobNoteFlags) {
        if ((note.NoteFlags() & row.flag) != 0) {
            words.push_back(std::string(row.word));
        }
    }
    json["noteFlags"] = std::move(words);
}

template <typename Number>
void addKind(Json& json, const PPDXNumberControl<Number>& range) {
    json["default"] = number(range.DefaultValue());
    json["minimum"] = number(range.MinVal());
    json["maximum"] = number(range.MaxVal());
    json["increment"] = number(range.Increment());
}

void addKind(Json& json, const PPDXCustomPageSizeControl& size) {
    json["width"] = number(size.GetWidth());
    json["height"] = number(size.GetHeight());
    json["minWidth"] = number(size.MinWidth());
    json["maxWidth"] = number(size.MaxWidth());
    json["minHeight"] = number(size.MinHeight());
    json["maxHeight"] = number(size.MaxHeight());
}

Json controlJson(PPDXControl& control) {
    Json json;
    json["keyword"] = jsonText(control.Keyword());
    json["type"] = typeName(control.Type());
    json["name"] = jsonText(control.CFStringUserName());
    const PPDXElement* parent = control.GetParent();
    json["parent"] = parent == nullptr ? Json(nullptr) : Json(jsonText(parent->Keyword()));
    Json flags = Json::array();
    for (const char* flag = control.FirstControlFlag(); flag != nullptr; flag = control.NextControlFlag()) {
        flags.push_back(jsonText(flag));
    }
    json["flags"] = std::move(flags);
    json["visible"] = control.IsVisible();
    json["value"] = jsonText(control.CopyCurrentControlValueString());
    visitControl(std::as_const(control), [&json](const auto& own) { addKind(json, own); });
    return json;
}

Json rollDownJson(const PPDXRollDown& rollDown) {
    Json controls = Json::array();
    rollDown.Controls().ForEach(
        [&controls](const PPDXControl* control) { controls.push_back(jsonText(control->Keyword())); });
    Json json;
    json["keyword"] = jsonText(rollDown.Keyword());
    json["name"] = jsonText(rollDown.CFStringUserName());
    json["visible"] = rollDown.IsVisible();
    json["controls"] = std::move(controls);
    return json;
}

Json pageJson(const PPDXProperty& page) {
    Json json;
    json["keyword"] = jsonText(page.Keyword());
    json["name"] = jsonText(page.CFStringUserName());
    json["visible"] = page.IsVisible();
    json["showInApp"] = page.ShowInApp();
    json["showInPrintProp"] = page.ShowInPrintProp();
    if (const PPDXScrollPane* pane = page.GetScrollDown()) {
        Json rollDowns = Json::array();
        pane->RollDowns().ForEach([&rollDowns](PPDXGroup* group) {
            if (const auto* rollDown = dynamic_cast<const PPDXRollDown*>(group)) {
                rollDowns.push_back(rollDownJson(*rollDown));
            }
        });
        json["scrollPane"] = {{"keyword", jsonText(pane->Keyword())},
                              {"name", jsonText(pane->CFStringUserName())},
                              {"visible", pane->IsVisible()},
                              {"rollDowns", std::move(rollDowns)}};
    }
    return json;
}

Json requirementsJson(const ZANPPD& description) {
    const CStringSoup& strings = *description.GetUIConstraints()->GetConstraintStrings();
    Json requirements = Json::array();
    description.GetUIConstraints()->GetRequiresForest()->ForEach(
        [&](std::int64_t key, std::int64_t option, const KeyOption& required) {
            requirements.push_back({{"key", jsonText(strings.Find(key))},
                                    {"option", jsonText(strings.Find(option))},
                                    {"requiredKey", jsonText(strings.Find(required.key))},
                                    {"requiredOption", jsonText(strings.Find(required.option))}});
            return true;
        });
    return requirements;
}

} // namespace

const char* typeName(CNTL_TYPE type) {
    static constexpr std::array<const char*, 8> names = {
        "none", "jobNote", "range", "floatRange", "boolean", "popup", "specialOption", "customPageSize"};
    static_assert(names.size() == static_cast<std::size_t>(CNTL_TYPE::customPageSize) + 1);
    return names[static_cast<std::size_t>(type)];
}

Json headerJson(const ZANPPD& description) {
    Json header;
    header["formatVersion"] = headerValue(description.FormatVersion());
    header["fileVersion"] = headerValue(description.FileVersion());
    header["pcFileName"] = headerValue(description.PCFileName());
    header["languageVersion"] = headerValue(description.LanguageVersion());
    header["languageEncoding"] = headerValue(description.LanguageEncoding());
    header["modelName"] = headerValue(description.ModelName());
    header["makerVersion"] = headerValue(description.MakerVersion());
    header["makerVersionMac"] = headerValue(description.MakerVersionMac());
    header["dialogExtension"] = headerValue(description.DialogExtension());
    return header;
}

Json errorsJson(const ZANPPD& description) {
    Json errors = Json::array();
    PPDXErrors& list = *description.Errors();
    for (const PPDXErrorObj* error = list.First(); error != nullptr; error = list.Next()) {
        errors.push_back({{"code", error->Code()},
                          {"name", ppdErrName(error->Code())},
                          {"keyword", jsonText(error->Keyword())},
                          {"fatal", error->IsFatal()},
                          {"line", error->Line()}});
    }
    return errors;
}

Json modelJson(const ZANPPD& description) {
    Json json;
    json["header"] = headerJson(description);
    Json controls = Json::array();
    description.GetControls()->ForEach(
        [&controls](PPDXControl* control) { controls.push_back(controlJson(*control)); });
    json["controls"] = std::move(controls);
    Json pages = Json::array();
    description.GetProperties()->ForEach(
        [&pages](const PPDXProperty* page) { pages.push_back(pageJson(*page)); });
    json["pages"] = std::move(pages);
    Json shortcuts = Json::array();
    PPDXShortcuts& quick = *description.GetShortcuts();
    for (const PPDXControl* control = quick.First(); control != nullptr; control = quick.Next()) {
        shortcuts.push_back(jsonText(control->Keyword()));
    }
    json["shortcuts"] = std::move(shortcuts);
    json["requirements"] = requirementsJson(description);
    json["errors"] = errorsJson(description);
    return json;
}

} // namespace torka::tool
