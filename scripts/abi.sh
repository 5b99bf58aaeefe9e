#!/usr/bin/env bash
# ABI guard: the exported dynamic symbols of both libraries, demangled and sorted, must equal
# the committed lists under abi/. `scripts/abi.sh --update <build>` rewrites the lists.
set -euo pipefail
cd "$(dirname "$0")/.."
update=0
if [ "${1:-}" = "--update" ]; then update=1; shift; fi
build=${1:-build/release}
status=0
for lib in Nu.Core Nu.Core.Ex; do
  so="$build/lib$lib.4.0.x64.so"
  list="abi/$lib.symbols"
  current=$(nm -D --defined-only -C "$so" | cut -d' ' -f3- | LC_ALL=C sort -u)
  if [ "$update" = 1 ]; then
    printf '%s\n' "$current" > "$list"
    echo "abi: wrote $list ($(wc -l < "$list") symbols)"
  elif ! diff -u "$list" <(printf '%s\n' "$current"); then
    echo "abi: the exported symbols of lib$lib.4.0.x64.so differ from $list (above)." >&2
    echo "abi: if the change is deliberate, run scripts/abi.sh --update $build and commit." >&2
    status=1
  else
    echo "abi: lib$lib.4.0.x64.so exports exactly the $(wc -l < "$list") symbols of $list"
  fi
done
exit $status
