// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/core/ScriptRunner.h"

#include "jobproperties/core/Text.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <optional>
#include <utility>

namespace torka::jobproperties {

namespace {

constexpr long maximumOverlong = 1000000;
constexpr std::size_t maximumReturned = 100000;

std::size_t number(const std::string& word, long most) {
    return static_cast<std::size_t>(std::clamp(wholeNumber(word).value_or(0), 0L, most));
}

std::string escaped(std::string_view text) {
    std::string line;
    for (const char character : text) {
        const std::size_t known = std::string_view("\n\t\\\r").find(character);
        if (known == std::string_view::npos) {
            line += character;
        } else {
            line.append({'\\', "nt\\r"[known]});
        }
    }
    return line;
}

// Entries that must not break a pane. Null stands for an absent text.
struct GarbageEntry {
    const wchar_t* key;
    const wchar_t* value;
};
constexpr std::array<wchar_t, 6> surrogates{wchar_t{0xD800}, L'a', wchar_t{0xDC00}, wchar_t{0xDFFF},
                                            wchar_t{0xD800}, L'\0'};
constexpr std::array<wchar_t, 5> beyond{wchar_t{0x110000}, wchar_t{0x7FFFFFFF}, wchar_t{-1},
                                        wchar_t{0x10FFFF}, L'\0'};
constexpr std::array<GarbageEntry, 14> garbage{{{nullptr, L"value without a key"},
                                                {L"JPWithoutValue", nullptr},
                                                {nullptr, nullptr},
                                                {L"", L"value with an empty key"},
                                                {L"JPEmptyValue", L""},
                                                {L"JPSurrogates", surrogates.data()},
                                                {L"JPBeyond", beyond.data()},
                                                {L"JPControls", L"\x01\x07\b\n\r\t\x1B\x7F"},
                                                {L"JPFormat", L"%s%n%S%d%%"},
                                                {L"*JP=Key@with:separators\n", L"a=b\nc=d"},
                                                {L"JPTwice", L"1"},
                                                {L"JPTwice", L"2"},
                                                {L"*QV_WATERMARK", L"99999999999999999999"},
                                                {L"*QV_COPIES", L"-1"}}};
constexpr std::size_t overlongKey = 5000;

std::optional<std::wstring> present(const wchar_t* text) {
    return text == nullptr ? std::nullopt : std::optional<std::wstring>(text);
}

} // namespace

ScriptRunner::ScriptRunner(Script givenScript, std::string defaultReport, const Server& givenServer,
                           JobSettings& givenSettings)
    : script(std::move(givenScript))
    , reportPath(std::move(defaultReport))
    , server(givenServer)
    , settings(givenSettings) {
    const auto empty = [](const std::string& path) {
        std::ofstream(path, std::ios::binary | std::ios::trunc);
    };
    empty(reportPath);
    for (const ScriptLine& line : script.lines) {
        if (line.command == "report") {
            empty(line.words[0]);
        }
    }
}

bool ScriptRunner::IsReady() {
    const ScriptLine* line = script.Find("not-ready");
    return line == nullptr ||
           (line->words[0] != "forever" && asked++ >= wholeNumber(line->words[0]).value_or(0));
}

SDMRESULT ScriptRunner::Run(const std::string& title, std::int32_t& result) {
    windowTitle = title;
    for (const ScriptLine& line : script.lines) {
        RunLine(line);
    }
    if (script.Find("open-fail") != nullptr) {
        return SDM_NOT_AVAILABLE;
    }
    const ScriptLine* line = script.Find("result");
    result = line == nullptr ? 0 : static_cast<std::int32_t>(wholeNumber(line->words[0]).value_or(0));
    return SDM_SUCCESS;
}

void ScriptRunner::RunLine(const ScriptLine& line) {
    const std::string& command = line.command;
    const auto& words = line.words;
    if (command == "report") {
        reportPath = words[0];
    } else if (command == "set") {
        if (!settings.Edit(words[0], words[1])) {
            WriteFields({"refused", words[0], settings.IsVeiled(words[0]) ? "veiled" : "locked"});
        }
    } else if (command == "force") {
        settings.Force(words[0], words[1]);
    } else if (command == "remove") {
        settings.Remove(words[0]);
    } else if (command == "overlong") {
        settings.Force(words[0], std::string(number(words[1], maximumOverlong), 'x'));
    } else if (command == "preset") {
        const auto preset = server.PresetByName(words[0]);
        if (preset) {
            settings.Apply(words[0], preset.value);
        } else {
            WriteFields({"no preset", words[0]});
        }
    } else if (command == "restore") {
        settings.Restore();
    } else if (command == "watermark add") {
        settings.AddWatermark(words[0]);
    } else if (command == "watermark set") {
        settings.ReplaceWatermark(number(words[0], 100000), words[1]);
    } else if (command == "watermark remove") {
        settings.RemoveWatermark(number(words[0], 100000));
    } else if (command == "watermark select") {
        settings.SelectWatermark(
            static_cast<int>(std::clamp(wholeNumber(words[0]).value_or(-1), -1L, 100000L)));
    } else if (command == "print") {
        Print(words[0]);
    }
}

void ScriptRunner::Write(std::string_view line) const {
    std::ofstream(reportPath, std::ios::binary | std::ios::app) << line << '\n';
}

void ScriptRunner::WriteFields(const std::vector<std::string>& fields) const {
    std::string line;
    for (const std::string& field : fields) {
        line += (&field == fields.data() ? "" : "\t") + escaped(field);
    }
    Write(line);
}

template <typename Value, typename WriteValue>
void ScriptRunner::WriteAnswer(const std::string& what, const Answer<Value>& answer,
                               WriteValue&& writeValue) const {
    if (!answer.offered) {
        Write("[" + what + "] not offered");
    } else if (!answer) {
        Write("[" + what + "] unavailable " + std::to_string(answer.result));
    } else {
        writeValue(answer.value);
    }
}

void ScriptRunner::WriteKeyValues(const std::string& what, const KeyValues& values) {
    Write("[" + what + "] " + std::to_string(values.size()));
    for (const KeyValue& entry : values) {
        WriteFields({entry.key, !entry.value.empty() && IsSecret(entry.key) ? "********" : entry.value});
    }
}

bool ScriptRunner::IsSecret(std::string_view key) {
    if (!description) {
        std::string ignored; // without a description, names decide
        const auto answer = server.Data();
        const std::string path = answer ? attributeOf(answer.value, "ppdLocation0") : std::string();
        description = path.empty() ? PrinterDescription() : PrinterDescription::FromFile(path, ignored);
    }
    const DescribedSetting* described = description->Find(key);
    return isSecretName(key) || (described != nullptr && described->secret);
}

void ScriptRunner::Print(const std::string& what) {
    const auto pairs = [&](const KeyValues& values) { WriteKeyValues(what, values); };
    const auto head = [&](std::size_t count) { Write("[" + what + "] " + std::to_string(count)); };
    const auto text = [&](const std::string& value) {
        head(1);
        WriteFields({value});
    };
    if (what == "settings") {
        KeyValues values;
        for (const JobSetting& setting : settings.Settings()) {
            values.push_back({setting.key, setting.value});
        }
        pairs(values);
    } else if (what == "readonly") {
        pairs(settings.LockedKeys());
    } else if (what == "veiled") {
        pairs(settings.VeiledKeys());
    } else if (what == "watermarks") {
        head(settings.Watermarks().size());
        for (const std::string& definition : settings.Watermarks()) {
            WriteFields({definition});
        }
    } else if (what == "trays") {
        WriteAnswer(what, server.Trays(), [&](const std::vector<Tray>& trays) {
            head(trays.size());
            for (const Tray& tray : trays) {
                WriteFields({tray.name, tray.key, tray.mediaName, tray.mediaSize, tray.mediaType,
                             tray.mediaColor, std::to_string(tray.level), std::to_string(tray.capacity)});
            }
        });
    } else if (what == "toner") {
        WriteAnswer(what, server.Toners(), [&](const std::vector<Toner>& toners) {
            head(toners.size());
            for (const Toner& toner : toners) {
                WriteFields({toner.name, std::to_string(toner.kind), std::to_string(toner.level),
                             std::to_string(toner.lowLevel), std::to_string(toner.highLevel),
                             std::to_string(toner.capacity), toner.color});
            }
        });
    } else if (what == "serverinfo") {
        WriteAnswer(what, server.Information(), pairs);
    } else if (what == "features") {
        WriteAnswer(what, server.Features(), pairs);
    } else if (what == "help") {
        WriteAnswer(what, server.Help(), pairs);
    } else if (what == "defaults") {
        WriteAnswer(what, server.Defaults(), pairs);
    } else if (what == "serverdata") {
        WriteAnswer(what, server.Data(), text);
    } else if (what == "presets") {
        WriteAnswer(what, server.PresetNames(), [&](const std::vector<std::string>& names) {
            head(names.size());
            for (const std::string& name : names) {
                WriteFields({name});
            }
        });
    } else if (what == "versions") {
        pairs({{"system", server.Version(SDM_VERSION_SYSTEM).value},
               {"driver", server.Version(SDM_VERSION_DRIVER).value}});
    } else if (what == "title") {
        text(windowTitle);
    } else {
        Write("[" + what + "] unknown");
    }
}

void ScriptRunner::Spoil(std::vector<WideEntry>& entries) const {
    if (script.Find("garbage") != nullptr) {
        for (const GarbageEntry& entry : garbage) {
            entries.push_back({present(entry.key), present(entry.value)});
        }
        entries.push_back({std::wstring(overlongKey, L'K'), toWide("value of an overlong key")});
    }
    if (const ScriptLine* line = script.Find("return-count")) {
        const std::size_t count = number(line->words[0], maximumReturned);
        if (entries.size() > count) {
            entries.resize(count);
        }
        for (std::size_t extra = 1; entries.size() < count; ++extra) {
            entries.push_back({toWide("JPExtra" + std::to_string(extra)), std::to_wstring(extra)});
        }
    }
}

} // namespace torka::jobproperties
