// SPDX-License-Identifier: Apache-2.0
// Splices a large document between two pipes. Compares this with `cat` and a bare read-and-write loop in the
// same place. "peakKiB" is the maximum memory of the process in the middle. It must be the same for both
// document sizes.

#include "output/BundleIdentifier.h"
#include "platform/PropertyList.h"
#include "spooler/SpliceFile.h"
#include "spooler/filter/TicketOwner.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

enum Content { drawing, encodedImages, binaryImages };

void check(bool condition, const char* what) {
    if (!condition) {
        std::perror(what);
        std::exit(1);
    }
}

std::string pageContent(Content content, std::mt19937& random) {
    constexpr std::size_t size = 100'000;
    std::string text;
    switch (content) {
    case drawing:
        while (text.size() < size) {
            text += std::to_string(random() % 612) + " " + std::to_string(random() % 792) +
                    " moveto (line) show\n";
        }
        break;
    case encodedImages: // ASCII base 85, in which "%" is a digit
        while (text.size() < size) {
            for (int i = 0; i < 72; ++i) {
                text += static_cast<char>('!' + random() % 85);
            }
            text += '\n';
        }
        break;
    case binaryImages:
        while (text.size() < size) {
            text += static_cast<char>(random() & 255U);
        }
        text = "%%BeginData: " + std::to_string(text.size()) + " Binary Bytes\n" + text + "\n%%EndData\n";
        break;
    }
    return text;
}

// A document of the given content and size in a temporary file, which the program removes at its end.
class Document {
public:
    Document(Content content, std::uint64_t megabytes) {
        path = std::filesystem::temp_directory_path() /
               ("torka-splice-" + std::to_string(::getpid()) + "-" + std::to_string(content) + ".ps");
        std::ofstream file(path, std::ios::binary);
        std::mt19937 random(1);
        const std::string page = pageContent(content, random);
        const std::string feature =
            "[{\n%%BeginFeature: *QVTray B\n/tray 2 def\n%%EndFeature\n} stopped cleartomark\n";
        file << "%!PS-Adobe-3.0\n%%Pages: (atend)\n%%EndComments\n%%BeginProlog\n%%EndProlog\n%%BeginSetup\n"
             << feature << "%%EndSetup\n";
        for (std::uint64_t number = 1; size < megabytes * 1'000'000; ++number) {
            file << "%%Page: " << number << ' ' << number << "\n%%BeginPageSetup\n"
                 << feature << "%%EndPageSetup\n"
                 << page << "showpage\n";
            size = static_cast<std::uint64_t>(file.tellp());
        }
        file << "%%Trailer\n%%EOF\n";
        file.close();
        check(file.good(), "document");
    }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    ~Document() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }

    std::filesystem::path path;
    std::uint64_t size = 0;
};

const Document& document(Content content, std::uint64_t megabytes) {
    static std::unique_ptr<Document> kept; // only one, because documents are large
    static std::pair<Content, std::uint64_t> key;
    if (!kept || key != std::pair(content, megabytes)) {
        kept.reset();
        kept = std::make_unique<Document>(content, megabytes);
        key = {content, megabytes};
    }
    return *kept;
}

pid_t start(int input, int output, std::vector<int> others, const std::function<int()>& work) {
    const pid_t child = ::fork();
    check(child >= 0, "fork");
    if (child == 0) {
        ::dup2(input, STDIN_FILENO);
        ::dup2(output, STDOUT_FILENO);
        for (const int other : others) {
            ::close(other);
        }
        ::_exit(work());
    }
    return child;
}

int runCat() {
    ::execlp("cat", "cat", nullptr);
    return 127;
}

int copyLoop() {
    std::vector<char> buffer(128 * 1024);
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count <= 0) {
            return count == 0 ? 0 : 1;
        }
        for (ssize_t done = 0; done < count;) {
            const ssize_t written =
                ::write(STDOUT_FILENO, buffer.data() + done, static_cast<std::size_t>(count - done));
            if (written < 0) {
                return 1;
            }
            done += written;
        }
    }
}

torka::Ticket ticket(bool suppresses) {
    torka::Ticket result;
    result.entries = {{torka::siteLayoutComment, "%%MacCoreNUp: true\n"},
                      {torka::siteDriverComment, "%%ZANDriver\n"}};
    for (int i = 0; i < 60; ++i) {
        const std::string keyword = i == 0 ? "*QVTray" : "*QVOption" + std::to_string(i);
        if (suppresses) {
            result.entries.push_back({torka::siteSuppressedKeyword, keyword});
        }
        result.entries.push_back(
            {torka::siteDocumentSetup, "%%BeginFeature: " + keyword + " A\n/x 1 def\n%%EndFeature\n"});
    }
    return result;
}

int spliceAll(bool suppresses) {
    return torka::spliceDescriptor(STDIN_FILENO, ticket(suppresses), STDOUT_FILENO).status ==
                   torka::SpliceStatus::ok
               ? 0
               : 1;
}

