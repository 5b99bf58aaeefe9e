#!/usr/bin/env bash
# valgrind memcheck over a representative subset of an optimised build's tests: everything of
# Nu.Core and the image, container, mapping and record suites. The exhaustive conversion sweeps
# are left to the sanitizer stage, where they run at native speed.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
run() {
  valgrind --quiet --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=definite,indirect \
    "$@" --gtest_brief=1
}
run "$build/tests/NuCoreTests"
run "$build/tests/NuCoreExTests" \
  --gtest_filter='NuImage*:PixelAccess*:NuImageSet*:NuImageNormalize*:InteropOrder*:NuArray*:NuMatrix*:NuMapping3D*:NuMetricCalib*:NuValuePrecision*:NuOutOfMemory*:NuImageFormat*'
echo "memcheck: no error"
