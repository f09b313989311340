// SPDX-License-Identifier: Apache-2.0
// Runs command jobs of the queue's filter. The filter writes nothing outside its two folders, each of its
// messages is one line, and the notes and owner records that it stores can be read again.
//
// Input: the first line is a title, the second an options text, the rest the command's text.

#include "bidi/text/StandardStreams.h"
#include "platform/posix/PosixSystem.h"
#include "spooler/filter/Commands.h"
#include "spooler/filter/FilterNotes.h"
#include "spooler/filter/TicketOwner.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace {

using namespace torka;

struct Streams final : StandardStreams {
    void Output(std::string_view) override {}
    void Error(std::string_view text) override {
        text.remove_prefix(text.starts_with('\n') ? 1 : 0); // an empty line
        if (!text.ends_with('\n') || text.find('\n') + 1 != text.size()) {
            std::abort();
        }
    }
};

// A system root for this process, in a memory file system if the machine has one.
struct Root {
    Root() {
        std::error_code none;
        const bool hasMemory = std::filesystem::is_directory("/dev/shm", none);
        std::string pattern =
            (hasMemory ? "/dev/shm" : std::filesystem::temp_directory_path().string()) + "/torka-fuzz-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            std::abort();
        }
        path = pattern;
        platform::PosixSystemOptions options;
        options.root = path;
        platform::setSystem(std::make_unique<platform::PosixSystem>(options));
        setStandardStreams(std::make_shared<Streams>());
        std::filesystem::create_directories(path / "etc/torka/controllers/h/data");
    }
    Root(const Root&) = delete;
    Root& operator=(const Root&) = delete;
    ~Root() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    std::filesystem::path path;
};

std::string takeLine(std::string_view& rest) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    std::string line(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return line.substr(0, line.find('\0')); // a program's arguments end at a NUL
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Root root;
    const std::filesystem::path& folder = root.path;
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    const std::string title = takeLine(rest);
    const std::string options = takeLine(rest);
    const char* arguments[] = {"torkafilter", "1", "anna", title.c_str(), "1", options.c_str(), "file"};
    std::optional<filter::FilterJob> job = filter::readFilterJob(7, arguments);
    if (!job) {
        std::abort();
    }
    job->queue = "Proofs";
    filter::FolderSource source(folder / "etc/torka/controllers");
    filter::runCommand(*job, rest, source);

    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name != "etc" && name != "Library" && name != "var") {
            std::abort();
        }
    }
    const filter::FilterNote note{{job->title, options, ""}, filter::NoteKind::mailbox, 1, std::string(rest)};
    const std::string line = filter::noteLine(note);
    if (filter::readNoteLine(std::string_view(line).substr(0, line.size() - 1)) != note) {
        std::abort();
    }
    filter::readNoteLine(rest);
    if (const std::optional<filter::TicketRecord> record = filter::readTicketRecord(rest);
        record && filter::readTicketRecord(filter::ticketRecordText(*record)) != record) {
        std::abort();
    }
    return 0;
}
