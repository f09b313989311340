// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/posix/PosixLibraryLoader.h"
#include "tests/bidi/MemoryHost.h"
#include "tests/support/TestSupport.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace torka::tests {

using Pairs = std::vector<std::pair<std::string, std::string>>;

// Loads the module by its path and drives it through the print dialog's own session, with a print server in
// memory. The settings stand in the record before and after a run.
class ModuleTest : public testing::Test {
protected:
    ModuleTest() {
        setLibraryLoader(std::make_unique<PosixLibraryLoader>());
        EXPECT_EQ(loadJobPropertiesLibrary(TORKA_MODULE).status, ModuleStatus::loaded);
        SetTwoWay(true);
    }
    ~ModuleTest() override {
        ::unsetenv("TORKA_JP_SCRIPT");
        unloadJobPropertiesLibrary();
        setLibraryLoader(nullptr);
    }
    void SetTwoWay(bool on) { setField(record->bidiEnabled, on ? "1" : "0"); }
    void SetSettings(const Pairs& pairs) {
        KeyValueList list;
        for (const auto& [key, value] : pairs) {
            list.AppendNarrow(key, value);
        }
        writeSettings(*record, list.List());
    }
    // Names a printer description in the server's data, which then hold nothing else.
    void SetDescription(const std::string& path) {
        setField(record->ppdCopyPath, path);
        host.data.clear();
        host.Put("BidiData", L"<SMDData><Configuration ppdLocation0=\"" +
                                 std::wstring(path.begin(), path.end()) + L"\"/></SMDData>");
    }
    // One launch. Returns the outcome as the record tells it.
    std::string Run() {
        sharedList = record.get();
        EXPECT_EQ(mainJP(), 0);
        return std::string(fieldText(record->jpResult));
    }
    // The same with a script in the place of the window.
    std::string Run(std::string_view script) {
        ::setenv("TORKA_JP_SCRIPT", folder.Write("script", script).c_str(), 1);
        return Run();
    }
    std::string Report() const { return readFile(folder / "script.report"); }
    Pairs Settings() const {
        Pairs pairs;
        for (std::size_t i = 0; i < entryCount(*record); ++i) {
            pairs.emplace_back(entryKey(*record, i), entryValue(*record, i));
        }
        return pairs;
    }
    std::string Value(const std::string& key) const {
        const Pairs pairs = Settings();
        const auto found = std::ranges::find(pairs, key, &Pairs::value_type::first);
        return found == pairs.end() ? "<absent>" : found->second;
    }

    ScopedMemorySystem system;
    CapturingStreams streams;
    TemporaryFolder folder;
    MemoryHost host;
    SharedMemoryListPtr record = newSharedMemoryList();
};

} // namespace torka::tests
