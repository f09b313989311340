// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/module/ExchangeLists.h"
#include "bidi/module/JobPropertiesHost.h"
#include "bidi/module/JobPropertiesSession.h"
#include "bidi/module/JobPropertiesState.h"
#include "bidi/records/CFileHdlr.h"
#include "bidi/records/RecordEncoding.h"
#include "tests/bidi/BidiTestSupport.h"

#include <functional>

namespace torka::tests {

// A pane with the answers that a test sets.
class MemoryHost final : public JobPropertiesHost {
public:
    MemoryHost() { setJobPropertiesHost(this); }
    // Resets the process-wide state of the exchange, too.
    ~MemoryHost() override {
        setJobPropertiesHost(nullptr);
        sharedList = nullptr;
        sharedListCopyFromJP.reset();
        gotSharedListFromJP = gotServerPresetFromJP = do_not_poll_for_Toner_Info_File = false;
    }
    std::shared_ptr<const std::string> getBidiDataCopy() const override {
        if (const auto hook = onRead) { // it may replace itself
            hook();
        }
        return std::make_shared<const std::string>(data);
    }
    PMPrinter CurrentPrinter() const override { return printer; }
    std::string TemplateText() const override { return templateText; }
    std::string WindowTitle() const override { return title; }
    WaitObserver Observer() override {
        return [this](const WaitProgress& progress) { waits.push_back(progress); };
    }

    void Put(std::string_view name, std::wstring_view text) {
        const std::string_view payload = payloadFromWide(text);
        CFileHdlr::fileWriteData(name, payload.data(), payload.size(), data);
    }

    std::string data;
    std::function<void()> onRead; // called when the module asks for a record
    PMPrinter printer;
    std::string templateText;
    std::string title;
    std::vector<WaitProgress> waits;
};

} // namespace torka::tests
