#pragma once

#include "platform/TextEncoding.h"

#include <cstdint>

// The process-wide values of the printer description model, here so that strings and controls reach them
// without knowing the parser. One thread, the host's main thread, reads and writes them.

namespace torka {

// UTF-8 support level: the integer value of the special option "*QVUTF8_Version" of the description parsed
// last, 0 when it has none. Written by ZANPPD at the end of a parse, and from the model again when a job is
// emitted.
extern int gQVUTF8Version;

// The popup job notes. Written by the pane when it makes and shows them.
extern bool gPopupJobNotesLangIsJapanese;
extern bool gPopupJobNotesDoneInitializing;
extern bool gPopupJobNotesFoundOne;

// Whether the queue stands behind a document server. Written by the pane when it takes up a printer.
extern bool gDocumentServer;

// What an enumeration of groups and controls takes along; a combination of the bits, so 0 to 3.
using _DISPLAY_OPTIONS_ = std::uint32_t;
inline constexpr _DISPLAY_OPTIONS_ kDisplayOrphans = 1;
inline constexpr _DISPLAY_OPTIONS_ kDisplayHidden = 2;
// Starts at 0. Written by ZANPPD::Options, IncludeOrphans, IncludeHidden, ExcludeOrphans and ExcludeHidden.
extern _DISPLAY_OPTIONS_ gDisplayOptions;

// Set by PPDStream::GetLine at the line "*% End of PPD file"; from then on no line of any description is
// read. Reset by the start of a parse (PPDX::StartReading) and by a new pane.
extern bool gEndOfPPD;

// The encoding of narrow text for the application: that of the description parsed last, UTF-8 until one is
// parsed.
CFStringEncoding GetApplicationTextEncoding();
// Written by PPDX when a parse starts (unknown, which means UTF-8) and when "*LanguageEncoding" is read.
// Unknown and Unicode encodings count as UTF-8.
void SetApplicationTextEncoding(CFStringEncoding encoding);

// The encoding in which a CString takes a CFString: the application's below level 5, for Japanese popup job
// notes, and at the levels 5 and 6 behind a document server; UTF-8 otherwise.
CFStringEncoding narrowTextEncoding();

} // namespace torka
