// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The choices of a queue's description that name trays and their media.

namespace torka::filter {

struct QueueChoice {
    std::string keyword; // "Tray1"
    std::string text;    // "Tray 1"
};

struct QueueSize {
    QueueChoice choice;
    double width = 0.0; // points
    double height = 0.0;
};

struct QueueChoices {
    std::vector<QueueChoice> inputSlots; // without those that let the printer choose the tray
    std::vector<QueueChoice> mediaTypes;
    std::vector<QueueSize> pageSizes;

    // Reads the PPD at a path. Returns empty lists when it cannot be opened.
    static QueueChoices Read(const std::string& ppdPath);

    // Return null when there is none. Names are compared by their letters and digits alone, without case:
    // "tray-1" equals "Tray 1". A size may differ by two points.
    const QueueChoice* InputSlot(std::string_view name) const;
    const QueueChoice* MediaType(std::string_view name) const;
    const QueueChoice* PageSize(double width, double height) const;
};

bool isSameName(std::string_view one, std::string_view other);

} // namespace torka::filter
