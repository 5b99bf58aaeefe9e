#!/usr/bin/env bash
# Installs a built tree into a temporary prefix and builds a tiny outside program against it,
# once through find_package(NuCoreEx) and once through pkg-config nu-core-ex, and runs both.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$build" --prefix "$prefix" >/dev/null

cmake -S tests/Downstream -B "$prefix/cmake-build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$prefix/cmake-build" >/dev/null
"$prefix/cmake-build/NuDownstream"

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
# shellcheck disable=SC2046
g++ -Wall -Wextra -Wpedantic -Werror tests/Downstream/main.cpp -o "$prefix/NuDownstreamPc" \
  $(pkg-config --cflags --libs nu-core-ex) -Wl,-rpath,"$prefix/lib"
"$prefix/NuDownstreamPc"
echo "downstream: find_package and pkg-config builds ran"
