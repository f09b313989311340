// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/FieldKeys.h"
#include "Hex.h"
#include "platform/posix/PosixSystem.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace torka {
namespace {

using tests::bytesOf;
using tests::toHexText;

const char* const samplePath = TORKA_SOURCE_DIR "/samples/FieldKeys.plist";

// Compares every value of the option with Python's reading of the same list.
TEST(FieldKeys, ChoosesAsTheListSays) {
    const std::string list = tests::readFile(samplePath);
    const auto keys = *FieldKeys::Load(bytesOf(list));
    std::string chosen;
    for (const char* value :
         {"", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12", "02", " 5", "2 "}) {
        chosen += toHexText(keys->AesKey(value)) + " " + toHexText(keys->DesKey(value)) + " " +
                  toHexText(keys->Vector(value)) + "\n";
    }
    chosen += toHexText(keys->StringVector());
    EXPECT_EQ(chosen, tests::runPython(R"(
import plistlib, sys
p = plistlib.load(open(sys.argv[1], 'rb'))
for v in ['', '1', '2', '3', '4', '5', '6', '7', '8', '9', '10', '11', '12', '02', ' 5', '2 ']:
    k = int(v) - 1 if v in [str(n) for n in range(2, 12)] else 0
    i = {'5': 1, '6': 2, '7': 3, '11': 4}.get(v, 0)
    key = p['KeyTable'][p['KeyOffsets'][k]:][:32]
    print(key.hex(), key[:8].hex(), p['VectorTable'][16 * i:][:16].hex())
print(p['StringVector'].hex(), end='')
)",
                                       {samplePath}));
}

std::string replaced(std::string text, std::string_view from, std::string_view to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

TEST(FieldKeys, TellsWhatIsWrong) {
    const std::string sample = tests::readFile(samplePath);
    const std::string lastOffset = "<integer>176</integer>";
    const std::pair<std::string, std::string> cases[] = {
        {"", "not an XML property list"},
        {"<plist version=\"1.0\"><array/></plist>", "not an XML property list with a dictionary"},
        {replaced(sample, "KeyTable", "KeyTables"), "KeyTable must be data of 208 bytes, but is missing"},
        {replaced(sample, "VectorTable", "KeyTable"), "KeyTable must be data of 208 bytes, but has 80"},
        {replaced(sample, "StringVector", "Other"), "StringVector must be data of 16 bytes"},
        {replaced(sample, "KeyOffsets", "Offsets"),
         "KeyOffsets must be an array of 11 integers, but is missing"},
        {replaced(sample, lastOffset, ""), "KeyOffsets must be an array of 11 integers, but has 10"},
        {replaced(sample, lastOffset, "<integer>177</integer>"),
         "KeyOffsets entry 10 must be an integer from 0 to 176"},
        {replaced(sample, lastOffset, "<integer>-1</integer>"), "KeyOffsets entry 10 must be an integer"},
        {replaced(sample, lastOffset, "<real>3.0</real>"), "KeyOffsets entry 10 must be an integer"},
        {replaced(sample, lastOffset, "<string>3</string>"), "KeyOffsets entry 10 must be an integer"},
        {replaced(sample, lastOffset, "<integer>9223372036854775807</integer>"),
         "KeyOffsets entry 10 must be"},
        {std::string(70000, ' ') + sample, "more than 65536 bytes"},
    };
    for (const auto& [list, expected] : cases) {
        const auto keys = FieldKeys::Load(bytesOf(list));
        ASSERT_FALSE(keys) << expected;
        EXPECT_NE(keys.Why().Line().find(expected), std::string::npos) << keys.Why().Line();
    }
}

TEST(FieldKeys, AFileThatIsNotThereIsNoFault) {
    const tests::TemporaryFolder folder;
    PosixSystemOptions options;
    options.root = folder.Path();
    setSystem(std::make_unique<PosixSystem>(options));
    EXPECT_EQ(*FieldKeys::LoadInstalled(), nullptr);
    EXPECT_TRUE(useInstalledFieldKeys());
    EXPECT_EQ(installedFieldKeys(), nullptr);
    EXPECT_EQ(FieldKeys::Load(folder.Path()).Why().text.find("cannot be read"), 0U);
    EXPECT_EQ(FieldKeys::Load(folder / "none").Why().text.find("no field keys are installed"), 0U);
    setSystem(nullptr);
}

// Anybody who can change the file, a folder above it or a link on its path can choose the keys. Each case
// changes one property of a good place and names the path that must be refused; "" for none.
TEST(FieldKeys, RefusesWhatOthersMayReplace) {
    namespace fs = std::filesystem;
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    ::umask(022); // that of the person could make the files writable for others
    const std::string zan = "var/lib/torka/ZAN";
    const std::string keysName = zan + "/FieldKeys.plist";
    // change: by the shell, in the root; $Z is the file's folder, $F the file
    // culprit: below the root
    // The file's folder lies elsewhere, and a link leads to it.
    const auto moved = [](const std::string& folder, const std::string& start) {
        return "mkdir " + folder + "; mv $Z " + folder + "/keys; ln -s " + start + folder + "/keys $Z; ";
    };
    const std::string writable = "others than its owner may write to the ";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"", "", ""},
        {"chmod 664 $F", keysName, writable + "file"},
        {"chmod 646 $F", keysName, writable + "file"},
        {"chown 65534 $F", keysName, "the file belongs to nobody (uid 65534)"},
        {"chown 65534 $Z", zan, "the folder belongs to"},
        {"chmod 757 $Z", zan, writable + "folder"},
        {"chmod 775 var", "var", writable + "folder"},
        {"chmod 777 .", "", writable + "folder"},
        {"chmod 1777 var", "", ""},
        {moved("safe", "../../../"), "", ""},
        {moved("safe", "$PWD/"), "", ""},
        {moved("safe", "../../../") + "chown -h 65534 $Z", zan, "the link belongs to"},
        {moved("open", "../../../") + "chmod 777 open", "open", writable},
        {"rm -r $Z; ln -s ZAN $Z", zan, "cannot be read: Too many levels of symbolic links"},
        {"rm $F; mkfifo $F", keysName, "cannot be read"},
    };
    for (const auto& [change, culprit, why] : cases) {
        const tests::TemporaryFolder folder; // below a sticky folder, which the walk does not check
        const fs::path root = folder / "root";
        fs::create_directories(root / zan);
        fs::copy_file(samplePath, root / keysName);
        PosixSystemOptions options;
        options.root = root;
        setSystem(std::make_unique<PosixSystem>(options));
        ASSERT_TRUE(*FieldKeys::LoadInstalled()) << change;
        ASSERT_EQ(
            tests::runCommand({"sh", "-ec", "cd \"$0\"; Z=" + zan + "; F=" + keysName + "; " + change, root})
                .status,
            0);
        const bool isGood = why.empty();
        const Result<void> used = useInstalledFieldKeys();
        const std::string error = used ? "" : used.Why().Line();
        EXPECT_EQ(static_cast<bool>(used), isGood) << change << ": " << error;
        EXPECT_EQ(installedFieldKeys() != nullptr, isGood) << change;
        EXPECT_TRUE(isGood || error.find(culprit) != std::string::npos) << change << ": " << error;
        EXPECT_NE(error.find(why), std::string::npos) << change << ": " << error;
    }
    installFieldKeys(nullptr);
    setSystem(nullptr);
}

} // namespace
} // namespace torka
