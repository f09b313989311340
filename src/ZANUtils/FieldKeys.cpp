// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/FieldKeys.h"

#include "platform/PropertyList.h"
#include "platform/System.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace torka {

namespace {

// A set needs less than 2 kB; the rest is for comments.
constexpr std::size_t fileLimit = 64 * 1024;

// Copies the data under a key of the list when its size is exactly that of `out`.
Result<void> readBytes(const CFDictionaryRef& list, std::u16string_view key, std::string_view name,
                       std::span<std::uint8_t> out) {
    const auto data = cfCast<CFData>(CFDictionaryGetValue(list, key));
    if (!data || data->bytes.size() != out.size()) {
        return Fault{
            std::string(name) + " must be data of " + std::to_string(out.size()) + " bytes, but " +
            (data ? "has " + std::to_string(data->bytes.size()) : std::string("is missing or no data"))};
    }
    std::copy(data->bytes.begin(), data->bytes.end(), out.begin());
    return {};
}

Result<void> readOffsets(const CFDictionaryRef& list, std::span<std::size_t> offsets) {
    constexpr std::size_t lastOffset = FieldKeys::keyTableBytes - FieldKeys::aesKeyBytes;
    const auto array = cfCast<CFArray>(CFDictionaryGetValue(list, u"KeyOffsets"));
    if (!array || array->values.size() != offsets.size()) {
        return Fault{
            "KeyOffsets must be an array of " + std::to_string(offsets.size()) + " integers, but " +
            (array ? "has " + std::to_string(array->values.size()) : std::string("is missing or no array"))};
    }
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        const auto number = cfCast<CFNumber>(array->values[i]);
        if (!number || number->isReal || number->integer < 0 ||
            number->integer > static_cast<std::int64_t>(lastOffset)) {
            return Fault{"KeyOffsets entry " + std::to_string(i) + " must be an integer from 0 to " +
                         std::to_string(lastOffset) + ", so that a key of " +
                         std::to_string(FieldKeys::aesKeyBytes) + " bytes lies in the table"};
        }
        offsets[i] = static_cast<std::size_t>(number->integer);
    }
    return {};
}

// Returns the position of the key for a value of "*UseSpecialKey".
std::size_t keyPosition(std::string_view specialKey) {
    constexpr std::string_view values[] = {"2", "3", "4", "5", "6", "7", "8", "9", "10", "11"};
    const auto* found = std::find(std::begin(values), std::end(values), specialKey);
    return found != std::end(values) ? static_cast<std::size_t>(found - std::begin(values)) + 1 : 0;
}

std::size_t vectorPosition(std::string_view specialKey) {
    constexpr std::string_view values[] = {"5", "6", "7", "11"};
    const auto* found = std::find(std::begin(values), std::end(values), specialKey);
    return found != std::end(values) ? static_cast<std::size_t>(found - std::begin(values)) + 1 : 0;
}

std::string readFailure(const std::error_code& code) {
    return code == std::errc::no_such_file_or_directory
               ? "no field keys are installed; protected fields are left out of jobs"
               : "cannot be read: " + code.message();
}

std::mutex& installMutex() {
    static std::mutex mutex;
    return mutex;
}

std::shared_ptr<const FieldKeys>& installedSet() {
    static std::shared_ptr<const FieldKeys> set;
    return set;
}

} // namespace

FieldKeys::~FieldKeys() {
    wipeValue(keyTable);
    wipeValue(vectorTable);
    wipeValue(stringVector);
}

Result<std::shared_ptr<const FieldKeys>> FieldKeys::Load(std::span<const std::uint8_t> bytes) {
    const std::string place = "field keys";
    if (bytes.size() > fileLimit) {
        return Fault{"more than " + std::to_string(fileLimit) + " bytes", place};
    }
    std::string reason;
    const auto list = cfCast<CFDictionary>(
        CFPropertyListCreateFromXMLData(CFDataCreate(bytes.data(), bytes.size()), &reason));
    if (!list) {
        return Fault{"not an XML property list with a dictionary" + (reason.empty() ? reason : ": " + reason),
                     place};
    }
    std::shared_ptr<FieldKeys> keys(new FieldKeys);
    for (const Result<void>& part :
         {readBytes(list, u"KeyTable", "KeyTable", keys->keyTable), readOffsets(list, keys->keyOffsets),
          readBytes(list, u"VectorTable", "VectorTable", keys->vectorTable),
          readBytes(list, u"StringVector", "StringVector", keys->stringVector)}) {
        if (!part) {
            return part.Why().In(place);
        }
    }
    return std::shared_ptr<const FieldKeys>(std::move(keys));
}

Result<std::shared_ptr<const FieldKeys>> FieldKeys::Load(const std::filesystem::path& path) {
    std::string content;
    const WipeGuard<std::string> guard(content);
    if (const std::error_code code = system().ReadFile(path, fileLimit, content)) {
        return Fault{readFailure(code), path.string()};
    }
    auto keys = Load(std::span(reinterpret_cast<const std::uint8_t*>(content.data()), content.size()));
    if (!keys) {
        return keys.Why().In(path.string());
    }
    return keys;
}

Result<std::shared_ptr<const FieldKeys>> FieldKeys::LoadInstalled() {
    SecureBuffer content;
    std::string refusal;
    const std::error_code code = system().ReadGuardedFile(installedPath, fileLimit, content, refusal);
    if (code == std::errc::no_such_file_or_directory) {
        return std::shared_ptr<const FieldKeys>();
    }
    const std::string path = system().Resolve(installedPath).string();
    if (code) {
        return refusal.empty() ? Fault{readFailure(code), path}
                               : Fault{refusal + "; the field keys are not used"};
    }
    auto keys = Load(std::span<const std::uint8_t>(content));
    if (!keys) {
        return keys.Why().In(path);
    }
    return keys;
}

std::span<const std::uint8_t, FieldKeys::aesKeyBytes> FieldKeys::AesKey(std::string_view specialKey) const {
    return std::span(keyTable).subspan(keyOffsets[keyPosition(specialKey)]).first<aesKeyBytes>();
}

std::span<const std::uint8_t, FieldKeys::desKeyBytes> FieldKeys::DesKey(std::string_view specialKey) const {
    return AesKey(specialKey).first<desKeyBytes>();
}

std::span<const std::uint8_t, FieldKeys::vectorBytes> FieldKeys::Vector(std::string_view specialKey) const {
    return std::span(vectorTable).subspan(vectorPosition(specialKey) * vectorBytes).first<vectorBytes>();
}

void installFieldKeys(std::shared_ptr<const FieldKeys> keys) {
    const std::lock_guard lock(installMutex());
    installedSet() = std::move(keys);
}

Result<void> useInstalledFieldKeys() {
    auto keys = FieldKeys::LoadInstalled();
    installFieldKeys(keys ? std::move(*keys) : nullptr);
    return keys ? Result<void>() : keys.Why();
}

std::shared_ptr<const FieldKeys> installedFieldKeys() {
    const std::lock_guard lock(installMutex());
    return installedSet();
}

} // namespace torka
