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
void addKind(JsonSink&, const PPDXControl&) {}

void addKind(JsonSink& sink, const PPDXPopupControl& popup) {
    sink.Pair("default", jsonText(popup.GetDefaultKeyword()));
    if (popup.CanSelectMultipleItems()) {
        sink.Pair("multiple", true);
    }
    sink.Key("items");
    sink.BeginArray();
    popup.ForEachItem([&sink](const _PopupItem& item) {
        sink.Value({{"keyword", jsonText(item.keyword.Buffer())}, {"name", jsonText(item.LocalName())}});
    });
    sink.End();
}

void addKind(JsonSink& sink, const PPDXBooleanControl& control) {
    const auto state = [](const char* keyword, const char* text) -> Json {
        return {{"keyword", keyword}, {"name", jsonText(text == nullptr || *text == '\0' ? keyword : text)}};
    };
    sink.Pair("default", control.DefaultText());
    sink.Pair("items", Json::array({state("True", control.TrueDisplayText()),
                                    state("False", control.FalseDisplayText())}));
}

void addKind(JsonSink& sink, const PPDXJobNote& note) {
    sink.Pair("default", jsonText(note.CFDefaultNotes()));
    sink.Pair("maxLength", note.MaxLength());
    sink.Pair("minLength", note.MinLength());
    Json words = Json::array();
    for (const JobNoteFlagRow& row : jobNoteFlags) {
        if ((note.NoteFlags() & row.flag) != 0) {
            words.push_back(std::string(row.word));
        }
    }
    sink.Pair("noteFlags", words);
}

template <typename Number>
void addKind(JsonSink& sink, const PPDXNumberControl<Number>& range) {
    sink.Pair("default", number(range.DefaultValue()));
    sink.Pair("minimum", number(range.MinVal()));
    sink.Pair("maximum", number(range.MaxVal()));
    sink.Pair("increment", number(range.Increment()));
}

void addKind(JsonSink& sink, const PPDXCustomPageSizeControl& size) {
    sink.Pair("width", number(size.GetWidth()));
    sink.Pair("height", number(size.GetHeight()));
    sink.Pair("minWidth", number(size.MinWidth()));
    sink.Pair("maxWidth", number(size.MaxWidth()));
    sink.Pair("minHeight", number(size.MinHeight()));
    sink.Pair("maxHeight", number(size.MaxHeight()));
}

void writeControl(JsonSink& sink, PPDXControl& control) {
    sink.BeginObject();
    sink.Pair("keyword", jsonText(control.Keyword()));
    sink.Pair("type", typeName(control.Type()));
    sink.Pair("name", jsonText(control.CFStringUserName()));
    const PPDXElement* parent = control.GetParent();
    sink.Pair("parent", parent == nullptr ? Json(nullptr) : Json(jsonText(parent->Keyword())));
    Json flags = Json::array();
    for (const char* flag = control.FirstControlFlag(); flag != nullptr; flag = control.NextControlFlag()) {
        flags.push_back(jsonText(flag));
    }
    sink.Pair("flags", flags);
    sink.Pair("visible", control.IsVisible());
    sink.Pair("value", jsonText(control.CopyCurrentControlValueString()));
    visitControl(std::as_const(control), [&sink](const auto& own) { addKind(sink, own); });
    sink.End();
}

void writeRollDown(JsonSink& sink, const PPDXRollDown& rollDown) {
    sink.BeginObject();
    sink.Pair("keyword", jsonText(rollDown.Keyword()));
    sink.Pair("name", jsonText(rollDown.CFStringUserName()));
    sink.Pair("visible", rollDown.IsVisible());
    sink.Key("controls");
    sink.BeginArray();
    rollDown.Controls().ForEach(
        [&sink](const PPDXControl* control) { sink.Value(jsonText(control->Keyword())); });
    sink.End();
    sink.End();
}

void writePage(JsonSink& sink, const PPDXProperty& page) {
    sink.BeginObject();
    sink.Pair("keyword", jsonText(page.Keyword()));
    sink.Pair("name", jsonText(page.CFStringUserName()));
    sink.Pair("visible", page.IsVisible());
    sink.Pair("showInApp", page.ShowInApp());
    sink.Pair("showInPrintProp", page.ShowInPrintProp());
    if (const PPDXScrollPane* pane = page.GetScrollDown()) {
        sink.Key("scrollPane");
        sink.BeginObject();
        sink.Pair("keyword", jsonText(pane->Keyword()));
        sink.Pair("name", jsonText(pane->CFStringUserName()));
        sink.Pair("visible", pane->IsVisible());
        sink.Key("rollDowns");
        sink.BeginArray();
        pane->RollDowns().ForEach([&sink](PPDXGroup* group) {
            if (const auto* rollDown = dynamic_cast<const PPDXRollDown*>(group)) {
                writeRollDown(sink, *rollDown);
            }
        });
        sink.End();
        sink.End();
    }
    sink.End();
}

void writeRequirements(JsonSink& sink, const ZANPPD& description) {
    const CStringSoup& strings = *description.GetUIConstraints()->GetConstraintStrings();
    description.GetUIConstraints()->GetRequiresForest()->ForEach(
        [&](std::int64_t key, std::int64_t option, const KeyOption& required) {
            sink.Value({{"key", jsonText(strings.Find(key))},
                        {"option", jsonText(strings.Find(option))},
                        {"requiredKey", jsonText(strings.Find(required.key))},
                        {"requiredOption", jsonText(strings.Find(required.option))}});
            return true;
        });
}

} // namespace

const char* typeName(CNTL_TYPE type) {
    static constexpr std::array<const char*, 8> names = {
        "none", "jobNote", "range", "floatRange", "boolean", "popup", "specialOption", "customPageSize"};
    static_assert(names.size() == static_cast<std::size_t>(CNTL_TYPE::customPageSize) + 1);
    return names[static_cast<std::size_t>(type)];
}

Json headerJson(const ZANPPD& description) {
    Json header = Json::object();
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

void writeModel(JsonSink& sink, const ZANPPD& description) {
    const auto writeArray = [&sink](const char* name, const auto& writeElements) {
        sink.Key(name);
        sink.BeginArray();
        writeElements();
        sink.End();
    };
    sink.BeginObject();
    sink.Pair("header", headerJson(description));
    writeArray("controls", [&] {
        description.GetControls()->ForEach([&sink](PPDXControl* control) { writeControl(sink, *control); });
    });
    writeArray("pages", [&] {
        description.GetProperties()->ForEach([&sink](const PPDXProperty* page) { writePage(sink, *page); });
    });
    if (const PPDXRollDown* installable = description.InstallableOptions()) {
        sink.Key("installableOptions");
        writeRollDown(sink, *installable);
    }
    writeArray("shortcuts", [&] {
        PPDXShortcuts& quick = *description.GetShortcuts();
        for (const PPDXControl* control = quick.First(); control != nullptr; control = quick.Next()) {
            sink.Value(jsonText(control->Keyword()));
        }
    });
    writeArray("requirements", [&] { writeRequirements(sink, description); });
    sink.Pair("errors", errorsJson(description));
    sink.End();
}

Json modelJson(const ZANPPD& description) {
    JsonTree tree;
    writeModel(tree, description);
    return tree.Root();
}

} // namespace torka::tool
