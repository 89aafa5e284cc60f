#!/usr/bin/env bash
# Builds everything and runs the whole test suite: the tests, clang-tidy's small set of checks on
# the program's own sources, the whole suite again under the
# address and undefined-behaviour sanitizers, the core tests under the thread sanitizer, and every
# fuzz target for a bounded time (its build also compiles every library and program with clang).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
jobs=$(nproc)
fuzz_seconds=${CORVANE_FUZZ_SECONDS:-30}

echo "== formatting"
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror

echo "== build and test everything (ci preset)"
cmake --preset ci
cmake --build --preset ci -j "$jobs"
ctest --preset ci -j "$jobs"

echo "== clang-tidy on the program's own sources (the checks of .clang-tidy, on the ci build)"
run-clang-tidy -p build/ci -j "$jobs" -quiet '^(?!.*/build/).*/(src|tools)/.*\.cpp$' >build/ci/clang-tidy.log 2>&1 ||
    {
        grep -E 'warning:|error:' build/ci/clang-tidy.log | grep -v '^/usr/' | sort -u
        echo "clang-tidy found the defects above (whole output: build/ci/clang-tidy.log)"
        exit 1
    }

echo "== the whole suite under the address and undefined-behaviour sanitizers (asan preset)"
cmake --preset asan
cmake --build --preset asan -j "$jobs"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
    LSAN_OPTIONS="suppressions=$PWD/tests/lsan.supp:print_suppressions=0" \
    ctest --preset asan -j "$jobs"

echo "== the core tests under the thread sanitizer (tsan preset, clang)"
# Only the property-list writers start a thread; the core tests drive them. The messenger test is
# compiled too, so that the suite keeps building with clang.
cmake --preset tsan
cmake --build --preset tsan -j "$jobs"
cmake --build build/tsan -j "$jobs" --target \
    tests/service/CMakeFiles/service_link_tests.dir/MessengerTest.cpp.o
TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1" QT_QPA_PLATFORM=offscreen \
    build/tsan/tests/core/core_tests --gtest_brief=1

echo "== every library and program built with clang, and the fuzzers for ${fuzz_seconds}s each (fuzz preset)"
cmake --preset fuzz
cmake --build --preset fuzz -j "$jobs"
for fuzzer in build/fuzz/fuzz/fuzz_*; do
    [ -x "$fuzzer" ] || continue
    name=$(basename "$fuzzer")
    corpus=fuzz/corpus/${name#fuzz_}
    work=$(mktemp -d)
    [ -d "$corpus" ] && cp -r "$corpus"/. "$work"/
    echo "-- $name"
    "$fuzzer" -max_total_time="$fuzz_seconds" -rss_limit_mb=2048 -max_len=65536 \
        -print_final_stats=1 "$work" 2>&1 | tail -n 12
    rm -rf "$work"
done
echo "all stages passed"
