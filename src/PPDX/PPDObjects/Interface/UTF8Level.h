// SPDX-License-Identifier: Apache-2.0
#pragma once

// The UTF-8 support level of a description: the integer value of its special option "*QVUTF8_Version", 0 when
// it has none.

namespace torka {

class PPDXControls;

// Sets gQVUTF8Version (ModelState.h) from the controls; null gives 0. Its one writer.
void refreshUTF8Level(const PPDXControls* controls);

} // namespace torka
