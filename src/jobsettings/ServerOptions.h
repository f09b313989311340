// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Printing.h"
#include "platform/Result.h"

#include <string>

// Options of the print server (CUPS, RFC 8011) that also say something about the job's settings. Each
// function fails, with nothing changed, when the description cannot follow or a setting says otherwise. Its
// reason repeats texts of the job.

namespace torka {

class ZANPPD;

// The option number-up: 1, 2, 4, 6, 9 or 16 pages on a sheet.
Result<void> takePagesPerSheet(const ZANPPD& description, platform::PrintSettings& settings,
                               const std::string& number);
// The option media. Names of trays and media, and page sizes of other systems, are the server's.
Result<void> takeMedia(const ZANPPD& description, const std::string& media);
// The option sides.
Result<void> takeSides(const ZANPPD& description, const std::string& sides);

} // namespace torka
