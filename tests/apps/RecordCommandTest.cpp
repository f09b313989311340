// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"

// record: writes and reads records of data files and PPDs. Python and libcups check the results.

namespace torka::tests {

namespace {

CommandResult runRecord(std::vector<std::string> arguments, std::string_view input = {}) {
    arguments.insert(arguments.begin(), "record");
    return runTool(arguments, {}, input);
}

TEST(RecordCommand, PutsReplacesListsAndGets) {
    const TemporaryFolder folder;
    const std::string data = folder / "Proofs.bididata";
    const std::string ppd = folder.Write("Proofs.ppd", readFile(samplePath("torka-production.ppd")));
    std::string text = "Größe 用紙 🖨\n";
    for (int i = 0; i < 500; ++i) {
        text += std::to_string(i * i * i);
    }
    for (const std::string& file : {data, ppd}) {
        for (const std::string_view each :
             {std::string_view("an older and longer text, to be replaced"), {text}}) {
            ASSERT_EQ(runRecord({"put", file, "QVTrayInfo"}, each).status, 0);
        }
        ASSERT_EQ(runRecord({"put", file, "QVTray", "--narrow"}, "bytes \xff").status, 0);
        EXPECT_EQ(runRecord({"get", file, "QVTrayInfo"}).output, text);
        EXPECT_EQ(runRecord({"get", file, "QVTray", "--narrow"}).output, "bytes \xff");
        EXPECT_EQ(runRecord({"get", file, "QVNone"}).status, 1);
        EXPECT_EQ(runRecord({"put", file, "QV Bad"}, "x").status, 2);
        EXPECT_EQ(runRecord({"list", file}).output.find("QVTrayInfo\t"), 0U);
        EXPECT_EQ(runPython(R"PY(
import base64, re, sys, zlib
text = open(sys.argv[1], encoding='latin-1').read()
chunks = re.findall(r'^\*?QVTrayInfo([0-9a-f]{4}): "?([A-Za-z0-9+/=]*)"?$', text, re.M)
assert [int(n, 16) for n, _ in chunks] == list(range(len(chunks)))
sys.stdout.buffer.write(zlib.decompress(b''.join(base64.b64decode(c) for _, c in chunks)).decode('utf-32-le').encode())
)PY",
                            {file}),
                  text);
    }
    EXPECT_EQ(runRecord({"list", folder / "missing"}).status, 2);
}

TEST(RecordCommand, ReadsTheExamplesOfTheirPage) {
    const TemporaryFolder folder;
    const std::string path = TORKA_SOURCE_DIR "/docs/two-way-records.md";
    const std::string page = readFile(path);
    for (const std::string record : {"TrayInfo", "QVTrayInfo"}) { // of the data file, of the PPD
        const std::string text = runRecord({"get", path, record}).output;
        EXPECT_NE(page.find("### Trays\n\n```\n" + text + "```\n"), std::string::npos) << record << text;
    }
    EXPECT_EQ(runTool({"serverdata", path}).status, 0);
}

} // namespace

} // namespace torka::tests
