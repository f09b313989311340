// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/torka/Description.h"

#include <string>
#include <string_view>
#include <vector>

// A JSON document that is made piece by piece: as text on standard output, or as a tree in memory.

namespace torka::tool {

class JsonSink {
public:
    virtual ~JsonSink() = default;

    // What follows up to End() belongs to the object or array. In an object, Key() precedes each value.
    virtual void BeginObject() = 0;
    virtual void BeginArray() = 0;
    virtual void End() = 0;
    virtual void Key(const char* name) = 0; // no character that JSON escapes
    virtual void Value(const Json& value) = 0;

    void Pair(const char* name, const Json& value) {
        Key(name);
        Value(value);
    }
};

// Prints the same bytes as jsonDocument would give, and keeps only a small buffer of them.
class JsonPrinter final : public JsonSink {
public:
    void BeginObject() override { Begin('{', '}'); }
    void BeginArray() override { Begin('[', ']'); }
    void End() override;
    void Key(const char* name) override;
    void Value(const Json& value) override;

private:
    struct Level {
        char closing;
        bool isEmpty = true;
    };

    void Begin(char opening, char closing);
    void BeginValue();
    void NewLine();
    void Flush(std::size_t allowed);

    std::vector<Level> levels;
    std::string text;
    bool hasKey = false; // the value's place is begun
};

// NOLINTNEXTLINE(bugprone-exception-escape): the move of a Json asserts and throws nothing
class JsonTree final : public JsonSink {
public:
    void BeginObject() override { Begin(Json::object()); }
    void BeginArray() override { Begin(Json::array()); }
    void End() override { open.pop_back(); }
    void Key(const char* name) override { key = name; }
    void Value(const Json& value) override { Add(value); }

    const Json& Root() const { return root; }

private:
    void Begin(const Json& empty) { open.push_back(&Add(empty)); }
    Json& Add(const Json& value);

    Json root;
    std::vector<Json*> open; // from the root to the innermost
    std::string key;
};

} // namespace torka::tool
