#pragma once

#include "bidi/module/ExchangeLists.h"
#include "bidi/module/JobPropertiesHost.h"
#include "bidi/module/JobPropertiesSession.h"
#include "bidi/module/JobPropertiesState.h"
#include "bidi/records/CFileHdlr.h"
#include "bidi/records/RecordEncoding.h"
#include "tests/bidi/BidiTestSupport.h"
#include "tests/support/FakeJobPropertiesModule.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

namespace torka::tests {

// A pane with the answers that a test sets.
class MemoryHost final : public JobPropertiesHost {
public:
    MemoryHost() { setJobPropertiesHost(this); }
    ~MemoryHost() override { setJobPropertiesHost(nullptr); }
    std::shared_ptr<const std::string> getBidiDataCopy() const override {
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
    PMPrinter printer;
    std::string templateText;
    std::string title;
    std::vector<WaitProgress> waits;
};

// A module, a pane and an exchange record. The fixture resets all process-wide state at its end.
class JobPropertiesTest : public ::testing::Test {
protected:
    JobPropertiesTest() {
        record = std::make_unique<SharedMemoryList>();
        sharedList = record.get();
    }
    ~JobPropertiesTest() override {
        UnloadJPModule();
        unloadJobPropertiesLibrary();
        sharedList = nullptr;
        sharedListCopyFromJP.reset();
        gotSharedListFromJP = gotServerPresetFromJP = do_not_poll_for_Toner_Info_File = false;
    }
    void Load(bool twoWay) {
        setField(record->bidiEnabled, twoWay ? "1" : "0");
        ASSERT_EQ(loadJobPropertiesLibrary(FakeJobPropertiesModule::path).status, ModuleStatus::loaded);
        ASSERT_EQ(LoadJPModule(), 0);
        module.table = mFuncList.data();
    }

    ScopedMemorySystem system;
    CapturingStreams streams;
    FakeJobPropertiesModule module;
    MemoryHost host;
    std::unique_ptr<SharedMemoryList> record;
};

} // namespace torka::tests
