// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/bidi/MemoryHost.h"
#include "tests/support/FakeJobPropertiesModule.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

namespace torka::tests {

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
