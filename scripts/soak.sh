#!/usr/bin/env bash
# Builds xola_soak and runs the soak test: four worker threads mutate the model
# through the routed calls while the GUI thread sorts, filters, pages, regroups
# and scrolls, with a proxy model, a selection model and QML ListViews attached;
# resident memory is sampled throughout and every view is compared with a
# rebuild at the end (tests/soak).
#
#   scripts/soak.sh [--qt6] [--long] [REPORT]
#
#   --qt6    the Qt 6 build (build-qt6) instead of Qt 5 (build)
#   --long   the long form, 100,000 operations (a few minutes); without it the
#            short form CTest runs (4,000 operations, seconds)
#   REPORT   the Markdown file the run's section goes into; docs/SOAK.md by
#            default for the long form, none for the short one. Each Qt major
#            has its own section, so the Qt 5 and Qt 6 figures stand side by
#            side; a run replaces only its own major's section.
set -euo pipefail
cd "$(dirname "$0")/.."

major=5
long=0
report=""
for arg in "$@"; do
  case "$arg" in
    --qt6) major=6 ;;
    --long) long=1 ;;
    -h|--help) sed -n '2,16p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    -*) echo "usage: $0 [--qt6] [--long] [REPORT]" >&2; exit 2 ;;
    *) report="$arg" ;;
  esac
done
if [ -z "$report" ] && [ "$long" = 1 ]; then
  report=docs/SOAK.md
fi

bash scripts/deps.sh

# The same configuration scripts/test.sh uses, so that both share the build
# directories without reconfiguring each other's.
if [ "$major" = 5 ]; then
  dir=build
  cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DXOLATREEMODEL_QT_MAJOR=5
else
  dir=build-qt6
  cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DXOLATREEMODEL_QT_MAJOR=6 \
    -DXOLATREEMODEL_PEER_BUILD_DIR="$PWD/build"
fi
cmake --build "$dir" -j2 --target xola_soak

size=(--operations 4000)
[ "$long" = 1 ] && size=(--long)

section=""
if [ -n "$report" ]; then
  section="$(mktemp)"
  trap 'rm -f "$section"' EXIT
fi

export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software
export QT_LOGGING_RULES="qt.qml.binding.removal.info=false"
echo "== soak, Qt $major: ${size[*]}"
status=0
"$dir/tests/soak/xola_soak" "${size[@]}" ${section:+--report "$section"} || status=$?

if [ -n "$report" ] && [ -s "$section" ]; then
  # Replace this major's section of the report (between its markers), or add
  # it at the end; the rest of the file stays as it is.
  mkdir -p "$(dirname "$report")"
  if [ ! -f "$report" ]; then
    printf '# Soak test\n\nWritten by `scripts/soak.sh`; see `tests/soak` for what the run does and checks.\n' > "$report"
  fi
  start="<!-- soak:qt$major -->"
  end="<!-- /soak:qt$major -->"
  awk -v start="$start" -v end="$end" -v block="$section" '
    $0 == start { print; while ((getline line < block) > 0) print line; skip = 1; found = 1; next }
    $0 == end { skip = 0 }
    !skip { print }
    END {
      if (!found) {
        print ""
        print start
        while ((getline line < block) > 0) print line
        print end
      }
    }' "$report" > "$report.new"
  mv "$report.new" "$report"
  echo "== report: $report (Qt $major section)"
fi
exit "$status"
