#!/usr/bin/env bash
# Times the conversion against OpenCV's nearest call on the same bytes (one thread, 640x480 and
# 3840x2160) and prints a Markdown table. OpenCV serves this comparison only: the library never
# links it, and a build without OpenCV simply has no comparison target.
#   scripts/opencv-compare.sh [--reps N]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
if ! ls /usr/lib/*/cmake/opencv4/OpenCVConfig.cmake >/dev/null 2>&1; then
  echo "installing: libopencv-dev"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends libopencv-dev
fi
cmake -S . -B build/opencv -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DNU_BUILD_TESTS=OFF -DNU_BUILD_EXAMPLES=OFF -DNU_BUILD_BENCH=ON >/dev/null
cmake --build build/opencv --target NuOpenCvCompare -j "$(nproc)"
build/opencv/bench/NuOpenCvCompare "$@"
