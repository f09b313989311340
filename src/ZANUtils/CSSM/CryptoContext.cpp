// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/CSSM/CryptoContext.h"

#include "ZANUtils/CSSM/BigNumber.h"
#include "ZANUtils/CSSM/RsaKey.h"

#include <algorithm>
#include <nettle/aes.h>
#include <nettle/arcfour.h>
#include <nettle/arctwo.h>
#include <nettle/cbc.h>
#include <nettle/des.h>

namespace torka {

namespace {

// A nettle block cipher behind untyped calls.
struct BlockCipher {
    std::size_t blockBytes;
    std::size_t contextBytes;
    void (*setKey)(void* context, std::span<const std::uint8_t> key, bool encrypt);
    nettle_cipher_func* encrypt;
    nettle_cipher_func* decrypt;
};

template <typename Context, auto Function>
void crypt(const void* context, std::size_t length, std::uint8_t* out, const std::uint8_t* in) {
    // RC2's functions take a context that is not const but do not change it.
    Function(const_cast<Context*>(static_cast<const Context*>(context)), length, out, in);
}

template <typename Context, auto SetEncrypt, auto SetDecrypt>
void setAesKey(void* context, std::span<const std::uint8_t> key, bool encrypt) {
    (encrypt ? SetEncrypt : SetDecrypt)(static_cast<Context*>(context), key.data());
}

template <typename Context, auto SetKey>
void setDesKey(void* context, std::span<const std::uint8_t> key, bool) {
    static_cast<void>(SetKey(static_cast<Context*>(context), key.data())); // accepts weak keys
}

void setRc2Key(void* context, std::span<const std::uint8_t> key, bool) {
    arctwo_set_key(static_cast<arctwo_ctx*>(context), key.size(), key.data());
}

constexpr BlockCipher aes128Cipher{AES_BLOCK_SIZE, sizeof(aes128_ctx),
                                   setAesKey<aes128_ctx, aes128_set_encrypt_key, aes128_set_decrypt_key>,
                                   crypt<aes128_ctx, aes128_encrypt>, crypt<aes128_ctx, aes128_decrypt>};
constexpr BlockCipher aes192Cipher{AES_BLOCK_SIZE, sizeof(aes192_ctx),
                                   setAesKey<aes192_ctx, aes192_set_encrypt_key, aes192_set_decrypt_key>,
                                   crypt<aes192_ctx, aes192_encrypt>, crypt<aes192_ctx, aes192_decrypt>};
constexpr BlockCipher aes256Cipher{AES_BLOCK_SIZE, sizeof(aes256_ctx),
                                   setAesKey<aes256_ctx, aes256_set_encrypt_key, aes256_set_decrypt_key>,
                                   crypt<aes256_ctx, aes256_encrypt>, crypt<aes256_ctx, aes256_decrypt>};
constexpr BlockCipher desCipher{DES_BLOCK_SIZE, sizeof(des_ctx), setDesKey<des_ctx, des_set_key>,
                                crypt<des_ctx, des_encrypt>, crypt<des_ctx, des_decrypt>};
constexpr BlockCipher des3Cipher{DES3_BLOCK_SIZE, sizeof(des3_ctx), setDesKey<des3_ctx, des3_set_key>,
                                 crypt<des3_ctx, des3_encrypt>, crypt<des3_ctx, des3_decrypt>};
constexpr BlockCipher rc2Cipher{ARCTWO_BLOCK_SIZE, sizeof(arctwo_ctx), setRc2Key,
                                crypt<arctwo_ctx, arctwo_encrypt>, crypt<arctwo_ctx, arctwo_decrypt>};

// Returns null when the cipher has no keys of this length.
const BlockCipher* blockCipherFor(CSSM_ALGORITHMS algorithm, std::size_t keyBytes) {
    switch (algorithm) {
    case CSSM_ALGID_AES:
        return keyBytes == AES128_KEY_SIZE   ? &aes128Cipher
               : keyBytes == AES192_KEY_SIZE ? &aes192Cipher
               : keyBytes == AES256_KEY_SIZE ? &aes256Cipher
                                             : nullptr;
    case CSSM_ALGID_DES:
        return keyBytes == DES_KEY_SIZE ? &desCipher : nullptr;
    case CSSM_ALGID_3DES_3KEY_EDE:
        return keyBytes == DES3_KEY_SIZE ? &des3Cipher : nullptr;
    case CSSM_ALGID_RC2:
        return keyBytes >= ARCTWO_MIN_KEY_SIZE && keyBytes <= ARCTWO_MAX_KEY_SIZE ? &rc2Cipher : nullptr;
    default:
        return nullptr;
    }
}

// Cipher-block chaining with the padding of PKCS #5 and #7 (RFC 5652, 6.3): one byte to a whole block of
// padding, each byte with their count.
class BlockEngine final : public CryptoEngine {
public:
    BlockEngine(const BlockCipher& blockCipher, const CSSM_CONTEXT& context, bool encryptNow)
        : cipher(blockCipher)
        , encrypt(encryptNow)
        , state(blockCipher.contextBytes)
        , chain(context.initialVector.begin(),
                context.initialVector.begin() + static_cast<std::ptrdiff_t>(blockCipher.blockBytes)) {
        cipher.setKey(state.data(), context.key->data, encrypt);
    }

