#!/usr/bin/env bash
# Installs what is missing, builds the examples and runs the main demo.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j2 --target xola_hello
./build/examples/hello/xola_hello "$@"
