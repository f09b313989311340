// SPDX-License-Identifier: Apache-2.0
// Compares the note ciphers and the encodings with bare calls of nettle and OpenSSL, on the same bytes in one
// run.

#include "ZANUtils/AES256CBC.h"
#include "ZANUtils/Base64Encoder.h"
#include "ZANUtils/DES.h"
#include "ZANUtils/given/Base64Decoder.h"
#include "ZANUtils/given/SHA1.h"
#include "ZANUtils/given/Twofish.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <nettle/base64.h>
#include <nettle/cbc.h>
#include <nettle/nettle-meta.h>
#include <nettle/sha1.h>
#include <openssl/evp.h>
#include <string>
#include <vector>

namespace {

using namespace torka;

constexpr std::size_t largestNote = 240;
std::uint8_t key[32] = {7, 1, 2, 3, 4, 5, 6, 8, 9};
const std::uint8_t vector[16] = {1, 2, 3};

std::string noteText(const benchmark::State& state) {
    return std::string(static_cast<std::size_t>(state.range(0)), 'n');
}

// One protected note: key set-up, padding, cipher.
void aesNote(benchmark::State& state) {
    const std::string text = noteText(state);
    std::uint8_t out[282];
    for (auto _ : state) {
        AES256CBC aes;
        int length = sizeof out;
        aes.DoAES256Encrypt(key, vector, text.c_str(), out, &length);
        benchmark::DoNotOptimize(out);
    }
}

// The same result from bare calls: pads into one buffer, enciphers into another of the same size, and wipes
// nothing.
void aesNoteNettle(benchmark::State& state) {
    const std::string text = noteText(state);
    std::uint8_t padded[largestNote + 32];
    std::uint8_t out[282];
    for (auto _ : state) {
        const std::size_t n = std::strlen(text.c_str()) + 1;
        const std::size_t rest = n % 16;
        std::memcpy(padded, text.c_str(), n);
        std::memset(padded + n, static_cast<int>(15 - rest), 16 - rest);
        std::memset(out, 0, sizeof out);
        aes256_ctx context;
        std::uint8_t chain[16];
        aes256_set_encrypt_key(&context, key);
        std::memcpy(chain, vector, sizeof chain);
        cbc_aes256_encrypt(&context, chain, n + 16 - rest, out, padded);
        benchmark::DoNotOptimize(out);
    }
}

void aesNoteOpenSsl(benchmark::State& state) {
    const std::string text = noteText(state);
    std::uint8_t padded[largestNote + 32];
    std::uint8_t out[282];
    EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
    for (auto _ : state) {
        const std::size_t n = std::strlen(text.c_str()) + 1;
        const std::size_t rest = n % 16;
        std::memcpy(padded, text.c_str(), n);
        std::memset(padded + n, static_cast<int>(15 - rest), 16 - rest);
        std::memset(out, 0, sizeof out);
        int length = 0;
        EVP_EncryptInit_ex(context, EVP_aes_256_cbc(), nullptr, key, vector);
        EVP_CIPHER_CTX_set_padding(context, 0);
        EVP_EncryptUpdate(context, out, &length, padded, static_cast<int>(n + 16 - rest));
        benchmark::DoNotOptimize(out);
    }
    EVP_CIPHER_CTX_free(context);
}

void aesDecrypt(benchmark::State& state) {
    const std::vector<std::uint8_t> cipher(static_cast<std::size_t>(state.range(0)), 0x5A);
    std::vector<std::uint8_t> out(cipher.size());
    for (auto _ : state) {
        AES256CBC aes;
        int length = static_cast<int>(out.size());
        aes.DoAES256Decrypt(key, vector, cipher.data(), static_cast<int>(cipher.size()), out.data(), &length);
        benchmark::DoNotOptimize(out.data());
    }
}

void aesDecryptNettle(benchmark::State& state) {
    const std::vector<std::uint8_t> cipher(static_cast<std::size_t>(state.range(0)), 0x5A);
    std::vector<std::uint8_t> out(cipher.size());
    for (auto _ : state) {
        aes256_ctx context;
        std::uint8_t chain[16];
        std::memset(out.data(), 0, out.size());
        aes256_set_decrypt_key(&context, key);
        std::memcpy(chain, vector, sizeof chain);
        cbc_decrypt(&context, nettle_aes256.decrypt, 16, chain, cipher.size(), out.data(), cipher.data());
        benchmark::DoNotOptimize(out.data());
    }
}

void desNote(benchmark::State& state) {
    std::vector<std::uint8_t> block(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        DES engine;
        engine.deskey(key, EN0);
        for (std::size_t i = 0; i < block.size(); i += 8) {
            engine.des(block.data() + i, block.data() + i);
        }
        benchmark::DoNotOptimize(block.data());
    }
}

void desNoteNettle(benchmark::State& state) {
    std::vector<std::uint8_t> block(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        des_ctx context;
        des_set_key(&context, key);
        des_encrypt(&context, block.size(), block.data(), block.data());
        benchmark::DoNotOptimize(block.data());
    }
}

void twofish(benchmark::State& state) {
    std::vector<std::uint8_t> block(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        Twofish::RunCipher(false, key, block.data(), static_cast<int>(block.size()), block.data());
        benchmark::DoNotOptimize(block.data());
    }
}

void twofishNettle(benchmark::State& state) {
    std::vector<std::uint8_t> block(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        twofish_ctx context;
        twofish256_set_key(&context, key);
        twofish_encrypt(&context, block.size(), block.data(), block.data());
        benchmark::DoNotOptimize(block.data());
    }
}

void sha1(benchmark::State& state) {
    const std::vector<std::uint8_t> data(static_cast<std::size_t>(state.range(0)), 'x');
    for (auto _ : state) {
        SHA1 sha;
        unsigned int words[5];
        sha.Input(data.data(), data.size());
        sha.Result(words);
        benchmark::DoNotOptimize(words);
    }
}

void sha1Nettle(benchmark::State& state) {
    const std::vector<std::uint8_t> data(static_cast<std::size_t>(state.range(0)), 'x');
    for (auto _ : state) {
        sha1_ctx context;
        std::uint8_t digest[SHA1_DIGEST_SIZE];
        sha1_init(&context);
        sha1_update(&context, data.size(), data.data());
        sha1_digest(&context, sizeof digest, digest);
        benchmark::DoNotOptimize(digest);
    }
}

std::string base64Text(std::size_t bytes) {
    std::string text(BASE64_ENCODE_RAW_LENGTH(bytes), '?');
    base64_encode_raw(text.data(), bytes, std::vector<std::uint8_t>(bytes, 0xA7).data());
    return text;
}

void base64Decode(benchmark::State& state) {
    const std::string text = base64Text(static_cast<std::size_t>(state.range(0)));
    std::vector<std::uint8_t> out(Base64Decoder::MaximumLength(text.size()));
    for (auto _ : state) {
        Base64Decoder decoder;
        benchmark::DoNotOptimize(decoder.Decode(text.data(), text.size(), out));
    }
}

void base64DecodeNettle(benchmark::State& state) {
    const std::string text = base64Text(static_cast<std::size_t>(state.range(0)));
    std::vector<std::uint8_t> out(BASE64_DECODE_LENGTH(text.size()));
    for (auto _ : state) {
        base64_decode_ctx context;
        base64_decode_init(&context);
        std::size_t length = out.size();
        base64_decode_update(&context, &length, out.data(), text.size(), text.data());
        benchmark::DoNotOptimize(length);
    }
}

void base64DecodeOpenSsl(benchmark::State& state) {
    const std::string text = base64Text(static_cast<std::size_t>(state.range(0)));
    std::vector<std::uint8_t> out(text.size());
    for (auto _ : state) {
        benchmark::DoNotOptimize(EVP_DecodeBlock(
            out.data(), reinterpret_cast<const std::uint8_t*>(text.data()), static_cast<int>(text.size())));
    }
}

} // namespace

BENCHMARK(aesNote)->Arg(20)->Arg(240);
BENCHMARK(aesNoteNettle)->Arg(20)->Arg(240);
BENCHMARK(aesNoteOpenSsl)->Arg(20)->Arg(240);
BENCHMARK(aesDecrypt)->Arg(32)->Arg(256);
BENCHMARK(aesDecryptNettle)->Arg(32)->Arg(256);
BENCHMARK(desNote)->Arg(24)->Arg(240);
BENCHMARK(desNoteNettle)->Arg(24)->Arg(240);
BENCHMARK(twofish)->Arg(32)->Arg(4096);
BENCHMARK(twofishNettle)->Arg(32)->Arg(4096);
BENCHMARK(sha1)->Arg(20)->Arg(4096);
BENCHMARK(sha1Nettle)->Arg(20)->Arg(4096);
BENCHMARK(base64Decode)->Arg(4096);
BENCHMARK(base64DecodeNettle)->Arg(4096);
BENCHMARK(base64DecodeOpenSsl)->Arg(4096);
BENCHMARK_MAIN();
