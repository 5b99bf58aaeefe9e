#!/usr/bin/env bash
# valgrind memcheck over an optimised build's tests: everything of Nu.Core, and everything of
# Nu.Core.Ex but the conversion suites, whose exhaustive sweeps are left to the sanitizer stage,
# where they run at native speed. Those suites are read off the conversion test sources, so that
# the selection follows them as they change.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
run() {
  valgrind --quiet --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=definite,indirect \
    "$@" --gtest_brief=1
}
conversion=$(grep -ohE '^(TEST|TEST_F|TEST_P|TYPED_TEST|TYPED_TEST_P)\(\w+' \
               tests/Nu.Core.Ex/NuImageConvert*Test.cpp tests/Nu.Core.Ex/Convert/*.cpp tests/Reference/*.cpp |
             sed -E 's/^[A-Z_]+\(/*/; s/$/.*/' | sort -u | paste -sd: -)
run "$build/tests/NuCoreTests"
run "$build/tests/NuCoreExTests" --gtest_filter="-$conversion"
echo "memcheck: no error"
