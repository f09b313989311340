// SPDX-License-Identifier: Apache-2.0
#include "tests/model/ZANPPDTestSupport.h"

#include "PPDFile.h"
#include "PPDX/KVEngine/ConstraintForest.h"
#include "PPDX/KVEngine/KVCache.h"
#include "Settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace torka::tests {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class ZANPPDModel : public ::testing::Test {
protected:
    void TearDown() override { ZANPPD::Options(0); }
};

TEST_F(ZANPPDModel, PagesPanesAndRollDownsFormTheTree) {
    const auto model = parseText(frame +
                                 "*%ZANPropPage Shy/Shy: True|Prop\n*%ZANPropPage Dark: App\n"
                                 "*%ZANSubGroupName Sub/Sub<20>group : True\n"
                                 "*%ZANParent Sub/Pane: True|Scrollpane|Rolldown\n" +
                                 popupText("Key"));
    EXPECT_THAT(errorsOf(*model), IsEmpty());
    PPDXProperty* page = model->GetProperties()->Find("Page", true);
    ASSERT_TRUE(page && page->GetScrollDown());
    EXPECT_EQ(page->GetScrollDown()->RollDowns().Count(), 3U);
    EXPECT_STREQ(page->UserName(), "The Page");
    EXPECT_STREQ(page->GetScrollDown()->UserName(), "The Pane "); // keeps the blank at the end
    EXPECT_STREQ(model->GetGroups()->Find("Sub", true)->UserName(), "Sub group  ");
    const PPDXProperty* shy = model->GetProperties()->Find("Shy", true);
    EXPECT_TRUE(shy->ShowInApp() && !shy->ShowInPrintProp() && shy->IsVisible());
    const PPDXProperty* dark = model->GetProperties()->Find("Dark", true);
    EXPECT_TRUE(!dark->ShowInApp() && dark->ShowInPrintProp() && !dark->IsVisible());
    EXPECT_STREQ(dark->UserName(), "Dark");
    auto* group = dynamic_cast<PPDXRollDown*>(find(*model, "*Key")->GetParent());
    ASSERT_TRUE(group);
    EXPECT_STREQ(group->Keyword(), "Group");
    EXPECT_NE(group->Controls().FindPopup("*Key", true), nullptr);
    EXPECT_EQ(
        parseText(frame + "*%ZANPropPage Dark: App\n", {.options = kAcceptOrphans})->GetProperties()->Count(),
        1U);
}

TEST_F(ZANPPDModel, ChoiceBlocks) {
    const auto model = parseText(
        frame +
        "*%ZANFlags *Pick: Dynamic|Setup\n*%ZANGroup *Pick: Group\n*OpenUI *Pick/Pick <E9>: PickOne\n"
        "*OrderDependency: 10 AnySetup *Pick\n*Default *Else: A\n*Default *Pick: Two/Second\n"
        "*Pick One/First: \"1\n2\n*% 3\"\n*Pick Two: \"two\"\n*PickExtra Three/Third: \"\"\n*Pick: \"no "
        "option\"\n"
        "*Other Four/Four: \"\"\n*CloseUI: *Pick\n"
        "*%ZANFlags *Many:\n*%ZANGroup *Many: Group\n*QVOpenUI *Many/Many: PickMany\n*DefaultElse: Gone\n"
        "*Many A/A: \"a\"\n*Many B/B: \"b\"\n*EndUI: *Many\n"
        "*%ZANFlags *Flag:\n*%ZANGroup *Flag: Group\n*OpenUIZAN *Flag/Flag: Boolean\n*DefaultFlag: True\n"
        "*Flag False/Off: \"off\"\n*Flag True: \"on\"\n*CloseUIZAN: *Flag\n"
        "*%ZANFlags *Bare:\n*BeginUI *Bare: Boolean\n*Bare False/Off: \"\"\n*Bare True/On: \"\"\n*EndUI: "
        "*Bare\n");
    EXPECT_THAT(errorsOf(*model), ElementsAre("33 *Bare"));
    auto* pick = dynamic_cast<PPDXPopupControl*>(find(*model, "*Pick"));
    ASSERT_TRUE(pick);
    EXPECT_EQ(utf8Text(pick->CFStringUserName()), "Pick \xC3\xA9");
    EXPECT_TRUE(pick->IsDynamic() && pick->IsSetup() && !pick->IsCommand() &&
                !pick->CanSelectMultipleItems());
    EXPECT_EQ(pick->ItemCount(), 3U);
    EXPECT_EQ(valueOf(*model, "*Pick"), "Two");
    EXPECT_STREQ(pick->GetKeywordLocalName("Two"), "Two");
    EXPECT_STREQ(pick->GetKeywordLocalName("Three"), "Third");
    EXPECT_EQ(postScriptOf(*pick), "%%BeginFeature: *Pick Two\ntwo\n%%EndFeature\n");
    pick->SetValue(1);
    EXPECT_EQ(postScriptOf(*pick), "%%BeginFeature: *Pick One\n1\n2\n 3\n%%EndFeature\n");
    auto* many = dynamic_cast<PPDXPopupControl*>(find(*model, "*Many"));
    EXPECT_TRUE(many && many->CanSelectMultipleItems() && valueOf(*model, "*Many") == "A");
    auto* flag = dynamic_cast<PPDXBooleanControl*>(find(*model, "*Flag"));
    ASSERT_TRUE(flag);
    EXPECT_TRUE(flag->IsTrue());
    EXPECT_STREQ(flag->FalseDisplayText(), "Off");
    EXPECT_EQ(flag->TrueDisplayText(), nullptr);
    EXPECT_EQ(postScriptOf(*flag), "%%BeginFeature: *Flag True\non\n%%EndFeature\n");
    EXPECT_EQ(valueOf(*model, "*Bare"), "False"); // its first option
    EXPECT_TRUE(find(*model, "*Bare")->IsOrphan());
}

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

