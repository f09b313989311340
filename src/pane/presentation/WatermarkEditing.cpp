// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/WatermarkEditing.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "output/WatermarkEncoding.h"
#include "pane/data/PDEData.h"
#include "platform/TextCase.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

namespace torka {
namespace {

constexpr std::size_t maximumFontName = 117;

std::unique_ptr<ZANWatermark> made(const WatermarkFields& fields) {
    auto watermark = std::make_unique<ZANWatermark>(fields.Definition().c_str());
    watermark->SetFirstPageOnly(fields.isFirstPageOnly ? "True" : "False");
    return watermark;
}

} // namespace

WatermarkEditing::WatermarkEditing(PaneEditor& paneEditor, PDEData& paneData)
    : editor(paneEditor)
    , data(paneData) {}

std::vector<std::string> WatermarkEditing::Texts() const {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < data.Watermarks().Count(); ++i) {
        texts.emplace_back(data.Watermarks().At(i)->Text());
    }
    return texts;
}

int WatermarkEditing::Chosen() const {
    const WatermarkList& watermarks = data.Watermarks();
    return watermarks.Selected() == nullptr ? WatermarkList::noSelection : watermarks.SelectedIndex();
}

std::optional<WatermarkFields> WatermarkEditing::ChosenFields() const {
    const ZANWatermark* chosen = data.Watermarks().Selected();
    return chosen == nullptr ? std::nullopt : std::optional(WatermarkFields::Of(*chosen));
}

void WatermarkEditing::Choose(int index) {
    editor.EditAll([&] { data.Watermarks().Select(index); });
}

void WatermarkEditing::SetFirstPageOnly(bool isFirstPageOnly) {
    editor.EditAll([&] {
        if (ZANWatermark* chosen = data.Watermarks().Selected()) {
            chosen->SetFirstPageOnly(isFirstPageOnly ? "True" : "False");
        }
    });
}

void WatermarkEditing::Put(int index, const WatermarkFields& fields) {
    WatermarkList& watermarks = data.Watermarks();
    auto all = watermarks.TakeAll();
    if (index >= 0 && static_cast<std::size_t>(index) < all.size()) {
        all[static_cast<std::size_t>(index)] = made(fields);
    } else {
        index = static_cast<int>(all.size());
        all.push_back(made(fields));
    }
    for (auto& watermark : all) {
        watermarks.Append(std::move(watermark));
    }
    watermarks.Select(index);
}

bool WatermarkEditing::RemoveChosen() {
    const int index = Chosen();
    if (index == WatermarkList::noSelection) {
        return false;
    }
    WatermarkList& watermarks = data.Watermarks();
    auto all = watermarks.TakeAll();
    all.erase(all.begin() + index);
    for (auto& watermark : all) {
        watermarks.Append(std::move(watermark));
    }
    watermarks.Select(WatermarkList::noSelection);
    return true;
}

void WatermarkEditing::Keep() {
    if (data.Watermarks().Count() == 0) {
        data.ForgetWatermarkPreferences();
    } else {
        data.SaveWatermarksToPreferences();
    }
}

PrintedWatermark printedWatermark(const PaneTexts& texts, const WatermarkFields& fields) {
    const CString* language = texts.editor.Model().LanguageVersion();
    const char* name = language == nullptr ? nullptr : language->Buffer();
    const WatermarkPrint print = watermarkPrint(fields.text, name == nullptr ? "" : name, fields.fontName);
    return {utf8FromUtf16(print.shown),
            print.missing.empty() ? std::string()
                                  : texts.Say(words::watermarkMissing, utf8FromUtf16(print.missing))};
}

WatermarkFields newWatermark(const PaneTexts& texts) {
    WatermarkFields fields;
    fields.text = texts.Say(words::watermarkNew);
    fields.red = fields.green = fields.blue = 0xC8;
    fields.angle = 450;
    fields.fontSize = 96;
    fields.fontName = "Helvetica-Bold";
    if (!printedWatermark(texts, fields).missing.empty()) { // a person's words are not always in the font
        fields.text = words::watermarkNew.english;
    }
    return fields;
}

bool isFontName(std::string_view name) {
    constexpr std::string_view forbidden = "()<>[]{}/\\%,";
    return !name.empty() && name.size() <= maximumFontName && std::ranges::all_of(name, [&](char c) {
        return c > ' ' && c < 0x7F && forbidden.find(c) == std::string_view::npos;
    });
}

FontLook fontLook(std::string_view fontName) {
    const std::string name = upperCaseUtf8(fontName);
    const auto has = [&name](std::initializer_list<const char*> parts) {
        return std::ranges::any_of(parts,
                                   [&](const char* part) { return name.find(part) != std::string::npos; });
    };
    FontLook look;
    look.family = fontName.substr(0, fontName.find('-'));
    look.kind = has({"COURIER"})                            ? FontLook::Kind::fixedPitch
                : has({"TIMES", "ROMAN", "SONG", "RYUMIN"}) ? FontLook::Kind::serif
                                                            : FontLook::Kind::sans;
    look.isBold = has({"BOLD", "DEMI"});
    look.isItalic = has({"ITALIC", "OBLIQUE"});
    return look;
}

double maximumOffset(std::int32_t points) {
    constexpr double usual = 1440;
    return std::max(usual, std::abs(static_cast<double>(points)));
}

} // namespace torka
