// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/TextEncoding.h"

#include <cstdint>

// The process-wide values of the printer description model. They lie on this floor so that strings and
// controls can read them without the parser. Only the host's main thread reads and writes them.

namespace torka {

// UTF-8 support level: the integer value of the special option "*QVUTF8_Version" in the description parsed
// last; 0 without this option. Written by ZANPPD at the end of a parse, and again from the model when a job
// is emitted.
extern int gQVUTF8Version;

// State of the popup job notes. Written by the pane when it creates and shows them.
extern bool gPopupJobNotesLangIsJapanese;
// Whether they were looked for, and whether one was found: written by the search for them (PopupJobNotes.h).
extern bool gPopupJobNotesDoneInitializing;
extern bool gPopupJobNotesFoundOne;

// Whether the queue belongs to a document server. Written by the pane when it opens a printer.
extern bool gDocumentServer;

// The groups and controls that an enumeration includes: a combination of the bits, 0 to 3.
using _DISPLAY_OPTIONS_ = std::uint32_t;
inline constexpr _DISPLAY_OPTIONS_ kDisplayOrphans = 1;
inline constexpr _DISPLAY_OPTIONS_ kDisplayHidden = 2;
// Initially 0. Written by ZANPPD::Options, IncludeOrphans, IncludeHidden, ExcludeOrphans and ExcludeHidden.
extern _DISPLAY_OPTIONS_ gDisplayOptions;

// Set by PPDStream::TakeLine at the line "*% End of PPD file". While it is set, no line of any description is
// read. Reset at the start of a parse (PPDX::StartReading) and by a new pane.
extern bool gEndOfPPD;

// The application's encoding of narrow text: that of the description parsed last; UTF-8 before the first
// parse.
CFStringEncoding GetApplicationTextEncoding();
// PPDX calls this at the start of a parse, with the unknown encoding, and when it reads "*LanguageEncoding".
// Unknown and Unicode encodings count as UTF-8.
void SetApplicationTextEncoding(CFStringEncoding encoding);

// The encoding to which a CString converts a CFString: the application's encoding below level 5, for Japanese
// popup job notes, and at levels 5 and 6 with a document server; UTF-8 otherwise.
CFStringEncoding narrowTextEncoding();

} // namespace torka
