// SPDX-License-Identifier: Apache-2.0
// Reads and writes records of 16 MB. Compares this with bare loops over the libraries that do the work, on
// the same bytes in one run.

#include "bidi/records/CFileHdlr.h"
#include "bidi/records/CPPDMsgHdlr.h"
#include "bidi/records/RecordText.h"
#include "bidi/text/StandardStreams.h"

#include <array>
#include <benchmark/benchmark.h>
#include <cups/http.h>
#include <cups/ppd.h>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>
#include <zlib.h>

// libcups marks its PPD functions as deprecated, but programs still use them.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace {

using namespace torka;

class NoStreams final : public StandardStreams {
public:
    void Output(std::string_view /*text*/) override {}
    void Error(std::string_view /*text*/) override {}
};

// Wide text of 16 MB minus a page: numbered words (easy to compress), or random letters (hard).
const std::string& payloadOf(bool hard) {
    static std::array<std::string, 2> payloads;
    std::string& payload = payloads[hard ? 1 : 0];
    if (payload.empty()) {
        std::mt19937 random(1);
        std::wstring text;
        while (text.size() < 0x3FFC00) {
            text += hard ? static_cast<wchar_t>(random() % 0x3000 + 32)
                         : L"Tray@\n0123456789"[text.size() * 7 % 16];
            if (!hard && random() % 12 == 0) {
                text += std::to_wstring(random() % 1000);
            }
        }
        payload = payloadFromWide(text);
    }
    return payload;
}

const std::string& recordOf(bool hard) {
    static std::array<std::string, 2> records;
    std::string& record = records[hard ? 1 : 0];
    if (record.empty()) {
        CFileHdlr::fileWriteData("Record", payloadOf(hard).data(), payloadOf(hard).size(), record);
    }
    return record;
}

std::vector<std::string> chunkTextsOf(const std::string& record) {
    std::vector<std::string> texts;
    for (std::size_t at = 0; at < record.size();) {
        const std::size_t end = record.find('\n', at);
        const std::size_t begin = record.find(": ", at) + 2;
        if (end > begin) {
            texts.push_back(record.substr(begin, end - begin));
        }
        at = end + 1;
    }
    return texts;
}

void readBare(benchmark::State& state, bool hard) {
    const std::vector<std::string> texts = chunkTextsOf(recordOf(hard));
    for (auto _ : state) {
        std::unique_ptr<char[], FreeBlock> block(static_cast<char*>(std::malloc(maximumPayloadRead + 1)));
        z_stream stream{};
        inflateInit(&stream);
        stream.next_out = reinterpret_cast<Bytef*>(block.get());
        stream.avail_out = maximumPayloadRead;
        for (const std::string& text : texts) {
            std::array<char, 160> bytes;
            int length = 159;
            httpDecode64_2(bytes.data(), &length, text.c_str());
            stream.next_in = reinterpret_cast<Bytef*>(bytes.data());
            stream.avail_in = static_cast<uInt>(length);
            inflate(&stream, Z_NO_FLUSH);
        }
        benchmark::DoNotOptimize(block.get());
        if (stream.total_out != payloadOf(hard).size()) {
            state.SkipWithError("wrong size");
        }
        inflateEnd(&stream);
    }
}

void readTorka(benchmark::State& state, bool hard) {
    const std::string& text = recordOf(hard);
    for (auto _ : state) {
        std::size_t size = 0;
        const RecordBlock block = CFileHdlr::stringReadData(text, "Record", &size);
        if (size != payloadOf(hard).size()) {
            state.SkipWithError("wrong size");
        }
    }
}

void writeBare(benchmark::State& state, bool hard) {
    const std::string& payload = payloadOf(hard);
    std::vector<Bytef> out(compressBound(payload.size()));
    for (auto _ : state) {
        z_stream stream{};
        deflateInit(&stream, 9);
        stream.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(payload.data()));
        stream.avail_in = static_cast<uInt>(payload.size());
        stream.next_out = out.data();
        stream.avail_out = static_cast<uInt>(out.size());
        benchmark::DoNotOptimize(deflate(&stream, Z_FINISH));
        deflateEnd(&stream);
    }
}

void writeTorka(benchmark::State& state, bool hard) {
    const std::string& payload = payloadOf(hard);
    for (auto _ : state) {
        std::string out;
        CFileHdlr::fileWriteData("Record", payload.data(), payload.size(), out);
        benchmark::DoNotOptimize(out.data());
    }
}

