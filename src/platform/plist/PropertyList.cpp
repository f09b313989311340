// SPDX-License-Identifier: Apache-2.0
#include "platform/PropertyList.h"

#include "platform/SecretMemory.h"
#include "platform/TextEncoding.h"
#include "platform/plist/PlainForm.h"

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <locale.h>
#include <memory>
#include <optional>
#include <plist/plist.h>

namespace torka::platform {

namespace {

struct NodeFree {
    void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, NodeFree>;
struct TextFree {
    void operator()(char* text) const {
        wipe(text, text != nullptr ? std::strlen(text) : 0);
        std::free(text);
    }
};
using Text = std::unique_ptr<char, TextFree>;

// libplist reads and writes reals in the thread's locale. A host application's locale may have a decimal
// comma.
class PlainNumbers {
public:
    PlainNumbers()
        : plain(newlocale(LC_ALL_MASK, "C", nullptr))
        , before(uselocale(plain)) {}
    PlainNumbers(const PlainNumbers&) = delete;
    PlainNumbers& operator=(const PlainNumbers&) = delete;
    ~PlainNumbers() {
        uselocale(before);
        if (plain) {
            freelocale(plain);
        }
    }

private:
    locale_t plain;
    locale_t before;
};

// Writing

// The text in UTF-8; nullopt when XML cannot hold it.
std::optional<std::string> xmlText(const CFString& text) {
    const bool holds = std::none_of(text.units.begin(), text.units.end(), [](char16_t unit) {
        return (unit < 0x20 && unit != u'\t' && unit != u'\n' && unit != u'\r') || unit >= 0xFFFE;
    });
    return holds ? encodeText(text.units, kCFStringEncodingUTF8) : std::nullopt;
}

// Converts values to nodes. Null when a property list cannot hold a value.
class NodeMaker {
public:
    Node Make(const CFTypeRef& value, int depth);

private:
    Node MakeArray(const CFArray& array, int depth);
    Node MakeDictionary(const CFDictionary& dictionary, int depth);

    std::size_t values = 0;
};

Node NodeMaker::Make(const CFTypeRef& value, int depth) {
    if (!value || ++values > maximumPropertyListValues) {
        return nullptr;
    }
    // Casts plain pointers: casting the handle would change its reference count for every value of a ticket.
    const CFObject* const object = value.get();
    switch (object->TypeID()) {
    case CFTypeID::string: {
        const auto bytes = xmlText(*static_cast<const CFString*>(object));
        return Node(bytes ? plist_new_string(bytes->c_str()) : nullptr);
    }
    case CFTypeID::number: {
        const auto* const number = static_cast<const CFNumber*>(object);
        if (number->isReal) {
            return Node(std::isfinite(number->real) ? plist_new_real(number->real) : nullptr);
        }
        return Node(plist_new_uint(static_cast<std::uint64_t>(number->integer))); // written as signed
    }
    case CFTypeID::boolean:
        return Node(plist_new_bool(static_cast<const CFBoolean*>(object)->value ? 1 : 0));
    case CFTypeID::data: {
        const std::vector<std::uint8_t>& bytes = static_cast<const CFData*>(object)->bytes;
        return Node(plist_new_data(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    }
    case CFTypeID::array:
        return depth > maximumPropertyListDepth ? nullptr
                                                : MakeArray(*static_cast<const CFArray*>(object), depth);
    case CFTypeID::dictionary:
        return depth > maximumPropertyListDepth
                   ? nullptr
                   : MakeDictionary(*static_cast<const CFDictionary*>(object), depth);
    case CFTypeID::url:
        break;
    }
    return nullptr;
}

Node NodeMaker::MakeArray(const CFArray& array, int depth) {
    Node node(plist_new_array());
    for (const CFTypeRef& element : array.values) {
        Node child = Make(element, depth + 1);
        if (!child) {
            return nullptr;
        }
        plist_array_append_item(node.get(), child.release());
    }
    return node;
}

Node NodeMaker::MakeDictionary(const CFDictionary& dictionary, int depth) {
    Node node(plist_new_dict());
    for (const auto& [key, value] : dictionary.Pairs()) {
        const auto keyText = xmlText(*key);
        Node child = keyText ? Make(value, depth + 1) : nullptr;
        if (!child) {
            return nullptr;
        }
        plist_dict_set_item(node.get(), keyText->c_str(), child.release());
    }
    return node;
}

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
    const PlainNumbers plainNumbers;
    const Node root = NodeMaker().Make(list, 1);
    if (!root) {
        return nullptr;
    }
    char* rawXml = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(root.get(), &rawXml, &length);
    const Text xml(rawXml);
    if (!xml) {
        return nullptr;
    }
    // A carriage return must be written as a reference: an XML reader turns a literal one into a line feed.
    static constexpr std::string_view reference = "&#13;";
    const std::string_view text(xml.get(), length);
    std::vector<std::string_view> pieces;
    std::size_t at = 0;
    for (std::size_t end = text.find('\r'); end != std::string_view::npos; end = text.find('\r', at)) {
        pieces.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    std::vector<std::uint8_t> bytes(text.size() + pieces.size() * (reference.size() - 1));
    std::uint8_t* place = bytes.data();
    for (const std::string_view piece : pieces) {
        std::memcpy(place, piece.data(), piece.size());
        std::memcpy(place + piece.size(), reference.data(), reference.size());
        place += piece.size() + reference.size();
    }
    std::memcpy(place, text.data() + at, text.size() - at);
    return std::make_shared<const CFData>(std::move(bytes));
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
