// SPDX-License-Identifier: Apache-2.0
#include "pane/data/SystemPaper.h"

#include <cmath>

namespace torka {

namespace {

double numberAt(const CFArrayRef& array, CFIndex index) {
    double number = 0;
    CFNumberGetValue(cfCast<CFNumber>(CFArrayGetValueAtIndex(array, index)), number);
    return number;
}

} // namespace

SystemPaper systemPaper(const PMPrintSettings& settings) {
    CFTypeRef value;
    PMPrintSettingsGetValue(settings, cfString("com.apple.print.subTicket.paper_info_ticket"), value);
    SystemPaper paper;
    paper.ticket = cfCast<CFDictionary>(value);
    const auto edges = cfCast<CFArray>(
        CFDictionaryGetValue(paper.ticket, u"com.apple.print.PaperInfo.PMUnadjustedPaperRect"));
    enum Edge { top, left, bottom, right };
    paper.width = std::abs(numberAt(edges, left)) + std::abs(numberAt(edges, right));
    paper.height = std::abs(numberAt(edges, top)) + std::abs(numberAt(edges, bottom));
    return paper;
}

} // namespace torka
