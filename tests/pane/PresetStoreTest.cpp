// SPDX-License-Identifier: Apache-2.0
#include "output/WatermarkFields.h"
#include "pane/editing/PaneEditor.h"
#include "pane/presentation/PresetChoice.h"
#include "tests/pane/PanelFixture.h"

#include <gmock/gmock.h>

namespace torka::tests {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Result = PresetStore::Result;

std::string presetDescription() {
    return panelDescription(popup("PageSize", {"A4", "Letter"}) + jobNote("QVCipher", "32|Alpha|Encrypt") +
                            jobNote("QVUserAuthPwd", "32|Alpha") + jobNote("QVDSPassword", "32|Alpha"));
}

struct Kept {
    explicit Kept(const std::string& name = "Press")
        : pane(presetDescription())
        , store(cfString(name), *pane.model, *pane.data) {}
    void Set(const char* key, const char* value) { pane.Set(key, value); }
    std::string Get(const char* key) const { return valueOf(pane, key); }
    std::string& File() { return system->files[store.File()].content; }

    ScopedMemorySystem system;
    Pane pane;
    PresetStore store;
};

TEST(Presets, AreSavedAppliedRenamedAndRemoved) {
    Kept kept;
    PDEData& data = *kept.pane.data;
    EXPECT_EQ(kept.store.ApplyLastUsed(), Result::notFound);
    kept.Set("*QVFold", "Half");
    kept.Set("*QVNotes1", "B\xC3\xBCro <1> & \"2\"");
    kept.Set("*PageSize", "Letter");
    data.MixedMediaList().Append({L"*MM_A1", L"Cover \x65E5"});
    data.AccountPairs()[0].key = L"*QVPCName";     // as a template may leave it
    data.AccountPairs()[1] = {L"QVPCName", L"42"}; // as the module names it
    for (const char* definition : {"Draft,0,0", "Secret,0,0"}) {
        data.Watermarks().Append(std::make_unique<ZANWatermark>(definition));
    }
    data.Watermarks().Select(1);
    EXPECT_EQ(kept.store.Save("Booklet"), Result::done);

    kept.Set("*QVFold", "Flat");
    kept.Set("*QVDuplex", "Tumble");
    kept.Set("*QVNotes1", "");
    data.MixedMediaList().Clear();
    data.ResetAccountPairs();
    data.Watermarks().Select(0);
    EXPECT_EQ(kept.store.Save("Simple"), Result::done);
    EXPECT_THAT(kept.store.Names(), ElementsAre("Booklet", "Simple"));

    kept.Set("*PageSize", "A4");
    EXPECT_EQ(kept.store.Apply("Booklet"), Result::done);
    // The page size is from the dialog's own tabs.
    EXPECT_EQ(changesIn(*kept.pane.model), "*QVFold=Half *QVNotes1=B\xC3\xBCro <1> & \"2\" ");
    EXPECT_THAT(pairsOf(data.MixedMedia()), ElementsAre("*MM_A1=Cover \xE6\x97\xA5"));
    EXPECT_THAT(pairsOf(data.AccountPairs()),
                ElementsAre("*QVPCMID=-1", "QVPCName=42", "*QVCoverSizePCMID=-1", "*QVCoverSizePCName=-1"));
    EXPECT_EQ(kept.store.NameOf(kept.store.PresentSettings()), "Booklet");
    EXPECT_EQ(data.Watermarks().SelectedIndex(), 1);

    EXPECT_EQ(kept.store.Rename("Booklet", "Simple"), Result::nameTaken);
    EXPECT_EQ(kept.store.Rename("None", "New"), Result::notFound);
    EXPECT_EQ(kept.store.Rename("Booklet", "Folded"), Result::done);
    EXPECT_EQ(kept.store.Rename("Folded", "Folded"), Result::done);
    EXPECT_THAT(kept.store.Names(), ElementsAre("Folded", "Simple"));
    EXPECT_EQ(kept.store.Remove("Simple"), Result::done);
    EXPECT_EQ(kept.store.Remove("Simple"), Result::notFound);
    EXPECT_EQ(kept.store.Apply("Simple"), Result::notFound);
    EXPECT_EQ(kept.store.RememberLastUsed(), Result::done);
    EXPECT_THAT(kept.store.Names(), ElementsAre("Folded"));
    kept.Set("*QVFold", "Flat");
    EXPECT_EQ(kept.store.ApplyLastUsed(), Result::done);
    EXPECT_EQ(kept.Get("*QVFold"), "Half");
}

// A description as it was when a preset was saved, and as it is when the preset is applied.
std::string exactDescription(const char* sizes, const std::vector<std::string>& folds, const char* bounds) {
    std::string marks = popup("QVMarks", {"None", "Crop", "Fold", "Color"});
    marks.replace(marks.find("PickOne"), 7, "PickMany");
    return panelDescription(
        marks + popup("QVStaple", folds) + range("QVGamma", bounds, "FloatRange") +
        range("QVCount", "1;100;1;1") + popup("QVPrintSize", {"SameAsPageSize", "CustomPrintSize"}) +
        "*%ParamCustomPrintSize Width: 1 points " + sizes + "\n*%ParamCustomPrintSize Height: 2 points " +
        sizes + "\n*%CustomPrintSize: \"% size\"\n");
}

TEST(Presets, KeepExactValuesAndNameWhatTheDescriptionNoLongerTakes) {
    const ScopedMemorySystem system;
    Pane before(exactDescription("72 900", {"Off", "Saddle"}, "0.1;4.0;0.0001;1.0"));
    PaneEditor editor(*before.model, before.data.get());
    const std::vector<std::pair<const char*, std::string>> values{
        {"*QVMarks", "Crop\nColor"},
        {"*QVGamma", "1.2345"},
        {"*QVCount", "90"},
        {"*QVStaple", "Saddle"},
        {"*QVPrintSize", "CustomPrintSize"},
        {"*CustomPrintSize", "600.000000 700.000000"},
        {"*QVNotes1", "B\u00FCro"}};
    for (const auto& [key, value] : values) {
        EXPECT_TRUE(editor.SetValue(key, value)) << key;
    }
    before.data->Watermarks().Append(std::make_unique<ZANWatermark>("Draft,0,0"));
    before.data->Watermarks().Select(0);
    PresetStore saving(cfString("Press"), *before.model, *before.data);
    EXPECT_EQ(saving.Save("All"), Result::done);
    const auto textsIn = [](const PaneEditor& one) {
        std::vector<std::pair<const char*, std::string>> texts;
        for (const char* key : {"*QVMarks", "*QVGamma", "*QVCount", "*QVStaple", "*QVPrintSize",
                                "*CustomPrintSize", "*QVNotes1"}) {
            texts.emplace_back(key, PaneEditor::Value(*one.FindControl(key)));
        }
        return texts;
    };
    const auto reset = [](Pane& pane) {
        pane.model->GetControls()->ForEach([](PPDXControl* control) { control->ResetToDefaultValue(); });
    };
    reset(before);
    EXPECT_EQ(saving.Apply("All"), Result::done);
    EXPECT_TRUE(saving.LeftOut().IsEmpty());
    EXPECT_EQ(textsIn(editor), values);
    editor.SetValue("*QVMarks", ""); // nothing chosen
    EXPECT_EQ(saving.Save("None"), Result::done);
    reset(before);
    EXPECT_EQ(saving.Apply("None"), Result::done);
    EXPECT_EQ(PaneEditor::Value(*editor.FindControl("*QVMarks")), "");

    std::string text = exactDescription("72 500", {"Off", "Corner"}, "0.1;1.2;0.0001;1.0");
    text.replace(text.find("ISOLatin1"), 9, "JIS83-RKSJ");
    for (std::size_t at = 0; (at = text.find("QVFold", at)) != std::string::npos;) {
        text.replace(at, 6, "QVBend"); // an option that is gone
    }
    Pane after(text);
    PaneEditor newEditor(*after.model, after.data.get());
    const PaneTexts english{newEditor, {[](const PaneWord& word) { return std::string(word.english); }, {}}};
    PresetChoice choice(english, newEditor, *after.data);
    EXPECT_EQ(choice.Apply("All"),
              "The preset “All” is not applied completely. The printer no longer takes "
              "these settings as they were saved: QVNotes1 name, QVStaple name, QVGamma, "
              "Custom Page Size, *QVFold, Watermark.");
    EXPECT_TRUE(choice.IsChanged()) << "Update takes what is shown now";
    EXPECT_EQ(textsIn(newEditor)[2].second, "90");
    EXPECT_EQ(choice.Update(), "");
    EXPECT_EQ(choice.Apply("All"), "");
}

// lp reads them (docs/options.md): one choice a list, no lists of sheets, no secrets.
TEST(Presets, AllProgramsGetWhatAnOptionCanHoldAndTheRestIsNamed) {
    const ScopedMemorySystem system;
    const ScopedDouble<MemorySpooler, setSpooler> spooler;
    Pane pane(exactDescription("72 900", {"Off", "Saddle"}, "0.1;4.0;0.0001;1.0"));
    PaneEditor editor(*pane.model, pane.data.get());
    for (const auto& [key, value] : {std::pair{"*QVMarks", "Crop\nColor"},
                                     {"*QVGamma", "1.2345"},
                                     {"*QVPrintSize", "CustomPrintSize"},
                                     {"*CustomPrintSize", "600.5 700"},
                                     {"*QVSecret", "geheim"}}) {
        editor.SetValue(key, value);
    }
    pane.data->Watermarks().Append(
        std::make_unique<ZANWatermark>("0,0,0,200,30,30,0,0,0,450,0,0,90,Helvetica-Bold,ONE"));
    pane.data->Watermarks().Select(0);
    pane.data->Watermarks().Selected()->SetFirstPageOnly("True");
    pane.data->SlipSheetList().Append({L"SlipSheet_Tray", L"Upper"});
    const PaneTexts english{editor, {[](const PaneWord& word) { return std::string(word.english); }, {}}};
    PresetChoice choice(english, editor, *pane.data);
    const PresetChoice::Served served = choice.ServeAllPrograms();
    EXPECT_EQ(served.problem, "");
    EXPECT_EQ(served.note,
              "These settings are not kept for them: QVMarks name, covers, slip sheets, and media of "
              "single pages.");
    EXPECT_EQ(
        spooler->standing["Press"],
        (platform::StandingOptionList{
            {"QVPrintSize", "Custom.600.500x700.000pt"},
            {"QVGamma", "1.2345"},
            {"torka-watermark", WatermarkFields::Of(*pane.data->Watermarks().Selected()).Definition()}}));
    EXPECT_THAT(spooler->standing["Press"].back().second, HasSubstr(",0,1,0,450,"));
}

TEST(Presets, KeepNoSecretAndAreReadByOthers) {
    Kept kept;
    for (const char* key : {"*QVSecret", "*QVCipher", "*QVUserAuthPwd", "*QVDSPassword"}) {
        kept.Set(key, "geheim");
    }
    EXPECT_EQ(kept.store.Save("A"), Result::done);
    EXPECT_EQ(kept.store.RememberLastUsed(), Result::done);
    EXPECT_THAT(kept.File(), Not(HasSubstr("geheim")));
    EXPECT_EQ(kept.system->files[kept.store.File()].mode, 0600U);
    const std::string read = runPython(R"PY(
import plistlib, sys
root = plistlib.loads(sys.stdin.buffer.read())
print([p["Name"] for p in root["Presets"]], root["LastUsed"]["Values"]["*QVDuplex"])
)PY",
                                       {}, kept.File());
    EXPECT_EQ(read, "['A'] None\n");
    // A secret that somebody wrote into the file is ignored.
    std::string& file = kept.File();
    file.replace(file.find("<key>*QVDuplex</key>"), 20, "<key>*QVSecret</key>");
    kept.Set("*QVSecret", "");
    EXPECT_EQ(kept.store.Apply("A"), Result::done);
    EXPECT_EQ(kept.Get("*QVSecret"), "");
}

