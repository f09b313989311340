// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/core/PrinterDescription.h"
#include "jobproperties/core/Watermark.h"

#include <cups/ppd.h>
#include <gtest/gtest.h>
#include <memory>
#include <sstream>

// Compares the module's own reader with libcups, which marks its PPD functions as deprecated.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace torka::tests {

using jobproperties::DescribedSetting;
using jobproperties::PrinterDescription;
using jobproperties::SettingKind;
using jobproperties::Watermark;

namespace {

std::string sample(const char* name) { return std::string(TORKA_SOURCE_DIR) + "/samples/" + name; }

} // namespace

TEST(ModuleDescription, AgreesWithThePrintingSystem) {
    for (const char* name : {"torka-production.ppd", "torka-production-ja.ppd"}) {
        SCOPED_TRACE(name);
        const std::unique_ptr<ppd_file_t, decltype(&ppdClose)> ppd(ppdOpenFile(sample(name).c_str()),
                                                                   ppdClose);
        ASSERT_NE(ppd, nullptr);
        std::string error;
        const auto description = PrinterDescription::FromFile(sample(name), error);
        ASSERT_EQ(error, "");
        int compared = 0;
        for (ppd_option_t* option = ppdFirstOption(ppd.get()); option != nullptr;
             option = ppdNextOption(ppd.get())) {
            const DescribedSetting* setting = description.Find(option->keyword);
            ASSERT_NE(setting, nullptr) << option->keyword;
            EXPECT_EQ(setting->label, option->text);
            EXPECT_EQ(setting->defaultValue, option->defchoice) << option->keyword;
            // libcups adds a choice for custom sizes at the end.
            ASSERT_LE(setting->choices.size(), static_cast<std::size_t>(option->num_choices));
            const bool hasMore = setting->choices.size() < static_cast<std::size_t>(option->num_choices);
            EXPECT_STREQ(hasMore ? option->choices[setting->choices.size()].choice : "Custom", "Custom");
            for (std::size_t i = 0; i < setting->choices.size(); ++i) {
                EXPECT_EQ(setting->choices[i].key, option->choices[i].choice);
                EXPECT_EQ(setting->choices[i].label, option->choices[i].text);
            }
            EXPECT_EQ(setting->kind, option->ui == PPD_UI_BOOLEAN   ? SettingKind::Switch
                                     : option->ui == PPD_UI_PICKONE ? SettingKind::Choice
                                                                    : SettingKind::Choices);
            ++compared;
        }
        EXPECT_GT(compared, 3);
    }
}

TEST(ModuleDescription, ReadsWhatThePrintingSystemDoesNot) {
    const auto description =
        PrinterDescription::FromText("*PPD-Adobe: \"4.3\"\r\n*LanguageEncoding: \"ISOLatin1\"\r\n"
                                     "*%ZANPropPage Page/P<E4>ge: True\r\n"
                                     "*%ZANGroupName Pane/Pane: True\r\n"
                                     "*%ZANParent Pane/Page: True|Scrollpane\r\n"
                                     "*%ZANSubGroupName Roll/Roll <41: True\r\n"
                                     "*%ZANParent Roll/Pane: True|Rolldown\r\n"
                                     "*%ZANFlags *Creep: NoTorkaDriverUI\r\n"
                                     "*%ZANGroup *Creep: Roll\r\n"
                                     "*%ZANRange *Creep/Creep (1<2F>2): -5;500;5;10;\"x\r\n"
                                     "*% *OpenUI *Fake: PickOne\"\r\n"
                                     "*%ZANFloatRange *Gamma: 0.5;4.0;0.1;2.2;\"\"\r\n"
                                     "*%ZANRange *Broken: 5;1;1;1;\"\"\r\n"
                                     "*%ZANJobNote *Code/Code: 8|Numeric|Password\r\n"
                                     "*%DefaultCode: \"12\"\r\n"
                                     "*%ZANJobNote *Switch: 5|OnOfSwitch\r\n");
    std::ostringstream told;
    for (const DescribedSetting& each : description.Settings()) {
        told << each.key << '|' << each.label << '|' << each.group << '|'
             << "CMSWDT"[static_cast<int>(each.kind)] << '|' << each.defaultValue << '|' << each.minimum
             << ' ' << each.maximum << ' ' << each.increment << '|' << each.maximumLength
             << (each.secret ? " secret" : "") << (each.hidden ? " hidden" : "") << '\n';
    }
    EXPECT_EQ(told.str(), "Creep|Creep (1/2)|Roll|W|10|-5 500 5|0 hidden\nGamma|Gamma||D|2.2|0.5 4 0.1|0\n"
                          "Broken|Broken||T||0 0 1|0\nCode|Code||T|12|0 0 1|8 secret\n"
                          "Switch|Switch||S||0 0 1|5\n");
    ASSERT_EQ(description.Groups().size(), 1U);
    EXPECT_EQ(description.Groups()[0].label, "Roll <41"); // without ">", the text stays unchanged
    EXPECT_EQ(description.Groups()[0].page, "Päge");

    std::string error;
    EXPECT_TRUE(PrinterDescription::FromFile("/nowhere.ppd", error).Settings().empty());
    EXPECT_EQ(error, "The printer description %1 cannot be read.");
    EXPECT_TRUE(PrinterDescription::FromFile(sample("plain.ps"), error).Settings().empty());
    EXPECT_NE(error.find("is no printer description"), std::string::npos);
}

TEST(ModuleWatermark, DefinitionsRoundTrip) {
    for (const char* definition : {"0,0,0,255,140,0,0,0,0,450,0,0,96,Helvetica-Bold,CONFIDENTIAL",
                                   "1,-5,200,0,0,7,x,1,y,-10,z,w,36,Helvetica,Draft, not for sale"}) {
        EXPECT_EQ(Watermark::FromDefinition(definition).Definition(), definition);
    }
    const auto odd = Watermark::FromDefinition("7x,99999999999,-99999999999,300,-1,,,01,,+450abc,,,,");
    EXPECT_TRUE(odd.clear);
    EXPECT_EQ(odd.right, 2147483647);
    EXPECT_EQ(odd.color, (std::array{255, 0, 0}));
    EXPECT_FALSE(odd.firstPageOnly); // only "1" sets it
    EXPECT_EQ(odd.angle, 450);
    EXPECT_EQ(odd.size, 0);
    Watermark hostile;
    hostile.font = "A,B) (C%";
    hostile.text = "one\ntwo";
    EXPECT_EQ(hostile.Definition(), "0,0,0,128,128,128,0,0,0,450,0,0,72,ABC,one two");
}

} // namespace torka::tests
