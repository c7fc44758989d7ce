#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each for a while, starting
# from a copy of its committed corpus.
#
#   scripts/fuzz.sh [5|6] [seconds]    Qt major (default 5), seconds per target (default 60)
#
# XOLA_FUZZ_SEED=N starts libFuzzer's mutations from seed N (the test command
# fixes one); without it every run draws its own.
#
# Everything a run writes stays in the build folder (build-fuzz for Qt 5,
# build-fuzz-qt6 for Qt 6), under fuzz-run/<target>/: the grown corpus, the
# artifacts and the log. An input that crashes a target, breaks an invariant,
# leaks or hangs is copied into fuzz/regressions/<target>/ to be committed (the
# replay tests run every file there) and printed, and the script exits non-zero.
set -euo pipefail
cd "$(dirname "$0")/.."
major="${1:-5}"
seconds="${2:-60}"
case "$major" in
  5) dir=build-fuzz ;;
  6) dir=build-fuzz-qt6 ;;
  *) echo "usage: $0 [5|6] [seconds]" >&2; exit 2 ;;
esac
case "$seconds" in
  ''|*[!0-9]*) echo "usage: $0 [5|6] [seconds]" >&2; exit 2 ;;
esac
targets=(operations rules)

bash scripts/deps.sh

# clang and its libFuzzer runtime (Debian ships the runtime apart from the compiler).
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
updated=""
install() {
  if [ -z "$updated" ]; then
    $SUDO apt-get update -qq
    updated=1
  fi
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "$@"
}
command -v clang++ >/dev/null 2>&1 || install clang
fuzzer_runtime() {
  local runtime_dir
  runtime_dir="$(clang++ -print-runtime-dir 2>/dev/null || true)"
  [ -n "$runtime_dir" ] && [ -f "$runtime_dir/libclang_rt.fuzzer-x86_64.a" ]
}
if ! fuzzer_runtime; then
  clang_major="$(clang++ -dumpversion | cut -d. -f1)"
  install "libclang-rt-${clang_major}-dev"
  fuzzer_runtime || { echo "no libFuzzer runtime for clang $clang_major" >&2; exit 1; }
fi

echo "== Qt $major fuzz build in $dir (clang)"
start=$(date +%s)
cmake -S . -B "$dir" -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DXOLATREEMODEL_QT_MAJOR="$major" -DXOLATREEMODEL_BUILD_FUZZERS=ON \
  -DXOLATREEMODEL_BUILD_TESTS=OFF -DXOLATREEMODEL_BUILD_EXAMPLES=OFF >/dev/null
cmake --build "$dir" -j2 --target "${targets[@]/#/fuzz_}"
echo "build: $(( $(date +%s) - start )) s"

# A sanitizer report must stop the target so that libFuzzer keeps the input;
# the suppressions are the memory Qt keeps until exit.
export ASAN_OPTIONS="halt_on_error=1:detect_leaks=1"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
export LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp:print_suppressions=0"

failed=()
summaries=()
for target in "${targets[@]}"; do
  work="$dir/fuzz-run/$target"
  rm -rf "$work"
  mkdir -p "$work/artifacts"
  # A copy: the run adds what it finds to the copy, never to the repository.
  cp -r "fuzz/corpus/$target" "$work/corpus"
  seeds=$(find "$work/corpus" -type f | wc -l)
  options=(-max_total_time="$seconds" -timeout=30 -print_final_stats=1
           -artifact_prefix="$work/artifacts/")
  [ -f "fuzz/$target.dict" ] && options+=(-dict="fuzz/$target.dict")
  [ -n "${XOLA_FUZZ_SEED:-}" ] && options+=(-seed="$XOLA_FUZZ_SEED")
  echo "== fuzz_$target for $seconds s from $seeds inputs"
  status=0
  began=$(date +%s)
  "$dir/fuzz/fuzz_$target" "${options[@]}" "$work/corpus" >"$work/fuzz.log" 2>&1 || status=$?
  ended=$(date +%s)

  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$work/fuzz.log" | tail -1)
  took=$(sed -n 's/^Done [0-9]* runs in \([0-9]*\) second.*/\1/p' "$work/fuzz.log" | tail -1)
  took="${took:-$(( ended - began ))}"
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$work/fuzz.log" | tail -1)
  grown=$(find "$work/corpus" -type f | wc -l)
  found=()
  for artifact in "$work"/artifacts/*; do
    [ -f "$artifact" ] || continue
    case "$(basename "$artifact")" in
      crash-*|leak-*|timeout-*|oom-*) found+=("$artifact") ;;
    esac
  done
  if [ "$status" -ne 0 ] && [ ${#found[@]} -eq 0 ]; then
    echo "fuzz_$target stopped with status $status without an artifact; the log's end:" >&2
    tail -40 "$work/fuzz.log" >&2
    failed+=("$target")
  fi
  summary="fuzz_$target (Qt $major): ${runs:-?} executions in ${took:-?} s (${rate:-?}/s), corpus $seeds -> $grown inputs"
  if [ ${#found[@]} -gt 0 ]; then
    failed+=("$target")
    summary="$summary, ${#found[@]} FAILING INPUT(S)"
    mkdir -p "fuzz/regressions/$target"
    echo "fuzz_$target failed; the log's end:" >&2
    grep -v '^#[0-9]' "$work/fuzz.log" | tail -60 >&2
    for artifact in "${found[@]}"; do
      cp "$artifact" "fuzz/regressions/$target/"
      echo "-- kept as fuzz/regressions/$target/$(basename "$artifact") ($(stat -c %s "$artifact") bytes):" >&2
      od -A d -c "$artifact" | head -40 >&2
    done
  fi
  summaries+=("$summary")
done

echo "== summary"
printf '%s\n' "${summaries[@]}"
if [ ${#failed[@]} -gt 0 ]; then
  echo "failing targets: ${failed[*]} (inputs kept in fuzz/regressions/; replay: ctest -R fuzz_replay)" >&2
  exit 1
fi