TEST(Presets, NamesAreOnlyData) {
    Kept kept;
    const std::vector<std::string> names = {"../../etc/passwd", "%s%n", "<b>&amp;",
                                            "\xE6\x97\xA5\xE6\x9C\xAC", " "};
    for (const std::string& name : names) {
        EXPECT_EQ(kept.store.Save(name), Result::done) << name;
    }
    EXPECT_EQ(kept.store.Names(), names);
    for (const std::string& name :
         {std::string(), std::string("a\x1F"), std::string("a\0b", 3), std::string("\x7F"),
          std::string("\xEF\xBF\xBE"), std::string(121, 'n')}) {
        EXPECT_EQ(kept.store.Save(name), Result::badName);
        EXPECT_EQ(kept.store.Rename("%s%n", name), Result::badName);
    }
    EXPECT_EQ(kept.system->files.size(), 1U);
    for (std::size_t i = names.size(); i < PresetStore::maximumPresets; ++i) {
        ASSERT_EQ(kept.store.Save("Set " + std::to_string(i)), Result::done);
    }
    EXPECT_EQ(kept.store.Save("one more"), Result::full);
    EXPECT_EQ(kept.store.Save("%s%n"), Result::done);
}

TEST(Presets, EveryPrinterHasAFileOfItsOwn) {
    std::set<std::filesystem::path> files;
    std::vector<std::string> printers = {"Press", "press", "../../x", "a/b",        "a%2Fb",
                                         "",      ".",     "..",      "B\xC3\xBCro"};
    printers.emplace_back(300, '/');
    printers.emplace_back(301, '/');
    for (const std::string& printer : printers) {
        const Kept kept(printer);
        EXPECT_EQ(kept.store.File().parent_path(), "/home/user/.config/torka/presets") << printer;
        EXPECT_LT(kept.store.File().filename().string().size(), 255U);
        files.insert(kept.store.File());
    }
    EXPECT_EQ(files.size(), printers.size());
}