std::string ticketXml() {
    std::vector<torka::CFTypeRef> values;
    for (const torka::TicketEntry& entry : ticket(true).entries) {
        values.push_back(torka::CFNumberCreate(std::int32_t{entry.site}));
        values.push_back(torka::CFDataCreate(entry.bytes.data(), entry.bytes.size()));
    }
    const torka::CFDataRef xml = torka::CFPropertyListCreateXMLData(torka::CFArrayCreate(std::move(values)));
    const auto bytes = torka::CFDataGetBytes(xml);
    return {bytes.begin(), bytes.end()};
}

// A system root with one ticket of the user "anna".
class FilterRoot {
public:
    FilterRoot()
        : path(std::filesystem::temp_directory_path() / ("torka-root-" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(path / "var/cache/torka/ZAN");
        std::ofstream(path / ticketPath) << ticketXml();
        std::ofstream((path / ticketPath).string() + ".owner")
            << torka::filter::ticketRecordText({"anna", "", {}, ticketXml().size(), {}, false});
        std::filesystem::permissions(path / "var/cache/torka/ZAN", std::filesystem::perms(0711));
    }
    FilterRoot(const FilterRoot&) = delete;
    FilterRoot& operator=(const FilterRoot&) = delete;
    ~FilterRoot() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    static constexpr const char* ticketPath =
        "var/cache/torka/ZAN/Torka.temp5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85";
    std::filesystem::path path;
};

// Runs the whole program as the print server starts it.
int runFilter() {
    const std::string option = std::string(torka::ticketPathSetting) + "=/" + FilterRoot::ticketPath;
    ::setenv("CONTENT_TYPE", "application/postscript", 1);
    ::setenv("PRINTER", "Bench", 1);
    ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO); // stands in for the print server
    ::execl(TORKA_BINARY_DIR "/bin/torkafilter", "torkafilter", "1", "anna", "bench", "1", option.c_str(),
            nullptr);
    return 127;
}

// `cat FILE | work | (a reader that throws away)`
void run(benchmark::State& state, const std::function<int()>& work) {
    const Document& source =
        document(static_cast<Content>(state.range(0)), static_cast<std::uint64_t>(state.range(1)));
    std::vector<char> drain(256 * 1024);
    long peak = 0;
    double seconds = 0; // processor time of the process in the middle
    for ([[maybe_unused]] auto iteration : state) {
        int before[2];
        int behind[2];
        check(::pipe(before) == 0 && ::pipe(behind) == 0, "pipe");
        const int file = ::open(source.path.c_str(), O_RDONLY);
        check(file >= 0, "open");
        const std::vector<int> all{file, before[0], before[1], behind[0], behind[1]};
        const pid_t feeder = start(file, before[1], all, runCat);
        const pid_t middle = start(before[0], behind[1], all, work);
        for (const int descriptor : {file, before[0], before[1], behind[1]}) {
            ::close(descriptor);
        }
        while (::read(behind[0], drain.data(), drain.size()) > 0) {
        }
        ::close(behind[0]);
        int status = 0;
        rusage usage{};
        check(::waitpid(feeder, &status, 0) == feeder && ::wait4(middle, &status, 0, &usage) == middle,
              "wait");
        if (status != 0) {
            state.SkipWithError("the process in the middle failed");
            break;
        }
        peak = std::max(peak, usage.ru_maxrss);
        for (const timeval& part : {usage.ru_utime, usage.ru_stime}) {
            seconds += static_cast<double>(part.tv_sec) + static_cast<double>(part.tv_usec) / 1e6;
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(source.size) * state.iterations());
    state.counters["peakKiB"] = static_cast<double>(peak);
    state.counters["middleMs"] = benchmark::Counter(1000 * seconds, benchmark::Counter::kAvgIterations);
}

void arguments(benchmark::internal::Benchmark* bench) {
    for (const int content : {drawing, encodedImages, binaryImages}) {
        for (const int megabytes : {20, 200}) {
            bench->Args({content, megabytes});
        }
    }
    bench->ArgNames({"content", "MB"})->UseRealTime()->Unit(benchmark::kMillisecond)->MinTime(2);
}

void Cat(benchmark::State& state) { run(state, runCat); }
void CopyLoop(benchmark::State& state) { run(state, copyLoop); }
void Splice(benchmark::State& state) {
    run(state, [] { return spliceAll(true); });
}
void SpliceWithoutSuppression(benchmark::State& state) {
    run(state, [] { return spliceAll(false); });
}

void Filter(benchmark::State& state) {
    const FilterRoot root;
    ::setenv("TORKA_SYSTEM_ROOT", root.path.c_str(), 1);
    run(state, runFilter);
}

BENCHMARK(Filter)->Apply(arguments);
BENCHMARK(Cat)->Apply(arguments);
BENCHMARK(CopyLoop)->Apply(arguments);
BENCHMARK(Splice)->Apply(arguments);
BENCHMARK(SpliceWithoutSuppression)->Apply(arguments);

} // namespace

BENCHMARK_MAIN();
