#pragma once

#include "ZANUtils/SecureBuffer.h"

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
// (FieldKeys.plist, see docs/field-protection.md). Immutable and wiped when the last owner lets go.
//
// There is no set built in: without one nothing is enciphered, and what should be enciphered is left out.
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

    // Reads a property list. Null when an entry is missing or of a wrong kind or size, or a key would reach
    // beyond the table; `error` then says which and what is expected.
    static std::shared_ptr<const FieldKeys> Load(std::span<const std::uint8_t> bytes, std::string& error);
    // Reads a file; `error` names it.
    static std::shared_ptr<const FieldKeys> Load(const std::filesystem::path& path, std::string& error);
    // Reads the file at `installedPath` below the system root, as System::ReadGuardedFile does: whoever could
    // put other keys there could read the fields. `isMissing` tells a file that is not there from one that
    // cannot be used.
    static std::shared_ptr<const FieldKeys> LoadInstalled(std::string& error, bool* isMissing = nullptr);

    // The key and vector for a value of the option "*UseSpecialKey". "2" to "11" choose one of the ten
    // further keys; "5", "6", "7" and "11" also one of the four further vectors; any other value chooses the
    // first.
    std::span<const std::uint8_t, aesKeyBytes> AesKey(std::string_view specialKey) const;
    // The first 8 bytes of the same position.
    std::span<const std::uint8_t, desKeyBytes> DesKey(std::string_view specialKey) const;
    std::span<const std::uint8_t, vectorBytes> Vector(std::string_view specialKey) const;
    // The initial vector of the string encryption (QVCFCryptoString.h).
    std::span<const std::uint8_t, vectorBytes> StringVector() const { return stringVector; }

private:
    FieldKeys() = default;

    std::array<std::uint8_t, keyTableBytes> keyTable{};
    std::array<std::size_t, keyCount> keyOffsets{}; // each leaves aesKeyBytes in the table
    std::array<std::uint8_t, vectorBytes * vectorCount> vectorTable{};
    std::array<std::uint8_t, vectorBytes> stringVector{};
};

// The set that serves the whole process. The application's entry installs it once at start, null for none;
// every reader keeps what it got for as long as it works with it.
void installFieldKeys(std::shared_ptr<const FieldKeys> keys);
std::shared_ptr<const FieldKeys> installedFieldKeys();
// Installs the set at FieldKeys::installedPath, or none. False when there is a file that is not used, with
// the reason for a person; a site without keys has no problem.
bool useInstalledFieldKeys(std::string& problem);

} // namespace torka
