// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace torka {

inline constexpr std::size_t exchangeEntryLimit = 3000;
inline constexpr std::size_t exchangeKeySize = 64;
inline constexpr std::size_t exchangeValueSize = 700;

// The exchange record: the job's settings, watermarks and further values, each at a fixed byte offset. The
// panel model owns it and fills it before a launch. The session of the Job Properties module reads it and
// writes the module's answer.
//
// Every text is UTF-8 and ends in a NUL unless it fills its field. A number is its decimal text. Read and
// write fields with fieldText, setField and the functions below, which never pass a field's end.
struct SharedMemoryList {
    std::array<std::array<char, exchangeKeySize>, exchangeEntryLimit> keys;
    std::array<std::array<char, exchangeValueSize>, exchangeEntryLimit> values;
    std::array<char, 24> count; // number of entries, at most exchangeEntryLimit
    std::array<char, 8> watermarkCount;
    // The combined list: watermark definitions one behind the other, each with a NUL at its end.
    std::array<char, 5153> watermarks;
    std::array<char, 3> watermarksPresent; // not 0 when the module is to receive the watermarks
    // Result of the module's window: 0 accepted, 1 cancelled, 2 address refused; -1 when no session could
    // begin.
    std::array<char, 4> jpResult;
    std::array<char, 2> bidiEnabled; // "1" with two-way communication on, else "0"
    std::array<char, 512> ppdCopyPath;
    std::array<char, 128> printerAddress;
    std::array<char, 64> installableOptions; // indexes into the keys, each followed by a comma
    std::array<char, 5> extraCount;          // entries that the list announces beyond `count`
    std::array<char, 5> extraPending;
    std::array<char, 27> unused;
    std::array<char, 16> plugInName;
    std::array<char, 16> driverVersion;
    std::array<char, 459> osVersion;
};

static_assert(std::is_trivially_copyable_v<SharedMemoryList> && std::is_standard_layout_v<SharedMemoryList>);
static_assert(sizeof(SharedMemoryList) == 2'298'426);
static_assert(offsetof(SharedMemoryList, keys) == 0);
static_assert(offsetof(SharedMemoryList, values) == 192'000);
static_assert(offsetof(SharedMemoryList, count) == 2'292'000);
static_assert(offsetof(SharedMemoryList, watermarksPresent) == 2'297'185);
static_assert(offsetof(SharedMemoryList, jpResult) == 2'297'188);
static_assert(offsetof(SharedMemoryList, bidiEnabled) == 2'297'192);
static_assert(offsetof(SharedMemoryList, ppdCopyPath) == 2'297'194);
static_assert(offsetof(SharedMemoryList, printerAddress) == 2'297'706);
static_assert(offsetof(SharedMemoryList, installableOptions) == 2'297'834);
static_assert(offsetof(SharedMemoryList, extraCount) == 2'297'898);
static_assert(offsetof(SharedMemoryList, extraPending) == 2'297'903);
static_assert(offsetof(SharedMemoryList, plugInName) == 2'297'935);
static_assert(offsetof(SharedMemoryList, driverVersion) == 2'297'951);
static_assert(offsetof(SharedMemoryList, osVersion) == 2'297'967);

// Frees a record on the heap. The record is zeroed at first. It may hold secrets, so that it is kept out of
// core files and wiped before it is freed.
struct SharedMemoryListFree {
    void operator()(SharedMemoryList* record) const noexcept;
};
using SharedMemoryListPtr = std::unique_ptr<SharedMemoryList, SharedMemoryListFree>;
SharedMemoryListPtr newSharedMemoryList();

// The text up to its NUL or the end of its field.
std::string_view fieldText(std::span<const char> field);
// Writes a text and its terminator, and zeroes the rest of the field. Cuts a longer text at a character's
// end.
void setField(std::span<char> field, std::string_view text);
// Writes a number, as setField does.
void setFieldNumber(std::span<char> field, long number);
// The decimal number at the start of a text field; 0 for none. Clamped to the range of long.
long fieldNumber(std::span<const char> field);

// The number of entries in the record, clamped to 0 … exchangeEntryLimit.
std::size_t entryCount(const SharedMemoryList& record);
std::string_view entryKey(const SharedMemoryList& record, std::size_t index);
std::string_view entryValue(const SharedMemoryList& record, std::size_t index);

// Writes definitions in their order until one does not fit, and sets watermarkCount and watermarksPresent. A
// definition of more than 1,023 bytes does not fit. Returns the number written. The caller keeps the others:
// the module never saw them and so has not removed them.
std::size_t setWatermarkDefinitions(SharedMemoryList& record, std::span<const std::string> definitions);
std::vector<std::string> watermarkDefinitions(const SharedMemoryList& record);

} // namespace torka
