#!/usr/bin/env bash
# Builds the library and runs the main job: a built-in picture converted through a chain of
# formats, each result written as PPM/PGM into build/demo/.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target NuConvertDemo
mkdir -p build/demo
build/release/examples/NuConvertDemo build/demo