TEST_F(ZANPPDModel, Ranges) {
    struct Case {
        const char* element;
        const char* numbers;
        const char* value;
    };
    const Case cases[] = {{"UnitRange", "1;99;1;10;", "10"},
                          {"UnitRange", "(1)(99)(5)(17)", "15"},
                          {"UnitRange", " 0 ; 500 ; 5 ; -3 ; ", "0"},
                          {"UnitRange", "1;999999999999999999999999;1;7;", "7"},
                          {"UnitRange", "-5;5;2;-5;", "-4"},
                          {"FloatRange", "0.5;4.0;0.1;2.2;", "2.200"},
                          {"FloatRange", "-1e999;1e999;1e-3;+0.25;", "0.250"},
                          {"FloatRange", ".5;1;.1;nan;", "0.500"}};
    for (const Case& each : cases) {
        const auto model = parseText(frame + "*%ZANFlags *R:\n*%ZANGroup *R: Group\n*%ZAN" + each.element +
                                     " *R/ R : " + each.numbers + "\"<*R> x\"\n" + popupText("Next"));
        EXPECT_THAT(errorsOf(*model), IsEmpty()) << each.numbers;
        EXPECT_EQ(valueOf(*model, "*R"), each.value) << each.numbers;
        EXPECT_EQ(find(*model, "*R")->CFStringUserName()->units, u" R "); // not trimmed
        EXPECT_THAT(postScriptOf(*find(*model, "*R")), HasSubstr(std::string(each.value)));
    }
}

TEST_F(ZANPPDModel, JobNotesTakeTheirLinesAndNoOthers) {
    const std::string start =
        frame + "*%ZANFlags *Note: Command\n*%ZANGroup *Note: Group\n*%ZANJobNote *Note/A Note: "
                "20|Alpha|Numeric|Foo|MinLength12\n";
    const std::string next = popupText("Next");
    struct Case {
        std::string lines;
        const char* text; // the default
        const char* postscript;
    };
    const Case cases[] = {
        {"", "", ""},
        {"*%DefaultNote: \"hello\"\n", "hello", ""},
        {"*%Note: \"(<*Note>) exec\"\n", "", "%%BeginFeature: *Note \n() exec\n%%EndFeature\n"},
        {"*%DefaultElse: \"AB\"\n*%Note: \"(<*Note>)\n*% exec\"\n", "AB",
         "%%BeginFeature: *Note AB\n<4142>\n exec\n%%EndFeature\n"},
        {"*%DefaultNote: \"\"\n", "", ""},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.lines);
        const auto model = parseText(start + each.lines + next);
        EXPECT_THAT(errorsOf(*model), IsEmpty());
        auto* note = dynamic_cast<PPDXJobNote*>(find(*model, "*Note"));
        ASSERT_TRUE(note);
        EXPECT_EQ(valueOf(*model, "*Note"), each.text);
        EXPECT_EQ(postScriptOf(*note), each.postscript);
        EXPECT_EQ(note->NoteFlags(), jobNoteAlpha | jobNoteNumeric);
        EXPECT_TRUE(note->MaxLength() == 20 && note->MinLength() == 12 && note->IsCommand());
        EXPECT_EQ(valueOf(*model, "*Next"), "A");
    }
    // A note may stand directly in a scroll pane, outside every roll-down.
    const auto inPane =
        parseText(frame + "*%ZANFlags *Note:\n*%ZANGroup *Note: Pane\n*%ZANJobNote *Note/N: 5\n");
    EXPECT_THAT(errorsOf(*inPane), IsEmpty());
    EXPECT_TRUE(find(*inPane, "*Note")->IsOrphan());
}

