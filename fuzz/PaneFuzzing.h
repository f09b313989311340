// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/QuietStreams.h"
#include "pane/data/PDEData.h"
#include "platform/memory/MemoryPrinting.h"
#include "platform/memory/MemorySystem.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

// A pane's data without a queue, for targets that fill it with hostile settings.

namespace torka::fuzz {

class NoStore final : public PropertyListStore {
public:
    std::string Load() override { return {}; }
    SaveResult Save(std::string_view) override { return {}; }
};

// Sets a system in memory and drops the log, from the first call on.
inline void quietPane() {
    static const bool once = [] {
        setLogSink(std::make_shared<NoLog>());
        setSystem(std::make_unique<MemorySystem>());
        return true;
    }();
    require(once);
    quietStreams();
}

// Parses a description through a temporary file and removes the file.
inline std::unique_ptr<ZANPPD> parsedModel(const char* description) {
    std::string name = (std::filesystem::temp_directory_path() / "torka-fuzz-XXXXXX").string();
    const int file = mkstemp(name.data());
    require(file >= 0);
    close(file);
    std::ofstream(name) << description;
    auto parsed = std::make_unique<ZANPPD>(kAcceptOrphans | kAcceptHidden);
    parsed->SetFile(FSRef{name});
    parsed->Build();
    std::filesystem::remove(name);
    return parsed;
}

inline std::unique_ptr<PDEData> paneData(ZANPPD& model, const PMPrintSettings& settings) {
    auto data = std::make_unique<PDEData>(&model, cfString("Press"), QueueAccess{},
                                          [] { return std::make_unique<NoStore>(); });
    data->SetPrintSettings(settings);
    return data;
}

inline void requireWithinCapacities(const PDEData& data) {
    require(data.MixedMedia().size() <= 2048 && data.PadCovers().size() <= 16 &&
            data.SlipSheets().size() <= 16 && data.CoverPages().size() <= 16);
}

} // namespace torka::fuzz
