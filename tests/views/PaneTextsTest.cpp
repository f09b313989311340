#include "pane/views/ExtraWords.h"
#include "pane/views/FieldTexts.h"
#include "pane/views/LiveWords.h"
#include "platform/PropertyList.h"
#include "tests/support/TestSupport.h"
#include "tests/views/ViewFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QRegularExpression>

#include <map>
#include <set>

namespace torka::tests {
namespace {

std::map<std::string, QString> tableOf(const std::string& language) {
    const std::string xml =
        readFile(std::string(TORKA_SOURCE_DIR) + "/bundle/Resources/" + language + ".lproj/Pane.strings");
    const auto table =
        cfCast<CFDictionary>(CFPropertyListCreateFromXMLData(CFDataCreate(xml.data(), xml.size())));
    std::map<std::string, QString> texts;
    if (table) {
        for (const auto& [key, value] : table->Pairs()) {
            texts[utf8Text(key)] = qText(utf8Text(cfCast<CFString>(value)));
        }
    }
    return texts;
}

std::set<QString> placesIn(const QString& text) {
    std::set<QString> places;
    auto matches = QRegularExpression(QStringLiteral("%\\d")).globalMatch(text);
    while (matches.hasNext()) {
        places.insert(matches.next().captured());
    }
    return places;
}

QChar shortcutOf(const QString& text) {
    const auto place = text.indexOf(QLatin1Char('&'));
    return place < 0 ? QChar() : text.at(place + 1).toUpper();
}

TEST(PaneTexts, EveryLanguageHasEveryTextWithItsPlaces) {
    std::set<std::string> keys;
    std::vector<PaneWord> all(paneWords.begin(), paneWords.end());
    all.insert(all.end(), liveWords.begin(), liveWords.end());
    all.insert(all.end(), extraWords.begin(), extraWords.end());
    for (const PaneWord& word : all) {
        EXPECT_TRUE(keys.insert(word.key).second) << word.key;
    }
    for (const char* language : {"en", "de", "fr", "ja", "zh_CN"}) {
        const auto table = tableOf(language);
        EXPECT_EQ(table.size(), keys.size()) << language;
        for (const PaneWord& word : all) {
            const auto text = table.find(word.key);
            ASSERT_NE(text, table.end()) << language << ' ' << word.key;
            const QString english = QString::fromUtf8(word.english);
            EXPECT_EQ(placesIn(text->second), placesIn(english)) << language << ' ' << word.key;
            EXPECT_EQ(shortcutOf(text->second).isNull(), shortcutOf(english).isNull())
                << language << ' ' << word.key;
        }
        // Those that are seen at once must differ.
        std::set<QChar> shortcuts;
        for (const PaneWord& word :
             {words::configure, words::customize, words::defaults, words::fullProperties,
              words::twoWayCheckBox, words::resolve, words::undo, words::show, words::resetSelected}) {
            EXPECT_TRUE(shortcuts.insert(shortcutOf(table.at(word.key))).second)
                << language << ' ' << word.key;
        }
    }
}

TEST(PaneTexts, ShowsUnitsAndDecimals) {
    PaneField field;
    const auto shown = [&](const char* unit) {
        field.unit = unit;
        const ShownUnit result = shownUnit(field);
        return QStringLiteral("%1 %2 %3").arg(result.factor).arg(result.decimals).arg(result.name);
    };
    EXPECT_EQ(shown("1/100 mm"), QStringLiteral("0.01 2 mm"));
    EXPECT_EQ(shown("1/10 pt"), QStringLiteral("0.1 1 pt"));
    EXPECT_EQ(shown("%"), QStringLiteral("1 0 %"));
    EXPECT_EQ(shown("1/7 mm"), QStringLiteral("1 0 1/7 mm"));
    EXPECT_THAT((std::vector{decimalsFor(1.0F), decimalsFor(0.1F), decimalsFor(0.25F), decimalsFor(0.05F),
                             decimalsFor(0.125F), decimalsFor(0.0F)}),
                testing::ElementsAre(0, 1, 2, 2, 3, 0));
}

TEST(PaneTexts, HostileNamesStayPlainText) {
    EXPECT_EQ(labelText(QStringLiteral("R&D <b>x</b>")), QStringLiteral("R&&D <b>x</b>"));
    EXPECT_EQ(plainToolTip(QStringLiteral("<img src=x>\nb")),
              QStringLiteral("<p>&lt;img src=x&gt;<br>b</p>"));
    ScopedMemorySystem system;
    ViewedPane pane(std::make_unique<Pane>(paneHeader +
                                           "*%ZANFlags *Odd: Dynamic\n*%ZANGroup *Odd: Group\n"
                                           "*OpenUI *Odd/%1 <b>&x</b>: PickOne\n*DefaultOdd: A\n"
                                           "*Odd A/%2: \"\"\n*Odd B/<i>: \"\"\n*CloseUI: *Odd\n"));
    const PaneContext context{pane.Editor(), pane.panel->GetCustomizePane(), nullptr, nullptr,
                              ViewedPane::english};
    EXPECT_EQ(shownSetting(context, {"*Odd", "A"}), QStringLiteral("“%1 <b>&x</b>: %2”"));
}

} // namespace
} // namespace torka::tests
