#include "PPDX/PPDObjects/Controls/JobNoteFlags.h"

namespace torka {

const std::array<JobNoteFlagWord, 26> jobNoteFlagWords = {{
    {"Alpha", 0},        {"Numeric", 0},       {"Decimal", 0},    {"Required", 0}, {"Remembered", 0},
    {"Password", 0},     {"AlwaysDisplay", 0}, {"Resume", 0},     {"Member", 0},   {"OnOfSwitch", 1},
    {"LengthReq", 1},    {"SecPrint", 1},      {"Command", 2},    {"Space", 2},    {"Negative", 2},
    {"Encrypt", 3},      {"MultiSpace", 3},    {"MultiComma", 3}, {"LCD", 3},      {"Hyphen", 3},
    {"TwoCharField", 3}, {"NoComma", 3},       {"MinLength", 3},  {"UTF8", 3},     {"AESEncrypt", 3},
    {"PopupJN", 3},
}};

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::int64_t minLengthOf(std::string_view suffix) {
    if (suffix.empty()) {
        return 0;
    }
    if (!isDigit(suffix[0])) {
        return -1;
    }
    if (suffix.size() == 1) {
        return suffix[0] - '0';
    }
    if (!isDigit(suffix[1])) {
        return -3;
    }
    return suffix.size() == 2 ? 10 * (suffix[0] - '0') + (suffix[1] - '0') : -2;
}

} // namespace

JobNoteFlagReader::Result JobNoteFlagReader::Read(std::string_view word) {
    constexpr std::string_view minLengthWord = "MinLength";
    if (word.starts_with(minLengthWord)) {
        minLength = minLengthOf(word.substr(minLengthWord.size()));
    }
    for (std::size_t bit = 0; bit < jobNoteFlagWords.size(); ++bit) {
        if (jobNoteFlagWords[bit].word == word) {
            if (jobNoteFlagWords[bit].level > level) {
                return Result::aboveLevel;
            }
            flags |= 1u << bit;
            return Result::taken;
        }
    }
    return Result::unknown;
}

} // namespace torka
