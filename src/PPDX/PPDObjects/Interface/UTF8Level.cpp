// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/UTF8Level.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/Controls/PPDXSpecialOption.h"
#include "PPDX/Utilities/ModelState.h"

namespace torka {

void refreshUTF8Level(const PPDXControls* controls) {
    PPDXSpecialOption* const level =
        controls != nullptr ? controls->FindSpecialOption("*QVUTF8_Version", true) : nullptr;
    gQVUTF8Version = level != nullptr ? CFStringGetIntValue(level->CopyCurrentControlValueString()) : 0;
}

} // namespace torka
