// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "output/BundleIdentifier.h"
#include "output/FeatureEmission.h"
#include "output/ZANJobNoteList.h"
#include "platform/memory/MemoryPrinting.h"
#include "tests/output/PlainSource.h"
#include "tests/support/SmallPPD.h"
#include "tests/zanutils/OpenSsl.h"

#include <algorithm>
#include <string>

namespace torka {
namespace {

using tests::toHexText;

std::string hexOf(std::string_view bytes) {
    std::string hex(bytes.size() * 2, '\0');
    toHex(tests::bytesOf(bytes).data(), bytes.size(), hex.data());
    return hex;
}

class JobNotes : public testing::Test {
protected:
    JobNotes() {
        const std::string list = tests::readFile(TORKA_SOURCE_DIR "/samples/FieldKeys.plist");
        keys = *FieldKeys::Load(tests::bytesOf(list));
        memory->userName = "alice";
    }
    ~JobNotes() override {
        gQVUTF8Version = 0;
        gPopupJobNotesLangIsJapanese = false;
        SetApplicationTextEncoding(kCFStringEncodingUnknown);
    }

    // Makes a description with these special options and notes, and further lines. A note's code shows its
    // text in hexadecimal digits.
    void Describe(const std::vector<std::string>& options, const std::vector<std::string>& noteLines,
                  const std::string& more = "") {
        std::string ppd = tests::smallPPD;
        for (const std::string& option : options) {
            ppd += "*%ZANSpecialOption " + option + "\n";
        }
        ppd += tests::smallGroup;
        for (const std::string& line : noteLines) {
            const std::string keyword = line.substr(0, line.find(':'));
            ppd += "*%ZANFlags " + keyword + ":\n*%ZANGroup " + keyword + ": Group\n*%ZANJobNote " + keyword +
                   "/Title " + keyword.substr(1) + line.substr(keyword.size()) + "\n*%" + keyword.substr(1) +
                   ": \"(<" + keyword + ">) pop\"\n";
        }
        description =
            std::make_unique<ZANPPD>(FSRef{folder.Write("notes.ppd", ppd + more).string()}, 3, nullptr);
        EXPECT_EQ(description->GetControls()->JobNoteCount(), noteLines.size());
    }
    void SetNote(const char* keyword, const char* text) {
        PPDXJobNote* note = description->GetControls()->FindJobNote(keyword, true);
        ASSERT_TRUE(note) << keyword;
        note->SetNotes(text);
    }
    // The entries that the list adds after the two layout comments, as lines of "site text"; "!" precedes a
    // protected one.
    std::string Emitted(std::shared_ptr<const FieldKeys> with) {
        ZANJobTicket ticket(nullptr, settings, cfString("key"));
        ZANJobNoteList list(*description, std::move(with));
        EXPECT_EQ(list.outInjectionData(&ticket, settings), 0);
        std::string text;
        const auto entries = ticket.Entries();
        for (std::size_t i = 2; i < entries.size(); ++i) {
            text += (entries[i].isProtected ? "!" : "") + std::to_string(entries[i].site) + " " +
                    std::string(entries[i].bytes) + (entries[i].bytes.ends_with('\n') ? "" : "\n");
        }
        leftOut.clear();
        for (const auto& note : list.LeftOut()) {
            leftOut += note.keyword + "/" + note.title + " ";
        }
        return text;
    }
    // The feature block of a note of Describe.
    static std::string Feature(const std::string& keyword, const std::string& text) {
        const std::string hex = hexOf(text);
        // The value replaces the string in the code.
        return "81 %%BeginFeature: " + keyword + " " + text + "\n" + (hex.empty() ? "()" : "<" + hex + ">") +
               " pop\n%%EndFeature\n";
    }
    static std::string Cipher(const std::string& options, const std::string& padded) {
        return hexOf(tests::openSsl("enc -e -nopad -provider legacy -provider default " + options, padded));
    }

