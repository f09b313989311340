// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZANUtils/SecureBuffer.h"
#include "platform/Result.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace torka {

// The keys and initial vectors that a site shares with its controllers, read from a property list
// (FieldKeys.plist, see docs/field-protection.md). Immutable. Wiped with its last owner.
//
// There is no built-in set. Without a set nothing is enciphered, and protected fields are omitted.
class FieldKeys {
public:
    static constexpr std::size_t keyTableBytes = 208;
    static constexpr std::size_t keyCount = 11;
    static constexpr std::size_t vectorBytes = 16;
    static constexpr std::size_t vectorCount = 5;
    static constexpr std::size_t aesKeyBytes = 32;
    static constexpr std::size_t desKeyBytes = 8;
    static constexpr std::string_view installedPath = "/Library/Application Support/ZAN/FieldKeys.plist";

    FieldKeys(const FieldKeys&) = delete;
    FieldKeys& operator=(const FieldKeys&) = delete;
    ~FieldKeys();

    // Reads a property list. Fails when an entry is missing or has a wrong type or size, or a key exceeds the
    // table. The fault names the entry and what is expected. Never null on success.
    static Result<std::shared_ptr<const FieldKeys>> Load(std::span<const std::uint8_t> bytes);
    // Reads a file; the fault names it.
    static Result<std::shared_ptr<const FieldKeys>> Load(const std::filesystem::path& path);
    // Reads the file at `installedPath` below the system root by System::ReadGuardedFile: whoever could
    // replace the keys could read the fields. Null for a missing file; fails for an unusable one.
    static Result<std::shared_ptr<const FieldKeys>> LoadInstalled();

    // Return the key and vector for a value of the option "*UseSpecialKey". "2" to "11" select one of the ten
    // further keys. "5", "6", "7" and "11" also select one of the four further vectors. Any other value
    // selects the first.
    std::span<const std::uint8_t, aesKeyBytes> AesKey(std::string_view specialKey) const;
    // Returns the first 8 bytes at the same position.
    std::span<const std::uint8_t, desKeyBytes> DesKey(std::string_view specialKey) const;
    std::span<const std::uint8_t, vectorBytes> Vector(std::string_view specialKey) const;
    // Returns the initial vector of the string encryption (QVCFCryptoString.h).
    std::span<const std::uint8_t, vectorBytes> StringVector() const { return stringVector; }

private:
    FieldKeys() = default;

    std::array<std::uint8_t, keyTableBytes> keyTable{};
    std::array<std::size_t, keyCount> keyOffsets{}; // each leaves aesKeyBytes in the table
    std::array<std::uint8_t, vectorBytes * vectorCount> vectorTable{};
    std::array<std::uint8_t, vectorBytes> stringVector{};
};

// The set of the whole process. The application's entry installs it once at start, null for none. A reader
// keeps its set as long as it works with it.
void installFieldKeys(std::shared_ptr<const FieldKeys> keys);
std::shared_ptr<const FieldKeys> installedFieldKeys();
// Installs the set at FieldKeys::installedPath, or none. Fails when the file exists but is not used. A site
// without keys has no fault.
Result<void> useInstalledFieldKeys();

} // namespace torka