TEST_F(ZANPPDModel, InstallableOptionsHaveARollDownOfTheirOwn) {
    const auto model =
        parseText(frame + "*OpenGroup: InstallableOptions/Options <41>\n*%ZANFlags *Unit:\n"
                          "*OpenUI *Unit/Unit: PickOne\n*DefaultUnit: None\n*Unit None/No: \"\"\n"
                          "*CloseUI: *Unit\n*CloseGroup: InstallableOptions\n*OpenGroup: General\n"
                          "*%ZANFlags *Lone:\n*OpenUI *Lone/L: PickOne\n*DefaultLone: A\n*Lone A: \"\"\n"
                          "*CloseUI: *Lone\n*CloseGroup: General\n");
    EXPECT_THAT(errorsOf(*model), IsEmpty());
    ASSERT_TRUE(model->InstallableOptions());
    EXPECT_STREQ(model->InstallableOptions()->Keyword(), "QVPPInstallableOptions");
    EXPECT_STREQ(model->InstallableOptions()->UserName(), "Options A");
    EXPECT_THAT(model->OrphanGroups(), ElementsAre(model->InstallableOptions()));
    EXPECT_TRUE(find(*model, "*Unit")->IsInstallableOption());
    EXPECT_EQ(find(*model, "*Unit")->GetParent(), model->InstallableOptions());
    EXPECT_TRUE(find(*model, "*Lone")->IsOrphan() && !find(*model, "*Lone")->IsInstallableOption());
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

TEST_F(ZANPPDModel, HeadersTemplatesAndRecords) {
    const auto model = parseText(
        "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*LanguageVersion: Japanese\n"
        "*LanguageEncoding: \"JIS83-RKSJ\" \n*ModelName: \"Torka Two\"\n*ModelName: \"Torka\n Three\"\n"
        "*ModelName: \"\"\n*%QVVersionMac: \"5.1\"\n*%QVVersion: 4.0\n"
        "*%QVFileVersion: 7 \n*APDialogExtension: \"/Library/Printers/T.plugin\"\n"
        "*%ZANSpecialOption *QVUTF8_Version: 6\n*%ZANSpecialOption *DMT_Injection: True\n\n"
        "*% *DMT_X0000: 3\nl1\n\nl2\n*%ZANPropPage Eaten: True\n*%ZANPropPage Kept: True\n"
        "*% 1 *DMT_Injection <a>\n*DMT_Injection: <b>\n*QVTrayInfo0000: *DMT_Injection\n"
        "*%ZANSpecialOption *DMT_Injection: True\n*%ZANPropPage NoCount: True\n"
        "*%ParamCustomPrintSize Width: 1 points 72 1368.5\n*%ParamCustomPrintSize Height: 2 points 9 2\n"
        "*%ZANGroupName G/<82C882B5>: True\n*%ZANParent G/Kept: True|Scrollpane\n*% End of PPD "
        "file\n*ModelName: \"No\"\n");
    EXPECT_THAT(errorsOf(*model), IsEmpty());
    EXPECT_STREQ(model->LanguageEncoding()->Buffer(), "JIS83-RKSJ");
    EXPECT_STREQ(model->Converter()->LanguageVersion(), "Japanese");
    EXPECT_EQ(GetApplicationTextEncoding(), kCFStringEncodingShiftJIS);
    EXPECT_STREQ(model->ModelName()->Buffer(), "Torka Three");
    EXPECT_STREQ(model->VersionQV()->Buffer(), "5.1");
    EXPECT_STREQ(model->MakerVersion()->Buffer(), "5.1");
    EXPECT_STREQ(model->FileVersionQV()->Buffer(), "7");
    EXPECT_STREQ(model->PathToPDE(), "/Library/Printers/T.plugin");
    EXPECT_EQ(gQVUTF8Version, 6);
    EXPECT_EQ(model->DMTXmlData(), "*% 1 *DMT_Injection <a>\n*DMT_Injection: <b>\n");
    EXPECT_EQ(model->GetProperties()->Find("Eaten", true), nullptr);
    EXPECT_NE(model->GetProperties()->Find("Kept", true), nullptr);
    EXPECT_NE(model->GetProperties()->Find("NoCount", true), nullptr);
    EXPECT_EQ(model->GetGroups()->Find("G", true)->CFStringUserName()->units, u"\u306A\u3057 ");
    auto* size = dynamic_cast<PPDXCustomPageSizeControl*>(find(*model, "*CustomPrintSize"));
    ASSERT_TRUE(size && size->IsOrphan() && size->IsVisible());
    EXPECT_EQ(size->MaxWidth(), 1368.5F);
    EXPECT_EQ(size->GetWidth(), 72.0F);
    EXPECT_EQ(size->MaxHeight(), 0.0F);
    parseText("*PPD-Adobe: \"4.3\"\n");
    EXPECT_EQ(gQVUTF8Version, 0);
    EXPECT_EQ(GetApplicationTextEncoding(), kCFStringEncodingUTF8);
    EXPECT_EQ(parseText("*PPD-Adobe: \"4.3\"\n*LanguageEncoding: ISOLatin1\n")->Converter(), nullptr);
}

TEST_F(ZANPPDModel, AHostWithAnAnnotatedDescriptionStopsAtItsMark) {
    const std::string text = frame + popupText("Key") + "*% APLANNOTATE END of part\n" + popupText("After");
    ScopedMemorySystem memory;
    memory->host.bundleIdentifier = "com.example.IndesignServer";
    EXPECT_EQ(find(*parseText(text), "*After"), nullptr);
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
