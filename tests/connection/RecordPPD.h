// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/SmallPPD.h"
#include "tests/support/TestSupport.h"

#include <string>

namespace torka::tests {

// Writes a small PPD with one record, using Python's zlib and base64. A wide record holds 32-bit units in
// this machine's byte order, a narrow one the text's bytes. Returns the PPD's path.
inline std::string writeRecordPPD(const TemporaryFolder& folder, const std::string& recordName,
                                  const std::string& text, bool wide) {
    const std::string path = (folder / (recordName + ".ppd")).string();
    runPython(R"PY(
import base64, sys, zlib
path, name, wide, head = sys.argv[1:]
text = sys.stdin.buffer.read()
if wide == "1":
    text = text.decode().encode("utf-32-" + ("le" if sys.byteorder == "little" else "be"))
packed = zlib.compress(text, 9)
pieces = [packed[i:i + 158] for i in range(0, len(packed), 158)]
with open(path, "w") as ppd:
    ppd.write(head)
    for number, piece in enumerate(pieces + [b""]):
        print('*%s%04x: "%s"' % (name, number, base64.b64encode(piece).decode()), file=ppd)
)PY",
              {path, recordName, wide ? "1" : "0", smallPPD}, text);
    return path;
}

} // namespace torka::tests
