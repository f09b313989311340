// SPDX-License-Identifier: Apache-2.0
// Reads exchange records from hostile bytes, and writes hostile wide text into a record.

#include "bidi/module/ExchangeLists.h"
#include "bidi/module/JobPropertiesState.h"
#include "fuzz/Fuzzing.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

namespace {

using namespace torka;
using fuzz::require;

constexpr std::size_t entriesFilled = 64; // maximum per input

// Fills the fields from `count` on, and then keys and values in turn.
void fill(SharedMemoryList& record, std::string_view bytes) {
    const auto take = [&bytes](char* field, std::size_t size) {
        const std::size_t taken = std::min(size, bytes.size());
        std::copy_n(bytes.data(), taken, field);
        bytes.remove_prefix(taken);
    };
    take(record.count.data(), record.count.size());
    take(record.watermarkCount.data(), record.watermarkCount.size());
    take(record.watermarks.data(), 256);
    take(record.extraCount.data(), record.extraCount.size());
    take(record.extraPending.data(), record.extraPending.size());
    for (std::size_t i = 0; i < entriesFilled && !bytes.empty(); ++i) {
        take(record.keys[i].data(), record.keys[i].size());
        take(record.values[i].data(), record.values[i].size());
    }
}

// Zeroes the fields that an input fills.
void clear(SharedMemoryList& record) {
    std::memset(record.keys.data(), 0, entriesFilled * exchangeKeySize);
    std::memset(record.values.data(), 0, entriesFilled * exchangeValueSize);
    constexpr std::size_t entriesEnd = offsetof(SharedMemoryList, count);
    std::memset(reinterpret_cast<char*>(&record) + entriesEnd, 0, sizeof record - entriesEnd);
}

// Writes a list and reads it again; the result must be the same.
void checkAgain(KeyValueList& list) {
    static const auto record = std::make_unique<SharedMemoryList>();
    writeSettings(*record, list.List());
    KeyValueList again;
    Create_SDMList_From_SharedMemoryList(again, *record);
    require(again.Count() == std::min(list.Count(), exchangeEntryLimit));
    for (std::size_t i = 0; i < again.Count(); ++i) {
        const bool fits = utf8FromWide(list.Value(i)).size() <= exchangeValueSize / 2; // marks become letters
        require(!fits || again.Value(i) == list.Value(i) ||
                list.Value(i).find(L"EFBBBF") != std::wstring::npos);
    }
}

void checkWatermarks(const SharedMemoryList& record) {
    const std::vector<std::string> definitions = watermarkDefinitions(record);
    WatermarkDefinitions wide;
    Create_SDMWatermarkList_From_SharedMemoryList(wide, record);
    require(wide.Count() == definitions.size());
    static const auto other = std::make_unique<SharedMemoryList>();
    const std::size_t written = Create_SharedMemoryWatermarkList_From_SDMList(*other, wide.List());
    require(written <= definitions.size() && watermarkDefinitions(*other).size() == written);
}

// Uses the input's 32-bit units as one key and one value.
void checkWide(std::string_view bytes) {
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    KeyValueList list;
    list.Append(text, text);
    static const auto record = std::make_unique<SharedMemoryList>();
    Create_SharedMemoryList_From_SDMList(*record, list.List());
    const std::string_view value = entryValue(*record, 0);
    if (list.Value(0).empty() || list.Value(0).front() != L'\xFEFF') {
        require(utf8FromWide(list.Value(0)).starts_with(value));
    }
    require(wideFromUtf8(value).find(L'\xFFFD') == std::wstring::npos ||
            utf8FromWide(list.Value(0)).find("\xEF\xBF\xBD") != std::string::npos); // no character was cut
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    static const auto record = std::make_unique<SharedMemoryList>();
    clear(*record);
    fill(*record, bytes);
    gotServerPresetFromJP = size % 2 != 0;
    gotSharedListFromJP = sharedListCopyFromJP != nullptr;
    KeyValueList list;
    Create_SDMList_From_SharedMemoryList(list, *record);
    require(list.Count() <= 2 * exchangeEntryLimit && list.Count() >= entryCount(*record));
    constexpr std::size_t quicklyWritten = 64;
    if (list.Count() <= quicklyWritten || size % 16 == 0) { // the most entries take their time
        checkAgain(list);
    }
    checkWatermarks(*record);
    checkWide(bytes);
    return 0;
}
