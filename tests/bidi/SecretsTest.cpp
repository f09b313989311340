// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/CString.h"
#include "bidi/memory/ModuleMemory.h"
#include "bidi/module/ExchangeLists.h"
#include "bidi/module/JobPropertiesState.h"
#include "platform/SecretMemory.h"
#include "tests/support/TestSupport.h"

#include <fstream>
#include <functional>
#include <gtest/gtest.h>

namespace torka {
namespace {

using platform::SecretBytes;
using tests::copiesInMemory;
using tests::secretMask;

template <typename Unit>
using Text = std::vector<Unit, platform::WipingAllocator<Unit>>;

// A password that occurs nowhere else in the program. It is long enough to need a heap block in a string.
template <typename Unit>
Text<Unit> secretText() {
    constexpr std::string_view masked =
        "\x13\x34\x27\x3A\x30\x66\x67\x64\x78\x06\x3E\x2C\x29\x3B\x30\x2E\x22\x67\x64\x6C";
    Text<Unit> text;
    for (const char unit : masked) {
        text.push_back(static_cast<Unit>(unit ^ secretMask));
    }
    return text;
}

// The password's bytes in memory, masked for the search.
template <typename Unit>
std::string maskedSecret() {
    const Text<Unit> text = secretText<Unit>();
    std::string bytes(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(Unit));
    for (char& byte : bytes) {
        byte = static_cast<char>(byte ^ secretMask);
    }
    return bytes;
}

template <typename Unit>
std::basic_string_view<Unit> view(const Text<Unit>& text) {
    return {text.data(), text.size()};
}

std::size_t copies() {
    return copiesInMemory(maskedSecret<char>()) + copiesInMemory(maskedSecret<wchar_t>()) +
           copiesInMemory(maskedSecret<char16_t>());
}

// Fills each container of secrets, makes it grow and destroys it. Then searches the whole memory of the
// process.
TEST(Secrets, NoCopyOutlivesItsHolder) {
    if (platform::hasAddressSanitizer) {
        GTEST_SKIP() << "the sanitizer's shadow makes the process's memory terabytes";
    }
    const std::pair<const char*, std::function<void()>> holders[] = {
        {"vector that grows",
         [] {
             SecretBytes bytes;
             for (int i = 0; i < 1000; ++i) {
                 const auto secret = secretText<std::uint8_t>();
                 bytes.insert(bytes.end(), secret.begin(), secret.end());
             }
         }},
        {"list of key and value",
         [] {
             KeyValueList list;
             const auto wide = secretText<wchar_t>();
             const auto narrow = secretText<char>();
             for (int i = 0; i < 2000; ++i) {
                 list.Append(L"*DeptPassword", view(wide));
                 list.AppendNarrow("*Resume", view(narrow));
             }
             EXPECT_GE(copies(), 4000U) << "the search finds nothing";
             KeyValueList moved = std::move(list);
             for (std::size_t i = 0; i < moved.Count(); ++i) {
                 moved.SetValue(i, L"");
             }
             EXPECT_EQ(copies(), 2U) << "replaced values are there"; // the two texts above
             moved.SetValue(0, view(wide));
         }},
        {"exchange record and what is kept of it",
         [] {
             const SharedMemoryListPtr record = newSharedMemoryList();
             const auto wide = secretText<wchar_t>();
             KeyValueList list;
             list.Append(L"*DeptPassword", view(wide));
             Create_SharedMemoryList_From_SDMList(*record, list.List());
             sharedListCopyFromJP.reset();
         }},
        {"list of the module",
         [] {
             const ModuleMemory memory;
             auto* list = memory.NewArray<SDMKeyValueList>(1);
             list->count = 1;
             list->items = memory.NewArray<SDMKeyValue>(1);
             const auto wide = secretText<wchar_t>();
             list->items[0].szKey = memory.NewText(L"*DeptPassword");
             list->items[0].szValue = memory.NewText(view(wide));
             memory.FreeList(list);
         }},
        {"text of a command",
         [] {
             const auto narrow = secretText<char>();
             const CFStringRef text = CFStringCreateWithBytes(
                 narrow.data(), static_cast<CFIndex>(narrow.size()), kCFStringEncodingUTF8);
             const CFDataRef data = CFDataCreate(narrow.data(), narrow.size());
             std::string again = utf8Text(text);
             const platform::WipeGuard<std::string> guard(again);
             EXPECT_GE(copies(), 3U);
         }},
        {"value of a control",
         [] {
             const auto narrow = secretText<char>();
             CString text;
             text.SetBuffer(view(narrow));
             text.SetBuffer("other");
             text.SetBuffer(view(narrow));
         }},
    };
    for (const auto& [name, fill] : holders) {
        ASSERT_EQ(copies(), 0U) << "before: " << name;
        fill();
        EXPECT_EQ(copies(), 0U) << name;
    }
    gotSharedListFromJP = gotServerPresetFromJP = false;
}

// In a foreign program, the pages carry the flag "dd" (do not dump) for the kernel's core files.
TEST(Secrets, LeftOutOfCoreFiles) {
    if (platform::hasAddressSanitizer) {
        GTEST_SKIP() << "the sanitizer's heap holds these blocks";
    }
    const auto isHidden = [](const void* block) {
        const auto address = reinterpret_cast<std::uintptr_t>(block);
        std::ifstream maps("/proc/self/smaps");
        bool isHere = false;
        for (std::string line; std::getline(maps, line);) {
            std::uintptr_t begin = 0;
            std::uintptr_t end = 0;
            if (std::sscanf(line.c_str(), "%lx-%lx ", &begin, &end) == 2) {
                isHere = begin <= address && address < end;
            } else if (isHere && line.starts_with("VmFlags:")) {
                return line.find(" dd") != std::string::npos;
            }
        }
        return false;
    };
    const SharedMemoryListPtr record = newSharedMemoryList();
    KeyValueList list;
    list.Append(L"*Resume", L"x");
    const SecretBytes small(3);
    EXPECT_TRUE(isHidden(&record->values));
    EXPECT_TRUE(isHidden(list.List().items[0].szValue));
    EXPECT_TRUE(isHidden(small.data()));
    const std::string ordinary(100, 'x');
    EXPECT_FALSE(isHidden(ordinary.data()));
}

} // namespace
} // namespace torka
