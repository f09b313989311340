// SPDX-License-Identifier: Apache-2.0
#include "platform/plist/LibraryForms.h"

#include "platform/plist/PlainNumbers.h"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <plist/plist.h>
#include <string_view>

namespace torka::platform {

namespace {

// The list with this value alone; "" when the library cannot write it. Frees the node.
std::string written(plist_t node) {
    const std::unique_ptr<void, void (*)(void*)> owner(node, plist_free);
    char* xml = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(node, &xml, &length);
    const std::unique_ptr<char, void (*)(void*)> text(xml, std::free);
    return text ? std::string(text.get(), length) : std::string();
}

} // namespace

const LibraryFrame& libraryFrame() {
    static const LibraryFrame frame = [] {
        constexpr std::string_view value = "<true/>\n";
        const std::string list = written(plist_new_bool(1));
        const std::size_t at = list.find(value);
        return at == std::string::npos ? LibraryFrame{}
                                       : LibraryFrame{list.substr(0, at), list.substr(at + value.size())};
    }();
    return frame;
}

std::string libraryReal(double number) {
    constexpr std::string_view begin = "<real>";
    const PlainNumbers plainNumbers;
    const std::string list = written(plist_new_real(number));
    const std::size_t at = list.find(begin) + begin.size();
    return list.substr(at, list.find('<', at) - at);
}

} // namespace torka::platform
