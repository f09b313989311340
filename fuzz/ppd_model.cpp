// SPDX-License-Identifier: Apache-2.0
// Parses arbitrary bytes as a description. Then emits all its PostScript, asks for every choice whether it is
// forbidden, takes the values and sets them again, and stores the model and restores it.

#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "Settings.h"
#include "fuzz/Fuzzing.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using namespace torka;
using namespace torka::fuzz;

// A file in memory with a name that the file functions can open.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* data, std::size_t size)
        : descriptor(memfd_create("fuzz.ppd", 0)) {
        require(descriptor >= 0 && write(descriptor, data, size) == static_cast<ssize_t>(size));
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(descriptor); }
    std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor); }

private:
    int descriptor;
};

void emit(PPDXControl* control) {
    const long size = control->PostScript(nullptr);
    require(size >= 0);
    std::vector<unsigned char> out(static_cast<std::size_t>(size));
    require(control->PostScript(out.data()) == size);
}

void sweep(const ZANPPD& model, PPDXControl* control) {
    auto* popup = dynamic_cast<PPDXPopupControl*>(control);
    if (!popup || !control->Keyword()) {
        return;
    }
    for (int index = 1; index <= static_cast<int>(popup->ItemCount()); ++index) {
        popup->SetValue(index);
        emit(popup);
        require(popup->GetKeywordLocalNameAtIndex(index) != nullptr);
    }
    for (_PopupItem* item = popup->FirstItem(); item; item = popup->NextItem()) {
        model.IsKVConstrained(control->Keyword(), item->keyword.Buffer());
    }
    popup->ResetToDefaultValue();
}

void checkTree(const ZANPPD& model) {
    std::size_t orphans = 0;
    std::size_t placed = 0;
    model.GetControls()->ForEach([&](PPDXControl* control) {
        require(control->UserName() != nullptr);
        orphans += std::size_t{control->IsOrphan()};
        require(control->IsOrphan() || IsRollDown(dynamic_cast<PPDXGroup*>(control->GetParent())));
    });
    std::size_t all = 0;
    model.GetControls()->ForEach([&](PPDXControl*) { ++all; });
    model.GetGroups()->ForEach([&](PPDXGroup* group) {
        if (auto* rollDown = dynamic_cast<PPDXRollDown*>(group)) {
            rollDown->Controls().ForEach([&](PPDXControl*) { ++placed; });
        }
    });
    require(orphans + placed == all);
    for (PPDXErrorObj* error = model.Errors()->First(); error; error = model.Errors()->Next()) {
        require(*ppdErrName(error->Code()) != '\0' && error->Line() >= 0);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setLogSink(std::make_shared<NoLog>());
    const MemoryFile file(data, size);
    const _PARSE_OPTIONS_ options = size % 5 == 0 ? static_cast<_PARSE_OPTIONS_>(size % 4) : 3;
    PPDLint lint;
    ZANPPD model(options);
    model.SetFile(FSRef{file.Path()});
    model.SetLint(&lint);
    model.Build();
    checkTree(model);
    model.GetControls()->ForEach([&](PPDXControl* control) {
        emit(control);
        sweep(model, control);
    });
    const CFDictionaryRef values = model.CopyAllValues();
    model.SetAllValues(values);
    ZANPPD::Options(static_cast<_DISPLAY_OPTIONS_>(size));
    model.GetControls()->ControlCount();
    Settings settings;
    model.Save(settings);
    const ZANPPD back(settings, CFURLCreateWithFileSystemPath("/nonexistent"), nullptr);
    require(back.GetProperties()->Count() == model.GetProperties()->Count());
    checkTree(back);
    ZANPPD::Options(0);
    return 0;
}
