// SPDX-License-Identifier: Apache-2.0
#include "tests/model/ZANPPDTestSupport.h"

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConstraintForest.h"
#include "Settings.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

namespace torka::tests {
namespace {

using ::testing::IsEmpty;

class ZANPPDModel : public ::testing::Test {
protected:
    void TearDown() override { ZANPPD::Options(0); }
};

// The lines of a long value overwrite the piece of the file that held its first line.
TEST_F(ZANPPDModel, TextsBeforeALongValueStay) {
    std::string value = "\"";
    while (value.size() < 2 * PPDFileStream::kPieceCapacity) {
        value += std::string(250, 'x') + '\n';
    }
    value += "\"\n";
    const auto model = parseText(
        frame +
        "*%ZANFlags *Pick:\n*%ZANGroup *Pick: Group\n*OpenUI *Pick/Pick: PickOne\n*DefaultPick: One\n" +
        "*Pick One/First: " + value + "*CloseUI: *Pick\n*%ZANFlags *Flag:\n*%ZANGroup *Flag: Group\n" +
        "*OpenUI *Flag/Flag: Boolean\n*DefaultFlag: True\n*Flag True/On: " + value + "*CloseUI: *Flag\n");
    EXPECT_THAT(errorsOf(*model), IsEmpty());
    auto* pick = dynamic_cast<PPDXPopupControl*>(find(*model, "*Pick"));
    auto* flag = dynamic_cast<PPDXBooleanControl*>(find(*model, "*Flag"));
    ASSERT_TRUE(pick && flag);
    EXPECT_STREQ(pick->GetKeywordLocalName("One"), "First");
    EXPECT_STREQ(flag->TrueDisplayText(), "On");
    EXPECT_EQ(pick->GetKeywordPSData("One", nullptr), flag->PostScript(nullptr) - 1);
}

TEST_F(ZANPPDModel, ConstraintsReachTheStore) {
    const auto model = parseText(frame + popupText("One", "B") + popupText("Two", "B") + popupText("Three") +
                                 "*UIConstraints: *One A *Two B\n*UIConstraints: *Two *Three A\n"
                                 "*%ZANUIRequires: *One\t*Three A\n*%ZANUIConstraints: *Three\tB  *One\n");
    EXPECT_THAT(errorsOf(*model), IsEmpty());
    EXPECT_TRUE(model->IsKVConstrained("*One", "A"));   // by the present value of *Two
    EXPECT_FALSE(model->IsKVConstrained("*One", "B"));  // the requirement forbids nothing
    EXPECT_TRUE(model->IsKVConstrained("*Two", "A"));   // three texts: the second keyword has the option
    EXPECT_TRUE(model->IsKVConstrained("*Three", "B")); // a missing last option means every option
    EXPECT_FALSE(model->IsKVConstrained("*Nothing", "A"));
    EXPECT_TRUE(model->SetValueForKey(cfString("*Two"), cfString("A")));
    EXPECT_FALSE(model->IsKVConstrained("*One", "A"));
}

TEST_F(ZANPPDModel, ConstraintLinesOfEveryLengthSplitAtBlanks) {
    const std::vector<std::string> blanks{" ", "\t", "  ", " \t ", std::string(9, ' ')};
    std::string text = frame + popupText("One");
    std::vector<std::string> expected;
    for (std::size_t i = 0; i < 1200; ++i) {
        const std::string& blank = blanks[i % 5];
        const std::string id = std::to_string(1000 + i);
        const std::string line = blank + '*' + id + std::string(i % 7, 'k') + blank + id +
                                 std::string(i % 11, 'o') + blanks[i % 3] + '*' + std::string(i % 13, 'q') +
                                 id + blank + id + std::string(i % 17, 'p') + (i % 2 == 0 ? blank : "") +
                                 (i % 3 == 0 ? " more" : "");
        text += "*UIConstraints:" + line + '\n';
        std::istringstream words(line);
        std::string word;
        expected.emplace_back();
        for (int count = 0; count < 4 && words >> word; ++count) {
            expected.back() += word + ' ';
        }
    }
    const auto model = parseText(text);
    const UIConstraints& store = *model->GetUIConstraints();
    std::vector<std::string> found;
    store.GetConstraintForest()->ForEach([&](auto key, auto option, const KeyOption& pair) {
        found.emplace_back();
        for (const std::int64_t each : {key, option, pair.key, pair.option}) {
            found.back() += store.GetConstraintStrings()->Find(each) + std::string(" ");
        }
        return true;
    });
    std::ranges::sort(found);
    EXPECT_EQ(found, expected);
}

TEST_F(ZANPPDModel, AHostWithAnAnnotatedDescriptionStopsAtItsMark) {
    const std::string text = frame + popupText("Key") + "*% APLANNOTATE END of part\n" + popupText("After");
    ScopedMemorySystem memory;
    for (const char* host :
         {"com.example.IndesignServer", "com.example.Preview", "net.example.VectorWorks"}) {
        memory->host.bundleIdentifier = host;
        EXPECT_EQ(find(*parseText(text), "*After"), nullptr) << host;
    }
    memory->host.bundleIdentifier = "com.example.editor";
    EXPECT_NE(find(*parseText(text), "*After"), nullptr);
}

TEST_F(ZANPPDModel, ValuesGoInAndOutByKey) {
    const auto model =
        parseText(frame + popupText("Key") + "*%ZANSpecialOption *Special: 1\n*%QVShortcut *Key\n");
    const CFDictionaryRef values = model->CopyAllValues();
    EXPECT_EQ(CFDictionaryGetCount(values), 2);
    model->SetAllValues(CFDictionaryCreate({{cfString("*Key"), cfString("B")},
                                            {cfString("*Special"), cfString("2")},
                                            {cfString("*Unknown"), cfString("x")},
                                            {cfString("*Key"), CFNumberCreate(1)}}));
    EXPECT_EQ(valueOf(*model, "*Special"), "1");
    EXPECT_EQ(valueOf(*model, "*Key"), "A"); // a pair whose value is no text replaced the pair before it
    EXPECT_TRUE(model->SetValueForKey(cfString("*Key"), cfString("B")));
    EXPECT_FALSE(model->SetValueForKey(cfString("*Special"), cfString("2")));
    EXPECT_FALSE(model->SetValueForKey(nullptr, cfString("2")) ||
                 model->SetValueForKey(cfString("*Key"), nullptr));
    EXPECT_EQ(model->CopyValueForKey(cfString("Key")), nullptr);
    EXPECT_EQ(model->GetShortcuts()->First(), find(*model, "*Key"));
}

TEST_F(ZANPPDModel, SuppliedChoicesReplaceAPopupsOwn) {
    const auto model = parseText(frame + popupText("Key", "B") + popupText("Other") +
                                 "*UIConstraints: *Key *Other A\n*UIConstraints: *Key C *Other A\n");
    const std::vector<SuppliedPopupItem> items{
        {"C", cfString("Sea")}, {"B", nullptr}, {"C", cfString("Again")}};
    EXPECT_TRUE(model->PPDReconcilePopupMenu("*Key", items, "C"));
    auto* popup = dynamic_cast<PPDXPopupControl*>(find(*model, "*Key"));
    EXPECT_EQ(popup->ItemCount(), 2U);
    EXPECT_EQ(valueOf(*model, "*Key"), "B"); // still offered
    EXPECT_STREQ(popup->GetKeywordLocalName("B"), "Name B");
    EXPECT_STREQ(popup->GetKeywordLocalName("C"), "Sea");
    EXPECT_NE(postScriptOf(*popup).find("(b)"), std::string::npos);
    EXPECT_TRUE(model->IsKVConstrained("*Key", "C"));
    EXPECT_TRUE(model->PPDCreatePopupMenu("*Key", items, "C"));
    EXPECT_EQ(valueOf(*model, "*Key"), "C");
    popup->SetDefaultValue(2);
    EXPECT_FALSE(popup->Rebuild("*Other", itemsOf({"X"}), "X") || popup->Rebuild("*Key", {}, "X"));
    EXPECT_EQ(popup->ItemCount(), 2U);
    // The new default may be the text of an item that Rebuild removes.
    EXPECT_TRUE(popup->Rebuild("*Key", itemsOf({"X", "Y", "C"}), popup->GetDefaultKeyword()));
    EXPECT_EQ(valueOf(*model, "*Key") + selectedIn(*model->GetUIConstraints(), "*Key"), "CC");
    EXPECT_EQ(postScriptOf(*popup), "%%BeginFeature: *Key C\n\n%%EndFeature\n");
    EXPECT_TRUE(popup->Rebuild("*Key", itemsOf({"X"}), nullptr));
    EXPECT_EQ(popup->GetValue(), 0);
    EXPECT_EQ(postScriptOf(*popup), "");
    const std::vector<SuppliedPopupItem> fewer{{"A", nullptr}};
    EXPECT_TRUE(model->PPDReconcilePopupMenu("*Key", fewer, "Gone"));
    EXPECT_EQ(valueOf(*model, "*Key"), "A");
    EXPECT_FALSE(model->PPDCreatePopupMenu("*Nothing", items, "C"));
    EXPECT_FALSE(model->PPDCreatePopupMenu("*Key", {}, "C"));
}

// Settings restore a description with changed values, both with its file and without it.
TEST_F(ZANPPDModel, SettingsGiveTheDescriptionBack) {
    const std::filesystem::path sample =
        std::filesystem::path(TORKA_SOURCE_DIR) / "samples/torka-production.ppd";
    const CFURLRef url = CFURLCreateWithFileSystemPath(sample.string());
    ZANPPD model(url, acceptAll, nullptr);
    model.GetControls()->ForEach([](PPDXControl* control) {
        if (auto* popup = dynamic_cast<PPDXPopupControl*>(control)) {
            popup->SetValue(static_cast<int>(popup->ItemCount()));
        }
    });
    auto* secret = dynamic_cast<PPDXJobNote*>(find(model, "*Resume"));
    ASSERT_TRUE(secret && secret->IsEncrypt());
    secret->SetNotes("TOPSECRET");
    Settings saved;
    model.Save(saved);
    secret->ResetToDefaultValue();
    for (const auto& [key, value] : saved.Values()) {
        EXPECT_EQ(value.find("TOPSECRET"), std::string::npos) << key;
    }
    Settings settings(saved.CopyAsDictionary());
    const CFURLRef gone = CFURLCreateWithFileSystemPath("/nonexistent/gone.ppd");
    for (const CFURLRef& source : {url, gone}) {
        ZANPPD back(settings, source, nullptr);
        EXPECT_TRUE(CFEqual(back.CopyAllValues(), model.CopyAllValues()));
        EXPECT_EQ(back.GetProperties()->Count(), model.GetProperties()->Count());
        EXPECT_EQ(back.GetShortcuts()->Count(), model.GetShortcuts()->Count());
        EXPECT_STREQ(back.VersionQV()->Buffer(), model.VersionQV()->Buffer());
        for (const auto& [change, options] : {std::pair{&ZANPPD::IncludeOrphans, 1U},
                                              {ZANPPD::IncludeHidden, 3U},
                                              {ZANPPD::ExcludeOrphans, 0U},
                                              {ZANPPD::IncludeHidden, 2U},
                                              {ZANPPD::ExcludeHidden, 0U}}) {
            change();
            EXPECT_EQ(ZANPPD::Options(), options);
            EXPECT_EQ(back.GetControls()->ControlCount(), model.GetControls()->ControlCount());
        }
        model.GetControls()->ForEach([&](PPDXControl* control) {
            PPDXControl* other = find(back, control->Keyword());
            ASSERT_TRUE(other) << control->Keyword();
            EXPECT_EQ(other->Type(), control->Type());
            EXPECT_EQ(utf8Text(other->CFStringUserName()), utf8Text(control->CFStringUserName()));
            EXPECT_EQ(postScriptOf(*other), postScriptOf(*control)) << control->Keyword();
            ASSERT_EQ(!other->GetParent(), !control->GetParent()) << control->Keyword();
            EXPECT_TRUE(!control->GetParent() || *other->GetParent() == *control->GetParent());
        });
    }
}

TEST_F(ZANPPDModel, HardInputSurvives) {
    const std::string quote(200000, 'q');
    std::string lines;
    for (int i = 0; i < 4000; ++i) {
        lines += quote.substr(0, 90) + "\n";
    }
    std::string nested;
    for (int i = 0; i < 5000; ++i) {
        nested += "*OpenGroup: InstallableOptions/I\n*%ZANFlags *K" + std::to_string(i) + ":\n*OpenUI *K" +
                  std::to_string(i) + "/K: PickOne\n";
    }
    const std::string texts[] = {
        frame + "*ModelName: \"" + quote + "\n" + popupText("Key"),
        frame + "*ModelName: \"" + lines + popupText("Key"),
        frame + nested + popupText("Key"),
        frame + std::string("*UIConstraints: *A\0B *C D\n", 25) + std::string(70000, '\0') + "\n" +
            popupText("Key"),
        frame + "*%ZANFlags *Big:\n*OpenUI *Big/B: PickOne\n*DefaultBig: A\n*Big A/A: \"" + lines +
            "\"\n*CloseUI: *Big\n" + popupText("Key"),
        frame + "\xFF\xFF\n*%ZANPropPage " + quote + "\n" + popupText("Key"),
    };
    for (const std::string& text : texts) {
        const auto model = parseText(text);
        EXPECT_EQ(valueOf(*model, "*Key"), "A") << text.substr(frame.size(), 40);
    }
    // A value that exceeds the store's limit is cut, not lost.
    const auto big = parseText(texts[4]);
    EXPECT_GT(postScriptOf(*find(*big, "*Big")).size(), 60000U);
}

} // namespace
} // namespace torka::tests
