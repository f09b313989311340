// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

// The parts of small descriptions that tests of several areas write.

namespace torka::tests {

// The beginning of a description. libcups opens it; a job needs the sheet, too.
inline const std::string smallPPD =
    "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*FileVersion: \"1.0\"\n*LanguageVersion: English\n"
    "*LanguageEncoding: ISOLatin1\n*PCFileName: \"T.PPD\"\n*Manufacturer: \"T\"\n*Product: \"(T)\"\n"
    "*ModelName: \"T\"\n*ShortNickName: \"T\"\n*NickName: \"T\"\n*PSVersion: \"(3010.000) 1\"\n";

// The group "Group", at its place in the pane.
inline const std::string smallGroup =
    "*%ZANPropPage Page/Page: True\n*%ZANGroupName Pane/Pane: True\n*%ZANParent Pane/Page: "
    "True|Scrollpane\n*%ZANGroupName Group/Group: True\n*%ZANParent Group/Pane: True|Rolldown\n";

// The only sheet, `size` in points as "width height".
inline std::string onlySheet(const std::string& size, const std::string& name = "A4") {
    std::string text;
    for (const std::string key : {"PageSize", "PageRegion"}) {
        text += "*OpenUI *" + key + ": PickOne\n*Default" + key + ": " + name + "\n*" + key + " " + name +
                ": \"\"\n*CloseUI: *" + key + "\n";
    }
    return text + "*DefaultImageableArea: " + name + "\n*ImageableArea " + name + ": \"0 0 " + size +
           "\"\n*DefaultPaperDimension: " + name + "\n*PaperDimension " + name + ": \"" + size + "\"\n";
}

// The description after a job whose filter wrote these messages ("PPD: KEYWORD=VALUE ..."), as the scheduler
// makes it: each pair becomes a main keyword behind the first line and replaces an earlier one. Skips the
// messages of other kinds. `quoted` puts bare values in quotes, as some versions of the scheduler do.
std::string afterMessages(const std::string& ppd, const std::vector<std::string>& messages,
                          bool quoted = false);

} // namespace torka::tests
