// SPDX-License-Identifier: Apache-2.0
#include "OpenSsl.h"
#include "ZANUtils/AES256CBC.h"
#include "ZANUtils/CSSM/BigNumber.h"
#include "ZANUtils/CSSM/CDSACrypto.h"
#include "ZANUtils/CSSM/RsaKey.h"
#include "ZANUtils/DES.h"
#include "ZANUtils/given/QVCFCryptoString.h"
#include "ZANUtils/given/SHA1.h"
#include "ZANUtils/given/Twofish.h"
#include "tests/support/TestSupport.h"

#include <functional>
#include <nettle/arcfour.h>
#include <optional>

namespace torka {
namespace {

// Bytes that occur nowhere else in the program.
SecureBuffer secret(std::size_t size) {
    SecureBuffer bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<std::uint8_t>('!' + (i * 37 + i / 7) % 90);
    }
    return bytes;
}

// A trace: what the search looks for, masked.
std::string trace(Bytes bytes) {
    std::string masked;
    for (const std::uint8_t byte : bytes) {
        masked += static_cast<char>(byte ^ tests::secretMask);
    }
    return masked;
}

// The middle of what a library's call fills in.
template <typename Context>
std::string traceOf(const std::function<void(Context*)>& fill) {
    SecureBuffer memory(sizeof(Context));
    fill(reinterpret_cast<Context*>(memory.data()));
    return trace(Bytes(memory).subspan(sizeof(Context) / 2, 16));
}

// The middle of a number's digits.
std::string traceOf(const mpz_t number) {
    const Bytes digits(reinterpret_cast<const std::uint8_t*>(mpz_limbs_read(number)), mpz_size(number) * 8);
    return trace(digits.subspan(digits.size() / 2 - 8, 24));
}

using Look = std::function<void()>;
using Use = std::function<void(const Look& isThere)>;

// The memory of an object that has ended stays as it was left.
template <typename T>
std::optional<T> place;

template <typename T>
Use inPlace(
    const std::function<void(T&)>& fill, const std::function<void(T&)>& end = [](T&) { place<T>.reset(); }) {
    return [fill, end](const Look& isThere) {
        fill(place<T>.emplace());
        isThere();
        end(*place<T>);
    };
}

// `make` returns the pointer to a holder.
template <typename Make>
Use whileItLives(Make make) {
    return [make](const Look& isThere) {
        const auto holder = make();
        isThere();
    };
}

CSSM_KEY keyOf(CSSM_ALGORITHMS algorithm, CSSM_KEYCLASS keyClass, Bytes bytes) {
    CSSM_KEY key;
    key.algorithm = algorithm;
    key.keyClass = keyClass;
    key.data.assign(bytes.begin(), bytes.end());
    return key;
}

// Traces of keys and texts are there while their holder uses them, and nowhere afterwards.
TEST(Secrets, NoTraceOutlivesItsHolder) {
    if (platform::hasAddressSanitizer) {
        GTEST_SKIP() << "the sanitizer's shadow makes the process's memory terabytes";
    }
    const std::string list = tests::readFile(TORKA_SOURCE_DIR "/samples/FieldKeys.plist");
    installFieldKeys(*FieldKeys::Load(tests::bytesOf(list)));
    CSSM_CSP_HANDLE csp;
    ASSERT_EQ(cdsaCspAttach(csp), CSSM_OK);
    struct Holder {
        const char* name;
        std::vector<std::string> traces;
        Use use;
    };
    const auto schedule = [](aes256_ctx* context) { aes256_set_encrypt_key(context, secret(32).data()); };
    const auto inverse = [&](aes256_ctx* context) {
        schedule(context);
        aes256_invert_key(context, context);
    };
    const std::vector aesTraces{traceOf<aes256_ctx>(schedule), traceOf<aes256_ctx>(inverse)};
    const auto makeAes = [](AES256CBC& aes) {
        aes.MakeKey(secret(32).data(), secret(16).data());
        SecureBuffer block(16);
        aes.DecryptBlock(block.data(), block.data());
    };
    const auto take = [](SHA1& digest) { digest.Input(secret(20).data(), 20); };
    const std::string bytes = trace(secret(20));
    const auto value = [](SHA1& digest) {
        SecureBuffer words(20);
        digest.Input(secret(20).data(), 20);
        digest.Result(reinterpret_cast<unsigned*>(words.data()));
        return trace(words);
    };
    SHA1 digest;
    const std::string valueTrace = value(digest);
    digest.Reset();
    const std::string otherList = tests::runPython("import plistlib, sys\n"
                                                   "p = plistlib.loads(sys.stdin.buffer.read())\n"
                                                   "for k in ('KeyTable', 'VectorTable', 'StringVector'):\n"
                                                   "    p[k] = bytes(b ^ 60 for b in p[k])\n"
                                                   "print(plistlib.dumps(p).decode())",
                                                   {}, list);
    const auto otherKeys = [&] { return *FieldKeys::Load(tests::bytesOf(otherList)); };
    const std::string pair = tests::openSsl("genrsa -traditional 1024");
    const std::string der = tests::openSsl("rsa -traditional -outform DER", pair);
    const CSSM_KEY pairKey = keyOf(CSSM_ALGID_RSA, CSSM_KEYCLASS::privateKey, tests::bytesOf(der));
    const auto rsaKey = [&] {
        auto key = std::make_unique<RsaKey>();
        EXPECT_EQ(key->Read(pairKey, CSSM_KEYCLASS::privateKey), CSSM_OK);
        return key;
    };
    const auto numbers = [&] {
        const auto key = rsaKey();
        const rsa_private_key& part = key->privateKey;
        return std::vector{traceOf(part.d), traceOf(part.p), traceOf(part.q),
                           traceOf(part.a), traceOf(part.b), traceOf(part.c)};
    };
    const auto text = [] {
        const SecureBuffer characters = secret(600);
        return CFStringCreateWithBytes(reinterpret_cast<const char*>(characters.data()), 600,
                                       kCFStringEncodingUTF8);
    };
    const Holder holders[] = {
        {"stream cipher",
         {traceOf<arcfour_ctx>([](auto* context) { arcfour_set_key(context, 16, secret(16).data()); })},
         [&](const Look& isThere) {
             const CSSM_KEY key = keyOf(CSSM_ALGID_RC4, CSSM_KEYCLASS::sessionKey, secret(16));
             SecureBuffer out;
             CSSM_CC_HANDLE context;
             ASSERT_EQ(cdsaStagedEncrypt(csp, key, {}, false, out, context), CSSM_OK);
             isThere();
         }},
        {"AES, ended", aesTraces, inPlace<AES256CBC>(makeAes)},
        {"AES with another key", aesTraces,
         inPlace<AES256CBC>(
             makeAes, [](AES256CBC& aes) { aes.MakeKey(SecureBuffer(32).data(), SecureBuffer(16).data()); })},
        {"DES",
         {traceOf<des_ctx>([](auto* context) { static_cast<void>(des_set_key(context, secret(8).data())); })},
         inPlace<DES>([](DES& des) { des.deskey(secret(8).data(), EN0); })},
        {"Twofish",
         {traceOf<twofish_ctx>([](auto* context) { twofish_set_key(context, 32, secret(32).data()); }),
          trace(secret(32))},
         inPlace<Twofish::KeyInstance>([](Twofish::KeyInstance& key) {
             key.keyLen = 256;
             const SecureBuffer words = secret(32);
             std::memcpy(key.key32.data(), words.data(), words.size());
             EXPECT_EQ(Twofish::reKey(&key), 1);
         })},
        {"digest that begins again", {bytes}, inPlace<SHA1>(take, [](SHA1& begun) { begun.Reset(); })},
        {"digest that is read",
         {bytes},
         inPlace<SHA1>(take,
                       [](SHA1& taken) {
                           unsigned words[5];
                           taken.Result(words);
                       })},
        {"digest, ended", {bytes}, inPlace<SHA1>(take)},
        {"value of a digest", {valueTrace}, inPlace<SHA1>(value)},
        {"field keys",
         {trace(otherKeys()->AesKey("11")), trace(otherKeys()->Vector("11")), trace(otherKeys()->Vector("")),
          trace(otherKeys()->StringVector())},
         whileItLives(otherKeys)},
        {"RSA key", numbers(), whileItLives(rsaKey)},
        {"number", {traceOf(BigNumber(secret(600)).value)}, whileItLives([] {
             return std::make_unique<BigNumber>(secret(600));
         })},
        {"stored string",
         {trace(Bytes(secret(600)).subspan(300, 24))},
         [&](const Look& isThere) {
             const CFStringRef cipher = QVCFCreateEncryptedString(text(), text());
             EXPECT_TRUE(CFEqual(QVCFCreateDecryptedString(cipher, text()), text()));
             const SecureBuffer narrow = secret(600); // texts have wide units
             isThere();
         }},
    };
    for (const auto& [name, traces, use] : holders) {
        const auto copies = [&traces = traces] {
            std::vector<std::size_t> counts;
            for (const std::string& each : traces) {
                counts.push_back(tests::copiesInMemory(each));
            }
            return counts;
        };
        const std::vector<std::size_t> none(traces.size());
        ASSERT_EQ(copies(), none) << "before: " << name;
        use([&, name = name] {
            for (const std::size_t count : copies()) {
                EXPECT_GT(count, 0U) << "the search does not find: " << name;
            }
        });
        EXPECT_EQ(copies(), none) << name;
    }
    installFieldKeys(nullptr);
}

} // namespace
} // namespace torka
