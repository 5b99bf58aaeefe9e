#!/usr/bin/env bash
# Installs what the build needs from Debian's packages, where it is missing.
set -euo pipefail
packages=()
command -v cmake >/dev/null || packages+=(cmake)
command -v ninja >/dev/null || packages+=(ninja-build)
command -v g++ >/dev/null || packages+=(g++)
command -v clang++ >/dev/null || packages+=(clang)
# The sanitizer and libFuzzer runtimes of clang.
ls /usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-x86_64.a >/dev/null 2>&1 ||
  packages+=(libclang-rt-14-dev)
command -v pkg-config >/dev/null || packages+=(pkg-config)
command -v valgrind >/dev/null || packages+=(valgrind)
command -v xxd >/dev/null || packages+=(xxd)
# The API reference (cmake --build <dir> --target docs).
command -v doxygen >/dev/null || packages+=(doxygen)
[ -f /usr/include/gtest/gtest.h ] || packages+=(libgtest-dev libgmock-dev)
[ -f /usr/include/benchmark/benchmark.h ] || packages+=(libbenchmark-dev)
# OpenCV's core, for the test and the example of interop/NuOpenCv.h.
[ -f /usr/include/opencv4/opencv2/core.hpp ] || packages+=(libopencv-core-dev)
# The Python module (python/) and its tests.
[ -f /usr/include/pybind11/pybind11.h ] || packages+=(pybind11-dev)
ls /usr/include/python3*/Python.h >/dev/null 2>&1 || packages+=(python3-dev)
[ -d /usr/lib/python3/dist-packages/numpy ] || packages+=(python3-numpy)
[ -d /usr/lib/python3/dist-packages/pytest ] || packages+=(python3-pytest)
if [ "${#packages[@]}" -gt 0 ]; then
  echo "installing: ${packages[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq "${packages[@]}"
fi
