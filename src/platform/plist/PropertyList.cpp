// SPDX-License-Identifier: Apache-2.0
#include "platform/PropertyList.h"

#include "platform/SecretMemory.h"
#include "platform/plist/PlainForm.h"
#include "platform/plist/PlainNumbers.h"
#include "platform/plist/XmlWriter.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <plist/plist.h>
#include <utility>
#include <vector>

namespace torka::platform {

namespace {

// The library frees its copies of texts and data as they are. A list of keys would stay in freed memory.
void wipeValues(plist_t node) {
    const auto wipeText = [](const char* text, std::uint64_t size) {
        wipe(const_cast<char*>(text), text == nullptr ? 0 : size);
    };
    std::uint64_t size = 0;
    void* iterator = nullptr;
    plist_t child = nullptr;
    switch (plist_get_node_type(node)) {
    case PLIST_DATA: {
        const char* bytes = plist_get_data_ptr(node, &size);
        wipeText(bytes, size);
        break;
    }
    case PLIST_STRING: {
        const char* text = plist_get_string_ptr(node, &size);
        wipeText(text, size);
        break;
    }
    case PLIST_ARRAY:
        plist_array_new_iter(node, &iterator);
        for (plist_array_next_item(node, iterator, &child); child;
             plist_array_next_item(node, iterator, &child)) {
            wipeValues(child);
        }
        break;
    case PLIST_DICT:
        plist_dict_new_iter(node, &iterator);
        for (plist_dict_next_item(node, iterator, nullptr, &child); child;
             plist_dict_next_item(node, iterator, nullptr, &child)) {
            wipeValues(child);
        }
        break;
    default:
        break;
    }
    std::free(iterator);
}

struct NodeFree {
    void operator()(void* node) const {
        wipeValues(node);
        plist_free(node);
    }
};
using Node = std::unique_ptr<void, NodeFree>;
struct TextFree {
    void operator()(char* text) const {
        wipe(text, text != nullptr ? std::strlen(text) : 0);
        std::free(text);
    }
};
using Text = std::unique_ptr<char, TextFree>;

// Reading. makePlainForm has limited the depth.

CFTypeRef makeValue(plist_t node, std::string& error);

CFTypeRef makeArray(plist_t node, std::string& error) {
    std::vector<CFTypeRef> elements;
    plist_array_iter rawIterator = nullptr;
    plist_array_new_iter(node, &rawIterator);
    const std::unique_ptr<void, void (*)(void*)> iterator(rawIterator, std::free);
    plist_t child = nullptr;
    for (plist_array_next_item(node, rawIterator, &child); child;
         plist_array_next_item(node, rawIterator, &child)) {
        CFTypeRef value = makeValue(child, error);
        if (!value) {
            return nullptr;
        }
        elements.push_back(std::move(value));
    }
    return CFArrayCreate(std::move(elements));
}

CFTypeRef makeDictionary(plist_t node, std::string& error) {
    std::vector<CFDictionary::Pair> pairs;
    plist_dict_iter rawIterator = nullptr;
    plist_dict_new_iter(node, &rawIterator);
    const std::unique_ptr<void, void (*)(void*)> iterator(rawIterator, std::free);
    while (true) {
        char* rawKey = nullptr;
        plist_t child = nullptr;
        plist_dict_next_item(node, rawIterator, &rawKey, &child);
        const Text key(rawKey);
        if (!child) {
            return CFDictionaryCreate(pairs);
        }
        CFTypeRef value = makeValue(child, error);
        if (!value) {
            return nullptr;
        }
        pairs.emplace_back(cfString(key ? key.get() : ""), std::move(value));
    }
}

CFTypeRef makeValue(plist_t node, std::string& error) {
    std::uint64_t length = 0;
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        std::uint8_t truth = 0;
        plist_get_bool_val(node, &truth);
        return CFBooleanCreate(truth != 0);
    }
    case PLIST_UINT: {
        std::uint64_t bits = 0;
        plist_get_uint_val(node, &bits);
        return CFNumberCreate(static_cast<std::int64_t>(bits));
    }
    case PLIST_REAL: {
        double number = 0.0;
        plist_get_real_val(node, &number);
        return CFNumberCreate(number);
    }
    case PLIST_STRING: {
        const char* text = plist_get_string_ptr(node, &length);
        return cfString({text ? text : "", text ? static_cast<std::size_t>(length) : 0});
    }
    case PLIST_DATA: {
        const char* bytes = plist_get_data_ptr(node, &length);
        return CFDataCreate(bytes, bytes ? static_cast<std::size_t>(length) : 0);
    }
    case PLIST_ARRAY:
        return makeArray(node, error);
    case PLIST_DICT:
        return makeDictionary(node, error);
    default:
        error = "a value is of a kind that is not read";
        return nullptr;
    }
}

} // namespace

CFDataRef CFPropertyListCreateXMLData(const CFPropertyListRef& list) {
    auto bytes = writeXml(list);
    return bytes ? std::make_shared<const CFData>(std::move(*bytes)) : nullptr;
}

CFPropertyListRef CFPropertyListCreateFromXMLData(const CFDataRef& data, std::string* error) {
    std::string ignored;
    std::string& problem = error ? *error : ignored;
    problem.clear();
    const auto bytes = CFDataGetBytes(data);
    const auto plain = makePlainForm({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    if (!plain) {
        problem = plain.Why().text;
        return nullptr;
    }
    const PlainNumbers plainNumbers;
    plist_t rawRoot = nullptr;
    plist_from_xml(plain->data(), static_cast<std::uint32_t>(plain->size()), &rawRoot);
    const Node root(rawRoot);
    CFTypeRef value = root ? makeValue(root.get(), problem) : nullptr;
    if (!value && problem.empty()) {
        problem = "the property list cannot be read";
    }
    return value;
}

} // namespace torka::platform