    const tests::TemporaryFolder folder;
    const tests::ScopedMemorySystem memory;
    const tests::CapturingLog log;
    std::shared_ptr<MemoryPrintSettings> settings = std::make_shared<MemoryPrintSettings>();
    std::shared_ptr<const FieldKeys> keys;
    std::unique_ptr<ZANPPD> description;
    std::string leftOut;
};

std::string desPadded(std::string text) {
    const std::size_t count = 8 - text.size() % 8;
    return text.append(count, static_cast<char>(count));
}

// Compares the default keys and others, and both ciphers, with openssl, for texts below, at and above the
// block and size limits. The test of the field keys has the other choices.
TEST_F(JobNotes, CipherTextsAgreeWithOpenSsl) {
    for (const std::string special : {"1", "5"}) {
        for (const std::string algorithm : {"", "1", "2"}) {
            std::vector<std::string> options{"*UseSpecialKey: " + special};
            if (!algorithm.empty()) {
                options.push_back("*UseSpecialAlgorithm: " + algorithm);
            }
            Describe(options, {"*DeptPassword: 200|Encrypt", "*QVOther: 200|AESEncrypt"});
            for (const char* keyword : {"*DeptPassword", "*QVOther"}) {
                const bool isAes = algorithm.empty() ? keyword[1] == 'Q' : algorithm == "2";
                for (const std::size_t length : {1U, 7U, 8U, 15U, 16U, 126U, 127U, 128U, 300U}) {
                    SCOPED_TRACE(special + "/" + algorithm + keyword + std::to_string(length));
                    if (length > 8 && (special != "5" || algorithm.empty())) {
                        continue; // openssl is slow
                    }
                    const std::string text(length, 'p');
                    ZANJobNoteList list(*description, keys);
                    char out[noteHexSize];
                    ASSERT_TRUE(list.find(keyword)->encryptNote(0, text.c_str(), out));
                    std::string expected =
                        isAes ? Cipher("-aes-256-cbc -K " + toHexText(keys->AesKey(special)) + " -iv " +
                                           toHexText(keys->Vector(special)),
                                       tests::aesPadded(text))
                              : Cipher("-des-ecb -K " + toHexText(keys->DesKey(special)), desPadded(text));
                    expected.resize(noteHexSize); // cut, or filled with zeros
                    EXPECT_EQ(std::string(out, sizeof out), expected);

                    const std::string hex = expected.substr(0, expected.find('\0'));
                    const auto back =
                        decipherNote(*keys, special, isAes ? NoteAlgorithm::aes : NoteAlgorithm::des, hex);
                    ASSERT_TRUE(back) << back.Why().text;
                    EXPECT_EQ(*back, text.substr(0, 128));
                }
            }
        }
    }
}

TEST_F(JobNotes, DecipheringTellsWhatIsWrong) {
    const auto reason = [this](const char* special, NoteAlgorithm algorithm, const std::string& hex) {
        return decipherNote(*keys, special, algorithm, hex).Why().text;
    };
    for (const char* hex : {"", "0", "0G", "00", "0123456789ABCDE", "0123456789ABCDEF01"}) {
        EXPECT_NE(reason("", NoteAlgorithm::des, hex).find("hexadecimal digits"), std::string::npos) << hex;
    }
    EXPECT_NE(reason("", NoteAlgorithm::aes, std::string(288, 'A')), "");
    const std::string hex = encipherNote(*keys, "5", NoteAlgorithm::aes, "secret");
    EXPECT_NE(reason("6", NoteAlgorithm::aes, hex).find("not made with this key"), std::string::npos);
}

TEST_F(JobNotes, EveryNoteInItsForm) {
    Describe({}, {"*Notes1: 60", "*QVFree: 60", "*Resume: 8|Encrypt", "*QVCode: 20|AESEncrypt",
                  "*DeptPassword: 8", "*ZANPrintTime: 20", "*Instruct: 20"});
    SetNote("*Notes1", "two\nlines");
    SetNote("*QVFree", "no line");
    SetNote("*Resume", "12345678");
    SetNote("*QVCode", "code");
    SetNote("*DeptPassword", "plain");
    SetNote("*ZANPrintTime", "22:00");
    const std::string des = encipherNote(*keys, "", NoteAlgorithm::des, "12345678");
    const std::string aes = encipherNote(*keys, "", NoteAlgorithm::aes, "code");
    EXPECT_EQ(des.size(), 32U);
    const std::string emitted = Emitted(keys);
    EXPECT_TRUE(emitted.starts_with("30 %%ZANCustom1: two lines\n81 %%BeginFeature: *Notes1 two lines\n"))
        << emitted;
    EXPECT_NE(emitted.find(Feature("*QVFree", "no line") + "!30 %%PersPassword: " + des + "\n!" +
                           Feature("*Resume", des) + "!" + Feature("*QVCode", aes) +
                           "30 %%DeptPassword: plain\n" + Feature("*DeptPassword", "plain") +
                           "30 %%ZANPrintTime: 22:00\n" + Feature("*ZANPrintTime", "22:00")),
              std::string::npos)
        << emitted;
    EXPECT_EQ(emitted.find("Instruct"), std::string::npos);
    EXPECT_EQ(leftOut, "");
    // The notes themselves are unchanged.
    EXPECT_STREQ(description->GetControls()->FindJobNote("*Resume", true)->GetNotes(), "12345678");

    const std::string without = Emitted(nullptr);
    EXPECT_EQ(leftOut, "*Resume/Title Resume *QVCode/Title QVCode ");
    EXPECT_EQ(without.find("Resume"), std::string::npos);
    EXPECT_EQ(without.find("PersPassword"), std::string::npos);
    EXPECT_EQ(without.find("QVCode"), std::string::npos);
    const auto told = std::count_if(log.Lines().begin(), log.Lines().end(), [](const std::string& line) {
        return line.find("is left out of the job") != std::string::npos;
    });
    EXPECT_EQ(told, 2);
}

// With a description that does not complete the sign-in, no password leaves in plain, and no text stands
// alone on a line.
TEST_F(JobNotes, SignIn) {
    const std::vector<std::string> notes{"*QVUserAuthName: 60", "*QVUserAuthPwd: 60|Password"};
    const auto cipher = [&](const std::string& text) {
        return encipherNote(*keys, "", NoteAlgorithm::des, text.c_str());
    };
    const auto passwordEntries = [&](const std::string& hex) {
        return "!30 %%ZANUATag: " + hex + "\n!" + Feature("*QVUserAuthPwd", hex);
    };
    Describe({}, notes);
    SetNote("*QVUserAuthName", "bob");
    SetNote("*QVUserAuthPwd", "secret");
    EXPECT_EQ(Emitted(keys), Feature("*QVUserAuthName", "bob") + passwordEntries(cipher("secret")));
    EXPECT_EQ(Emitted(nullptr), Feature("*QVUserAuthName", "bob"));
    EXPECT_EQ(leftOut, "*QVUserAuthPwd/Title QVUserAuthPwd ");

    SetNote("*QVUserAuthName", "");
    SetNote("*QVUserAuthPwd", "");
    EXPECT_EQ(Emitted(nullptr),
              Feature("*QVUserAuthName", "") + "30 %%ZANUATag: \n" + Feature("*QVUserAuthPwd", ""));
    EXPECT_EQ(leftOut, "");

    Describe({}, {notes[0] + "|Encrypt"});
    SetNote("*QVUserAuthName", "bob");
    EXPECT_EQ(Emitted(keys), "!" + Feature("*QVUserAuthName", cipher("bob")));
    EXPECT_EQ(Emitted(nullptr), "");

    Describe({"*ZANAuthenticateWithLDAP: True"}, notes);
    memory->userName = "home//:alice";
    EXPECT_TRUE(Emitted(keys).starts_with(Feature("*QVUserAuthName", "home/alice")));
    SetNote("*QVUserAuthName", "bob");
    EXPECT_TRUE(Emitted(keys).starts_with(Feature("*QVUserAuthName", "bob")));
    EXPECT_EQ(collapsedUserName("//a/://b/"), "/a/b/");

    Describe({"*ZANAuthenticateWithLDAP: True", "*CopierUserAuth: True"}, notes);
    memory->userName = "alice";
    SetNote("*QVUserAuthPwd", "secret");
    EXPECT_EQ(Emitted(keys), passwordEntries(cipher("2:5:alicesecret")));
    EXPECT_EQ(Emitted(nullptr), "");
    EXPECT_EQ(leftOut, "*QVUserAuthPwd/Title QVUserAuthPwd ");
    SetNote("*QVUserAuthPwd", std::string(120, 's').c_str());
    EXPECT_EQ(Emitted(keys), ""); // a reader would take a part for the whole
    EXPECT_EQ(leftOut, "*QVUserAuthPwd/Title QVUserAuthPwd ");
    Describe({"*CopierUserAuth: True"}, {notes[0]});
    SetNote("*QVUserAuthName", "bob");
    EXPECT_EQ(Emitted(keys),
              "!30 %%ZANUATag: " + cipher("2:3:bob") + "\n!" + Feature("*QVUserAuthName", cipher("2:3:bob")));
}

TEST_F(JobNotes, LayoutComments) {
    Describe({}, {});
    // Without rows, there is no layout.
    const std::tuple<std::uint16_t, int, int, bool> cases[] = {
        {1, 0, 0, true},  {2, 0, 0, false}, {3, 0, 0, true},         {4, 0, 0, false},
        {1, 1, 2, false}, {3, 2, 1, false}, {2, 2, 1, true},         {4, 3, 2, true},
        {1, 2, 3, false}, {1, 2, 2, true},  {1, 65536, 65536, true},
    };
    for (const auto& [orientation, rows, columns, isPortrait] : cases) {
        const std::string layout = "com.apple.print.PrintSettings.PMLayout";
        settings->SetValue(cfString(layout + "NUp"), CFBooleanCreate(rows > 0), false);
        settings->SetValue(cfString(layout + "Rows"), CFNumberCreate(rows > 0 ? rows : 2), false);
        settings->SetValue(cfString(layout + "Columns"), CFNumberCreate(rows > 0 ? columns : 1), false);
        ZANJobTicket ticket(nullptr, settings, cfString("key"));
        ZANJobNoteList list(*description, nullptr);
        list.SetPageOrientation(orientation);
        ASSERT_EQ(list.outInjectionData(&ticket, settings), 0);
        std::string told;
        for (const auto& entry : ticket.Entries()) {
            told += std::to_string(entry.site) + std::string(entry.bytes);
        }
        EXPECT_EQ(told, std::string("504%%MacCoreNUp: true\n504%%Orientation: ") +
                            (isPortrait ? "Portrait\n" : "Landscape\n"))
            << orientation << " " << rows << "x" << columns;
    }
    EXPECT_EQ(ZANJobNoteList(*description, keys).outInjectionData(nullptr, settings), -50);
}

// Texts sent as UTF-8 are converted from the application's encoding once, not for each job.
TEST_F(JobNotes, TextsBecomeUTF8) {
    for (const auto& [level, japanese, converts] :
         {std::tuple{"4", false, true}, {"5", false, false}, {"6", true, true}}) {
        Describe({"*QVUTF8_Version: " + std::string(level)}, {"*Notes1: 20|UTF8", "*Notes2: 20"});
        gPopupJobNotesLangIsJapanese = japanese;
        SetNote("*Notes1", "\xE9t\xE9");
        SetNote("*Notes2", "\xE9");
        const std::string first = Emitted(keys);
        EXPECT_TRUE(first.starts_with(converts ? "30 %%ZANCustom1: \xC3\xA9t\xC3\xA9\n"
                                               : "30 %%ZANCustom1: \xE9t\xE9\n"))
            << first;
        EXPECT_NE(first.find("30 %%ZANCustom2: \xE9\n"), std::string::npos);
        EXPECT_EQ(Emitted(keys), first);
    }
}

TEST_F(JobNotes, QueriesAndRanges) {
    Describe({}, {"*Notes1: 60", "*QVPages: 60|TwoCharField"});
    SetNote("*Notes1", "text");
    ZANJobNoteList list(*description, keys);
    ZANJobNote& note = *list.find("*Notes1");
    EXPECT_EQ(list.find("*Notes"), nullptr);
    char buffer[8] = "???????";
    EXPECT_EQ(note.getTitle(buffer), 13); // the length of "Title Notes1" before the cut
    EXPECT_STREQ(buffer, "Title N");
    note.getKeyword(buffer);
    EXPECT_STREQ(buffer, "*Notes1");
    for (const char* text : {"", "01", "01-05,07", " 01 - 05 , AB", "aa-aa"}) {
        EXPECT_TRUE(list.find("*QVPages")->checkRangeValues(text)) << text;
    }
    for (const char* text : {"1", "001", "01,", ",01", "01-", "05-01", "01-02-03", "0%", "01 02"}) {
        EXPECT_FALSE(list.find("*QVPages")->checkRangeValues(text)) << text;
        EXPECT_TRUE(note.checkRangeValues(text)) << text;
    }
}

// A choice whose code is too long goes among the job's options. A note's text never does, and entries with
// enciphered fields stay marked behind a withdrawn one.
TEST_F(JobNotes, TooLongChoicesGoToTheSystemNotesDoNot) {
    std::string popup = "*%ZANFlags *QVOutProfile:\n*%ZANGroup *QVOutProfile: Group\n*OpenUI "
                        "*QVOutProfile/P: PickOne\n*DefaultQVOutProfile: Yes\n"
                        "*QVOutProfile Yes/Y: \"";
    for (int line = 0; line < 11; ++line) {
        popup += "%" + std::string(100, 'x') + "\n";
    }
    popup += "\"\n*End\n*CloseUI: *QVOutProfile\n";
    Describe({}, {"*QVLong: 9000", "*Resume: 8|Encrypt"}, popup);
    SetNote("*QVLong", std::string(6000, 'n').c_str());
    SetNote("*Resume", "12345678");
    installFieldKeys(keys);
    tests::PlainSource source(*description, settings);
    {
        ZANJobTicket ticket(nullptr, settings, cfString("key"));
        FeatureEmission emission(source, ticket, nullptr, EmissionPurpose::keepSettings);
        EXPECT_EQ(emission.OutPostscriptData(), 0);
        ASSERT_EQ(emission.LeftOutSettings().size(), 1U);
        EXPECT_EQ(emission.LeftOutSettings()[0].keyword, "*QVOutProfile");
        std::size_t longest = 0;
        for (const auto& entry : ticket.Entries()) {
            longest = std::max(longest, entry.bytes.size());
            EXPECT_NE(entry.bytes, "*QVOutProfile");
            EXPECT_EQ(entry.isProtected,
                      entry.bytes.find(encipherNote(*keys, "", NoteAlgorithm::des, "12345678")) !=
                          std::string_view::npos);
        }
        EXPECT_GT(longest, 18000U); // the note's text, and its hexadecimal digits
    }
    using Choices = std::vector<std::pair<std::string, std::string>>;
    EXPECT_EQ(systemChoices(settings->Value(cfString(systemChoicesSetting))),
              (Choices{{"QVOutProfile", "Yes"}}));
    installFieldKeys(nullptr);
}

// The path of a file destination stands in plain in the ticket and in a command.
TEST_F(JobNotes, AProtectedMailboxNameNamesNoFileDestination) {
    const std::string popup = "*%ZANFlags *QVDestination:\n*%ZANGroup *QVDestination: Group\n*OpenUI "
                              "*QVDestination/D: PickOne\n*DefaultQVDestination: File\n"
                              "*QVDestination File: \"\"\n*CloseUI: *QVDestination\n";
    for (const std::string flag : {"", "|Encrypt", "|AESEncrypt"}) {
        Describe({}, {"*QVMailboxName: 60" + flag}, popup);
        SetNote("*QVMailboxName", "proofs");
        installFieldKeys(keys);
        const auto printer = std::make_shared<MemoryPrinter>();
        ZANJobTicket ticket(nullptr, settings, cfString("key"));
        const tests::PlainSource source(*description, settings);
        FeatureEmission emission(source, ticket, std::make_shared<MemorySession>(printer),
                                 EmissionPurpose::printJob);
        EXPECT_EQ(emission.OutPostscriptData(), 0);
        installFieldKeys(nullptr);
        const bool isPlain = flag.empty();
        EXPECT_EQ(printer->sent.size(), isPlain ? 1U : 0U);
        EXPECT_EQ(emission.LeftOutNotes().size(), isPlain ? 0U : 1U);
        EXPECT_EQ(std::ranges::any_of(
                      ticket.Entries(),
                      [](const auto& entry) { return entry.bytes.find("proofs") != std::string_view::npos; }),
                  isPlain);
    }
}

// No output of the process contains the secrets: not the emission, not the log, and not the print settings
// without a secret name.
TEST_F(JobNotes, NothingSecretLeavesInPlain) {
    for (const char* first : {"*QVUserAuthPwd: 60", "*Resume: 60|Encrypt", "*QVOutProfile: 60|AESEncrypt",
                              "*QVCurveAdjust: 60|Encrypt"}) {
        for (const bool hasKeys : {true, false}) {
            Describe({"*CopierUserAuth: True"},
                     {first, "*QVUserAuthName: 60", "*DeptPassword: 9|AESEncrypt", "*Notes1: 20"});
            for (const char* keyword : {"*QVUserAuthName", "*DeptPassword"}) {
                SetNote(keyword, "TOPSECRET");
            }
            SetNote(std::string(first).substr(0, std::string(first).find(':')).c_str(), "TOPSECRET");
            SetNote("*Notes1", "for all");
            installFieldKeys(hasKeys ? keys : nullptr);
            settings = std::make_shared<MemoryPrintSettings>();
            PrintSettingsTicket dictionaries(nullptr, settings);
            ZANJobTicket ticket(&dictionaries, settings, cfString("key"));
            tests::PlainSource source(*description, settings);
            source.isTwoWay = true;
            FeatureEmission emission(source, ticket, nullptr, EmissionPurpose::keepSettings);
            EXPECT_EQ(emission.OutPostscriptData(), 0);
            ticket.SavePPDForAllKeys(description.get(), cfString("key"));
            installFieldKeys(nullptr);
            EXPECT_EQ(emission.LeftOutNotes().empty(), hasKeys);

            std::string all;
            for (const auto& entry : ticket.Entries()) {
                all += std::string(entry.bytes) + "\n";
            }
            const CFDictionaryRef kept = settings->CopyAsDictionary();
            for (const auto& [key, value] : kept->Pairs()) {
                if (!isSecretNote(*description, description->GetPPDXControlForKey(key))) {
                    all += "<" + utf8Text(cfCast<CFString>(value)) + ">";
                }
            }
            for (const std::string& line : log.Lines()) {
                all += line;
            }
            EXPECT_EQ(all.find("TOPSECRET"), std::string::npos) << all;
            EXPECT_EQ(all.find("544F50534543524554"), std::string::npos)
                << all; // the text in hexadecimal digits
            EXPECT_NE(all.find("%%ZANCustom1: for all\n"), std::string::npos) << all;
            EXPECT_NE(all.find("<for all>"), std::string::npos) << all;
        }
    }
}

} // namespace
} // namespace torka
