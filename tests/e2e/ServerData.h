// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/CommandJob.h"
#include "bidi/commands/SpoolerCommands.h"
#include "bidi/records/BidiDataFile.h"
#include "bidi/records/CPPDMsgHdlr.h"
#include "bidi/records/RecordText.h"
#include "platform/TextEncoding.h"
#include "platform/cups/CupsPrinting.h"
#include "platform/cups/CupsSpooler.h"
#include "platform/posix/PosixSystem.h"
#include "tests/e2e/Sandbox.h"

#include <fstream>

// The pane's side of the exchange, with queues of a real server.

namespace torka::tests {

class ServerData : public SandboxTest {
protected:
    void SetUp() override {
        SandboxTest::SetUp();
        if (IsSkipped()) {
            return;
        }
        platform::PosixSystemOptions options;
        options.rootFromEnvironment = true;
        platform::setSystem(std::make_unique<platform::PosixSystem>(options));
        platform::setSpooler(std::make_unique<CupsSpooler>());
    }
    void TearDown() override {
        platform::setSpooler(nullptr);
        platform::setSystem(nullptr);
        SandboxTest::TearDown();
    }

    PMPrinter AddQueue(const std::string& name, const std::string& uri = "torkasink:/") {
        SandboxTest::AddQueue(name, uri);
        ppdPath = *sandbox / ("etc/ppd/" + name + ".ppd");
        EXPECT_TRUE(fillBidiFilePaths(ppdPath, paths));
        return std::make_shared<CupsPrinter>(name);
    }

    // Gives a controller a record for its answers. `kind` is "data" or "ppd".
    void Give(const std::string& address, const std::string& kind, const std::string& name,
              const std::string& text) const {
        const std::filesystem::path folder = *sandbox / ("root/etc/torka/controllers/" + address) / kind;
        std::filesystem::create_directories(folder);
        std::ofstream(folder / name, std::ios::binary) << text;
    }

    std::string ppdPath;
    BidiFilePaths paths;
    BidiFailure failure;
    ServerDataRequests requests;
};

inline std::string wideTextOf(const RecordBlock& block, std::size_t size) {
    return utf8FromWide(wideFromPayload({block.get(), size}));
}

} // namespace torka::tests
