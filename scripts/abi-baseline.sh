#!/usr/bin/env bash
# Writes the committed ABI baselines from RelWithDebInfo builds of the library
# alone: abi/XOLATreeModel.abi (Qt 5, in build-abi) and
# abi/XOLATreeModelQt6.abi (Qt 6, in build-abi-qt6). Commit them together
# with the SOVERSION change they describe (docs/ABI.md).
#
#   scripts/abi-baseline.sh [5] [6]    the Qt majors to write (default both)
#
# A baseline of the same SONAME is only replaced by a compatible one; an
# incompatible library needs a new SOVERSION first (XOLA_ABI_FORCE=1 overrides,
# for a difference known to be harmless).
set -euo pipefail
cd "$(dirname "$0")/.."
majors=("$@")
[ ${#majors[@]} -eq 0 ] && majors=(5 6)
for major in "${majors[@]}"; do
  case "$major" in
    5|6) ;;
    *) echo "usage: $0 [5] [6]" >&2; exit 2 ;;
  esac
done
bash scripts/deps.sh

for major in "${majors[@]}"; do
  if [ "$major" = 5 ]; then dir=build-abi; else dir=build-abi-qt6; fi
  echo "== Qt $major ABI baseline ($dir)"
  # Fixed paths in the debug information make the file the same wherever the
  # tree is checked out.
  cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DXOLATREEMODEL_QT_MAJOR="$major" \
    -DXOLATREEMODEL_BUILD_TESTS=OFF -DXOLATREEMODEL_BUILD_EXAMPLES=OFF -DXOLATREEMODEL_BUILD_BENCHMARKS=OFF \
    -DXOLATREEMODEL_SANITIZE=OFF -DXOLATREEMODEL_BUILD_FUZZERS=OFF -DXOLATREEMODEL_ABI_FIXED_PATHS=ON >/dev/null
  cmake --build "$dir" -j2 --target abi-baseline
done
git status --short -- abi/ 2>/dev/null || true
