// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "pane/data/PDEData.h"
#include "platform/memory/MemoryPrinting.h"
#include "tests/support/StringStore.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

// A pane's data with a small description, print settings in memory, and an address list in a string.

namespace torka::tests {

inline const std::string paneHeader = "*PPD-Adobe: \"4.3\"\n"
                                      "*FormatVersion: \"4.3\"\n"
                                      "*LanguageEncoding: ISOLatin1\n"
                                      "*PCFileName: \"SMALL.PPD\"\n"
                                      "*%ZANPropPage Page/Page: True\n"
                                      "*%ZANGroupName Pane/Pane: True\n"
                                      "*%ZANGroupName Group/Group: True\n"
                                      "*%ZANParent Pane/Page: True|Scrollpane\n"
                                      "*%ZANParent Group/Pane: True|Rolldown\n";

inline std::string inGroup(const std::string& keyword, const std::string& flags = "Dynamic") {
    return "*%ZANFlags *" + keyword + ": " + flags + "\n*%ZANGroup *" + keyword + ": Group\n";
}

inline std::string popup(const std::string& keyword, const std::vector<std::string>& choices,
                         const std::string& flags = "Dynamic") {
    std::string text = inGroup(keyword, flags) + "*OpenUI *" + keyword + "/" + keyword +
                       " name: PickOne\n*Default" + keyword + ": " + choices.front() + "\n";
    for (const std::string& choice : choices) {
        text += "*" + keyword + " " + choice + ": \"% " + choice + "\"\n";
    }
    return text + "*CloseUI: *" + keyword + "\n";
}

inline std::string jobNote(const std::string& keyword, const std::string& flags = "255|UTF8") {
    return inGroup(keyword) + "*%ZANJobNote *" + keyword + "/" + keyword + " name: " + flags + "\n*%" +
           keyword + ": \"% (<*" + keyword + ">)\"\n";
}

inline std::string range(const std::string& keyword, const std::string& bounds,
                         const std::string& kind = "Range") {
    return inGroup(keyword) + "*%ZAN" + kind + " *" + keyword + "/" + keyword + ": " + bounds + ";\"<*" +
           keyword + ">\"\n";
}

// A popup of the installable options.
inline std::string unit(const std::string& keyword, const std::vector<std::string>& choices) {
    std::string text = popup(keyword, choices, "Setup");
    text.erase(text.find("*%ZANGroup"), text.find("*OpenUI") - text.find("*%ZANGroup"));
    return "*OpenGroup: InstallableOptions/Installed\n" + text + "*CloseGroup: InstallableOptions\n";
}

// The lines by which a description carries a management template.
inline std::string templateLines(std::string_view xml) {
    std::string text;
    while (!xml.empty()) {
        const std::size_t end = std::min(xml.find('\n'), xml.size());
        text += "*% *DMT_Injection " + std::string(xml.substr(0, end)) + "\n";
        xml.remove_prefix(std::min(end + 1, xml.size()));
    }
    return text;
}

// The print setting that holds the paper, and a paper with the edges of its sheet in points.
inline const std::string paperTicket = "com.apple.print.subTicket.paper_info_ticket";
inline CFDictionaryRef paper(const char* name, std::vector<double> edges = {}) {
    std::vector<CFTypeRef> numbers;
    for (const double edge : edges) {
        numbers.push_back(CFNumberCreate(edge));
    }
    return CFDictionaryCreate(
        {{cfString("com.apple.print.PaperInfo.ppd.PMPaperName"), name ? cfString(name) : nullptr},
         {cfString("com.apple.print.PaperInfo.PMUnadjustedPaperRect"), CFArrayCreate(std::move(numbers))}});
}

struct Pane {
    explicit Pane(const std::string& text, const std::string& fileName = "small.ppd")
        : Pane(text, fileName, {}) {}
    // A pane with the description in an existing file.
    static Pane OfFile(const std::string& path) { return Pane({}, {}, path); }

    // What a panel of a queue reads, with the same session and address list.
    std::unique_ptr<PDEData> DataOf(const std::string& queue) const {
        return std::make_unique<PDEData>(
            model.get(), cfString(queue), QueueAccess{session, {}},
            [kept = addressList] { return std::make_unique<StringStore>(kept); });
    }
    // Opens a new panel for the same queue and print settings.
    void Open() {
        data = DataOf("Press");
        data->SetPrintSettings(settings);
        data->SetPageFormat(format);
    }
    void Set(const char* key, const char* value) { model->SetValueForKey(cfString(key), cfString(value)); }
    void Store(const std::string& key, const CFTypeRef& value) {
        settings->SetValue(cfString(key), value, false);
    }
    std::string Stored(const std::string& key) const {
        return utf8Text(cfCast<CFString>(settings->Value(cfString(key))));
    }
    std::int64_t StoredNumber(const std::string& key) const {
        std::int64_t number = -99;
        CFNumberGetValue(cfCast<CFNumber>(settings->Value(cfString(key))), number);
        return number;
    }

    TemporaryFolder folder;
    std::unique_ptr<ZANPPD> model = std::make_unique<ZANPPD>(kAcceptOrphans | kAcceptHidden);
    std::shared_ptr<MemoryPrintSettings> settings = std::make_shared<MemoryPrintSettings>();
    std::shared_ptr<MemoryPrinter> printer = std::make_shared<MemoryPrinter>();
    std::shared_ptr<MemorySession> session = std::make_shared<MemorySession>();
    std::shared_ptr<MemoryPageFormat> format = std::make_shared<MemoryPageFormat>();
    std::shared_ptr<std::string> addressList = std::make_shared<std::string>();
    std::unique_ptr<PDEData> data;

private:
    Pane(const std::string& text, const std::string& fileName, const std::string& path) {
        model->SetFile(FSRef{path.empty() ? folder.Write(fileName, text).string() : path});
        model->Build();
        session->printer = printer;
        Open();
    }
};

// A test on a system in memory.
struct PaneTest : testing::Test {
    ScopedMemorySystem system;
};

// With a description without a control.
struct BarePane : PaneTest {
    Pane pane{paneHeader};
};

// "KEYWORD=VALUE " of each control whose value is not its default.
inline std::string changesIn(const ZANPPD& model) {
    std::string text;
    model.GetControls()->ForEach([&text](PPDXControl* control) {
        const std::string value = utf8Text(control->CopyCurrentControlValueString());
        text += value == control->DefaultText() ? "" : std::string(control->Keyword()) + "=" + value + " ";
    });
    return text;
}

inline std::vector<std::string> textsOf(const WatermarkList& list) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < list.Count(); ++i) {
        texts.push_back(list.At(i)->Text());
    }
    return texts;
}

inline std::vector<std::string> pairsOf(std::span<const WideSetting> list) {
    std::vector<std::string> texts;
    for (const WideSetting& setting : list) {
        texts.push_back(utf8FromWide(setting.key) + "=" + utf8FromWide(setting.value));
    }
    return texts;
}

} // namespace torka::tests
