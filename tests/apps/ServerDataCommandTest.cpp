// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"

#include <filesystem>
#include <gtest/gtest.h>

// serverdata: prints the samples' records as tables, and reports missing and broken records.

namespace torka::tests {
namespace {

void put(const std::string& file, const std::string& record, const std::string& text) {
    const std::string tool = TORKA_BINARY_DIR "/bin/torka";
    ASSERT_EQ(runCommand({tool, "record", "put", file, record}, text).status, 0);
}

bool has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(ServerDataCommand, ShowsTheSamples) {
    const TemporaryFolder folder;
    for (const char* language : {"data", "data.ja"}) {
        const std::string file = folder / language;
        for (const auto& entry : std::filesystem::directory_iterator(samplePath("server-data/data"))) {
            const std::filesystem::path other = samplePath("server-data/") + language;
            const std::string name = entry.path().filename().string();
            put(file, name, readFile(exists(other / name) ? other / name : entry.path()));
        }
    }
    const CommandResult tables = runTool({"serverdata", folder / "data"});
    EXPECT_EQ(tables.status, 0) << tables.errors;
    for (const char* line :
         {"  Tray 3                   Tray3   Letterhead    A4    Bond    Cream        35       550\n",
          "  Magenta          toner  #ff00ff    8 %  low      10 %    100 %    45000\n",
          "\nPresets\n  Brochure, saddle stitched\n  Proof on plain paper\n  Business cards\n",
          "  tessel  Creep                     0.2 mm\n", "  ServerVersion  4.2.1\n"}) {
        EXPECT_TRUE(has(tables.output, line)) << line << tables.output;
    }
    // All rows of a table have the same display width.
    EXPECT_EQ(runPython(R"PY(
import sys, unicodedata
text = sys.stdin.buffer.read().decode().split('\n\n')[0].split('\n')[1:]
width = lambda s: sum(2 if unicodedata.east_asian_width(c) in 'WF' else 1 for c in s)
print({width(line) for line in text} == {width(text[0])}, len(text))
)PY",
                        {}, runTool({"serverdata", folder / "data.ja"}).output),
              "True 8\n");
    const nlohmann::json json = runToolForJson({"serverdata", folder / "data"});
    EXPECT_EQ(json["trays"].size(), 7U);
    EXPECT_EQ(json["trays"][3]["mediaName"], nullptr);
    EXPECT_EQ(json["toner"][4]["kind"], "waste");
    EXPECT_EQ(json["presetNames"][2], "Business cards");
    EXPECT_EQ(json["presets"][2]["tesselValues"][1], (nlohmann::json{{"key", "Rows"}, {"value", "5"}}));
    EXPECT_EQ(json["server"][0]["value"], "press-floor-2");
}

TEST(ServerDataCommand, SaysWhatIsMissingOrBroken) {
    const TemporaryFolder folder;
    const std::string file = folder / "data";
    put(file, "TrayInfo", "1\nTray 1@a@b@c@d@e@1@2\x1b\n");
    put(file, "PresetsList", "0\n");
    const CommandResult tables = runTool({"serverdata", file});
    EXPECT_EQ(tables.status, 2);
    EXPECT_TRUE(has(tables.errors, "record TrayInfo is broken, line 2: ")) << tables.errors;
    for (const char* part : {"Trays\n  broken record TrayInfo\n", "Toner\n  no record TonerInfo\n",
                             "Presets\n  none\n", "no record PresetsData\n", "no record ServerInfo\n"}) {
        EXPECT_TRUE(has(tables.output, part)) << tables.output;
    }
    EXPECT_EQ(runToolForJson({"serverdata", file}, 2)["trays"], nullptr);
    put(file, "TrayInfo", "1\nTray\x1b[2J@a@b@c@d@e@1@2\n");
    const CommandResult mended = runTool({"serverdata", file});
    EXPECT_EQ(mended.status, 0);
    EXPECT_TRUE(has(mended.output, "Tray\\x1b[2J")) << mended.output;
}

} // namespace
} // namespace torka::tests
