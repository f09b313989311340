// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/ModelState.h"

namespace torka {

int gQVUTF8Version = 0;
bool gPopupJobNotesLangIsJapanese = false;
bool gPopupJobNotesDoneInitializing = false;
bool gPopupJobNotesFoundOne = false;
bool gDocumentServer = false;
_DISPLAY_OPTIONS_ gDisplayOptions = 0;
bool gEndOfPPD = false;

namespace {
CFStringEncoding applicationTextEncoding = kCFStringEncodingUTF8;
}

CFStringEncoding GetApplicationTextEncoding() { return applicationTextEncoding; }

void SetApplicationTextEncoding(CFStringEncoding encoding) {
    const bool isUnicode = encoding == kCFStringEncodingUTF16 || encoding == kCFStringEncodingUTF8;
    applicationTextEncoding = isUnicode || !isKnownEncoding(encoding) ? kCFStringEncodingUTF8 : encoding;
}

CFStringEncoding narrowTextEncoding() {
    if (gQVUTF8Version < 5 || gPopupJobNotesLangIsJapanese) {
        return GetApplicationTextEncoding();
    }
    if (gQVUTF8Version > 6 || !gDocumentServer) {
        return kCFStringEncodingUTF8;
    }
    return GetApplicationTextEncoding();
}

} // namespace torka
