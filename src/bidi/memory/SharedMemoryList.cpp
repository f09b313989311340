// SPDX-License-Identifier: Apache-2.0
#include "bidi/memory/SharedMemoryList.h"

#include "bidi/text/FieldText.h"
#include "platform/FreshMemory.h"
#include "platform/SecretMemory.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

namespace torka {

namespace {

// In bytes. A stored definition's slot in the printer's preferences has room for these and a terminator.
constexpr std::size_t longestDefinition = 1023;

} // namespace

void SharedMemoryListFree::operator()(SharedMemoryList* record) const noexcept {
    platform::takePages(record, sizeof *record); // the wipe touches every page, and few were used
    platform::freeSecret(record, sizeof *record);
}

SharedMemoryListPtr newSharedMemoryList() {
    // Zeroed memory is a record; writing the zeroes once more costs 560 page faults.
    return SharedMemoryListPtr(
        static_cast<SharedMemoryList*>(platform::allocateZeroedSecret(sizeof(SharedMemoryList))));
}

std::string_view fieldText(std::span<const char> field) {
    const void* end = std::memchr(field.data(), '\0', field.size());
    const std::size_t length =
        end ? static_cast<std::size_t>(static_cast<const char*>(end) - field.data()) : field.size();
    return {field.data(), length};
}

void setField(std::span<char> field, std::string_view text) {
    if (field.empty()) {
        return;
    }
    text = text.substr(0, text.find('\0'));
    FieldWriter writer(field);
    writer.Append(text.substr(0, wholeCharacters(text, field.size() - 1)));
    writer.Finish();
}

void setFieldNumber(std::span<char> field, long number) {
    constexpr std::size_t longestNumber = 20;
    std::array<char, longestNumber> digits{};
    const auto written = std::to_chars(digits.begin(), digits.end(), number);
    setField(field, {digits.data(), static_cast<std::size_t>(written.ptr - digits.data())});
}

long fieldNumber(std::span<const char> field) {
    const std::string_view text = fieldText(field);
    long number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec == std::errc::result_out_of_range) {
        return text.starts_with('-') ? std::numeric_limits<long>::min() : std::numeric_limits<long>::max();
    }
    return number;
}

std::size_t entryCount(const SharedMemoryList& record) {
    return static_cast<std::size_t>(
        std::clamp<long>(fieldNumber(record.count), 0, static_cast<long>(exchangeEntryLimit)));
}

std::string_view entryKey(const SharedMemoryList& record, std::size_t index) {
    return fieldText(record.keys[index]);
}

std::string_view entryValue(const SharedMemoryList& record, std::size_t index) {
    return fieldText(record.values[index]);
}

std::size_t setWatermarkDefinitions(SharedMemoryList& record, std::span<const std::string> definitions) {
    std::size_t used = 0;
    std::size_t written = 0;
    for (const std::string& definition : definitions) {
        const std::string_view text = std::string_view(definition).substr(0, definition.find('\0'));
        if (text.size() > longestDefinition || text.size() >= record.watermarks.size() - used) {
            break;
        }
        std::copy(text.begin(), text.end(), record.watermarks.begin() + static_cast<std::ptrdiff_t>(used));
        used += text.size();
        record.watermarks[used++] = '\0';
        ++written;
    }
    std::fill(record.watermarks.begin() + static_cast<std::ptrdiff_t>(used), record.watermarks.end(), '\0');
    setFieldNumber(record.watermarkCount, static_cast<long>(written));
    setField(record.watermarksPresent, written > 0 ? "1" : "0");
    return written;
}

std::vector<std::string> watermarkDefinitions(const SharedMemoryList& record) {
    std::vector<std::string> definitions;
    std::string_view rest(record.watermarks.data(), record.watermarks.size());
    for (long left = fieldNumber(record.watermarkCount); left > 0 && !rest.empty(); --left) {
        const std::size_t length = std::min(rest.find('\0'), rest.size());
        definitions.emplace_back(rest.substr(0, length));
        rest.remove_prefix(std::min(length + 1, rest.size()));
    }
    return definitions;
}

} // namespace torka
