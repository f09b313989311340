// SPDX-License-Identifier: Apache-2.0
#include "Hex.h"
#include "OpenSsl.h"
#include "ZANUtils/AES256CBC.h"
#include "ZANUtils/Base64Encoder.h"
#include "ZANUtils/DES.h"
#include "ZANUtils/QVCFBase64.h"
#include "ZANUtils/given/Base64Decoder.h"
#include "ZANUtils/given/SHA1.h"
#include "ZANUtils/given/Twofish.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

namespace torka {
namespace {

using tests::fromHex;
using tests::toHexText;
using Block = std::vector<std::uint8_t>;

const Block aesKey = fromHex("603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4");
const Block aesVector = fromHex("000102030405060708090a0b0c0d0e0f");

// SP 800-38A, F.2.5 and F.2.6, in pieces, so that the chain continues across calls. The first block alone is
// that of F.1.5. A second key replaces the first in both directions.
TEST(AES256CBC, PublishedChain) {
    const Block plain = fromHex("6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51"
                                "30c81c46a35ce411e5fbc1191a0a52eff69f2445df4f9b17ad2b417be66c3710");
    const std::string cipher = "f58c4c04d6e5f1ba779eabfb5f7bfbd69cfc4e967edb808d679f777bc6702c7d"
                               "39f23369a9d9bacfa530e26304231461b2eb05e2c39be9fcda6c19078c6a9d1b";
    AES256CBC aes;
    Block out(64);
    aes.MakeKey(plain.data(), aesVector.data(), 32, 16);
    aes.DefDecryptBlock(plain.data(), out.data());
    aes.MakeKey(aesKey.data(), aesVector.data(), 32, 16);
    aes.DefEncryptBlock(plain.data(), out.data());
    EXPECT_EQ(toHexText(std::span(out).first(16)), "f3eed1bdb5d2a03c064b5a7e3db181f8");
    aes.DefDecryptBlock(out.data(), out.data());
    EXPECT_TRUE(std::equal(plain.begin(), plain.begin() + 16, out.begin()));
    aes.EncryptBlock(plain.data(), out.data());
    aes.Encrypt(plain.data() + 16, out.data() + 16, 48);
    EXPECT_EQ(toHexText(out), cipher);
    aes.ResetChain();
    aes.Decrypt(out.data(), out.data(), 48); // in place
    aes.DecryptBlock(out.data() + 48, out.data() + 48);
    EXPECT_EQ(out, plain);
}

TEST(AES256CBC, RefusesOtherSizesAndMissingArguments) {
    AES256CBC aes;
    aes.MakeKey(aesKey.data(), aesVector.data(), 16, 16);
    aes.MakeKey(aesKey.data(), aesVector.data(), 32, 24);
    aes.MakeKey(nullptr, aesVector.data(), 32, 16);
    aes.MakeKey(aesKey.data(), nullptr, 32, 16);
    EXPECT_FALSE(aes.HasKey());
    const Block untouched(32, 0xAA);
    Block out = untouched;
    aes.Encrypt(untouched.data(), out.data(), 16);
    aes.MakeKey(aesKey.data(), aesVector.data(), 32, 16);
    aes.Encrypt(untouched.data(), out.data(), 17);
    aes.Decrypt(untouched.data(), out.data(), 15);
    int length = 32;
    aes.DoAES256Encrypt(nullptr, aesVector.data(), "x", out.data(), &length);
    aes.DoAES256Encrypt(aesKey.data(), nullptr, "x", out.data(), &length);
    aes.DoAES256Encrypt(aesKey.data(), aesVector.data(), nullptr, out.data(), &length);
    aes.DoAES256Encrypt(aesKey.data(), aesVector.data(), "x", out.data(), nullptr);
    aes.DoAES256Decrypt(aesKey.data(), aesVector.data(), nullptr, 16, out.data(), &length);
    EXPECT_EQ(out, untouched);
    EXPECT_EQ(length, 32);
}

Block cutOrZeroFilled(Block bytes, std::size_t size) {
    bytes.resize(size);
    return bytes;
}

// A short buffer receives the first bytes of the same result, a long one zeros behind it. The full length is
// returned.
TEST(AES256CBC, PadsTextsItsOwnWayWithinTheBuffer) {
    const std::string options =
        " -aes-256-cbc -nopad -K " + toHexText(aesKey) + " -iv " + toHexText(aesVector);
    EXPECT_EQ(tests::aesPadded(""), '\0' + std::string(15, '\x0e'));
    for (const std::size_t textLength : {0U, 1U, 14U, 15U, 16U, 31U, 32U, 40U, 200U}) {
        const std::string text(textLength, 'n');
        const std::string padded = tests::aesPadded(text);
        const Block plain(padded.begin(), padded.end());
        Block cipher = tests::openSslCipher("-e" + options, plain);
        const int whole = static_cast<int>(plain.size());
        for (int capacity = -1; capacity <= whole + 20; ++capacity) {
            SCOPED_TRACE(testing::Message() << textLength << " " << capacity);
            const auto size = static_cast<std::size_t>(std::max(capacity, 0));
            Block out(size, 0xEE); // the sanitizer checks its end
            std::uint8_t* const place = out.data() ? out.data() : cipher.data();
            int length = capacity;
            AES256CBC().DoAES256Encrypt(aesKey.data(), aesVector.data(), text.c_str(), place, &length);
            EXPECT_EQ(length, whole);
            EXPECT_EQ(out, cutOrZeroFilled(cipher, size));
            length = capacity;
            AES256CBC().DoAES256Decrypt(aesKey.data(), aesVector.data(), cipher.data(), whole, place,
                                        &length);
            EXPECT_EQ(length, whole);
            EXPECT_EQ(out, cutOrZeroFilled(plain, size));
        }
    }
    for (const int wrong : {-16, 15, 17}) {
        Block out(48, 0xEE);
        int length = 48;
        AES256CBC().DoAES256Decrypt(aesKey.data(), aesVector.data(), Block(48).data(), wrong, out.data(),
                                    &length);
        EXPECT_EQ(length, 0);
        EXPECT_EQ(out, Block(48, 0));
    }
}

TEST(DES, PublishedAnswers) {
    const std::array<const char*, 3> cases[] = {
        // SP 800-17: variable plain text, variable key, substitution table.
        {"0101010101010101", "8000000000000000", "95f8a5e5dd31d900"},
        {"0101010101010101", "4000000000000000", "dd7f121ca5015619"},
        {"8001010101010101", "0000000000000000", "95a8d72813daa94d"},
        {"7ca110454a1a6e57", "01a1d6d039776742", "690f5b0d9a26939b"},
        {"0131d9619dc1376e", "5cd54ca83def57da", "7a389d10354bd271"},
        // The example of SP 500-20 for FIPS 46-3. The key's parity bits do not matter.
        {"133457799bbcdff1", "0123456789abcdef", "85e813540f0ab405"},
        {"123456789abcdef0", "0123456789abcdef", "85e813540f0ab405"},
    };
    for (const auto& [key, plain, cipher] : cases) {
        SCOPED_TRACE(key);
        DES engine;
        Block block = fromHex(plain);
        engine.deskey(fromHex(key).data(), EN0);
        engine.des(block.data(), block.data());
        EXPECT_EQ(toHexText(block), cipher);

        std::uint32_t schedule[DES::scheduleWords] = {};
        engine.deskey(fromHex(key).data(), DE1);
        engine.cpkey(schedule);
        engine.deskey(aesKey.data(), EN0);
        engine.deskey(aesKey.data(), 2); // an invalid mode changes nothing
        engine.usekey(schedule);
        engine.des(block.data(), block.data());
        EXPECT_EQ(toHexText(block), plain);
    }
}

// The submitters' table for 256-bit keys (ECB_TBL). Each cipher text is the next plain text, and the two
// before it form the key.
TEST(Twofish, PublishedTable) {
    const std::string zero(32, '0');
    std::string previous[3] = {zero, zero, zero}; // the last three cipher texts, the latest first
    for (int i = 1; i <= 49; ++i) {
        Twofish::KeyInstance key;
        Twofish::CipherInstance cipher;
        const std::string digits = previous[1] + previous[2];
        ASSERT_EQ(Twofish::makeKey(&key, DIR_ENCRYPT, 256, digits.c_str()), 1);
        ASSERT_EQ(Twofish::cipherInit(&cipher, MODE_ECB, nullptr), 1);
        Block block = fromHex(previous[0]);
        ASSERT_EQ(Twofish::blockEncrypt(&cipher, &key, block.data(), 128, block.data()), 128);
        const std::string answer = toHexText(block);
        ASSERT_EQ(Twofish::blockDecrypt(&cipher, &key, block.data(), 128, block.data()), 128);
        EXPECT_EQ(toHexText(block), previous[0]);
        const auto key32 = fromHex(digits);
        ASSERT_EQ(Twofish::RunCipher(false, key32.data(), block.data(), 16, block.data()), 0);
        EXPECT_EQ(toHexText(block), answer);
        std::rotate(previous, previous + 2, previous + 3);
        previous[0] = answer;
    }
    EXPECT_EQ(previous[0], "37fe26ff1cf66175f5ddf4c33b97a205");
    // Chained, two blocks of zeroes behind zeroes give the table's first two answers.
    Twofish::KeyInstance key;
    Twofish::CipherInstance cipher;
    ASSERT_EQ(Twofish::makeKey(&key, DIR_ENCRYPT, 256, (zero + zero).c_str()), 1);
    ASSERT_EQ(Twofish::cipherInit(&cipher, MODE_CBC, zero.c_str()), 1);
    std::array<std::uint8_t, 32> blocks{};
    ASSERT_EQ(Twofish::blockEncrypt(&cipher, &key, blocks.data(), 256, blocks.data()), 256);
    EXPECT_EQ(toHexText(blocks), "57ff739d4dc92c1bd7fc01700cc8216f"
                                 "d43bb7556ea32e46f2a282b7d45b4e0d");
    ASSERT_EQ(Twofish::cipherInit(&cipher, MODE_CBC, zero.c_str()), 1);
    ASSERT_EQ(Twofish::blockDecrypt(&cipher, &key, blocks.data(), 256, blocks.data()), 256);
    EXPECT_EQ(blocks, (std::array<std::uint8_t, 32>{}));
}

// The examples of FIPS 180 and the empty message.
TEST(SHA1, PublishedDigests) {
    SHA1 sha;
    for (const auto& [piece, count, digest] :
         {std::tuple{"", 0, "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
          {"abc", 1, "a9993e364706816aba3e25717850c26c9cd0d89d"},
          {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", 1,
           "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
          {"aaaaaaaa", 125'000, "34aa973cd4c4daa4f61eeb2bdbad27316534016f"}}) {
        sha.Reset();
        for (int i = 0; i < count; ++i) {
            sha << piece;
        }
        unsigned int words[5] = {};
        EXPECT_TRUE(sha.Result(words));
        char text[41] = "";
        std::snprintf(text, sizeof text, "%08x%08x%08x%08x%08x", words[0], words[1], words[2], words[3],
                      words[4]);
        EXPECT_STREQ(text, digest);
        sha << "x"; // after the result
        EXPECT_FALSE(sha.Result(words));
    }
}

std::string encode(std::string_view bytes, bool wrap) {
    std::string out(Base64Encoder::EncodedLength(bytes.size(), wrap), '?');
    EXPECT_EQ(Base64Encoder().Encode(tests::bytesOf(bytes).data(), bytes.size(), out, wrap), out.size());
    return out;
}

std::string decode(std::initializer_list<std::string_view> pieces) {
    Base64Decoder decoder;
    std::string bytes;
    for (const std::string_view piece : pieces) {
        std::vector<std::uint8_t> out(Base64Decoder::MaximumLength(piece.size()));
        out.resize(decoder.Decode(piece.data(), piece.size(), out));
        bytes.append(out.begin(), out.end());
    }
    return bytes;
}

TEST(Base64, PublishedPairs) {
    // RFC 4648, 10.
    for (const auto& [bytes, text] : {std::pair("", ""),
                                      {"f", "Zg=="},
                                      {"fo", "Zm8="},
                                      {"foo", "Zm9v"},
                                      {"foob", "Zm9vYg=="},
                                      {"fooba", "Zm9vYmE="},
                                      {"foobar", "Zm9vYmFy"}}) {
        EXPECT_EQ(encode(bytes, false), text);
        EXPECT_EQ(decode({text}), bytes);
        const CFDataRef data = CFDataCreate(bytes, std::string_view(bytes).size());
        EXPECT_EQ(utf8Text(QVCFBase64CreateEncodedString(data)), text);
        EXPECT_TRUE(CFEqual(QVCFBase64CreateDecodedData(cfString(text)), data)) << text;
    }
    EXPECT_EQ(encode("\xFB\xEF\xFF", false), "++//");
}

TEST(Base64Encoder, OnlyTheFirstLineIsWrapped) {
    for (const std::size_t length : {45U, 46U, 47U, 48U, 49U, 100U, 1000U}) {
        const std::string bytes(length, 'x');
        std::string expected = encode(bytes, false);
        if (expected.size() >= 64) {
            expected.insert(64, 1, '\n');
        }
        EXPECT_EQ(encode(bytes, true), expected) << length;
    }
    char small[7] = "......";
    EXPECT_EQ(Base64Encoder().Encode(tests::bytesOf("foobar").data(), 6, small, false), 0U);
    EXPECT_STREQ(small, "......");
    EXPECT_EQ(Base64Encoder().Encode(nullptr, 6, small, false), 0U);
}

TEST(Base64Decoder, SkipsEndsAndCarriesOn) {
    EXPECT_EQ(decode({"Zm\n9v*YmF-y"}), "foobar");
    EXPECT_EQ(decode({"Z", "", "m9", "vYmFyZ", "g"}), "foobar"); // the incomplete last group gives nothing
    EXPECT_EQ(decode({"Zm8=Zm8=", "Zm8="}), "fo");
    EXPECT_EQ(decode({"=", "Zm9v"}), "");
    EXPECT_EQ(decode({"Z=", "Zm9v"}), "");
    std::uint8_t two[2];
    EXPECT_EQ(Base64Decoder().Decode("Zm9vYmFy", 8, two), 2U);
    EXPECT_EQ(Base64Decoder().Decode(nullptr, 8, two), 0U);
}

TEST(QVCFBase64, LengthsFollowTheCharactersAlone) {
    const std::pair<const char*, std::string> cases[] = {
        {"QQ=", ""},
        {"QQ==", "A"},
        {"QUI=", "AB"},
        {"QUJDR", "ABC"}, // 15 / 4
        {"QUJDRA", "ABCD"},
        {"====", std::string(1, '\0')},
        {"QU\xE2\x82\xACQ", std::string("A@\x10", 3)},
        {"QQQ*", std::string("A\x04\0", 3)},
    };
    for (const auto& [text, bytes] : cases) {
        const CFDataRef data = QVCFBase64CreateDecodedData(cfString(text));
        EXPECT_EQ(std::string(data->bytes.begin(), data->bytes.end()), bytes) << text;
    }
    EXPECT_EQ(CFDataGetLength(QVCFBase64CreateDecodedData(nullptr)), 0);
    EXPECT_EQ(utf8Text(QVCFBase64CreateEncodedString(nullptr)), "");
}

} // namespace
} // namespace torka
