// SPDX-License-Identifier: Apache-2.0
#include "OpenSsl.h"
#include "ZANUtils/CSSM/CDSACrypto.h"
#include "ZANUtils/given/QVCFCryptoString.h"

#include <string>

namespace torka {
namespace {

using tests::bytesOf;
using tests::openSsl;
using tests::toHexText;

std::string asText(Bytes bytes) { return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; }

// Installs the sample field keys. Service providers that are attached later use them.
class CryptoService : public testing::Test {
protected:
    CryptoService() {
        const std::string list = tests::readFile(TORKA_SOURCE_DIR "/samples/FieldKeys.plist");
        keys = *FieldKeys::Load(bytesOf(list));
        installFieldKeys(keys);
        EXPECT_EQ(cdsaCspAttach(csp), CSSM_OK);
    }
    ~CryptoService() override { installFieldKeys(nullptr); }

    static CSSM_KEY SessionKey(CSSM_ALGORITHMS algorithm, std::size_t length) {
        CSSM_KEY key;
        key.algorithm = algorithm;
        key.keyClass = CSSM_KEYCLASS::sessionKey;
        for (std::size_t i = 0; i < length; ++i) {
            key.data.push_back(static_cast<std::uint8_t>(i * 29 + 3));
        }
        key.sizeInBits = static_cast<std::uint32_t>(length * 8);
        return key;
    }

