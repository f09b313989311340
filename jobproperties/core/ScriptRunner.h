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

// Obeys a script in place of a person: lines act on the session's settings and leave reports in a file.
// Server and settings belong to the session, which outlives the runner.

namespace torka::jobproperties {

class ScriptRunner {
public:
    // Empties the report files that the script names; the first is `defaultReport` unless it names one
    // before.
    ScriptRunner(Script script, std::string defaultReport, const Server& server, JobSettings& settings);

    bool BeginFails() const { return script.Find("begin-fail") != nullptr; }
    bool EndFails() const { return script.Find("end-fail") != nullptr; }
    bool GetFails() const { return script.Find("get-fail") != nullptr; }
    bool ReturnsNull() const { return script.Find("return-null") != nullptr; }
    // Answers the next question whether the server is ready.
    bool IsReady();
    // Runs every line. The answer is that of the window; `result` is written when it is SDM_SUCCESS.
    SDMRESULT Run(const std::string& title, std::int32_t& result);
    // What the script makes of the list that is to be returned.
    void Spoil(std::vector<WideEntry>& entries) const;

private:
    void RunLine(const ScriptLine& line);
    void Print(const std::string& what);
    void Write(std::string_view line) const;
    void WriteFields(const std::vector<std::string>& fields) const;

    template <typename Value, typename WriteValue>
    void WriteAnswer(const std::string& what, const Answer<Value>& answer, WriteValue&& writeValue) const;
    // Values that a window would not show are masked.
    void WriteKeyValues(const std::string& what, const KeyValues& values);
    bool IsSecret(std::string_view key);

    Script script;
    std::string reportPath;
    const Server& server;
    JobSettings& settings;
    std::string windowTitle;
    std::optional<PrinterDescription> description; // once a list was written
    long asked = 0;                                // how often whether the server is ready
};

} // namespace torka::jobproperties
