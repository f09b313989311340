// SPDX-License-Identifier: Apache-2.0
// Rebuilds groups, pages and controls from arbitrary stored settings. Each result emits the number of bytes
// that it announced, takes the input's last line as its value, and is the same after it is saved and rebuilt.
//
// Input: one "key=value" a line.

#include "PPDX/KVEngine/UIConstraints.h"
#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/Groups/PPDXGroups.h"
#include "PPDX/PPDObjects/Properties/PPDXProperties.h"
#include "Settings.h"
#include "fuzz/Fuzzing.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace torka;
using namespace torka::fuzz;

std::string emitted(PPDXControl& control) {
    const long announced = control.PostScript(nullptr);
    require(announced >= 0);
    std::string bytes(static_cast<std::size_t>(announced), '\0');
    std::vector<unsigned char> out(bytes.size() + 1, 0xA5);
    require(control.PostScript(out.data()) == announced && out.back() == 0xA5);
    return std::string(out.begin(), out.end() - 1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Settings settings;
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    std::string_view line;
    while (!rest.empty()) {
        line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (const auto equals = line.find('='); equals != std::string_view::npos) {
            settings.Set(line.substr(0, equals), line.substr(equals + 1));
        }
    }
    UIConstraints store;
    PPDXGroups groups(settings);
    const PPDXProperties pages(settings, &groups);
    PPDXControls controls(settings, &store, &groups);

    Settings saved;
    controls.Save(saved);
    const PPDXControls again(saved, nullptr, nullptr);
    std::vector<PPDXControl*> rebuilt;
    again.ForEach([&](PPDXControl* control) { rebuilt.push_back(control); });
    const CFStringRef value = cfString(line);
    std::size_t number = 0;
    controls.ForEach([&](PPDXControl* control) {
        const std::string before = emitted(*control);
        require(before == emitted(*rebuilt.at(number++)) || control->Type() == CNTL_TYPE::jobNote);
        control->CopyCurrentControlValueString();
        if (control->Type() != CNTL_TYPE::specialOption) {
            control->SetCurrentControlWithCFString(value);
        }
        emitted(*control);
        control->ResetToDefaultValue();
    });
    controls.Restore(settings);
    groups.Save(saved);
    pages.Save(saved);
    return 0;
}
