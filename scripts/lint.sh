#!/usr/bin/env bash
# Checks style: clang-format over every C++ file, clang-tidy over the library and program sources, and the floors.
#   scripts/lint.sh           everything
#   scripts/lint.sh FILE...   only these files
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh --developer

files=("$@")
if [ "${#files[@]}" -eq 0 ]; then
    mapfile -t files < <(git ls-files '*.cpp' '*.h')
fi
clang-format-14 --dry-run --Werror "${files[@]}"
./scripts/check-floors

cmake --preset clang >/dev/null
sources=()
for file in "${files[@]}"; do
    case "$file" in
    src/*.cpp | apps/*.cpp | spooler/*.cpp | jobproperties/*.cpp) sources+=("$file") ;;
    esac
done
if [ "${#sources[@]}" -gt 0 ]; then
    printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy-14 -p build/clang --quiet
fi
echo "lint: nothing found"
