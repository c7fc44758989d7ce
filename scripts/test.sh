#!/usr/bin/env bash
# Installs what is missing, builds everything and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j2
ctest --test-dir build --output-on-failure -j2

# Then the same suite under AddressSanitizer, UndefinedBehaviorSanitizer and
# LeakSanitizer; XOLA_SKIP_SANITIZERS=1 runs the normal pass only.
if [ -z "${XOLA_SKIP_SANITIZERS:-}" ]; then
  bash scripts/test-sanitizers.sh
fi
