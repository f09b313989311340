// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/ManualTexts.h"

namespace torka::tool {

CommandText generalText() {
    return {
        .examples = {"torka show samples/torka-production.ppd",
                     "torka print -d office samples/brochure.ps QVDuplex=LongEdge"},
        .details =
            R"(Reads extended printer descriptions (PPD), turns settings into job tickets and prints with them.

# Secrets
Other users can see a command line. A setting can therefore take its value from elsewhere: KEY=@FILE from a file, KEY=@- from standard input. KEY=@@TEXT means the text @TEXT. One line feed at the end is no part of the value. A value has at most 65,536 bytes of UTF-8 without NUL. No message repeats a value that came this way.

# Texts from outside
Control characters, controls of the writing direction, separators of lines and paragraphs, and bytes that are no UTF-8 are printed as \xNN. JSON escapes them as \uNNNN. Only torka record get writes its data as they are.

# Messages
A command that cannot use its input writes one line to standard error and ends with status 2.

# Environment
- CUPS_SERVER: the print server, as a host, HOST:PORT or the path of a socket.

- TMPDIR: the folder of temporary files.)"};
}

const std::string_view leftOutDetails =
    R"(What a job lacks is named on standard error:

- a note whose text has a character that the encoding in force lacks leaves empty. torka print sends nothing then, unless --allow-left-out is given;

- a protected field without keys, and the file destination of a mailbox whose name is protected;

- a setting whose feature code has more than 1,024 bytes. torka print gives its choice to the print server as a job option, so that the system's own code prints it. The text of a note never becomes a job option;

- a watermark that is too long.)";

} // namespace torka::tool
