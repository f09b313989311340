// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "jobproperties/core/JobSettings.h"
#include "jobproperties/core/ModuleMemory.h"
#include "jobproperties/core/PrinterDescription.h"
#include "jobproperties/core/Script.h"
#include "jobproperties/core/Server.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Executes a script in place of a user. Its lines change the session's settings and write reports to a file.
// Server and settings belong to the session, which outlives the runner.

namespace torka::jobproperties {

class ScriptRunner {
public:
    // Empties the report files that the script names. The first is `defaultReport` unless the script names
    // another before its first report.
    ScriptRunner(Script script, std::string defaultReport, const Server& server, JobSettings& settings);

    bool BeginFails() const { return script.Find("begin-fail") != nullptr; }
    bool EndFails() const { return script.Find("end-fail") != nullptr; }
    bool GetFails() const { return script.Find("get-fail") != nullptr; }
    bool ReturnsNull() const { return script.Find("return-null") != nullptr; }
    // Answers the next query for the server's readiness.
    bool IsReady();
    // Runs every line. Returns what the window would return; writes `result` when it is SDM_SUCCESS.
    SDMRESULT Run(const std::string& title, std::int32_t& result);
    // Changes the list before it is returned, as the script demands.
    void Spoil(std::vector<WideEntry>& entries) const;

private:
    void RunLine(const ScriptLine& line);
    void Print(const std::string& what);
    void Write(std::string_view line) const;
    void WriteFields(const std::vector<std::string>& fields) const;

    template <typename Value, typename WriteValue>
    void WriteAnswer(const std::string& what, const Answer<Value>& answer, WriteValue&& writeValue) const;
    // Masks values that a window would not show.
    void WriteKeyValues(const std::string& what, const KeyValues& values);
    bool IsSecret(std::string_view key);

    Script script;
    std::string reportPath;
    const Server& server;
    JobSettings& settings;
    std::string windowTitle;
    std::optional<PrinterDescription> description; // set when the first list is written
    long asked = 0;                                // number of queries for the server's readiness
};

} // namespace torka::jobproperties
