#!/usr/bin/env bash
# ABI guard, run by ctest as Abi.ExportedSymbols: the exported dynamic symbols of both libraries,
# demangled and sorted, must equal the committed lists under abi/.
#   scripts/abi.sh [--own] [build]   compare (default build: build/release)
#   scripts/abi.sh --update [build]  rewrite the lists from an optimised build
# --own compares the library's own symbols only. Unoptimised builds also export weak instances of
# the standard library's templates, and clang's function sanitizer the type information of every
# function type it checks; neither is the library's interface, and an optimised build, which is
# compared in full, exports neither.
set -euo pipefail
cd "$(dirname "$0")/.."
update=0
own=0
while [ $# -gt 0 ]; do
  case $1 in
    --update) update=1 ;;
    --own) own=1 ;;
    *) break ;;
  esac
  shift
done
build=${1:-build/release}
# Mangled names in namespace std or __gnu_cxx (functions, members, RTTI, vtables), and the RTTI of
# function types.
foreign='^_Z(T[ISV])?N?[KVRO]*(St|9__gnu_cxx)|^_ZT[IS]F'
status=0
for lib in Nu.Core Nu.Core.Ex; do
  so="$build/lib$lib.4.0.x64.so"
  list="abi/$lib.symbols"
  mangled=$(nm -D --defined-only "$so" | cut -d' ' -f3-)
  if [ "$own" = 1 ]; then mangled=$(grep -Ev "$foreign" <<< "$mangled" || true); fi
  current=$(c++filt <<< "$mangled" | LC_ALL=C sort -u)
  if [ "$update" = 1 ]; then
    if grep -Eq "$foreign" <<< "$mangled" || grep -Eq '::Detail::|\(anonymous namespace\)' <<< "$current"; then
      echo "abi: $so exports standard-library or internal symbols; not recorded" >&2
      exit 1
    fi
    printf '%s\n' "$current" > "$list"
    echo "abi: wrote $list ($(wc -l < "$list") symbols)"
  elif ! diff -u "$list" <(printf '%s\n' "$current"); then
    echo "abi: the exported symbols of lib$lib.4.0.x64.so differ from $list (above)." >&2
    echo "abi: if the change is deliberate, run scripts/abi.sh --update with an optimised build and commit." >&2
    status=1
  else
    echo "abi: lib$lib.4.0.x64.so exports exactly the $(wc -l < "$list") symbols of $list"
  fi
done
exit $status
