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
#include "tests/e2e/Sandbox.h"

#include <fstream>

// The pane's side of the exchange, with queues of a real server.

namespace torka::tests {

class ServerData : public SandboxTest {
protected:
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

    // Asks the controller with lines of the request's own; keeps its answer for Record.
    ServerDataOutcome Ask(const PMPrinter& printer, const std::string& address,
                          const std::string& lines = {}) {
        const ServerDataRequests::Request request = requests.Compose(address, lines, "", {});
        BidiDataFile file(paths, failure);
        const ServerDataOutcome outcome = fetchServerData(printer, request.title, request.text,
                                                          requests.randomStringForBIDIFile(), paths, file);
        answer = file.getBidiDataCopy();
        return outcome;
    }
    std::string Record(const std::string& name) const {
        std::size_t size = 0;
        const RecordBlock block = RecordText(*answer).Read(name, &size);
        return utf8FromWide(wideFromPayload({block.get(), size}));
    }

    std::string ppdPath;
    BidiFilePaths paths;
    BidiFailure failure;
    ServerDataRequests requests;
    std::shared_ptr<const std::string> answer;
};

} // namespace torka::tests
