#!/usr/bin/env bash
# Builds the library and the whole suite with AddressSanitizer,
# UndefinedBehaviorSanitizer and LeakSanitizer and runs the suite under them.
# Any memory error, undefined behaviour or leak fails the run.
#
#   scripts/test-sanitizers.sh [5|6]    the Qt major (default 5)
set -euo pipefail
cd "$(dirname "$0")/.."
major="${1:-5}"
case "$major" in
  5) dir=build-asan ;;
  6) dir=build-asan-qt6 ;;
  *) echo "usage: $0 [5|6]" >&2; exit 2 ;;
esac
bash scripts/deps.sh
echo "== Qt $major build and tests under the sanitizers"
# The sanitizer build: Debug (quick to compile, exact stacks), no examples.
cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=Debug -DXOLATREEMODEL_QT_MAJOR="$major" -DXOLATREEMODEL_SANITIZE=ON \
  -DXOLATREEMODEL_BUILD_EXAMPLES=OFF
cmake --build "$dir" -j2

# detect_odr_violation=2: every definition is reported twice over, also of
# equal size (suites link the library's objects once, statically).
# verify_asan_link_order=0: the installed-package test builds a consumer that is
# not itself instrumented against the instrumented library.
# The suppressions cover memory that Qt and the system libraries below it keep
# until exit, nothing of the library or the tests.
export ASAN_OPTIONS="halt_on_error=1:detect_leaks=1:detect_stack_use_after_return=1:strict_init_order=1:check_initialization_order=1:detect_odr_violation=2:verify_asan_link_order=0"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
export LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp:print_suppressions=0"
ctest --test-dir "$dir" --output-on-failure -j2