TEST(Presets, WhatCannotBeWrittenOrReadLosesNothing) {
    Kept kept;
    EXPECT_EQ(kept.store.Save("A"), Result::done);
    const std::string before = kept.File();
    kept.system->writeFailure = [](const auto&) {
        return std::make_error_code(std::errc::no_space_on_device);
    };
    const CapturingLog log;
    EXPECT_EQ(kept.store.Save("B"), Result::notWritten);
    EXPECT_EQ(kept.File(), before);
    EXPECT_THAT(log.Lines(), testing::Contains(HasSubstr("could not be written")));
    kept.system->writeFailure = {};
    std::string& file = kept.system->files[kept.store.File()].content;
    file.append(std::size_t{16} * 1024 * 1024, '\n'); // longer than what is read
    for (const Result told : {kept.store.Save("B"), kept.store.Apply("A"), kept.store.Rename("A", "C"),
                              kept.store.Remove("A"), kept.store.ApplyLastUsed()}) {
        EXPECT_EQ(told, Result::notRead);
    }
    EXPECT_TRUE(file.starts_with(before) && file.size() > before.size()) << "unchanged";
    file = before;
    EXPECT_EQ(kept.store.Apply("A"), Result::done);

    const std::string start = R"(<?xml version="1.0"?><plist version="1.0">)";
    for (const std::string& broken :
         {std::string("no list"), start + "<array/></plist>",
          start + "<dict><key>Presets</key><true/></dict></plist>",
          start +
              "<dict><key>Presets</key><array><true/><dict><key>Name</key><string>x</string></dict></array>"
              "<key>LastUsed</key><string/></dict></plist>"}) {
        kept.File() = broken;
        EXPECT_THAT(kept.store.Names(), IsEmpty()) << broken;
        EXPECT_EQ(kept.store.ApplyLastUsed(), Result::notFound);
        EXPECT_EQ(kept.store.Save("A"), Result::done);
        const bool isDamaged = !broken.ends_with("</dict></plist>");
        const std::string aside = kept.store.File().string() + ".damaged";
        EXPECT_EQ(kept.system->files.contains(aside), isDamaged) << broken;
        EXPECT_EQ(isDamaged ? kept.system->files[aside].content : broken, broken);
        kept.system->files.erase(aside);
    }
    // Values of a wrong kind, unknown choices, lists that are too long.
    kept.File() =
        start +
        "<dict><key>LastUsed</key><dict><key>Values</key><dict><key>*QVFold</key><string>None</string>"
        "<key>*QVDuplex</key><true/></dict><key>MixedMedia</key><array><string>x</string>"
        "<array><string>k</string></array></array><key>Watermark</key><string>gone</string>"
        "</dict></dict></plist>";
    EXPECT_EQ(kept.store.ApplyLastUsed(), Result::done);
    EXPECT_EQ(kept.Get("*QVFold"), "Flat");
    EXPECT_EQ(kept.pane.data->MixedMediaList().Count(), 0U);
    EXPECT_EQ(kept.pane.data->Watermarks().SelectedIndex(), -1);
}

} // namespace

} // namespace torka::tests
