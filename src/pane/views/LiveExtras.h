#pragma once

namespace torka {

// Puts the gauges and the popup job-note dialog into paneRegistry(), once a process, whatever the number of
// calls.
void registerLiveExtras();

} // namespace torka
