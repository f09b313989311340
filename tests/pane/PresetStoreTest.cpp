// SPDX-License-Identifier: Apache-2.0
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
