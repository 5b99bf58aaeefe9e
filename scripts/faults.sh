#!/usr/bin/env bash
# Plants known faults one at a time, in the conversion engine and in the library around it,
# rebuilds, runs the default test run and reports which tests caught each: the proof that the
# tests still catch what they are there for. Works in a scratch clone of this repository (made on first use and kept,
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
  "source-head@Nu.Core.Ex/Convert/Driver.cpp@s/if (first != 0) pair.Produce(level, 0, first, trg, src);/if (first != 0 \&\& large) pair.Produce(level, 0, first, trg, src);/"
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
  "mersenne-unit@Nu.Core.Ex/Convert/ValueRule.h@s/(x >= sticky ? 1.0 : 0.0)/(x >= sticky ? 0.0 : 0.0)/"
  "mersenne-lanes@Nu.Core.Ex/Convert/Lanes.h@s/double scale = wide ? unit + Pow2(-2 \\* k) :/double scale = wide ? unit :/"
  "permute-register@Nu.Core.Ex/Convert/Moves.h@s/Span > Lanes ? 2 : 1/Span > 2 * Lanes ? 2 : 1/"
  "narrow-bound@Nu.Core.Ex/Convert/Lanes.h@s/_mm512_cmplt_epu32_mask(left, right)/_mm512_cmple_epu32_mask(left, right)/"
  "ceiling-step@Nu.Core.Ex/Convert/Lanes.h@s/ceiling, positive, ceiling, _mm512_set1_epi32(1))/ceiling, positive, ceiling, _mm512_set1_epi32(0))/"
  "small-bias@Nu.Core.Ex/Convert/Lanes.h@s/_mm512_mask_add_epi16(x, _mm512_movepi16_mask(x), x, v)/_mm512_mask_add_epi16(x, _mm512_movepi16_mask(x), x, _mm512_andnot_si512(v, v))/"
  "divide-negative@Nu.Core.Ex/Convert/Lanes.h@s|_mm512_set1_ps(static_cast<float>(Src::NegativeScale)));|_mm512_set1_ps(1.0f / static_cast<float>(Src::Largest)));|"
  # Around the engine.
  "array-bound@Nu.Core.Ex/NuArrayBase.h@s/if (index >= Length()) NU_RAISE/if (index > Length()) NU_RAISE/"
  "array-growth@Nu.Core.Ex/NuContainerGrowth.h@s/capacity = size + std::max(size, length - size);/capacity = length;/"
  "array-copy-size@Nu.Core.Ex/NuArrayBase.h@s/source->GetElementSize() != GetElementSize()/source->GetElementSize() > GetElementSize()/"
  "array2d-column@Nu.Core.Ex/NuArray2DBase.h@s/if (row >= rows || column >= columns) {/if (row >= rows || column > columns) {/"
  "split-empty@Nu.Core.Ex/NuArrayString.cpp@s/) tokens.push_back(token);/) if (!token.empty()) tokens.push_back(token);/"
  "matrix-positions@Nu.Core.Math/NuMatrix.h@s/block.data() + row \* columns);/block.data() + row * oldColumns);/"
  "matrix-reset-bound@Nu.Core.Math/NuMatrix.h@s/std::min<std::size_t>(this->Rows \* this->Columns, Storage.size())/this->Rows * this->Columns/"
  "matrix-copy-route@Nu.Core.Math/NuMatrix.h@/byteCount = rows \* columns \* elementSize;/,/^  SetDimensions/s/^  SetDimensions(/  Resize(/"
  "precision@Nu.Core.Ex/NuValuePrecision.cpp@s/return 1e-12;/return 1e-11;/"
  "mapping-order@Nu.Core.Ex/NuMapping3D.cpp@s/(ix) \* static_cast<unsigned int>(CountY) +/(iy) * static_cast<unsigned int>(CountX) +/;s/static_cast<unsigned int>(iy));/static_cast<unsigned int>(ix));/"
  "mapping-box@Nu.Core.Ex/NuMapping3D.cpp@s/MinX < x \&\& x < MaxX/MinX <= x \&\& x < MaxX/"
  "mapping-minus-zero@Nu.Core.Ex/NuMapping3D.cpp@s/if (value == 0.0f) return false;/if (value == 0.0f \&\& 1.0f \/ value > 0.0f) return false;/"
  "image-reuse@Nu.Core.Ex/NuImage.cpp@s/if (presentBytes != byteCount) {/if (Data != nullptr || presentBytes != byteCount) {/"
  "image-self-move@Nu.Core.Ex/NuImage.cpp@/^void CNuImage::Create(CNuImage&& image) {/,/Destroy();/s/  Destroy();/  if (this == \&image) return;\n  Destroy();/"
  "image-swap@Nu.Core.Ex/NuImage.cpp@s/^  \*this = std::move(temporary);/  Data = nullptr;\n  *this = std::move(temporary);/"
  "setzero-borrowed@Nu.Core.Ex/NuImage.cpp@s/if (!IsValid()) NU_RAISE(FileText, \"This image is invalid\");/if (!IsValid() || IsMoniker) NU_RAISE(FileText, \"This image is invalid\");/"
  "normalize-seed@Nu.Core.Ex/NuImage.cpp@s/float max = -1e9f;/float max = -1e10f;/"
  "moniker-zero-size@Nu.Core.Ex/NuImageMoniker.cpp@s/if (width <= 0 || height <= 0) return false;/if (width < 0 || height < 0) return false;/"
  "wrap-drops-cause@Nu.Core/NuException.cpp@s/  Inner = CExceptionSafePointer(inner);/  (void)inner;/"
  "chain-search@Nu.Core/NuException.cpp@s/inner->HasException(guid);/inner->GetGUID() == guid;/"
  "chain-text@Nu.Core/NuException.cpp@s/\"  inner: \"/\" inner: \"/"
  "guid-case@Nu.Core/Guid.cpp@s/\"0123456789ABCDEF\"/\"0123456789abcdef\"/"
  "string-append@Nu.Core/NuString.cpp@s/std::memcpy(fresh + Size, text, size);/std::memcpy(fresh + Size, text, size - 1);/"
  # The OpenCV bridge, where OpenCV's core is found.
  "cv-convention@interop/NuOpenCv.h@s/case 3: return EPixelType::BGR;/case 3: return EPixelType::RGB;/"
  "cv-depth@interop/NuOpenCv.h@s/case EDataType::Byte: return CV_8S;/case EDataType::Byte: return CV_8U;/"
  "cv-roi@interop/NuOpenCv.h@s/ || !mat.isContinuous()) return false;/) return false;/"
)

