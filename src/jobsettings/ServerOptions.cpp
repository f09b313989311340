// SPDX-License-Identifier: Apache-2.0
#include "jobsettings/ServerOptions.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "output/PagesPerSheet.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <sstream>
#include <string_view>

namespace torka {

namespace {

// A value that the control has got meanwhile and that is not `wanted`; "" for none.
std::string otherValue(const PPDXPopupControl& control, const std::string& wanted) {
    const std::string present = utf8Text(control.CopyCurrentControlValueString());
    return control.GetValue() != control.DefaultValue() && present != wanted ? present : std::string();
}

} // namespace

Result<void> takePagesPerSheet(const ZANPPD& description, platform::PrintSettings& settings,
                               const std::string& number) {
    int pages = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), pages);
    if (error != std::errc() || end != number.data() + number.size() || !setPagesPerSheet(settings, pages)) {
        return Fault{"number-up takes 1, 2, 4, 6, 9 or 16, not '" + number + "'"};
    }
    const PPDXPopupControl* own = description.GetControls()->FindPopup("*QVNUpPages", true);
    if (pages > 1 && own != nullptr && own->GetValue() != own->DefaultValue()) {
        return Fault{"number-up: the setting QVNUpPages already puts several pages on a sheet"};
    }
    return {};
}

Result<void> takeMedia(const ZANPPD& description, const std::string& media) {
    PPDXPopupControl* control = description.GetControls()->FindPopup("*PageSize", true);
    std::istringstream names(media);
    for (std::string name; control != nullptr && std::getline(names, name, ',');) {
        if (control->GetKeywordCFLocalName(name.c_str()) == nullptr) {
            continue;
        }
        if (const std::string other = otherValue(*control, name); !other.empty()) {
            return Fault{
                std::string("media=").append(name).append(" and *PageSize=").append(other).append(" differ")};
        }
        control->SetCurrentControlWithCFString(cfString(name));
    }
    return {};
}

Result<void> takeSides(const ZANPPD& description, const std::string& sides) {
    struct Side {
        std::string_view sides;
        std::array<const char*, 4> choices; // of descriptions
    };
    constexpr std::array<Side, 3> known{
        {{"one-sided", {"None", "Off", "False", "Simplex"}},
         {"two-sided-long-edge", {"LongEdge", "DuplexNoTumble", "NoTumble", "Duplex"}},
         {"two-sided-short-edge", {"ShortEdge", "DuplexTumble", "Tumble", "TopTumble"}}}};
    const auto asked = std::ranges::find(known, sides, &Side::sides);
    if (asked == known.end()) {
        return Fault{"sides takes one-sided, two-sided-long-edge or two-sided-short-edge, not '" + sides +
                     "'"};
    }
    PPDXPopupControl* control = description.GetControls()->FindPopup("*QVDuplex", true);
    control = control != nullptr ? control : description.GetControls()->FindPopup("*Duplex", true);
    if (control == nullptr) {
        return Fault{"sides: the description has no option QVDuplex or Duplex"};
    }
    const auto choice = std::ranges::find_if(
        asked->choices, [&](const char* name) { return control->GetKeywordCFLocalName(name) != nullptr; });
    if (choice == asked->choices.end()) {
        return Fault{"sides: " + std::string(control->Keyword()) + " has no choice for " + sides};
    }
    if (const std::string other = otherValue(*control, *choice); !other.empty()) {
        return Fault{"sides=" + sides + " and " + control->Keyword() + "=" + other + " differ"};
    }
    control->SetCurrentControlWithCFString(cfString(*choice));
    return {};
}

} // namespace torka