// 400 records of 20 kB hard text in one file. The benchmarks compare a bare loop over all chunks, a search
// from the file's start for each record, and one index for all records.
const std::string& manyRecords() {
    static std::string file;
    if (file.empty()) {
        for (std::size_t n = 0; n < 400; ++n) {
            CFileHdlr::fileWriteData("Record" + std::to_string(n) + "_", payloadOf(true).data() + n * 20'000,
                                     20'000, file);
        }
    }
    return file;
}

void manyBare(benchmark::State& state) {
    std::vector<std::vector<std::string>> records(1);
    const std::string& file = manyRecords();
    for (std::size_t at = 0; at < file.size();) {
        const std::size_t end = file.find('\n', at);
        const std::size_t begin = file.find(": ", at) + 2;
        if (end > begin) {
            records.back().push_back(file.substr(begin, end - begin));
        } else {
            records.emplace_back();
        }
        at = end + 1;
    }
    records.pop_back();
    for (auto _ : state) {
        for (const auto& texts : records) {
            std::unique_ptr<char[], FreeBlock> block(static_cast<char*>(std::malloc(20'001)));
            z_stream stream{};
            inflateInit(&stream);
            stream.next_out = reinterpret_cast<Bytef*>(block.get());
            stream.avail_out = 20'001;
            for (const std::string& text : texts) {
                std::array<char, 160> bytes;
                int length = 159;
                httpDecode64_2(bytes.data(), &length, text.c_str());
                stream.next_in = reinterpret_cast<Bytef*>(bytes.data());
                stream.avail_in = static_cast<uInt>(length);
                inflate(&stream, Z_NO_FLUSH);
            }
            benchmark::DoNotOptimize(block.get());
            inflateEnd(&stream);
        }
    }
}

void manyTorka(benchmark::State& state, bool indexed) {
    const std::string& file = manyRecords();
    for (auto _ : state) {
        const RecordText index(indexed ? std::string_view(file) : std::string_view());
        for (int n = 0; n < 400; ++n) {
            const std::string name = "Record" + std::to_string(n) + "_";
            std::size_t size = 0;
            const RecordBlock block =
                indexed ? index.Read(name, &size) : CFileHdlr::stringReadData(file, name, &size);
            if (size != 20'000) {
                state.SkipWithError("wrong size");
            }
        }
    }
}

// A PPD with 6,000 chunks as attributes. The benchmarks compare reading the record with opening the PPD.
std::string ppdOfManyChunks() {
    std::string lines;
    CFileHdlr::fileWriteData("QVRecord", payloadOf(true).data(), 1'300'000, lines);
    std::string path = "/tmp/torka-bench-XXXXXX";
    close(mkstemp(path.data()));
    std::ofstream file(path, std::ios::binary);
    file << "*PPD-Adobe: \"4.3\"\n";
    std::size_t chunks = 0;
    for (std::size_t at = 0; at < lines.size(); ++chunks) {
        const std::size_t end = lines.find('\n', at);
        file << "*" << lines.substr(at, end - at) << (lines[end - 1] == ' ' ? "\"\"" : "") << "\n";
        at = end + 1;
    }
    file << "*FormatVersion: \"4.3\"\n*ModelName: \"T\"\n";
    return path;
}

void openPPD(benchmark::State& state) {
    const std::string path = ppdOfManyChunks();
    for (auto _ : state) {
        ppdClose(ppdOpenFile(path.c_str()));
    }
    unlink(path.c_str());
}

void readPPD(benchmark::State& state) {
    const std::string path = ppdOfManyChunks();
    ppd_file_t* ppd = ppdOpenFile(path.c_str());
    unlink(path.c_str());
    for (auto _ : state) {
        std::size_t size = 0;
        const RecordBlock block = ppdxReadData(ppd, "QVRecord", &size);
        if (size != 1'300'000) {
            state.SkipWithError("wrong size");
        }
    }
    ppdClose(ppd);
}

} // namespace

int main(int argc, char** argv) {
    setStandardStreams(std::make_shared<NoStreams>());
    const auto add = [](const std::string& name, const auto& run) {
        benchmark::RegisterBenchmark(name.c_str(), run)->Unit(benchmark::kMillisecond);
    };
    for (const bool hard : {false, true}) {
        const std::string text = hard ? "hard" : "easy";
        add("read/" + text + "/bare-loop", [=](benchmark::State& state) { readBare(state, hard); });
        add("read/" + text + "/torka", [=](benchmark::State& state) { readTorka(state, hard); });
        add("write/" + text + "/bare-deflate", [=](benchmark::State& state) { writeBare(state, hard); });
        add("write/" + text + "/torka", [=](benchmark::State& state) { writeTorka(state, hard); });
    }
    add("read/400-records/bare-loop", manyBare);
    add("read/400-records/torka-each", [](benchmark::State& state) { manyTorka(state, false); });
    add("read/400-records/torka-index", [](benchmark::State& state) { manyTorka(state, true); });
    add("read/ppd-6000-chunks/open", openPPD);
    add("read/ppd-6000-chunks/torka", readPPD);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
