// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/QueueChoices.h"

#include "spooler/filter/OpenedPPD.h"

#include <algorithm>
#include <cmath>

// The library marks its PPD calls as deprecated and has no other calls for a description.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace torka::filter {

namespace {

constexpr double sameSize = 2.0; // points

std::string plainName(std::string_view name) {
    std::string plain;
    for (const char c : name) {
        if ((c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || static_cast<unsigned char>(c) >= 0x80) {
            plain += c;
        } else if (c >= 'A' && c <= 'Z') {
            plain += static_cast<char>(c - 'A' + 'a');
        }
    }
    return plain;
}

std::vector<QueueChoice> choicesOf(ppd_file_t* ppd, const char* keyword) {
    std::vector<QueueChoice> choices;
    const ppd_option_t* option = ppdFindOption(ppd, keyword);
    for (int i = 0; option != nullptr && i < option->num_choices; ++i) {
        choices.push_back({option->choices[i].choice, option->choices[i].text});
    }
    return choices;
}

const QueueChoice* findChoice(const std::vector<QueueChoice>& choices, std::string_view name) {
    const auto found = std::ranges::find_if(choices, [name](const QueueChoice& choice) {
        return isSameName(choice.keyword, name) || isSameName(choice.text, name);
    });
    return found == choices.end() ? nullptr : &*found;
}

} // namespace

bool isSameName(std::string_view one, std::string_view other) {
    const std::string plain = plainName(one);
    return !plain.empty() && plain == plainName(other);
}

QueueChoices QueueChoices::Read(const std::string& ppdPath) {
    QueueChoices choices;
    const OpenedPPD ppd = openDescription(ppdPath);
    if (!ppd) {
        return choices;
    }
    choices.inputSlots = choicesOf(ppd.get(), "InputSlot");
    std::erase_if(choices.inputSlots,
                  [](const QueueChoice& choice) { return plainName(choice.keyword).starts_with("auto"); });
    choices.mediaTypes = choicesOf(ppd.get(), "MediaType");
    for (const QueueChoice& choice : choicesOf(ppd.get(), "PageSize")) {
        if (const ppd_size_t* size = ppdPageSize(ppd.get(), choice.keyword.c_str()); size != nullptr) {
            choices.pageSizes.push_back(
                {choice, static_cast<double>(size->width), static_cast<double>(size->length)});
        }
    }
    return choices;
}

const QueueChoice* QueueChoices::InputSlot(std::string_view name) const {
    return findChoice(inputSlots, name);
}

const QueueChoice* QueueChoices::MediaType(std::string_view name) const {
    constexpr std::string_view plain = "stationery";
    constexpr std::string_view prefix = "stationery-";
    if (name == plain) {
        name = "plain";
    } else if (name.starts_with(prefix)) {
        name.remove_prefix(prefix.size());
    }
    return findChoice(mediaTypes, name);
}

const QueueChoice* QueueChoices::PageSize(double width, double height) const {
    const auto found = std::ranges::find_if(pageSizes, [width, height](const QueueSize& size) {
        return std::abs(size.width - width) <= sameSize && std::abs(size.height - height) <= sameSize;
    });
    return found == pageSizes.end() ? nullptr : &found->choice;
}

} // namespace torka::filter
