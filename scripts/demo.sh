#!/usr/bin/env bash
# Installs what is missing, builds the file explorer and runs it: in a window
# when a display is there, otherwise headless, writing one screenshot per pane
# and printing what each pane counted. Arguments go to the explorer, e.g. a
# directory to scan (default: the Qt headers) or --screenshot DIR.
#
#   scripts/demo.sh [--qt6] [explorer arguments...]
#
# --qt6 builds and runs the explorer against Qt 6 (default: Qt 5).
set -euo pipefail
cd "$(dirname "$0")/.."
major=5
build=build
if [ "${1:-}" = "--qt6" ]; then
  major=6
  build=build-qt6
  shift
fi
bash scripts/deps.sh
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DXOLATREEMODEL_QT_MAJOR="$major"
cmake --build "$build" -j2 --target xola_explorer
explorer=./$build/examples/explorer/xola_explorer
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  exec "$explorer" "$@"
fi
shots="${XOLA_SCREENSHOTS:-$(mktemp -d "${TMPDIR:-/tmp}/xola-explorer.XXXXXX")}"
QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software "$explorer" --screenshot "$shots" "$@"
echo "screenshots in $shots"