    CSSM_RETURN Update(std::span<const std::uint8_t> in, SecureBuffer& out) override {
        pending.insert(pending.end(), in.begin(), in.end());
        // When deciphering, the last whole block waits, because it may hold the padding.
        const std::size_t kept = encrypt || pending.empty() ? 0 : 1;
        RunBlocks((pending.size() - kept) / cipher.blockBytes * cipher.blockBytes, out);
        return CSSM_OK;
    }

    CSSM_RETURN Finish(SecureBuffer& out) override {
        const std::size_t block = cipher.blockBytes;
        if (encrypt) {
            const std::size_t count = block - pending.size() % block;
            pending.insert(pending.end(), count, static_cast<std::uint8_t>(count));
            RunBlocks(pending.size(), out);
            return CSSM_OK;
        }
        if (pending.size() != block) {
            return CSSMERR_CSP_INPUT_LENGTH_ERROR;
        }
        RunBlocks(block, out);
        const std::size_t count = out.back();
        if (count == 0 || count > block ||
            !std::all_of(out.end() - static_cast<std::ptrdiff_t>(count), out.end(),
                         [count](std::uint8_t byte) { return byte == count; })) {
            return CSSMERR_CSP_INVALID_DATA;
        }
        out.resize(out.size() - count);
        return CSSM_OK;
    }

private:
    // Passes the first `length` pending bytes, a multiple of the block size, through the cipher to the end of
    // `out`.
    void RunBlocks(std::size_t length, SecureBuffer& out) {
        if (length == 0) {
            return;
        }
        const std::size_t start = out.size();
        out.resize(start + length);
        if (encrypt) {
            cbc_encrypt(state.data(), cipher.encrypt, cipher.blockBytes, chain.data(), length,
                        out.data() + start, pending.data());
        } else {
            cbc_decrypt(state.data(), cipher.decrypt, cipher.blockBytes, chain.data(), length,
                        out.data() + start, pending.data());
        }
        SecureBuffer rest(pending.begin() + static_cast<std::ptrdiff_t>(length), pending.end());
        pending.swap(rest);
    }

    const BlockCipher& cipher;
    const bool encrypt;
    SecureBuffer state; // context of the cipher
    SecureBuffer chain;
    SecureBuffer pending; // input that waits for a whole block
};

class Rc4Engine final : public CryptoEngine {
public:
    explicit Rc4Engine(const CSSM_KEY& key) { arcfour_set_key(&state, key.data.size(), key.data.data()); }
    Rc4Engine(const Rc4Engine&) = delete;
    Rc4Engine& operator=(const Rc4Engine&) = delete;
    ~Rc4Engine() override { wipeValue(state); }

    CSSM_RETURN Update(std::span<const std::uint8_t> in, SecureBuffer& out) override {
        const std::size_t start = out.size();
        out.resize(start + in.size());
        arcfour_crypt(&state, in.size(), out.data() + start, in.data());
        return CSSM_OK;
    }
    CSSM_RETURN Finish(SecureBuffer&) override { return CSSM_OK; }

private:
    arcfour_ctx state{};
};

// RSA with the padding of PKCS #1 version 1.5: public keys encipher, private keys decipher one short message.
class RsaEngine final : public CryptoEngine {
public:
    explicit RsaEngine(bool encryptNow)
        : encrypt(encryptNow) {}

    CSSM_RETURN Start(const CSSM_KEY& newKey) {
        return key.Read(newKey, encrypt ? CSSM_KEYCLASS::publicKey : CSSM_KEYCLASS::privateKey);
    }

