#!/usr/bin/env bash
# Runs every fuzz target of a sanitizer build for a bounded time, starting from a scratch copy
# of its committed seed corpus. A finding stops the run with the fuzzer's report.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/sanitize}
seconds=${NU_FUZZ_SECONDS:-30}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for fuzzer in "$build"/fuzz/Fuzz*; do
  [ -x "$fuzzer" ] || continue
  name=$(basename "$fuzzer")
  mkdir -p "$work/$name"
  cp -r "fuzz/corpus/$name/." "$work/$name/" 2>/dev/null || true
  echo "fuzz: $name for $seconds s"
  "$fuzzer" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 -print_final_stats=1 \
    -artifact_prefix="$work/" "$work/$name" 2>&1 | grep -E '^(stat::number_of_executed_units|INFO: Done|==)' || true
  if ls "$work"/crash-* "$work"/leak-* "$work"/timeout-* >/dev/null 2>&1; then
    echo "fuzz: $name found a failing input:" >&2
    for f in "$work"/crash-* "$work"/leak-* "$work"/timeout-*; do [ -f "$f" ] && xxd "$f" | head -20 >&2; done
    exit 1
  fi
done
