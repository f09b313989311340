// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/AES256CBC.h"

#include "ZANUtils/SecureBuffer.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <nettle/cbc.h>
#include <nettle/nettle-meta.h>

namespace torka {

AES256CBC::~AES256CBC() {
    if (keyMade) {
        wipeValue(encryptionSchedule);
    }
    if (decryptionMade) {
        wipeValue(decryptionSchedule);
    }
}

void AES256CBC::MakeKey(const std::uint8_t* key, const std::uint8_t* newChain, int newKeyLength,
                        int newBlockSize) {
    if (key == nullptr || newChain == nullptr || newKeyLength != keySize || newBlockSize != blockBytes) {
        return;
    }
    std::copy_n(newChain, blockBytes, initialChain.begin());
    chain = initialChain;
    aes256_set_encrypt_key(&encryptionSchedule, key);
    if (decryptionMade) {
        wipeValue(decryptionSchedule);
        decryptionMade = false;
    }
    rounds = _AES256_ROUNDS;
    keyLength = newKeyLength;
    blockSize = newBlockSize;
    keyMade = true;
}

void AES256CBC::MakeDecryptionSchedule() {
    if (!decryptionMade) {
        aes256_invert_key(&decryptionSchedule, &encryptionSchedule);
        decryptionMade = true;
    }
}

void AES256CBC::Encrypt(const std::uint8_t* in, std::uint8_t* out, std::size_t n) {
    if (!keyMade || in == nullptr || out == nullptr || n % blockBytes != 0) {
        return;
    }
    cbc_aes256_encrypt(&encryptionSchedule, chain.data(), n, out, in);
}

void AES256CBC::Decrypt(const std::uint8_t* in, std::uint8_t* out, std::size_t n) {
    if (!keyMade || in == nullptr || out == nullptr || n % blockBytes != 0) {
        return;
    }
    MakeDecryptionSchedule();
    cbc_decrypt(&decryptionSchedule, nettle_aes256.decrypt, blockBytes, chain.data(), n, out, in);
}

void AES256CBC::DefEncryptBlock(const std::uint8_t* in, std::uint8_t* out) const {
    if (keyMade && in != nullptr && out != nullptr) {
        aes256_encrypt(&encryptionSchedule, blockBytes, out, in);
    }
}

void AES256CBC::DefDecryptBlock(const std::uint8_t* in, std::uint8_t* out) {
    if (keyMade && in != nullptr && out != nullptr) {
        MakeDecryptionSchedule();
        aes256_decrypt(&decryptionSchedule, blockBytes, out, in);
    }
}

void AES256CBC::DoAES256Encrypt(const std::uint8_t* key, const std::uint8_t* iv, const char* text,
                                std::uint8_t* out, int* outLength) {
    if (key == nullptr || iv == nullptr || text == nullptr || out == nullptr || outLength == nullptr) {
        return;
    }
    const std::size_t n = std::strlen(text) + 1;
    if (n > static_cast<std::size_t>(INT_MAX - blockBytes)) {
        return; // *outLength could not hold the length
    }
    const std::size_t rest = n % blockBytes;
    const std::size_t whole = n - rest;
    const std::size_t capacity = static_cast<std::size_t>(std::max(*outLength, 0));
    std::memset(out, 0, capacity);
    MakeKey(key, iv);

    // Enciphers whole blocks directly from the text and assembles only the last one. Stops at the block with
    // the last byte that `out` can hold.
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text);
    const std::size_t direct = std::min(whole, capacity - capacity % blockBytes);
    Encrypt(bytes, out, direct);
    if (direct < capacity) {
        std::uint8_t last[blockBytes];
        const WipeGuard guard(last);
        const std::size_t fromText = std::min<std::size_t>(n - direct, blockBytes);
        std::memset(last, static_cast<int>(blockBytes - 1 - rest), blockBytes);
        std::memcpy(last, bytes + direct, fromText);
        Encrypt(last, last, blockBytes);
        std::memcpy(out + direct, last, std::min<std::size_t>(capacity - direct, blockBytes));
    }
    *outLength = static_cast<int>(whole + blockBytes);
}

void AES256CBC::DoAES256Decrypt(const std::uint8_t* key, const std::uint8_t* iv, const std::uint8_t* in,
                                int length, std::uint8_t* out, int* outLength) {
    if (key == nullptr || iv == nullptr || in == nullptr || out == nullptr || outLength == nullptr) {
        return;
    }
    const std::size_t capacity = static_cast<std::size_t>(std::max(*outLength, 0));
    std::memset(out, 0, capacity);
    if (length < 0 || length % blockBytes != 0) {
        *outLength = 0;
        return;
    }
    MakeKey(key, iv);
    const std::size_t direct =
        std::min<std::size_t>(static_cast<std::size_t>(length), capacity - capacity % blockBytes);
    Decrypt(in, out, direct);
    if (direct < capacity && direct < static_cast<std::size_t>(length)) {
        std::uint8_t last[blockBytes];
        const WipeGuard guard(last);
        Decrypt(in + direct, last, blockBytes);
        std::memcpy(out + direct, last, capacity - direct);
    }
    *outLength = length;
}

} // namespace torka
