// SPDX-License-Identifier: Apache-2.0
#include "pane/panel/CustomizePaneController.h"

#include "tests/pane/UIPanelFixture.h"

#include <gtest/gtest.h>

namespace torka::tests {
namespace {

// The document has the characters of each flag.
TEST(CustomizePaneController, AcceptsTheCharactersOfTheFlags) {
    const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    const std::string digits = "0123456789";
    const std::pair<std::uint32_t, std::string> cases[] = {
        {jobNoteAlpha | jobNoteNumeric, digits + letters},
        {jobNoteSpace, " "},
        {jobNoteHyphen | jobNoteNegative, "-"},
        {jobNoteMultiSpace | jobNoteMultiComma, " ,"},
        {jobNoteMultiSpace | jobNoteMultiComma | jobNoteDecimal, ",." + digits},
        {jobNoteSpace | jobNoteDecimal, " ,." + digits},
        {jobNoteLCD | jobNoteSpace | jobNoteDecimal,
         ",-." + digits + letters.substr(0, 26) + "_" + letters.substr(26)},
    };
    for (const auto& [flags, expected] : cases) {
        const PPDXJobNote note("*Note", cfString("Note"), nullptr, nullptr, 0, nullptr, 10, flags, 0);
        std::string accepted;
        for (char c = 1; c < 127; ++c) {
            accepted +=
                CustomizePaneController::IsValidKey(note, static_cast<UniChar>(c)) ? std::string(1, c) : "";
        }
        EXPECT_EQ(accepted, expected) << flags;
    }
}

struct Typing : testing::Test {
    ScopedMemorySystem system;
    Pane pane{paneHeader + jobNote("Digits", "5|Numeric") + jobNote("Pages", "9|Numeric|Hyphen|MultiComma") +
              jobNote("Free", "4|UTF8") + jobNote("Letters", "5|Alpha")};
    CustomizePaneController controller{pane.model.get()};
    int forgotten = 0;

    Typing() {
        controller.SetServerPresetReset([this] { ++forgotten; });
    }
    std::string Type(const char* keyword, const char* text) {
        return utf8Text(controller.controlTextDidChange(controller.TagOfJobNote(keyword), cfString(text)));
    }
};

// One person's typing, in this order.
TEST_F(Typing, TakesOutTheFirstRefusedCharacterAndHoldsTheTextToItsLength) {
    const std::string kanji = "\xE6\xBC\xA2";
    const std::tuple<const char*, std::string, std::string> changes[] = {
        {"*Digits", "12a4b", "124b"},
        {"*Digits", "124b", "124"},
        {"*Pages", "1-3,7", "1-3,7"},
        {"*Letters", std::string("\xC3\xA4") + "bc",
         "bc"},                                 // Mac Roman knows the character, the note does not
        {"*Letters", kanji + "1", kanji + "1"}, // not checked outside Mac Roman
        {"*Unknown", "any text", "any text"},
        {"*Digits", "12345", "12345"},  // exactly the maximum
        {"*Digits", "123456", "12345"}, // the text accepted last comes back
        {"*Free", "pasted", "pasted"},  // another field: stored as it stands
    };
    for (const auto& [keyword, typed, kept] : changes) {
        EXPECT_EQ(Type(keyword, typed.c_str()), kept);
        if (kept.find(kanji) == std::string::npos && std::string_view(keyword) != "*Unknown") {
            EXPECT_EQ(valueOf(pane, keyword), kept); // the description's encoding lacks the kanji
        }
        if (std::string_view(keyword) == "*Digits") {
            EXPECT_EQ(controller.JobNoteClipValue(), typed == "123456" ? 5U : 0U);
        }
    }
    for (const auto& [keyword, text, last] : {std::tuple{"*Digits", "1a2b", 3},
                                              {"*Digits", "1-2", 1},
                                              {"*Pages", "1-2,3", -1},
                                              {"*Pages", "x2", 0}}) {
        EXPECT_EQ(controller.LimitTextLengthOfJobNoteControl(keyword, cfString(text)), false);
        EXPECT_EQ(controller.isNumericText(cfString(text)), last) << keyword << " " << text;
    }
    EXPECT_NE(controller.CurrentJobNoteControlTag(), controller.TagOfJobNote("*Free"));
    EXPECT_EQ(forgotten, std::ssize(changes));
}

TEST_F(Typing, LeavesLongTextInDescriptionsOfOtherScripts) {
    std::string text = paneHeader + jobNote("Free", "4|UTF8");
    text.replace(text.find("ISOLatin1"), 9, "JIS83-RKSJ");
    const Pane other(text, "other.ppd");
    CustomizePaneController japanese(other.model.get());
    const std::uint32_t tag = japanese.TagOfJobNote("*Free");
    EXPECT_EQ(utf8Text(japanese.controlTextDidChange(tag, cfString("abcd"))), "abcd");
    EXPECT_EQ(utf8Text(japanese.controlTextDidChange(tag, cfString("abcde"))), "abcde");
}

} // namespace
} // namespace torka::tests