    CSSM_RETURN Update(std::span<const std::uint8_t> in, SecureBuffer&) override {
        if (in.size() > key.publicKey.size - message.size()) {
            return CSSMERR_CSP_INPUT_LENGTH_ERROR;
        }
        message.insert(message.end(), in.begin(), in.end());
        return CSSM_OK;
    }

    CSSM_RETURN Finish(SecureBuffer& out) override {
        const std::size_t size = key.publicKey.size;
        if (encrypt) {
            BigNumber result;
            if (rsa_encrypt(&key.publicKey, nullptr, cspRandomBytes, message.size(), message.data(),
                            result.value) == 0) {
                return CSSMERR_CSP_INPUT_LENGTH_ERROR;
            }
            const SecureBuffer bytes = result.Bytes(size);
            out.insert(out.end(), bytes.begin(), bytes.end());
            return CSSM_OK;
        }
        const BigNumber number(message);
        SecureBuffer clear(size);
        std::size_t length = size;
        if (message.size() != size || mpz_cmp(number.value, key.publicKey.n) >= 0 ||
            rsa_decrypt_tr(&key.publicKey, &key.privateKey, nullptr, cspRandomBytes, &length, clear.data(),
                           number.value) == 0) {
            return CSSMERR_CSP_INVALID_DATA;
        }
        out.insert(out.end(), clear.begin(), clear.begin() + static_cast<std::ptrdiff_t>(length));
        return CSSM_OK;
    }

private:
    const bool encrypt;
    RsaKey key;
    SecureBuffer message;
};

} // namespace

CSSM_RETURN genCryptHandle(const CSSM_CSP_HANDLE& csp, const CSSM_KEY& key, CSSM_CC_HANDLE& context) {
    context.reset();
    if (!csp) {
        return CSSMERR_CSP_INVALID_CSP_HANDLE;
    }
    auto made = std::make_unique<CSSM_CONTEXT>();
    made->key = &key;
    switch (key.algorithm) {
    case CSSM_ALGID_AES:
        made->mode = CSSM_ENCRYPT_MODE::cbcPadIV8;
        made->padding = CSSM_PADDING::pkcs7;
        break;
    case CSSM_ALGID_DES:
    case CSSM_ALGID_3DES_3KEY_EDE:
    case CSSM_ALGID_RC2:
    case CSSM_ALGID_RC5:
        made->mode = CSSM_ENCRYPT_MODE::cbcPadIV8;
        made->padding = CSSM_PADDING::pkcs5;
        break;
    case CSSM_ALGID_RC4:
    case CSSM_ALGID_ASC:
        break;
    case CSSM_ALGID_RSA:
        made->padding = CSSM_PADDING::pkcs1;
        made->isAsymmetric = true;
        break;
    default:
        return CSSMERR_CSP_INVALID_ALGORITHM;
    }
    if (made->mode != CSSM_ENCRYPT_MODE::none) {
        if (!csp->fieldKeys) {
            return CSSMERR_CSP_MISSING_ATTR_INIT_VECTOR;
        }
        const auto vector = csp->fieldKeys->StringVector();
        std::copy(vector.begin(), vector.end(), made->initialVector.begin());
    }
    context = std::move(made);
    return CSSM_OK;
}

CSSM_RETURN startEngine(CSSM_CONTEXT& context, bool encrypt) {
    const CSSM_KEY& key = *context.key;
    switch (key.algorithm) {
    case CSSM_ALGID_RC5:
    case CSSM_ALGID_ASC:
        return CSSMERR_CSP_FUNCTION_NOT_IMPLEMENTED;
    case CSSM_ALGID_RSA: {
        auto engine = std::make_unique<RsaEngine>(encrypt);
        if (const CSSM_RETURN result = engine->Start(key); result != CSSM_OK) {
            return result;
        }
        context.engine = std::move(engine);
        return CSSM_OK;
    }
    case CSSM_ALGID_RC4:
        if (key.data.empty() || key.data.size() > ARCFOUR_MAX_KEY_SIZE) {
            return CSSMERR_CSP_UNSUPPORTED_KEY_SIZE;
        }
        context.engine = std::make_unique<Rc4Engine>(key);
        return CSSM_OK;
    default: {
        const BlockCipher* cipher = blockCipherFor(key.algorithm, key.data.size());
        if (cipher == nullptr) {
            return key.data.empty() ? CSSMERR_CSP_MISSING_ATTR_KEY : CSSMERR_CSP_UNSUPPORTED_KEY_SIZE;
        }
        context.engine = std::make_unique<BlockEngine>(*cipher, context, encrypt);
        return CSSM_OK;
    }
    }
}

} // namespace torka
