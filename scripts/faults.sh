#!/usr/bin/env bash
# Plants known faults in the conversion engine one at a time, rebuilds, runs the default test
# run and reports which tests caught each: the proof that the conversion tests still catch what
# they are there for. Works in a scratch clone of this repository (made on first use and kept,
# so that later runs rebuild only what a plant touches), or in the tree given, whose library
# sources must have no changes of their own: each plant is undone with git checkout.
#   scripts/faults.sh [tree] [name ...]    (NU_FAULTS_JOBS: build jobs, default 2)
set -uo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
tree=${1:-${TMPDIR:-/tmp}/nu-faults}
shift $(($# > 0 ? 1 : 0))
jobs=${NU_FAULTS_JOBS:-2}

# name@file@sed script: each changes one thing the tests must notice.
faults=(
  "overlap-missed@Nu.Core.Ex/Convert/Driver.cpp@s/(trgEnd <= srcBegin || srcEnd <= trgBegin)/(trgEnd != 0 || srcEnd <= trgBegin)/"
  "stream-tail@Nu.Core.Ex/Convert/Driver.cpp@s/std::memcpy(trg + i, src + i, bytes - i);/std::memcpy(trg + i, src + i, (bytes - i) \/ 2);/"
  "fetch-offset@Nu.Core.Ex/Convert/Driver.cpp@s/pair.Produce(level, p, n, static_cast<char\*>(trg) + p \* pixelBytes, src);/pair.Produce(level, 0, n, static_cast<char*>(trg) + p * pixelBytes, src);/"
  "bayer-gate-late@Nu.Core.Ex/NuImageConvert.cpp@s/srcFormat.PixelType != EPixelType::L)/srcFormat.PixelType != EPixelType::L \&\& trgFormat.DataType != 5128)/"
  "shortcut-bytes@Nu.Core.Ex/NuImageConvert.cpp@s/byteCount = trgFormat.GetByteCount();/byteCount = trgFormat.GetByteCount() \& ~63u;/"
  "custom-divisor@Nu.Core.Ex/NuImageConvert.cpp@s/divisor = 1023.0f;/divisor = 1024.0f;/"
  "lane-tail@Nu.Core.Ex/Convert/Lanes.h@/ConvertHalveLanes<SE, true>/s/(1u << (n - i)) - 1/(1u << (n - i + 1)) - 1/"
  "luma-shift@Nu.Core.Ex/Convert/Leaf.h@s/std::size_t const first = Key.LumAShift ? count : 0;/std::size_t const first = 0;/"
  "block-loop@Nu.Core.Ex/Convert/Leaf.h@/static_assert(Order == EOrder::ValuesFirst/,/q += Block/s/q < count; q += Block/q + 1 < count; q += Block/"
  "bytetable-level@Nu.Core.Ex/Convert/Plan.h@s/if (level == ELevel::Avx512Vbmi && trg.Bytes == 1 && src.Bytes == 1)/if (level >= ELevel::Avx512 \&\& trg.Bytes == 1 \&\& src.Bytes == 1)/"
  "permute-swap@Nu.Core.Ex/Convert/Plan.h@s/k == shape.T1) from = shape.S1;/k == shape.T1) from = shape.S2;/;s/k == shape.T2) from = shape.S2;/k == shape.T2) from = shape.S1;/"
  "halve-form@Nu.Core.Ex/Convert/ValueRule.h@s/return static_cast<int>((u - (u != 0 ? 1u : 0u)) >> 1);/return static_cast<int>(u >> 1);/"
  "clamp-dropped@Nu.Core.Ex/Convert/ValueRule.h@s/double c = w > Traits::Largest ? Traits::Largest : w;/double c = w;/"
  "nan-int@Nu.Core.Ex/Convert/ValueRule.h@s/NaNResult = -2147483647 - 1;/NaNResult = 0;/"
)

if [ ! -d "$tree/.git" ]; then
  git clone -q "$here" "$tree" || exit 1
fi
if [ "$tree" != "$here" ] && [ "$(git -C "$tree" remote get-url origin 2>/dev/null)" = "$here" ]; then
  git -C "$tree" pull -q --ff-only || exit 1
fi
if ! git -C "$tree" diff --quiet -- Nu.Core.Ex; then
  echo "faults: $tree has changes of its own under Nu.Core.Ex" >&2
  exit 1
fi
build=$tree/build/release
[ -f "$build/CMakeCache.txt" ] || (cd "$tree" && cmake --preset release >/dev/null) || exit 1
restore() { git -C "$tree" checkout -q -- Nu.Core.Ex; }
trap restore EXIT

printf '%-16s %-32s %s\n' fault file "caught by"
missed=0
for entry in "${faults[@]}"; do
  IFS='@' read -r name file script <<<"$entry"
  if [ $# -gt 0 ] && [[ " $* " != *" $name "* ]]; then continue; fi
  restore
  sed -i "$script" "$tree/$file"
  if git -C "$tree" diff --quiet -- "$file"; then
    printf '%-16s %-32s %s\n' "$name" "$file" "NOT PLANTED (the code has changed)"
    missed=1
    continue
  fi
  log=$build/faults-$name.log
  if ! cmake --build "$build" -j"$jobs" --target NuCoreExTests >"$log" 2>&1; then
    caught="the build, see $log"
  else
    ctest --test-dir "$build" -j"$jobs" >>"$log" 2>&1
    # The failed tests, one line per test whatever its parameter: name (how many instances).
    caught=$(sed -n '/The following tests FAILED/,$p' "$log" | grep -Eo '^[[:space:]]*[0-9]+ - [^ ]+' |
             sed -E 's/^[[:space:]]*[0-9]+ - //; s#^(Levels|Targets|Sources)/##; s#/[^/]+$##' |
             sort | uniq -c | awk '{printf "%s%s(%d)", sep, $2, $1; sep=" "}')
  fi
  if [ -z "$caught" ]; then
    caught="MISSED"
    missed=1
  fi
  printf '%-16s %-32s %s\n' "$name" "$file" "$caught"
done
restore
cmake --build "$build" -j"$jobs" --target NuCoreExTests >/dev/null 2>&1
exit $missed
