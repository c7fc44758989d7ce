#!/usr/bin/env bash
# Installs what is missing, builds the file explorer and runs it: in a window
# when a display is there, otherwise headless, writing one screenshot per pane
# and printing what each pane counted. Arguments go to the explorer, e.g. a
# directory to scan (default: the Qt headers) or --screenshot DIR.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j2 --target xola_explorer
explorer=./build/examples/explorer/xola_explorer
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  exec "$explorer" "$@"
fi
shots="${XOLA_SCREENSHOTS:-$(mktemp -d "${TMPDIR:-/tmp}/xola-explorer.XXXXXX")}"
QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software "$explorer" --screenshot "$shots" "$@"
echo "screenshots in $shots"
