// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/CommandJob.h"
#include "output/BundleIdentifier.h"
#include "pane/data/PresetStore.h"
#include "pane/panel/TorkaFeaturesPDE.h"
#include "pane/panel/TorkaFeaturesPDEPlugIn.h"
#include "platform/memory/MemoryBundle.h"
#include "platform/memory/MemorySpooler.h"
#include "tests/connection/MemoryAddressSheet.h"
#include "tests/pane/UIPanelFixture.h"
#include "tests/support/CallbackDialog.h"

// A print dialog without a screen. The panel's widgets, queue, bundle and system are in memory. The
// description is a file behind a symbolic link, as a spooler supplies it.

namespace torka::tests {

struct MemoryWidgets {
    std::map<PaneOutlet, std::string> texts;
    std::map<PaneOutlet, bool> hidden;
    std::map<PaneOutlet, bool> enabled;
    std::map<PaneOutlet, double> shifts; // shifts of the frames' lower edges
    std::vector<std::string> observed;
    std::function<void()> painted;
    bool quickAccessOpen = false;
    int quickAccessCancels = 0;
    bool popupAnswer = true;
    int popups = 0;
    MemoryAddressSheet* sheet = nullptr;
};

class MemoryInterface final : public PaneInterface,
                              public CustomizePaneView,
                              public CustomizeQuickAccessView,
                              public PopupJobNoteView {
public:
    explicit MemoryInterface(MemoryWidgets& kept)
        : widgets(kept) {
        widgets = {};
        widgets.sheet = &sheet;
    }
    ~MemoryInterface() override { widgets.sheet = nullptr; }
    ViewRef outputBinsView() override { return root; }
    CFStringRef stringValue(PaneOutlet outlet) const override { return cfString(widgets.texts[outlet]); }
    void setStringValue(PaneOutlet outlet, const CFStringRef& text) override {
        widgets.texts[outlet] = utf8Text(text);
    }
    void setHidden(PaneOutlet outlet, bool hidden) override { widgets.hidden[outlet] = hidden; }
    void setEnabled(PaneOutlet outlet, bool on) override { widgets.enabled[outlet] = on; }
    PaneFrame frame(PaneOutlet) const override { return {0, 100, 200, 300}; }
    void setFrame(PaneOutlet outlet, const PaneFrame& frame) override {
        widgets.shifts[outlet] = frame.y - 100 + frame.height - 300;
    }
    void whenFirstPainted(std::function<void()> action) override { widgets.painted = std::move(action); }
    void bringToFront() override {}
    CustomizePaneView& customizePane() override { return *this; }
    CustomizeQuickAccessView& customizeQuickAccess() override { return *this; }
    PopupJobNoteView& popupJobNotes() override { return *this; }
    bool confirmConflicts() override { return true; }
    bool confirmBrokenNotes() override { return true; }
    BonjourModuleView& addressSheet() override { return sheet; }

    void drawControlsInTree(const PPDTree&) override {}
    void greyoutShortcutControls(bool) override {}
    bool validWindowSessionRunning() const override { return widgets.quickAccessOpen; }
    void doButtonCancelClicked() override {
        widgets.quickAccessOpen = false;
        ++widgets.quickAccessCancels;
    }
    void openSheet() override { widgets.quickAccessOpen = true; }
    void observeControlTextDidChange(std::string_view outlet) override {
        widgets.observed.emplace_back(outlet);
    }
    bool handlePopupJobnoteUI() override {
        ++widgets.popups;
        return widgets.popupAnswer;
    }

private:
    MemoryWidgets& widgets;
    ViewRef root = std::make_shared<View>();
    MemoryAddressSheet sheet;
};

inline std::string panelDescription(const std::string& more = {}) {
    return paneHeader + "*LanguageVersion: English\n*%QVVersion: \"4.2\"\n" +
           popup("QVDuplex", {"None", "Tumble"}) + popup("InputSlot", {"Auto", "Tray1"}) +
           popup("QVFold", {"Flat", "Half"}) + jobNote("QVNotes1", "255|UTF8") +
           jobNote("QVSecret", "32|Alpha|Password") + more;
}

struct Bench {
    explicit Bench(const std::string& description = panelDescription(), std::string fileName = "Press.ppd") {
        queuePath = folder.Write(fileName, description);
        std::filesystem::create_symlink(queuePath, folder / "link");
        dialog->printer->name = "Press";
        dialog->printer->ppdPath = (folder / "link").string();
        dialog->printer->makeAndModel = "Torka Production 90";
        dialog->printer->deviceUri = "socket://10.0.0.7";
        // The queue's filter runs each command at once.
        dialog->printer->onSend = [this](const MemoryPrinter::SentCommand& sent) {
            spooler->jobs.push_back({static_cast<int>(spooler->jobs.size()) + 1, utf8Text(sent.title),
                                     "Press", jobStateCompleted});
        };
        spooler->destinations = {{"Press", destinationStateIdle, true}};
        spooler->ppdPaths["Press"] = queuePath.string();
        bundle->identifier = bundleIdentifier;
        registerBundle(bundle);
        WriteList("<dict><key>PCFILENAME</key><array><string>small.ppd</string></array></dict>");
        setPaneInterfaceLoader([this](TorkaFeaturesPDE&, const BundleRef&) -> std::unique_ptr<PaneInterface> {
            ++loads;
            return std::make_unique<MemoryInterface>(widgets);
        });
        sessionQueueName.clear();
    }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;
    ~Bench() {
        setPaneInterfaceLoader({});
        forgetBundle(bundleIdentifier);
    }
    void WriteList(const std::string& content) {
        system->files["/bundle/Contents/PrinterList.plist"] = {
            R"(<?xml version="1.0"?><plist version="1.0">)" + content + "</plist>", 0644};
    }
    std::shared_ptr<TorkaFeaturesPDE> Open() { return TorkaFeaturesPDE::initWithCallback(dialog); }
    std::shared_ptr<TorkaFeaturesPDE> OpenShown() {
        auto panel = Open();
        static_cast<void>(panel->panelView());
        panel->willShow();
        return panel;
    }
    // A person chooses another printer.
    MemoryPrinter& Choose(const std::string& name, const std::filesystem::path& ppd) {
        const auto printer = std::make_shared<MemoryPrinter>();
        printer->name = name;
        printer->ppdPath = ppd.string();
        printer->deviceUri = dialog->printer->deviceUri;
        printer->onSend = dialog->printer->onSend;
        dialog->printer = printer;
        dialog->session = std::make_shared<MemorySession>(printer);
        return *printer;
    }
    std::vector<std::string> SentTitles() const {
        std::vector<std::string> titles;
        for (const auto& sent : dialog->printer->sent) {
            // Removes the UUIDs at the end of some titles.
            const std::string title = utf8Text(sent.title);
            titles.push_back(title.substr(0, title.find("00000000-")));
        }
        return titles;
    }
    std::string Stored(const char* key) const {
        return utf8Text(cfCast<CFString>(dialog->settings->Value(cfString(key))));
    }
    void Store(const char* key, const CFTypeRef& value) {
        dialog->settings->SetValue(cfString(key), value, false);
    }

    ScopedMemorySystem system;
    ScopedAlerts alerts;
    TemporaryFolder folder;
    std::filesystem::path queuePath;
    std::shared_ptr<MemoryBundle> bundle = std::make_shared<MemoryBundle>();
    std::shared_ptr<CallbackDialog> dialog = std::make_shared<CallbackDialog>();
    ScopedDouble<MemorySpooler, setSpooler> spooler;
    MemoryWidgets widgets;
    int loads = 0;
};

inline std::string valueOf(const TorkaFeaturesPDE& panel, const char* keyword) {
    return utf8Text(panel.getPPDPtr()->CopyValueForKey(cfString(keyword)));
}

inline void set(const TorkaFeaturesPDE& panel, const char* keyword, const char* value) {
    panel.getPPDPtr()->SetValueForKey(cfString(keyword), cfString(value));
}

} // namespace torka::tests
