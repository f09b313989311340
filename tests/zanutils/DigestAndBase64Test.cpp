// SPDX-License-Identifier: Apache-2.0
#include "Hex.h"
#include "ZANUtils/Base64Encoder.h"
#include "ZANUtils/QVCFBase64.h"
#include "ZANUtils/given/Base64Decoder.h"
#include "ZANUtils/given/SHA1.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>

namespace torka {
namespace {

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
