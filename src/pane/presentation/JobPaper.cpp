// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/JobPaper.h"

#include "StringUtils.h"
#include "pane/data/PDEData.h"
#include "pane/data/SystemPaper.h"

#include <algorithm>
#include <vector>

namespace torka {
namespace {

constexpr double maximumPaperSide = 14400; // points

std::optional<PaperSize> sheetOf(double width, double height) {
    const auto isSide = [](double points) { return points >= 1 && points <= maximumPaperSide; };
    return isSide(width) && isSide(height) ? std::optional(PaperSize{width, height}) : std::nullopt;
}

} // namespace

std::optional<PaperSize> printerPaper(const PMPrinter& printer, std::string_view name) {
    std::vector<Paper> papers;
    if (printer == nullptr || PMPrinterGetPaperList(printer, papers) != noErr) {
        return std::nullopt;
    }
    const auto paper = std::ranges::find(papers, name, &Paper::ppdPaperName);
    return paper == papers.end() ? std::nullopt : sheetOf(paper->width, paper->height);
}

std::optional<PaperSize> paperWithoutName(const PDEData& data) {
    if (!data.IsPageSizeSuppressed() || !data.Settings()) {
        return std::nullopt;
    }
    const SystemPaper paper = systemPaper(data.Settings());
    return sheetOf(paper.width, paper.height);
}

std::optional<PaperSize> paperOfText(std::string_view points) {
    const std::size_t blank = std::min(points.find(' '), points.size());
    return sheetOf(realValue(points.substr(0, blank)), realValue(points.substr(blank)));
}

bool isLandscape(const PDEData& data) {
    const std::uint16_t orientation = data.GetPageOrientationFromOS();
    return orientation == kPMLandscape || orientation == kPMReverseLandscape;
}

} // namespace torka
