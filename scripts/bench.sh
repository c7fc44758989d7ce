#!/usr/bin/env bash
# Builds the benchmark suite in build-bench (Release), runs it against Qt's own
# models, and writes bench/RESULTS.md and bench/results.png from that one run.
#
#   scripts/bench.sh            row counts 1,000 to 1,000,000
#   scripts/bench.sh --quick    row counts 1,000 to 100,000
#   scripts/bench.sh --qt6      against Qt 6 instead of Qt 5
#   scripts/bench.sh --both     Qt 5, then Qt 6: the report shows our Qt 6
#                               figures in a column beside the Qt 5 ones
#
# Other arguments go to the benchmark binary, for example
# --benchmark_filter=sort or --benchmark_repetitions=5.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=full
majors=(5)
max_rows=1000000
repetitions=3
extra=()
for arg in "$@"; do
  case "$arg" in
    --quick) mode=quick; max_rows=100000 ;;
    --qt6) majors=(6) ;;
    --both) majors=(5 6) ;;
    *) extra+=("$arg") ;;
  esac
done

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
install_packages() {
  $SUDO apt-get install -y -qq --no-install-recommends "$@" >/dev/null 2>&1 || {
    $SUDO apt-get update -qq >/dev/null 2>&1 && $SUDO apt-get install -y -qq --no-install-recommends "$@" >/dev/null 2>&1
  }
}
bash scripts/deps.sh
dpkg -s libbenchmark-dev >/dev/null 2>&1 || install_packages libbenchmark-dev
# The plot needs matplotlib (Debian's python3-matplotlib, for /usr/bin/python3
# when another python3 comes first on the PATH); without it the table is still
# written.
python=python3
if ! "$python" -c 'import matplotlib' >/dev/null 2>&1; then
  /usr/bin/python3 -c 'import matplotlib' >/dev/null 2>&1 || install_packages python3-matplotlib || true
  if /usr/bin/python3 -c 'import matplotlib' >/dev/null 2>&1; then
    python=/usr/bin/python3
  else
    echo "python3-matplotlib could not be installed: results.png will not be written" >&2
  fi
fi

declare -A json
for major in "${majors[@]}"; do
  dir=build-bench
  [ "$major" = 6 ] && dir=build-bench-qt6
  cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="-O3 -DNDEBUG -g" \
    -DXOLATREEMODEL_QT_MAJOR="$major" -DXOLATREEMODEL_BUILD_BENCHMARKS=ON -DXOLATREEMODEL_BUILD_TESTS=OFF \
    -DXOLATREEMODEL_BUILD_EXAMPLES=OFF >/dev/null
  cmake --build "$dir" -j2 --target xola_bench
  json[$major]="$dir/bench/results.json"
  echo "Running the benchmarks on Qt $major ($mode mode, up to $max_rows rows); this takes minutes." >&2
  # nice: the machine may be shared with builds; times are per-thread CPU time.
  nice -n 10 "$dir/bench/xola_bench" --max-rows="$max_rows" \
    --benchmark_repetitions="$repetitions" --benchmark_report_aggregates_only=true \
    --benchmark_format=json ${extra[@]+"${extra[@]}"} > "${json[$major]}"
done

command="scripts/bench.sh"
[ "$mode" = quick ] && command="$command --quick"
report=()
if [ "${#majors[@]}" = 2 ]; then
  command="$command --both"
  report=("${json[5]}" --qt6-json "${json[6]}")
elif [ "${majors[0]}" = 6 ]; then
  command="$command --qt6"
  report=("${json[6]}" --qt-label "Qt 6")
else
  report=("${json[5]}")
fi
"$python" bench/report.py "${report[@]}" bench --mode "$mode" --command "$command"
