#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Builds the benchmarks and prints the table of ratios: each case beside the library that a user would pick instead, in
# the same run. Arguments name the programs to run (model, kvengine, ciphers, ...); none runs all. With --growth it prints
# how the time of each operation grows with its input instead (scripts/bench-growth).
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh

cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)"
if [ "${1:-}" = "--growth" ]; then
    shift
    exec ./scripts/bench-growth "$@"
fi
exec ./scripts/bench-table "$@"
