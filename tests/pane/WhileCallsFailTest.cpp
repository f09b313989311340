// SPDX-License-Identifier: Apache-2.0
#include "tests/support/FailingCalls.h"

#include "ZANUtils/FieldKeys.h"
#include "pane/editing/PaneEditor.h"
#include "pane/presentation/PresetChoice.h"
#include "platform/PropertyList.h"
#include "platform/memory/MemoryEventLoop.h"
#include "tests/bidi/BidiTestSupport.h"
#include "tests/connection/RecordPPD.h"
#include "tests/pane/PanelFixture.h"

#include <gtest/gtest.h>

#include <set>

namespace torka::tests {

namespace {

using ScopedSpooler = ScopedDouble<MemorySpooler, setSpooler>;
constexpr const char* lifeSecret = "4711998";
const CFStringRef lifeWatermark = cfString("0,0,0,200,30,30,0,0,0,450,0,0,90,Helvetica-Bold,KEPT");

struct Remains {
    std::map<std::string, std::string> kept; // settings, commands, files
    std::multiset<std::string> told;         // steps that failed, alerts, lines of the log
};

CFTypeRef fromXml(const std::string& xml) {
    return CFPropertyListCreateFromXMLData(CFDataCreate(xml.data(), xml.size()));
}

std::string xmlOf(const CFTypeRef& value) {
    const CFDataRef xml = CFPropertyListCreateXMLData(value);
    return {CFDataGetBytes(xml).begin(), CFDataGetBytes(xml).end()};
}

// Replaces UUIDs, because a failure changes how many are made before. Appends the decoded data of a ticket,
// so that a secret in it is found.
std::string comparable(std::string text) {
    const auto ticket = cfCast<CFArray>(fromXml(text));
    for (CFIndex i = 1; i < CFArrayGetCount(ticket); i += 2) {
        const auto bytes = CFDataGetBytes(cfCast<CFData>(CFArrayGetValueAtIndex(ticket, i)));
        text.append(bytes.begin(), bytes.end());
    }
    for (std::size_t at = 0; (at = text.find("00000000-0000-4000-8000-", at)) != std::string::npos;) {
        text.replace(at, 36, "#");
    }
    return text;
}

void live(Bench& bench, MemoryEventLoop& loop, std::multiset<std::string>& told) {
    const auto step = [&told](const char* name, bool isDone) { return isDone || (told.insert(name), false); };
    step("keys", bool(useInstalledFieldKeys()));
    const auto panel = bench.Open();
    if (!step("open", panel != nullptr)) {
        return;
    }
    step("show", panel->panelView() && panel->willShow());
    bench.widgets.painted();
    loop.Turn();
    PDEData& data = *panel->GetPDEDataPtr();
    PaneEditor editor(*panel->getPPDPtr(), &data);
    const PaneTexts texts{editor, {[](const PaneWord& word) { return std::string(word.english); }, {}}};
    editor.Catalog().ForEach([](const PaneField& field) { PaneEditor::Value(*field.control); });
    step("change", editor.SetValue("*QVDuplex", "ShortEdge"));
    set(*panel, "*QVOperatorCode", lifeSecret);
    set(*panel, "*QVAccountId", "123456"); // a popup note
    PresetChoice presets(texts, editor, data);
    step("save preset", presets.Save("Mine").empty());
    step("reset", editor.Reset(*editor.FindControl("*QVDuplex")));
    step("choose preset", presets.Apply("Mine").empty());
    step("serve all programs", presets.ServeAllPrograms().problem.empty());
    PPDTree tree;
    tree.quickAccess.push_back({"", "*QVDuplex", 0});
    step("quick access", data.SetPPDShortcuts(tree));
    step("server data", panel->Server().GetState() != ServerExchange::State::failed);
    step("save", panel->saveValuesAndReturnError(nullptr));
    step("print", panel->shouldPrint());
    panel->printWindowWillClose();
}

Remains life(const std::string& description, std::size_t first, bool staysBroken) {
    failing = {};
    Bench bench(description);
    bench.WriteList("<dict><key>PCFILENAME</key><array><string>TRKPROD.PPD</string></array></dict>");
    const ScopedDouble<MemoryEventLoop, setMainEventLoop> loop;
    const auto printer = std::make_shared<FailingPrinter>();
    printer->name = "Press";
    printer->ppdPath = bench.dialog->printer->ppdPath;
    printer->deviceUri = bench.dialog->printer->deviceUri;
    printer->onSend = bench.dialog->printer->onSend;
    bench.dialog->printer = printer;
    bench.dialog->session = std::make_shared<FailingSession>();
    bench.dialog->session->printer = printer;
    bench.dialog->settings = std::make_shared<FailingPrintSettings>();
    auto& files = bench.system->files;
    const auto put = [&](const std::string& folder, const char* key, const CFTypeRef& value) {
        const CFTypeRef root = CFDictionaryCreate({{cfString(key), CFArrayCreate({value})}});
        files["/home/user/.config/torka/" + folder + "/Press.plist"] = {xmlOf(root), 0600};
    };
    put("presets", "Presets",
        CFDictionaryCreate(
            {{cfString("Name"), cfString("KEPT")}, {cfString("Settings"), CFDictionaryCreate({})}}));
    put("lists", "Watermarks", lifeWatermark);
    const std::string keys = readFile(TORKA_SOURCE_DIR "/samples/FieldKeys.plist");
    files[bench.system->Resolve(FieldKeys::installedPath)] = {keys, 0600};
    files["/var/cache/torka/queues/Press.bididata"] = {"x", 0644};
    const CapturingLog log;
    Remains left;
    failing = {first, staysBroken, {}};
    live(bench, *loop, left.told);
    installFieldKeys(nullptr);
    const CFDictionaryRef settings = bench.dialog->settings->MemoryPrintSettings::CopyAsDictionary();
    for (const auto& [key, value] : settings->Pairs()) {
        left.kept["setting " + utf8Text(key)] = comparable(xmlOf(value));
    }
    for (const auto& sent : printer->sent) {
        left.kept["sent " + comparable(utf8Text(sent.title))] = comparable(utf8Text(sent.command));
    }
    for (const auto& [path, file] : files) {
        left.kept[path.string()] = file.content;
    }
    for (const auto& [name, value] : bench.spooler->standing["Press"]) {
        left.kept["standing " + name] = value;
    }
    for (const AlertText& alert : bench.alerts->shown) {
        left.told.insert(alert.title + alert.informative);
    }
    for (const std::string& line : log.Lines()) {
        left.told.insert(comparable(line));
    }
    return left;
}

class WhileCallsFail : public ::testing::TestWithParam<bool> {}; // with two-way communication

// Of a row of SetValue calls only each 32nd and the last one fail: there are 500, and each failure takes a
// life.
TEST_P(WhileCallsFail, NothingIsLostInSilence) {
    const auto usualSystem = ScopedMemorySystem::make;
    const auto usualSpooler = ScopedSpooler::make;
    ScopedMemorySystem::make = [] { return std::unique_ptr<MemorySystem>(new FailingSystem); };
    ScopedSpooler::make = [] { return std::unique_ptr<MemorySpooler>(new FailingSpooler); };
    const CapturingStreams streams;
    const TemporaryFolder folder;
    const CFTypeRef list =
        CFArrayCreate({cfString("Press"), cfString("10.0.0.7"), CFBooleanCreate(GetParam()), cfString("2"),
                       cfString("1:1"), lifeWatermark, cfString("----- Data End -----")});
    const std::string description =
        readFile(TORKA_SOURCE_DIR "/samples/torka-production.ppd") +
        readFile(writeRecordPPD(folder, "QVDriverPreference", xmlOf(list), true)).substr(smallPPD.size());
    const Remains whole = life(description, SIZE_MAX, false);
    std::vector<std::string> calls = failing.calls;
    calls.emplace_back("end");
    for (std::size_t n = 1; n < calls.size(); ++n) {
        const bool isOneOfMany = calls[n - 1] == "SetValue" && calls[n] == "SetValue" && n % 32 != 0;
        for (int mode = isOneOfMany ? 2 : 0; mode < 2; ++mode) {
            SCOPED_TRACE("call " + std::to_string(n) + ", " + calls[n - 1] +
                         (mode == 1 ? ", and later" : ""));
            const Remains left = life(description, n, mode == 1);
            EXPECT_TRUE(left.kept == whole.kept || !std::ranges::includes(whole.told, left.told));
            for (const auto& [name, content] : left.kept) {
                const bool isSetting = name.starts_with("setting"); // the settings of a dialog hold secrets
                EXPECT_TRUE(whole.kept.contains(name) || !name.starts_with('/')) << name;
                EXPECT_TRUE(!name.ends_with(".plist") || fromXml(content)) << name;
                EXPECT_TRUE(isSetting || content.find(lifeSecret) == std::string::npos) << name;
                const bool mustKeep = name.ends_with("/Press.plist") || name == "sent Command_ZANPrefs#";
                EXPECT_TRUE(!mustKeep || content.find("KEPT") != std::string::npos) << name;
            }
            for (const std::string& line : left.told) {
                EXPECT_EQ(line.find(lifeSecret), std::string::npos);
            }
        }
    }
    failing = {};
    ScopedMemorySystem::make = usualSystem;
    ScopedSpooler::make = usualSpooler;
}

INSTANTIATE_TEST_SUITE_P(Lives, WhileCallsFail, ::testing::Bool());

} // namespace

} // namespace torka::tests
