// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/PaneWords.h"

#include "platform/PropertyList.h"
#include "platform/TextCase.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace torka::tests {
namespace {

std::map<std::string, std::string> tableOf(const std::string& language) {
    const std::string xml =
        readFile(std::string(TORKA_SOURCE_DIR) + "/bundle/Resources/" + language + ".lproj/Pane.strings");
    const auto table =
        cfCast<CFDictionary>(CFPropertyListCreateFromXMLData(CFDataCreate(xml.data(), xml.size())));
    std::map<std::string, std::string> texts;
    if (table) {
        for (const auto& [key, value] : table->Pairs()) {
            texts[utf8Text(key)] = utf8Text(cfCast<CFString>(value));
        }
    }
    return texts;
}

// The letter, in upper case; "" for none.
std::string shortcutOf(const std::string& text) {
    const std::size_t place = text.find('&');
    return place == std::string::npos ? "" : upperCaseUtf8(text.substr(place + 1, 1));
}

// The bundle's test compares the other languages with the English table.
TEST(PaneWords, TheEnglishTableHasEveryWordAndShortcutsSeenAtOnceDiffer) {
    std::map<std::string, std::string> english;
    for (const PaneWord& word : paneWords) {
        EXPECT_TRUE(english.emplace(word.key, word.english).second) << word.key;
    }
    EXPECT_EQ(tableOf("en"), english);
    for (const char* language : {"en", "de", "fr", "ja", "zh_CN"}) {
        auto table = tableOf(language);
        std::set<std::string> shortcuts;
        for (const PaneWord& word :
             {words::configure, words::customize, words::defaults, words::fullProperties,
              words::twoWayCheckBox, words::resolve, words::undo, words::show, words::resetSelected}) {
            EXPECT_TRUE(shortcuts.insert(shortcutOf(table[word.key])).second) << language << ' ' << word.key;
        }
    }
}

} // namespace
} // namespace torka::tests
