// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Properties/PPDXShortcuts.h"

namespace torka {

namespace {

bool isAnyShortcut(const PPDXControl*) { return true; }

} // namespace

void PPDXShortcuts::Add(PPDXControl* control) {
    if (control) {
        list.Add(control);
    }
}

PPDXControl* PPDXShortcuts::First() { return list.First(isAnyShortcut); }

PPDXControl* PPDXShortcuts::Next() { return list.Next(isAnyShortcut); }

PPDXControl* PPDXShortcuts::PageSize() const { return Find("*PageSize", true); }

PPDXControl* PPDXShortcuts::InputSlot() const { return Find("*InputSlot", true); }

PPDXControl* PPDXShortcuts::Duplex() const { return Find("*QVDuplex", true); }

PPDXControl* PPDXShortcuts::Orientation() const { return Find("*QV_PAPER_ORIENTATION", true); }

PPDXControl* PPDXShortcuts::Huekeeper() const { return Find("Need Huekeeper keyword... stay tuned", true); }

PPDXControl* PPDXShortcuts::MediaSource() const {
    return Find("Need media source keyword... stay tuned", true);
}

PPDXControl* NextShortcut(PPDXShortcuts* shortcuts) { return shortcuts ? shortcuts->Next() : nullptr; }

bool IsShortcutsListEmpty(const PPDXShortcuts* shortcuts) { return !shortcuts || shortcuts->Empty(); }

} // namespace torka
