// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace torka {

// Why something failed, for a person.
struct Fault {
    std::string text;       // one line
    std::string place = {}; // file, record and line, or entry; "" when the text says it

    // "PLACE: TEXT", or the text alone.
    std::string Line() const { return place.empty() ? text : place + ": " + text; }
    // The same, told from a wider place: "OUTER: PLACE".
    Fault In(const std::string& outer) const { return {text, place.empty() ? outer : outer + ": " + place}; }
    bool operator==(const Fault&) const = default;
};

// A value, or why there is none. Asking for the one that is not there throws std::bad_variant_access.
template <typename Value, typename Failure = Fault>
class [[nodiscard]] Result {
public:
    Result(Value value)
        : state(std::in_place_index<0>, std::move(value)) {}
    Result(Failure failure)
        : state(std::in_place_index<1>, std::move(failure)) {}

    explicit operator bool() const { return state.index() == 0; }
    Value& operator*() & { return std::get<0>(state); }
    const Value& operator*() const& { return std::get<0>(state); }
    Value&& operator*() && { return std::get<0>(std::move(state)); }
    Value* operator->() { return &std::get<0>(state); }
    const Value* operator->() const { return &std::get<0>(state); }
    const Failure& Why() const { return std::get<1>(state); }

private:
    std::variant<Value, Failure> state;
};

// Done, or why not.
template <typename Failure>
class [[nodiscard]] Result<void, Failure> {
public:
    Result() = default;
    Result(Failure why)
        : failure(std::move(why)) {}

    explicit operator bool() const { return !failure; }
    // REQUIRES: it failed.
    const Failure& Why() const { return failure.value(); }

private:
    std::optional<Failure> failure;
};

} // namespace torka
