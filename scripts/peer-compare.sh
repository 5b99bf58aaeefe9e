#!/usr/bin/env bash
# Times the conversion against OpenCV and libyuv on the same bytes (one thread, 640x480 and
# 3840x2160, warm buffers and fresh frames, the contenders interleaved in every order) and
# prints a Markdown table with a summary. The peers serve this comparison only: the library
# never links them, and a build without them simply has no comparison target.
#   scripts/peer-compare.sh [--rounds N] [--mode warm|fresh] [--size 640|4k] [--match TEXT]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
if ! ls /usr/lib/*/cmake/opencv4/OpenCVConfig.cmake >/dev/null 2>&1 || [ ! -f /usr/include/libyuv.h ]; then
  echo "installing: libopencv-dev libyuv-dev"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends libopencv-dev libyuv-dev
fi
cmake --preset release >/dev/null
cmake --build --preset release --target NuPeerCompare -j "$(nproc)"
build/release/bench/NuPeerCompare "$@"