    std::shared_ptr<const FieldKeys> keys;
    CSSM_CSP_HANDLE csp;
};

// RFC 6070, and the number of iterations and the key length of stored strings.
TEST_F(CryptoService, DerivesPublishedKeys) {
    const std::tuple<const char*, const char*, unsigned, std::uint32_t, const char*> cases[] = {
        {"password", "salt", 1, 160, "0c60c80f961f0e71f3a9b524af6012062fe037a6"},
        {"passwordPASSWORDpassword", "saltSALTsaltSALTsaltSALTsaltSALTsalt", 4096, 200,
         "3d2eec4fe41c849b80c8d83662c0e44a8b291a964cf2f07038"},
    };
    for (const auto& [password, salt, iterations, bits, expected] : cases) {
        CSSM_KEY key;
        ASSERT_EQ(cdsaDeriveKey(csp, bytesOf(password), bytesOf(salt), CSSM_ALGID_AES, bits, key, iterations),
                  CSSM_OK);
        EXPECT_EQ(toHexText(key.data), expected);
        EXPECT_EQ(key.label, "tempKey");
        EXPECT_EQ(cdsaFreeKey(csp, key), CSSM_OK);
        EXPECT_TRUE(key.data.empty());
    }
    CSSM_KEY key;
    EXPECT_EQ(cdsaDeriveKey(csp, {}, {}, CSSM_ALGID_AES, 0, key), CSSMERR_CSP_UNSUPPORTED_KEY_SIZE);
    EXPECT_EQ(cdsaDeriveKey(nullptr, {}, {}, CSSM_ALGID_AES, 128, key), CSSMERR_CSP_INVALID_CSP_HANDLE);
    SecureBuffer out;
    EXPECT_EQ(cdsaEncrypt(nullptr, SessionKey(CSSM_ALGID_AES, 16), bytesOf("text"), out),
              CSSMERR_CSP_INVALID_CSP_HANDLE);
}

TEST_F(CryptoService, CiphersAgreeWithOpenSsl) {
    // A stream cipher has blocks of one byte.
    const std::tuple<CSSM_ALGORITHMS, std::size_t, std::size_t, std::string> cases[] = {
        {CSSM_ALGID_AES, 16, 16, "-aes-128-cbc"},
        {CSSM_ALGID_AES, 24, 16, "-aes-192-cbc"},
        {CSSM_ALGID_AES, 32, 16, "-aes-256-cbc"},
        {CSSM_ALGID_DES, 8, 8, "-des-cbc"},
        {CSSM_ALGID_3DES_3KEY_EDE, 24, 8, "-des-ede3-cbc"},
        {CSSM_ALGID_RC2, 16, 8, "-rc2-cbc"},
        {CSSM_ALGID_RC4, 16, 1, "-rc4"},
    };
    for (const auto& [algorithm, keyBytes, blockBytes, name] : cases) {
        const CSSM_KEY key = SessionKey(algorithm, keyBytes);
        std::string options = "-e " + name + " -K " + toHexText(key.data);
        if (blockBytes > 1) {
            options += " -iv " + toHexText(keys->StringVector().first(blockBytes));
        }
        const std::string padding(blockBytes - 1, static_cast<char>(blockBytes));
        for (const std::string& broken :
             {padding + '\0', std::string(blockBytes, static_cast<char>(blockBytes + 1)), '\1' + padding}) {
            SecureBuffer out;
            const auto cipher = tests::openSslCipher(options + " -nopad", bytesOf(broken));
            EXPECT_EQ(cdsaDecrypt(csp, key, cipher, out), blockBytes > 1 ? CSSMERR_CSP_INVALID_DATA : CSSM_OK)
                << name;
        }
        for (const std::size_t length : {7U, 16U, 33U}) {
            SCOPED_TRACE(name + " " + std::to_string(length));
            const std::string plain = std::string("the plain text that is enciphered here").substr(0, length);
            SecureBuffer cipher;
            SecureBuffer back;
            ASSERT_EQ(cdsaEncrypt(csp, key, bytesOf(plain), cipher), CSSM_OK);
            EXPECT_EQ(toHexText(tests::openSslCipher(options, bytesOf(plain))), toHexText(cipher));
            ASSERT_EQ(cdsaDecrypt(csp, key, cipher, back), CSSM_OK);
            EXPECT_EQ(asText(back), plain);

            // The same text in pieces.
            SecureBuffer pieces;
            SecureBuffer backPieces;
            CSSM_CC_HANDLE context;
            for (std::size_t at = 0; at < length; at += 5) {
                const bool last = at + 5 >= length;
                ASSERT_EQ(cdsaStagedEncrypt(csp, key, bytesOf(std::string_view(plain).substr(at, 5)), last,
                                            pieces, context),
                          CSSM_OK);
                EXPECT_EQ(context == nullptr, last);
            }
            EXPECT_EQ(pieces, cipher);
            for (const std::uint8_t& byte : cipher) {
                const bool last = &byte == &cipher.back();
                ASSERT_EQ(cdsaStagedDecrypt(csp, key, Bytes(&byte, 1), last, backPieces, context), CSSM_OK);
            }
            EXPECT_EQ(asText(backPieces), plain);
        }
    }
}

// openssl accepts our keys, signatures and cipher texts.
TEST_F(CryptoService, RsaWithOpenSsl) {
    const tests::TemporaryFolder folder;
    const std::string data = "what is signed";
    CSSM_KEY ourPublic;
    CSSM_KEY ourPrivate;
    ASSERT_EQ(cdsaGenerateKeyPair(csp, CSSM_ALGID_RSA, 1024, ourPublic, ourPrivate), CSSM_OK);
    EXPECT_EQ(cdsaGenerateKeyPair(csp, CSSM_ALGID_RSA, 256, ourPublic, ourPrivate),
              CSSMERR_CSP_UNSUPPORTED_KEY_SIZE);
    const std::string dataFile = folder.Write("data", data).string();
    const std::string publicFile = folder.Write("public", asText(ourPublic.data)).string();
    const std::string privateFile = folder.Write("private", asText(ourPrivate.data)).string();
    const std::string pem = (folder / "pem").string();
    openSsl("rsa -RSAPublicKey_in -inform DER -in " + publicFile + " -pubout -out " + pem);
    EXPECT_NE(openSsl("rsa -inform DER -in " + privateFile + " -check -noout").find("RSA key ok"),
              std::string::npos);
    SecureBuffer out;
    for (const auto& [algorithm, name] :
         {std::pair{CSSM_ALGID_SHA1WithRSA, std::string("-sha1")}, {CSSM_ALGID_MD5WithRSA, "-md5"}}) {
        DigestHandle context;
        cdsaStagedSign(csp, ourPrivate, algorithm, bytesOf("what is "), false, out, context);
        ASSERT_EQ(cdsaStagedSign(csp, ourPrivate, algorithm, bytesOf("signed"), true, out, context), CSSM_OK);
        const std::string file = folder.Write("signature", asText(out)).string();
        openSsl("dgst " + name + " -verify " + pem + " -signature " + file + " " + dataFile);
        EXPECT_EQ(cdsaVerify(csp, ourPublic, algorithm, bytesOf(data), out), CSSM_OK);
        EXPECT_EQ(cdsaVerify(csp, ourPublic, algorithm, bytesOf("forged"), out), CSSMERR_CSP_VERIFY_FAILED);
        EXPECT_EQ(cdsaStagedVerify(csp, ourPublic, algorithm, bytesOf("what is "), false, out, context),
                  CSSM_OK);
        EXPECT_EQ(cdsaStagedVerify(csp, ourPublic, algorithm, bytesOf("signed"), true, out, context),
                  CSSM_OK);
        EXPECT_EQ(cdsaStagedVerify(csp, ourPublic, algorithm, bytesOf("forged"), true, out, context),
                  CSSMERR_CSP_VERIFY_FAILED);
    }
    ASSERT_EQ(cdsaEncrypt(csp, ourPublic, bytesOf(data), out), CSSM_OK);
    const std::string cipherFile = folder.Write("cipher", asText(out)).string();
    EXPECT_EQ(openSsl("pkeyutl -decrypt -keyform DER -inkey " + privateFile + " -in " + cipherFile), data);
    SecureBuffer plain;
    EXPECT_EQ(cdsaDecrypt(csp, ourPrivate, out, plain), CSSM_OK);
    EXPECT_EQ(asText(plain), data);

    EXPECT_EQ(cdsaEncrypt(csp, ourPrivate, bytesOf(data), out), CSSMERR_CSP_INVALID_KEY_CLASS);
    EXPECT_EQ(cdsaEncrypt(csp, ourPublic, bytesOf(std::string(118, 'x')), out),
              CSSMERR_CSP_INPUT_LENGTH_ERROR);
    EXPECT_EQ(cdsaDecrypt(csp, ourPrivate, bytesOf(std::string(128, '\xFF')), plain),
              CSSMERR_CSP_INVALID_DATA);
    ourPrivate.data.resize(100);
    EXPECT_EQ(cdsaSign(csp, ourPrivate, CSSM_ALGID_SHA1WithRSA, bytesOf(data), plain),
              CSSMERR_CSP_INVALID_KEY);
}

TEST_F(CryptoService, DiffieHellmanExchange) {
    CSSM_KEY ourPublic, ourPrivate, theirPublic, theirPrivate, ours, theirs;
    SecureBuffer parameters;
    for (const std::uint32_t bits : {1536U, 2048U}) {
        ASSERT_EQ(cdsaDhGenerateKeyPair(csp, bits, {}, ourPublic, ourPrivate, &parameters), CSSM_OK);
        ASSERT_EQ(cdsaDhGenerateKeyPair(csp, 0, parameters, theirPublic, theirPrivate, nullptr), CSSM_OK);
        ASSERT_EQ(cdsaDhKeyExchange(csp, ourPrivate, theirPublic.data, CSSM_ALGID_AES, 256, ours), CSSM_OK);
        ASSERT_EQ(cdsaDhKeyExchange(csp, theirPrivate, ourPublic.data, CSSM_ALGID_AES, 256, theirs), CSSM_OK);
        EXPECT_EQ(ours.data, theirs.data);
        // openssl knows the group, and Python computes the power.
        EXPECT_NE(openSsl("pkeyparam -text -in /dev/stdin",
                          openSsl("dhparam -inform DER -in /dev/stdin", asText(parameters)))
                      .find("GROUP: modp_" + std::to_string(bits)),
                  std::string::npos);
        const std::string prime = toHexText(parameters).substr(bits == 1536 ? 14 : 18, bits / 4);
        EXPECT_EQ(tests::runPython("import sys\nb,e,p=(int(v,16) for v in sys.argv[1:])\n"
                                   "print('%0*x' % (len(sys.argv[3]), pow(b,e,p)), end='')",
                                   {toHexText(theirPublic.data), toHexText(ourPrivate.data), prime})
                      .substr(0, 64),
                  toHexText(ours.data));
    }
    // Values with powers that anyone can guess, and invalid parameters.
    SecureBuffer value(ourPublic.data.size());
    for (const std::uint8_t last : {std::uint8_t{0}, std::uint8_t{1}}) {
        value.back() = last;
        EXPECT_EQ(cdsaDhKeyExchange(csp, ourPrivate, value, CSSM_ALGID_AES, 256, ours),
                  CSSMERR_CSP_INVALID_DATA);
    }
    EXPECT_EQ(cdsaDhKeyExchange(csp, ourPublic, ourPublic.data, CSSM_ALGID_AES, 256, ours),
              CSSMERR_CSP_INVALID_KEY_CLASS);
    EXPECT_EQ(cdsaDhGenerateKeyPair(csp, 1000, {}, ourPublic, ourPrivate, nullptr),
              CSSMERR_CSP_UNSUPPORTED_KEY_SIZE);
    parameters[40] = static_cast<std::uint8_t>(parameters[40] ^ 1); // no prime any more
    EXPECT_EQ(cdsaDhGenerateKeyPair(csp, 0, parameters, ourPublic, ourPrivate, nullptr),
              CSSMERR_CSP_INVALID_ATTR_ALG_PARAMS);
}

TEST_F(CryptoService, StoredStringsAgreeWithOpenSsl) {
    const CFStringRef password = cfString("p\xC3\xA4ssword");
    const std::string key =
        tests::runPython("import hashlib\nprint(hashlib.pbkdf2_hmac('sha1', 'p\\xe4ssword'.encode(),"
                         " b'vrznTupl', 1000, 16).hex(), end='')");
    const std::string options = "-aes-128-cbc -a -A -K " + key + " -iv " + toHexText(keys->StringVector());
    for (const std::string text :
         {"", "a", "fifteen letters", "sixteen letters!", "\xC3\xA9t\xC3\xA9 \xE6\x97\xA5"}) {
        SCOPED_TRACE(text);
        const CFStringRef cipher = QVCFCreateEncryptedString(cfString(text), password);
        ASSERT_TRUE(cipher);
        EXPECT_EQ(asText(tests::openSslCipher("-e " + options, bytesOf(text))), utf8Text(cipher));
        EXPECT_EQ(utf8Text(QVCFCreateDecryptedString(cipher, password)), text);
    }
    EXPECT_TRUE(CFEqual(QVCFCreateEncryptedString(nullptr, password),
                        QVCFCreateEncryptedString(cfString(""), password)));
}

} // namespace
} // namespace torka
