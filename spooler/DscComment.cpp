// SPDX-License-Identifier: Apache-2.0
#include "spooler/DscComment.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <string>
#include <utility>

namespace torka {

namespace {

constexpr auto kinds = std::to_array<std::pair<std::string_view, DscKind>>({
    {"BeginBinary", DscKind::beginData},
    {"BeginData", DscKind::beginData},
    {"BeginDocument", DscKind::beginDocument},
    {"BeginFeature", DscKind::beginFeature},
    {"BeginFile", DscKind::beginResource},
    {"BeginFont", DscKind::beginResource},
    {"BeginPageSetup", DscKind::beginPageSetup},
    {"BeginPreview", DscKind::beginResource},
    {"BeginProcSet", DscKind::beginResource},
    {"BeginProlog", DscKind::beginProlog},
    {"BeginResource", DscKind::beginResource},
    {"BeginSetup", DscKind::beginSetup},
    {"EOF", DscKind::endOfFile},
    {"EndBinary", DscKind::endData},
    {"EndComments", DscKind::endComments},
    {"EndData", DscKind::endData},
    {"EndDocument", DscKind::endDocument},
    {"EndFeature", DscKind::endFeature},
    {"EndFile", DscKind::endResource},
    {"EndFont", DscKind::endResource},
    {"EndPageSetup", DscKind::endPageSetup},
    {"EndPreview", DscKind::endResource},
    {"EndProcSet", DscKind::endResource},
    {"EndProlog", DscKind::endProlog},
    {"EndResource", DscKind::endResource},
    {"EndSetup", DscKind::endSetup},
    {"IncludeFeature", DscKind::includeFeature},
    {"Page", DscKind::page},
    {"Trailer", DscKind::trailer},
});
static_assert(std::ranges::is_sorted(kinds, {}, &std::pair<std::string_view, DscKind>::first));

constexpr std::string_view blanks = " \t";

// "Begin" and "End" open and close a section only as part of a longer name, such as "%%EndComments".
bool isSectionName(std::string_view name) {
    for (const std::string_view word : {std::string_view("Begin"), std::string_view("End")}) {
        if (name.size() > word.size() && name.starts_with(word) && name[word.size()] >= 'A' &&
            name[word.size()] <= 'Z') {
            return true;
        }
    }
    return name.starts_with("Include");
}

std::string_view commentName(std::string_view line) {
    line.remove_prefix(2);
    return line.substr(0, line.find_first_of(": \t"));
}

std::string withoutBlanks(std::string_view text) {
    std::string result(text);
    std::erase_if(result, [](char c) { return blanks.find(c) != std::string_view::npos; });
    return result;
}

} // namespace

DscComment readDscComment(std::string_view line) {
    const std::string_view name = commentName(line);
    const auto found =
        std::ranges::lower_bound(kinds, name, {}, &std::pair<std::string_view, DscKind>::first);
    if (found == kinds.end() || found->first != name) {
        return {};
    }
    std::string_view arguments = line.substr(2 + name.size());
    if (arguments.starts_with(':')) {
        arguments.remove_prefix(1);
    }
    return {found->second, withoutOuterBlanks(arguments)};
}

bool isHeaderComment(std::string_view line) {
    const auto prints = [](char c) { return static_cast<unsigned char>(c) > ' ' && c != '\x7f'; };
    if (line.size() < 2 || line[0] != '%' || !prints(line[1])) {
        return false;
    }
    if (!line.starts_with("%%")) {
        return true;
    }
    return readDscComment(line).kind == DscKind::other && !isSectionName(commentName(line));
}

std::optional<DscDataExtent> readDataExtent(std::string_view arguments) {
    const std::string_view number = firstWord(arguments);
    DscDataExtent extent;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), extent.count);
    if (number.empty() || end != number.data() + number.size() || error == std::errc::invalid_argument) {
        return std::nullopt;
    }
    if (error == std::errc::result_out_of_range) {
        extent.count = std::numeric_limits<std::uint64_t>::max();
    }
    const std::string_view type = withoutOuterBlanks(arguments.substr(number.size()));
    extent.isLines = firstWord(withoutOuterBlanks(type.substr(firstWord(type).size()))) == "Lines";
    return extent;
}

std::string_view firstWord(std::string_view text) { return text.substr(0, text.find_first_of(blanks)); }

std::string_view withoutOuterBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? text.substr(0, 0)
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool isWrapperOpening(std::string_view line) {
    if (line.size() > maximumWrapperLine) {
        return false;
    }
    const std::string text = withoutBlanks(line);
    return text == "[{" || text == "mark{";
}

bool isWrapperClosing(std::string_view line) {
    if (line.size() > maximumWrapperLine) {
        return false;
    }
    line = withoutOuterBlanks(line);
    if (!line.starts_with('}')) {
        return false;
    }
    line = withoutOuterBlanks(line.substr(1));
    return firstWord(line) == "stopped" && withoutOuterBlanks(line.substr(7)) == "cleartomark";
}

} // namespace torka
