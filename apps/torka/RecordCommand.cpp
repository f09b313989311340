// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "bidi/records/CFileHdlr.h"
#include "bidi/records/PPDRecords.h"
#include "bidi/records/RecordText.h"
#include "bidi/records/RecordWriter.h"
#include "bidi/text/LineReader.h"
#include "platform/System.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <optional>

namespace torka::tool {

namespace {

struct RecordOptions {
    std::string path;
    std::string name;
    bool isWide = false; // the default; the flag exists to state it
    bool isNarrow = false;
};

// A two-way data file, or a PPD with records.
class RecordFile {
public:
    // Fails when the file cannot be read.
    Result<void> Read(const std::string& filePath) {
        path = filePath;
        if (const std::error_code error = platform::system().ReadFile(path, maximumDataFile, text)) {
            return Fault{"cannot be read: " + error.message(), path};
        }
        isPPD = std::string_view(text).starts_with("*PPD-Adobe");
        if (isPPD) {
            ppd.emplace(path);
            if (!ppd->IsOpen()) {
                return Fault{"the printing system cannot open this PPD", path};
            }
        }
        return {};
    }
    // Calls listed(name, size of the payload) for each record.
    template <typename Listed>
    void List(Listed listed) const {
        std::size_t size = 0;
        if (isPPD) {
            for (const std::string& name : ppd->Names()) {
                ppd->Read(name, &size);
                listed(name, size);
            }
            return;
        }
        for (const auto& [name, length] : RecordText(text).Sizes()) {
            listed(name, length);
        }
    }
    RecordBlock Get(const std::string& name, std::size_t& size) const {
        return isPPD ? ppd->Read(name, &size) : RecordText(text).Read(name, &size);
    }
    // The file's text without the earlier record of this name, and with the new one at the end. "" when no
    // record can have this name or payload.
    std::string With(const std::string& name, std::string_view payload) const {
        std::string result = WithoutChunks(name);
        const std::string start = isPPD ? "*" : "";
        const bool isTaken = encodeRecord(name, payload.data(), payload.size(),
                                          [&](std::string_view chunk, std::string_view base64) {
                                              result.append(start).append(chunk).append(": ");
                                              result.append(isPPD && base64.empty() ? "\"\"" : base64);
                                              result.append("\n");
                                          });
        return isTaken ? result : std::string();
    }

private:
    static bool IsChunkLine(std::string_view line, std::string_view chunkStart) {
        constexpr std::size_t fewestDigits = 4;
        if (!line.starts_with(chunkStart)) {
            return false;
        }
        const std::string_view rest = line.substr(chunkStart.size());
        const std::size_t digits = std::min(rest.find_first_not_of("0123456789abcdef"), rest.size());
        return digits >= fewestDigits && rest.substr(digits).starts_with(':');
    }
    std::string WithoutChunks(const std::string& name) const {
        const std::string chunkStart = (isPPD ? "*" : "") + name;
        std::string result;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = lineEnd(text, at);
            const std::size_t next = lineAfter(text, end);
            if (!IsChunkLine(std::string_view(text).substr(at, end - at), chunkStart)) {
                result.append(text, at, next - at);
            }
            at = next;
        }
        if (!result.empty() && result.back() != '\n' && result.back() != '\r') {
            result += '\n';
        }
        return result;
    }

    std::string path;
    std::string text;
    bool isPPD = false;
    std::optional<PPDRecords> ppd;
};

ExitStatus listRecords(const RecordOptions& options) {
    RecordFile file;
    if (const Result<void> read = file.Read(options.path); !read) {
        return unusable(read.Why());
    }
    file.List([](const std::string& name, std::size_t size) {
        print(printable(name) + "\t" + std::to_string(size) + " bytes\n");
    });
    return ExitStatus::good;
}

ExitStatus getRecord(const RecordOptions& options) {
    RecordFile file;
    if (const Result<void> read = file.Read(options.path); !read) {
        return unusable(read.Why());
    }
    std::size_t size = 0;
    const RecordBlock payload = file.Get(options.name, size);
    if (!payload) {
        warn(options.path + ": has no record " + options.name);
        return ExitStatus::findings;
    }
    const std::string_view bytes(payload.get(), size);
    print(options.isNarrow ? std::string(bytes) : utf8FromWide(wideFromPayload(bytes)));
    return ExitStatus::good;
}

ExitStatus putRecord(const RecordOptions& options) {
    RecordFile file;
    std::error_code unknown;
    // A path that cannot be looked at may hold a file: Read gives the reason.
    const bool isThere = std::filesystem::exists(options.path, unknown) || unknown;
    if (const Result<void> read = isThere ? file.Read(options.path) : Result<void>(); !read) {
        return unusable(read.Why());
    }
    const std::string text((std::istreambuf_iterator<char>(std::cin)), std::istreambuf_iterator<char>());
    const std::string whole =
        file.With(options.name, options.isNarrow ? text : payloadFromWide(wideFromUtf8(text)));
    if (whole.empty()) {
        return unusable(options.name + ": is no name of a record, or its text is too long");
    }
    constexpr unsigned mode = 0644;
    const std::error_code error = platform::system().WriteFile(options.path, whole, mode);
    return error ? unusable(options.path + ": cannot be written: " + error.message()) : ExitStatus::good;
}

} // namespace

void addRecordCommand(CLI::App& app, ExitStatus& status) {
    CLI::App* group = app.add_subcommand("record", "Records of two-way data files and of PPDs");
    group->require_subcommand(1);
    describe(*group, {.examples = {"torka record list office.ppd"}});
    const auto options = std::make_shared<RecordOptions>();
    const auto add = [&](const char* name, const char* purpose, bool isNamed, CommandText text,
                         ExitStatus (*run)(const RecordOptions&)) {
        CLI::App* command = group->add_subcommand(name, purpose);
        command->add_option("FILE", options->path, "Two-way data file or PPD")->required();
        if (isNamed) {
            command->add_option("NAME", options->name, "Record")->required();
            CLI::Option* wide =
                command->add_flag("--wide", options->isWide, "Wide text, in UTF-8 here: the default");
            command->add_flag("--narrow", options->isNarrow, "Bytes as they are")->excludes(wide);
        }
        describe(*command, std::move(text));
        command->callback([options, run, &status] { status = run(*options); });
    };
    add("list", "List the records with their sizes", false, {.examples = {"torka record list office.ppd"}},
        listRecords);
    add("get", "Print a record", true,
        {.examples = {"torka record get office.ppd QVDriverPreference"},
         .findings = "there is no such record"},
        getRecord);
    add("put", "Write standard input as a record", true,
        {.examples = {"echo text | torka record put records.txt QVName"}}, putRecord);
}

} // namespace torka::tool
