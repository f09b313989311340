// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"

#include <optional>
#include <string_view>

// The paper of the job.

namespace torka {

class PDEData;

struct PaperSize {
    double width; // points, upright
    double height;

    bool operator==(const PaperSize&) const = default;
};
// The size of the paper of that name. None when the printer does not have it, or when its size is no sheet of
// paper.
std::optional<PaperSize> printerPaper(const PMPrinter& printer, std::string_view name);
// The size that a person typed in the dialog; none when the dialog chose a page size of the description.
std::optional<PaperSize> paperWithoutName(const PDEData& data);
// Width and height in points, as the control of a custom size writes them. None for no sheet of paper.
std::optional<PaperSize> paperOfText(std::string_view points);
// Whether the page setup of the dialog turns the paper.
bool isLandscape(const PDEData& data);

} // namespace torka
