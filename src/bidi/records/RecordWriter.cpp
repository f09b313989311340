// SPDX-License-Identifier: Apache-2.0
#include "bidi/records/RecordWriter.h"

#include "bidi/text/StandardStreams.h"

#include <algorithm>
#include <array>
#include <cups/http.h>
#include <limits>
#include <zlib.h>

namespace torka {

namespace {

constexpr std::size_t blockLimit = 1022;
constexpr std::size_t outputPiece = 1024 * chunkBytes;

// Compresses the payload into one zlib stream. After an error, which it reports, returns the output so far.
std::string compressed(const void* data, std::size_t size) {
    std::string output;
    z_stream stream{};
    int result = deflateInit_(&stream, 9, "1.2.5", static_cast<int>(sizeof stream));
    // zlib declares next_in without const but does not write to it.
    stream.next_in = const_cast<Bytef*>(static_cast<const Bytef*>(data));
    stream.avail_in = static_cast<uInt>(size);
    while (result == Z_OK) {
        const std::size_t used = output.size();
        output.resize(used + outputPiece);
        stream.next_out = reinterpret_cast<Bytef*>(output.data()) + used;
        stream.avail_out = static_cast<uInt>(outputPiece);
        result = deflate(&stream, Z_FINISH);
        output.resize(output.size() - stream.avail_out);
    }
    if (result < 0) {
        const char* message = stream.msg ? stream.msg : zError(result);
        standardStreams().Error("ERROR: deflate returned " + std::to_string(result) + " (" + message + ")\n");
    }
    deflateEnd(&stream);
    return output;
}

} // namespace

bool isWritableRecordName(std::string_view recordName) {
    const auto stands = [](char c) {
        return c > ' ' && c < '\x7F' && std::string_view(":/=*\"'\\`").find(c) == std::string_view::npos;
    };
    return !recordName.empty() && recordName.size() <= maximumRecordName &&
           std::all_of(recordName.begin(), recordName.end(), stands);
}

bool encodeRecord(std::string_view recordName, const void* data, std::size_t size,
                  const std::function<void(std::string_view chunkName, std::string_view text)>& take) {
    static_assert(maximumRecordSize <= std::numeric_limits<uInt>::max());
    if (!isWritableRecordName(recordName) || size > maximumRecordSize || (!data && size != 0)) {
        return false;
    }
    // An empty payload gives an empty stream, so that its record consists of the end mark only.
    const std::string stream = size == 0 ? std::string() : compressed(data, size);
    const std::size_t chunks = (stream.size() + chunkBytes - 1) / chunkBytes;
    ChunkName name(recordName);
    if (!name.SetNumber(chunks)) {
        return false;
    }
    std::array<char, chunkTextBuffer> text{};
    for (std::size_t number = 0; number < chunks; ++number) {
        name.SetNumber(number);
        const std::string_view piece = std::string_view(stream).substr(number * chunkBytes, chunkBytes);
        httpEncode64_2(text.data(), static_cast<int>(text.size()), piece.data(),
                       static_cast<int>(piece.size()));
        take(name.Text(), text.data());
    }
    name.SetNumber(chunks);
    take(name.Text(), {});
    return true;
}

PieceGatherer::PieceGatherer(std::string_view blockStart, std::string_view blockEnd,
                             std::function<void(std::string_view)> take)
    : start(blockStart)
    , end(blockEnd)
    , sink(std::move(take))
    , block(blockStart) {}

void PieceGatherer::Add(std::string_view piece) {
    if (block.size() + piece.size() >= blockLimit && block.size() > start.size()) {
        Flush();
    }
    block += piece;
}

void PieceGatherer::Flush() {
    block += end;
    sink(block);
    block = start;
}

} // namespace torka
