#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds everything and passes all tests: the optimised build first, then the fuzz corpora and the unit tests under
# AddressSanitizer and UndefinedBehaviorSanitizer. Arguments go to ctest (for example: ./test.sh -R unit.model).
set -euo pipefail
cd "$(dirname "$0")"
./scripts/install-deps.sh

jobs=$(nproc)
for preset in release asan; do
    echo "== $preset"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" -j "$jobs"
    # Four for each processor: most cases wait for a print server or a clock.
    ctest --test-dir "build/$preset" -j "$((jobs * 4))" --output-on-failure --no-tests=error "$@"
done
