#!/usr/bin/env bash
# Builds the benchmark suite in build-bench (Release), runs it against Qt's own
# models, and writes bench/RESULTS.md and bench/results.png from that one run.
#
#   scripts/bench.sh            row counts 1,000 to 1,000,000
#   scripts/bench.sh --quick    row counts 1,000 to 100,000
#
# Other arguments go to the benchmark binary, for example
# --benchmark_filter=sort or --benchmark_repetitions=5.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=full
max_rows=1000000
repetitions=3
extra=()
for arg in "$@"; do
  case "$arg" in
    --quick) mode=quick; max_rows=100000 ;;
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

cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="-O3 -DNDEBUG -g" \
  -DXOLATREEMODEL_BUILD_BENCHMARKS=ON -DXOLATREEMODEL_BUILD_TESTS=OFF -DXOLATREEMODEL_BUILD_EXAMPLES=OFF >/dev/null
cmake --build build-bench -j2 --target xola_bench

json=build-bench/bench/results.json
echo "Running the benchmarks ($mode mode, up to $max_rows rows); this takes minutes." >&2
# nice: the machine may be shared with builds; times are per-thread CPU time.
nice -n 10 build-bench/bench/xola_bench --max-rows="$max_rows" \
  --benchmark_repetitions="$repetitions" --benchmark_report_aggregates_only=true \
  --benchmark_format=json ${extra[@]+"${extra[@]}"} > "$json"

command="scripts/bench.sh"
[ "$mode" = quick ] && command="scripts/bench.sh --quick"
"$python" bench/report.py "$json" bench --mode "$mode" --command "$command"