if [ ! -d "$tree/.git" ]; then
  git clone -q "$here" "$tree" || exit 1
fi
if [ "$tree" != "$here" ] && [ "$(git -C "$tree" remote get-url origin 2>/dev/null)" = "$here" ]; then
  git -C "$tree" pull -q --ff-only || exit 1
fi
sources=(Nu.Core Nu.Core.Ex Nu.Core.Math interop)
# The binaries of the default test run.
targets=(NuCoreTests NuCoreExTests NuAllocFailureTests NuMallocFailureTests)
if ! git -C "$tree" diff --quiet -- "${sources[@]}"; then
  echo "faults: $tree has changes of its own in the library" >&2
  exit 1
fi
build=$tree/build/release
[ -f "$build/CMakeCache.txt" ] || (cd "$tree" && cmake --preset release >/dev/null) || exit 1
grep -q '^build NuOpenCvInteropTests:' "$build/build.ninja" && targets+=(NuOpenCvInteropTests)
restore() { git -C "$tree" checkout -q -- "${sources[@]}"; }
trap restore EXIT

printf '%-20s %-34s %s\n' fault file "caught by"
missed=0
for entry in "${faults[@]}"; do
  IFS='@' read -r name file script <<<"$entry"
  if [ $# -gt 0 ] && [[ " $* " != *" $name "* ]]; then continue; fi
  restore
  sed -i "$script" "$tree/$file"
  if git -C "$tree" diff --quiet -- "$file"; then
    printf '%-20s %-34s %s\n' "$name" "$file" "NOT PLANTED (the code has changed)"
    missed=1
    continue
  fi
  log=$build/faults-$name.log
  if ! cmake --build "$build" -j"$jobs" --target "${targets[@]}" >"$log" 2>&1; then
    caught="the build, see $log"
  else
    # Binaries left unbuilt here (the sweeps, the Python module) leave placeholders: not a catch.
    ctest --test-dir "$build" -j"$jobs" -LE exhaustive -E '_NOT_BUILT|^Python' >>"$log" 2>&1
    # The failed tests, one line per test whatever its parameter or type: name (how many instances).
    caught=$(sed -n '/The following tests FAILED/,$p' "$log" | grep -Eo '^[[:space:]]*[0-9]+ - [^ ]+' |
             sed -E 's/^[[:space:]]*[0-9]+ - //; s#^(Levels|Targets|Sources)/##; s#/[^/]+$##; s/<.*>$//' |
             sort | uniq -c | awk '{printf "%s%s(%d)", sep, $2, $1; sep=" "}')
  fi
  if [ -z "$caught" ]; then
    caught="MISSED"
    missed=1
  fi
  printf '%-20s %-34s %s\n' "$name" "$file" "$caught"
done
restore
cmake --build "$build" -j"$jobs" --target "${targets[@]}" >/dev/null 2>&1
exit $missed
