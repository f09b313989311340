#pragma once

namespace torka {

// Puts the presets, the quick-access dialog and the watermarks into paneRegistry(), once a process, whatever
// the number of calls.
void registerPaneExtras();

} // namespace torka
