// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/JsonSink.h"

#include "apps/torka/Command.h"

namespace torka::tool {

namespace {
constexpr std::size_t bufferSize = 65536;
} // namespace

void JsonPrinter::Begin(char opening, char closing) {
    BeginValue();
    text += opening;
    levels.push_back({closing});
}

void JsonPrinter::End() {
    const Level ended = levels.back();
    levels.pop_back();
    if (!ended.isEmpty) {
        NewLine();
    }
    text += ended.closing;
    if (levels.empty()) {
        text += '\n';
    }
    Flush(levels.empty() ? 0 : bufferSize);
}

void JsonPrinter::Key(const char* name) {
    BeginValue();
    text.append(1, '"').append(name).append("\": ");
    hasKey = true;
}

void JsonPrinter::Value(const Json& value) {
    BeginValue();
    // A line feed in a text is escaped: every one is followed by an indentation.
    for (const char c : value.dump(2, ' ', false, Json::error_handler_t::replace)) {
        if (c == '\n') {
            NewLine();
        } else {
            text += c;
        }
    }
    Flush(bufferSize);
}

void JsonPrinter::BeginValue() {
    if (!hasKey && !levels.empty()) {
        text += levels.back().isEmpty ? "" : ",";
        levels.back().isEmpty = false;
        NewLine();
    }
    hasKey = false;
}

void JsonPrinter::NewLine() { text.append(1, '\n').append(2 * levels.size(), ' '); }

// The buffer ends behind a whole value: no character is cut.
void JsonPrinter::Flush(std::size_t allowed) {
    if (text.size() > allowed) {
        print(apps::printableJson(text));
        text.clear();
    }
}

Json& JsonTree::Add(const Json& value) {
    if (open.empty()) {
        return root = value;
    }
    Json& parent = *open.back();
    if (parent.is_object()) {
        return parent[key] = value;
    }
    parent.push_back(value);
    return parent.back();
}

} // namespace torka::tool
