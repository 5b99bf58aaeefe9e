#!/usr/bin/env bash
# Builds and runs the whole test suite: optimised with g++ (warnings are errors) with its CTest
# suite, the exported symbol guard among them (scripts/abi.sh), the API reference (Doxygen: an
# undocumented public member fails it), an outside program against the installed tree, valgrind
# memcheck over a subset, everything again with clang under AddressSanitizer, LeakSanitizer and
# UndefinedBehaviorSanitizer, and each libFuzzer target for a bounded time (NU_FUZZ_SECONDS,
# default 30).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
jobs=$(nproc)

stage() {
  local name=$1
  shift
  local start=$SECONDS
  echo "== stage: $name"
  "$@"
  echo "== stage: $name done in $((SECONDS - start)) s"
}

release() {
  cmake --preset release >/dev/null
  cmake --build --preset release -j "$jobs"
  ctest --preset release -j "$jobs"
}

sanitize() {
  cmake --preset sanitize >/dev/null
  cmake --build --preset sanitize -j "$jobs"
  ctest --preset sanitize -j "$jobs"
}

stage release release
stage docs cmake --build --preset release --target docs
stage python env PYTHONPATH=build/release/python /usr/bin/python3 -m pytest -q -p no:cacheprovider python/tests
stage downstream scripts/downstream.sh build/release
stage memcheck scripts/memcheck.sh build/release
stage sanitize sanitize
stage fuzz scripts/fuzz.sh build/sanitize
