#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Checks what the build does not: the format, the floors, plain text in widgets and that every header compiles alone.
#   scripts/lint.sh                    all of it
#   scripts/lint.sh FILE...            format and headers of these files, and the rest
#   scripts/lint.sh --given            the fence around what nobody calls as well; builds the programs once more, which
#                                      takes some eight minutes on two cores
#   scripts/lint.sh --tidy [FILE...]   clang-tidy as well, which takes minutes over the whole tree
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh --developer

tidy=false given=false
case "${1:-}" in
--tidy) tidy=true && shift ;;
--given) given=true && shift ;;
esac
mapfile -t files < <(git ls-files '*.cpp' '*.h')
headers=() # none: those that no build proves
if [ "$#" -gt 0 ]; then
    files=("$@")
    for file in "$@"; do
        [[ $file != *.h ]] || headers+=("$file")
    done
fi

clang-format-14 --dry-run --Werror "${files[@]}"
unmarked=$(git ls-files '*.cpp' '*.h' '*.c' '*.inc' '*.cmake' '*CMakeLists.txt' scripts |
    xargs grep -L 'SPDX-License-Identifier: Apache-2.0' || true)
if [ -n "$unmarked" ]; then
    echo "lint: these files lack a line with SPDX-License-Identifier:" >&2
    echo "$unmarked" >&2
    exit 1
fi
./scripts/check-floors
./scripts/check-plain-text
./scripts/check-words
if [ "$#" -eq 0 ] || [ "${#headers[@]}" -gt 0 ]; then
    ./scripts/check-headers "${headers[@]}"
fi
if "$given"; then
    echo "lint: builds the programs for check-given; this takes minutes"
    ./scripts/check-given || [ "$?" -eq 77 ]
fi

if "$tidy" && [ "$#" -eq 0 ]; then
    # Most of a file's time goes into headers. The batches of the unity build read them once for several files.
    # The filter of headers begins at this folder, because generated headers lie below build/.
    cmake --preset tidy >/dev/null
    cmake --build --preset tidy --target torka_portal_adaptors >/dev/null
    sed -n 's/^ *"file": "\(.*\)",\{0,1\}$/\1/p' build/tidy/compile_commands.json |
        grep -e '/Unity/' -e "^$PWD/\(src\|apps\|spooler\|jobproperties\|bundle\)/" | grep -v '/build/tidy/\(tests\|fuzz\|bench\)/' |
        xargs -P "$(nproc)" -n 1 clang-tidy-14 -p build/tidy --quiet --checks=-bugprone-suspicious-include \
            --header-filter="^$PWD/(src|apps|spooler|jobproperties|bundle)/"
elif "$tidy"; then
    sources=()
    for file in "${files[@]}"; do
        case "$file" in
        src/*.cpp | apps/*.cpp | spooler/*.cpp | jobproperties/*.cpp | bundle/*.cpp) sources+=("$file") ;;
        esac
    done
    if [ "${#sources[@]}" -gt 0 ]; then
        cmake --preset clang >/dev/null
        printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy-14 -p build/clang --quiet
    fi
fi
echo "lint: nothing found"
