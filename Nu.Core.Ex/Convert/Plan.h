#pragma once
// The plan of a pair: for a target format, a source format and an instruction-set level,
// everything that decides what runs. Kernels and driver read it and decide nothing of their
// own, so that changing a path is changing this file, and every change shows as a diff of
// tests/Golden/ConvertPlans.txt (Convert/README.md says how to regenerate it).
#include <Nu.Core.Ex/Convert/Level.h>
#include <Nu.Core.Ex/Convert/ValueRule.h>

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace Nu::Detail {

// ---- layouts and the shape of a layout pair ---------------------------------------------------
struct SLayout {
  int Layout;
  unsigned int Colours, Alphas;
  int Red, Green, Blue, Alpha;
};
#define NU_CONVERT_LAYOUT_(L, C, A, R, G, B, Al, ...) {EPixelType::L, C, A, R, G, B, Al},
inline constexpr SLayout AllLayouts[] = {NU_PIXEL_LAYOUTS(NU_CONVERT_LAYOUT_)};
#undef NU_CONVERT_LAYOUT_

constexpr SLayout LayoutOf(int pixelType) noexcept {
  for (SLayout const& layout : AllLayouts)
    if (layout.Layout == pixelType) return layout;
  return {};
}

// The 80 carried formats in list order.
struct SFormatIds {
  int PixelType;
  int DataType;
};
#define NU_CONVERT_FORMAT_IDS_(L, C, A, R, G, B, Al, D, E) {EPixelType::L, EDataType::D},
inline constexpr SFormatIds AllFormats[] = {NU_ALL_PIXELS(NU_CONVERT_FORMAT_IDS_)};
#undef NU_CONVERT_FORMAT_IDS_

// The eight data types in list order.
#define NU_CONVERT_DATA_IDS_(D, E, ...) EDataType::D,
inline constexpr int AllDataTypes[] = {NU_DATA_TYPES(NU_CONVERT_DATA_IDS_)};
#undef NU_CONVERT_DATA_IDS_

// The index map of a layout pair: elements per pixel on each side, 1 or 3 target colours,
// (T0, S0), (T1, S1), (T2, S2) target element <- source element in the order written (red,
// green, blue), the target's alpha element or -1 and the source's alpha element or -1 (-1 too
// where the target has none). Unused indices are 0, so that pairs with the same moves (Lum <-
// Bayer2 and Lum <- Lum, Bayer3 <- RGB and Lum <- RGB) have the same shape and share kernels.
struct SShape {
  int TrgStride, SrcStride, Colours;
  int T0, S0, T1, S1, T2, S2;
  int TrgAlpha, SrcAlpha;

  // Every target element comes from the source element at the same place.
  constexpr bool Identity() const noexcept {
    return TrgStride == SrcStride && T0 == S0 && (Colours == 1 || (T1 == S1 && T2 == S2)) &&
           (TrgAlpha < 0 || TrgAlpha == SrcAlpha);
  }
  constexpr bool FillsAlpha() const noexcept { return TrgAlpha >= 0 && SrcAlpha < 0; }
  friend constexpr bool operator==(SShape const&, SShape const&) noexcept = default;
};

constexpr SShape ShapeOf(SLayout trg, SLayout src) noexcept {
  bool const three = trg.Colours == 3;
  int const trgAlpha = trg.Alphas != 0 ? trg.Alpha : -1;
  int const srcAlpha = trgAlpha >= 0 && src.Alphas != 0 ? src.Alpha : -1;
  return {static_cast<int>(trg.Colours + trg.Alphas), static_cast<int>(src.Colours + src.Alphas),
          static_cast<int>(trg.Colours), trg.Red, src.Red, three ? trg.Green : 0, three ? src.Green : 0,
          three ? trg.Blue : 0, three ? src.Blue : 0, trgAlpha, srcAlpha};
}

// A pair as its code sees it: two data types and a shape, and whether the LumA-target rule of
// different data types applies. Pairs with equal keys share one kernel.
struct SPairKey {
  int TrgData, SrcData;
  SShape Shape;
  bool LumAShift;
  friend constexpr bool operator==(SPairKey const&, SPairKey const&) noexcept = default;
};
constexpr SPairKey PairKeyOf(int trgPixel, int trgData, int srcPixel, int srcData) noexcept {
  return {trgData, srcData, ShapeOf(LayoutOf(trgPixel), LayoutOf(srcPixel)),
          trgPixel == EPixelType::LumA && trgData != srcData};
}

// ---- the value kernel ---------------------------------------------------------------------------
// How a block of values is converted: the plain loop of ConvertChannelValue (which the compiler
// vectorises for the level), or a kernel of AVX-512 lanes (Convert/Lanes.h), or a VBMI byte table.
enum class EValueKernel : std::uint8_t {
  None,        // no values are converted (equal types)
  Loop,        // ConvertChannelValue element by element, vectorised by the compiler
  Rule,        // the two steps in eight double lanes (floating sources into integer targets)
  Halve,       // the Halve form in 32-bit lanes (Int from UByte and UShort)
  Widen,       // the Scaled form widening: a x + floor(b x / Ls), the second term in 16-bit lanes
  Narrow,      // 32-bit integers into 8/16-bit ones: x >> (k - j), less one below a bound, in 32-bit lanes
  Small,       // between 8/16-bit integers in 16-bit lanes, narrowing by the same identity
  Single,      // Float into 8/16-bit integers in single-precision lanes
  Mersenne,    // the Mersenne form (Float, Double from Int, UInt; Double from 16 bits), one FMA a lane
  HalfUp,      // Float from Int: x rounded to single with ties up, times 2^-31, in single lanes
  Ceiling,     // Int from Float: ceil(x 2^31), less one above zero, in single lanes
  Divide,      // the Single form from signed types in single lanes, each source line read once
  Repeat,      // Double from the byte types by their repeated bits
  ByteTable,   // between the byte types: a 256-byte table of the rule's results
  WidenBytes,  // Widen from the byte types, the second term from a 256-byte table
  Mapped,      // converted by the permute that moves them (order Mapped)
};
struct SValueKernel {
  EValueKernel Kind;
  ELevel At;  // the level the kernel's code is compiled for
};

constexpr char const* ValueKernelName(EValueKernel kind) noexcept {
  constexpr char const* names[] = {"none",     "loop",    "rule",   "halve",     "widen",
                                   "narrow",   "small",   "single", "mersenne",  "halfup",
                                   "ceiling",  "divide",  "repeat", "bytetable", "widenbytes", "mapped"};
  return names[static_cast<int>(kind)];
}

// The lanes of AVX-512 for a pair, by its form. Forms that the compiler vectorises well as they
// stand (Twice, UInt to Int, Single from unsigned types, Multiple but for its narrowing from
// UInt) and floating targets keep the loop. From signed types the loop's two masked operations
// and second read of each source line make the Single form's lanes (Divide) worth it. Narrowing
// from UInt, the identity of the Narrow lanes costs less than the loop's 32-bit quotient by a
// constant (from UShort the loop's 16-bit quotient costs less). The Mersenne form has lanes of
// its own for the fused multiply-add, which the loop's contraction-free arithmetic may not use.
// Between Int and Float the rule's results have forms in single precision (HalfUp, Ceiling),
// twice the lanes of double.
constexpr EValueKernel LanesOf(SDataInfo trg, SDataInfo src) noexcept {
  switch (ValueFormOf(trg, src)) {
    case EValueForm::Copy: return EValueKernel::None;
    case EValueForm::Halve: return src.Bytes <= 2 ? EValueKernel::Halve : EValueKernel::Loop;
    case EValueForm::Multiple: return trg.Largest < src.Largest && src.Bytes == 4 ? EValueKernel::Narrow : EValueKernel::Loop;
    case EValueForm::Scaled: return trg.Bytes == 4 ? EValueKernel::Widen : EValueKernel::Narrow;
    case EValueForm::Small: return EValueKernel::Small;
    case EValueForm::Single: return src.IsSigned ? EValueKernel::Divide : EValueKernel::Loop;
    case EValueForm::Mersenne:
      if (trg.Id == EDataType::Float && src.Id == EDataType::Int) return EValueKernel::HalfUp;
      return EValueKernel::Mersenne;
    case EValueForm::Rule:
      if (trg.Id == EDataType::Double && src.IsInteger && src.Bytes == 1) return EValueKernel::Repeat;
      if (trg.Id == EDataType::Int && src.Id == EDataType::Float) return EValueKernel::Ceiling;
      if (trg.Id == EDataType::Double && src.Id == EDataType::Short) return EValueKernel::Mersenne;  // see the lanes
      if (src.Id == EDataType::Float && trg.IsInteger && trg.Bytes <= 2) return EValueKernel::Single;
      return trg.IsInteger ? EValueKernel::Rule : EValueKernel::Loop;
    default: return EValueKernel::Loop;
  }
}

constexpr SValueKernel ValueKernelOf(SDataInfo trg, SDataInfo src, ELevel level) noexcept {
  if (trg.Id == src.Id) return {EValueKernel::None, ELevel::Baseline};
  if (level < ELevel::Avx512) return {EValueKernel::Loop, level};
  EValueKernel const lanes = LanesOf(trg, src);
  if (level == ELevel::Avx512Vbmi && trg.Bytes == 1 && src.Bytes == 1) return {EValueKernel::ByteTable, level};
  if (level == ELevel::Avx512Vbmi && src.Bytes == 1 && lanes == EValueKernel::Widen)
    return {EValueKernel::WidenBytes, level};
  return {lanes, ELevel::Avx512};
}

// ---- the element moves --------------------------------------------------------------------------
// A full pass writes every target element; the LumA rule's two passes write the colour and the
// alpha elements apart.
enum class EPass : std::uint8_t { Full, ColourOnly, AlphaOnly };

inline constexpr int KeepElement = -1, FillElement = -2;
// The source element that target element k of a pixel receives in a pass, or KeepElement, or
// FillElement (the target maximum).
constexpr int SourceElementOf(SShape shape, EPass pass, int k) noexcept {
  int from = KeepElement;
  if (pass != EPass::AlphaOnly) {
    if (k == shape.T0) from = shape.S0;
    if (shape.Colours == 3 && k == shape.T1) from = shape.S1;
    if (shape.Colours == 3 && k == shape.T2) from = shape.S2;
  }
  if (pass != EPass::ColourOnly && shape.TrgAlpha >= 0 && k == shape.TrgAlpha)
    from = shape.SrcAlpha >= 0 ? shape.SrcAlpha : FillElement;
  return from;
}

// The permute kernels fill 64 bytes of target from a window of source elements: vectors per
// group (a pixel of 3 * 2^k bytes repeats every three), the window's first element for each
// vector, and the widest window. A permute reaches four registers at most.
constexpr std::size_t PermuteVectors(SShape shape, std::size_t bytes) noexcept {
  return static_cast<std::size_t>(shape.TrgStride) * bytes % 3 == 0 ? 3 : 1;
}
constexpr std::size_t PermuteWindow(SShape shape, std::size_t bytes, std::size_t vector) noexcept {
  return vector * (64 / bytes) / static_cast<std::size_t>(shape.TrgStride) * static_cast<std::size_t>(shape.SrcStride);
}
constexpr std::size_t PermuteSpan(SShape shape, std::size_t bytes, EPass pass) noexcept {
  std::size_t const lanes = 64 / bytes, trgStride = static_cast<std::size_t>(shape.TrgStride);
  std::size_t span = 0;
  for (std::size_t v = 0; v < PermuteVectors(shape, bytes); ++v)
    for (std::size_t lane = 0; lane < lanes; ++lane) {
      std::size_t const element = v * lanes + lane;
      int const from = SourceElementOf(shape, pass, static_cast<int>(element % trgStride));
      if (from < 0) continue;
      std::size_t const source = element / trgStride * static_cast<std::size_t>(shape.SrcStride) +
                                 static_cast<std::size_t>(from) - PermuteWindow(shape, bytes, v);
      if (source + 1 > span) span = source + 1;
    }
  return span;
}
constexpr bool Permutes(SShape shape, std::size_t bytes, EPass pass) noexcept {
  return PermuteSpan(shape, bytes, pass) <= 4 * (64 / bytes);
}

constexpr bool IsWord(std::size_t bytes) noexcept { return bytes == 1 || bytes == 2 || bytes == 4 || bytes == 8; }

enum class EMoveKernel : std::uint8_t {
  None,      // no moves (identical layouts)
  Words,     // a whole pixel in a machine word on both sides, assembled in a register
  Elements,  // element by element
  Permute,   // 64 target bytes at a time from a window of source bytes (VBMI)
};
struct SMoveKernel {
  EMoveKernel Kind;
  ELevel At;
};

constexpr char const* MoveKernelName(EMoveKernel kind) noexcept {
  constexpr char const* names[] = {"none", "words", "elements", "permute"};
  return names[static_cast<int>(kind)];
}

// The permutes where VBMI is there: one shuffle per 64 target bytes, where the word loop takes
// a shift and a mask per element. Below it, a full pass with whole-word pixels vectorises as the
// word loop at any level; otherwise AVX-512 without VBMI runs the AVX2 element loop rather than
// a third compiled copy of it.
constexpr SMoveKernel MoveKernelOf(SShape shape, std::size_t bytes, EPass pass, ELevel level) noexcept {
  ELevel const compiled = level > ELevel::Avx512 ? ELevel::Avx512 : level;
  std::size_t const trgPixel = static_cast<std::size_t>(shape.TrgStride) * bytes;
  std::size_t const srcPixel = static_cast<std::size_t>(shape.SrcStride) * bytes;
  if (Permutes(shape, bytes, pass) && level == ELevel::Avx512Vbmi) return {EMoveKernel::Permute, level};
  if (pass == EPass::Full && trgPixel > 1 && IsWord(trgPixel) && IsWord(srcPixel)) return {EMoveKernel::Words, compiled};
  if (Permutes(shape, bytes, pass) && level == ELevel::Avx512) return {EMoveKernel::Elements, ELevel::Avx2};
  return {EMoveKernel::Elements, compiled};
}

// ---- the order of values and moves ------------------------------------------------------------
enum class EOrder : std::uint8_t {
  Copy,         // same type, identical layouts: one block copy
  Values,       // identical layouts: the values straight into the target
  Moves,        // same type: the moves straight into the target
  ValuesFirst,  // the values into an L1 buffer in the source layout, then the moves
  MovesFirst,   // the moves of the source elements into an L1 buffer, then the values
  Mapped,       // one permute sweep that maps each value as it moves (VBMI)
  LumAShift,    // the LumA-target rule: the colour pass values first, then the shifted alpha pass
};
inline constexpr std::size_t OrderCount = 7;

constexpr char const* OrderName(EOrder order) noexcept {
  constexpr char const* names[] = {"copy", "values", "moves", "values-first", "moves-first", "mapped", "luma-shift"};
  return names[static_cast<int>(order)];
}

// A layout change between two types of one size, mapped as it moves: unless the target has
// more elements per pixel than the source (a filled alpha, a repeated grey) and the rule runs in
// double there, where the mapping would compute every target element and converting each source
// element once first costs less.
constexpr bool MapsAsMoved(SDataInfo trg, SDataInfo src, SShape shape) noexcept {
  return trg.Bytes == src.Bytes && trg.Id != src.Id && !shape.Identity() &&
         (shape.TrgStride <= shape.SrcStride || (trg.IsInteger && src.IsInteger)) &&
         Permutes(shape, trg.Bytes, EPass::Full);
}

// The moves go first where they drop elements (fewer target than source elements, nothing to
// fill), so that only the elements kept are converted, and where the target type is four or
// eight times as wide, since moving the narrow source elements costs less than the wide values.
constexpr EOrder OrderOf(SPairKey key, ELevel level) noexcept {
  SDataInfo const trg = DataInfo(key.TrgData), src = DataInfo(key.SrcData);
  SShape const shape = key.Shape;
  if (key.LumAShift) return EOrder::LumAShift;
  bool const same = key.TrgData == key.SrcData;
  if (shape.Identity() && same) return EOrder::Copy;
  if (level == ELevel::Avx512Vbmi && MapsAsMoved(trg, src, shape)) return EOrder::Mapped;
  if (shape.Identity()) return EOrder::Values;
  if (same) return EOrder::Moves;
  if (!shape.FillsAlpha() &&
      (shape.SrcStride > shape.TrgStride || (shape.SrcStride == shape.TrgStride && trg.Bytes >= 4 * src.Bytes)))
    return EOrder::MovesFirst;
  return EOrder::ValuesFirst;
}

// The compiler's loop over the values is all that runs (order Values with the Loop kernel), and
// it halves the element: Float from Double, UByte from UShort. UShort from UInt, the other such
// loop, keeps the usual run, which serves it better in one channel (bench/RESULTS.md, "Path
// choices").
constexpr bool LoopOnly(SPairKey key, ELevel level) noexcept {
  bool const halves = (key.TrgData == EDataType::Float && key.SrcData == EDataType::Double) ||
                      (key.TrgData == EDataType::UByte && key.SrcData == EDataType::UShort);
  return halves && OrderOf(key, level) == EOrder::Values &&
         ValueKernelOf(DataInfo(key.TrgData), DataInfo(key.SrcData), level).Kind == EValueKernel::Loop;
}

// ---- the run ------------------------------------------------------------------------------------
// Runs shorter than this take the plain forward passes (same result): the fused path's buffer
// and level cost more than a few pixels.
inline constexpr std::size_t FusedFrom = 16;
inline constexpr std::size_t MaxPixelBytes = 4 * sizeof(double);

// Pixels per step through the L1 buffer: values first, a multiple of 64 pixels, so that every
// step meets the target at the same offset in its lines. The moves then read the buffer through
// windows across the stores just made, which wait for those stores to retire: small pixels want
// a long step (8 KiB of buffer), wide ones a shorter one (4 KiB). Moves first, the values read
// the buffer as it was written, and a short step serves best.
constexpr std::size_t BlockOf(EOrder order, std::size_t bufferPixelBytes) noexcept {
  if (order == EOrder::MovesFirst) return 256;
  if (order != EOrder::ValuesFirst && order != EOrder::LumAShift) return 0;
  std::size_t const pixels = (bufferPixelBytes <= 4 ? 8192 : 4096) / bufferPixelBytes / 64 * 64;
  return pixels < 64 ? 64 : pixels;
}

// What the driver does with a run of separate memory beyond the caches. Targets from StreamFrom
// bytes on go out in blocks of StreamPixels through a buffer with stores that bypass the caches
// (sparing the reading of the target's lines). Otherwise sources from FetchFrom bytes on go in
// steps of FetchPixels, each after a software request for the source FetchAhead bytes ahead, so
// that the reads stay in flight while the kernels work (the hardware's own prefetching leaves
// them idle there; for sources the caches hold, the steps cost more than they bring). Where the
// moves do the work (Moves, MovesFirst), the kernels are quick enough to wait on the source even
// while the target streams, so their streaming blocks are preceded by the same requests; value
// kernels, busy long enough to hide the reads, only lose time to them. Each choice was timed
// against the same build without it, kind of pair by kind of pair, warm and in fresh frames
// (bench/RESULTS.md, "Path choices"), and holds for its kinds in both.
struct SRunPlan {
  std::size_t StreamFrom = 0;  // 0: never
  std::size_t StreamPixels = 0;
  std::size_t FetchFrom = 0;  // 0: never
  std::size_t FetchPixels = 0;
  std::size_t FetchAhead = 0;
  bool FetchWhileStreaming = false;
  bool AlignSource = false;  // runs that do not stream start with the pixels before a source line
};
inline constexpr std::size_t StreamBlock = 512;  // whole 64-byte lines of any pixel size

constexpr std::size_t Multiple64(std::size_t pixels) noexcept {
  std::size_t const whole = pixels / 64 * 64;
  return whole < 64 ? 64 : whole;
}

// The moves alone stream wide pixels best in short bursts of about 1 KiB, and the mapped permutes
// into pixels of three or four 32-bit elements in half blocks (their single-precision lanes are
// quick enough that whole blocks of them lose to the plain lanes there); out of such pixels into
// one 32-bit element they do best not streaming at all, from a source line. The LumA rule writes
// each target line twice and keeps its lines in the caches. The compiler's loop alone halving
// the element (LoopOnly) keeps pace with memory with plain stores and the hardware's own
// prefetching; at AVX-512 the buffer and the requests only slow it there. At AVX-512, a load of
// a whole register across two source lines costs the most where the source comes from beyond
// L2, so runs whose source pixels are at least as wide as the target's start at a source line
// (their first pixels before it go alone); widening runs lose by it.
constexpr SRunPlan RunPlanOf(EOrder order, bool loopOnly, std::size_t trgPixelBytes, std::size_t srcPixelBytes,
                             ELevel level) noexcept {
  SRunPlan plan;
  if (order == EOrder::Copy) return plan;
  plan.AlignSource = level >= ELevel::Avx512 && srcPixelBytes >= trgPixelBytes;
  if (loopOnly && level >= ELevel::Avx512) return plan;
  bool const mappedToOne = order == EOrder::Mapped && trgPixelBytes == 4 && srcPixelBytes >= 12;
  if (level >= ELevel::Avx512 && order != EOrder::LumAShift && !mappedToOne) {
    plan.StreamFrom = std::size_t{16} << 20;
    std::size_t const burst = Multiple64(1024 / trgPixelBytes);
    if (order == EOrder::Moves)
      plan.StreamPixels = burst > StreamBlock ? StreamBlock : burst;
    else
      plan.StreamPixels = order == EOrder::Mapped && trgPixelBytes >= 12 ? StreamBlock / 2 : StreamBlock;
  }
  plan.FetchFrom = std::size_t{8} << 20;
  plan.FetchPixels = Multiple64(1024 / srcPixelBytes);
  plan.FetchAhead = 4096;
  plan.FetchWhileStreaming = plan.StreamFrom != 0 && (order == EOrder::Moves || order == EOrder::MovesFirst);
  return plan;
}

// ---- the plan ---------------------------------------------------------------------------------
struct SPlan {
  EOrder Order;
  SValueKernel Values;
  SMoveKernel Moves;  // for the LumA rule: its two partial passes
  std::size_t Block;  // pixels per step through the L1 buffer; 0: no buffer
  SRunPlan Run;
};

constexpr SPlan PlanOf(SPairKey key, ELevel level) noexcept {
  SDataInfo const trg = DataInfo(key.TrgData), src = DataInfo(key.SrcData);
  SShape const shape = key.Shape;
  EOrder const order = OrderOf(key, level);
  SPlan plan{order, {EValueKernel::None, ELevel::Baseline}, {EMoveKernel::None, ELevel::Baseline}, 0, {}};
  switch (order) {
    case EOrder::Copy: break;
    case EOrder::Values: plan.Values = ValueKernelOf(trg, src, level); break;
    case EOrder::Moves: plan.Moves = MoveKernelOf(shape, trg.Bytes, EPass::Full, level); break;
    case EOrder::Mapped:
      plan.Values = {EValueKernel::Mapped, level};
      plan.Moves = {EMoveKernel::Permute, level};
      break;
    case EOrder::MovesFirst:
      plan.Values = ValueKernelOf(trg, src, level);
      plan.Moves = MoveKernelOf(shape, src.Bytes, EPass::Full, level);
      break;
    case EOrder::ValuesFirst:
      plan.Values = ValueKernelOf(trg, src, level);
      plan.Moves = MoveKernelOf(shape, trg.Bytes, EPass::Full, level);
      break;
    case EOrder::LumAShift:
      plan.Values = ValueKernelOf(trg, src, level);
      plan.Moves = MoveKernelOf(shape, trg.Bytes, EPass::ColourOnly, level);
      break;
  }
  plan.Block = BlockOf(order, order == EOrder::MovesFirst ? 0 : static_cast<std::size_t>(shape.SrcStride) * trg.Bytes);
  plan.Run = RunPlanOf(order, LoopOnly(key, level), static_cast<std::size_t>(shape.TrgStride) * trg.Bytes,
                       static_cast<std::size_t>(shape.SrcStride) * src.Bytes, level);
  return plan;
}

// ---- what the shared driver is told of a pair --------------------------------------------------
// Its pixel sizes, whether its source run is read twice (the LumA rule with a source alpha), and
// its order at each level and whether the loop alone runs there, packed in one word so that a
// pair's entry passes it in a register.
struct SRunKey {
  std::size_t TrgPixelBytes, SrcPixelBytes;
  bool SourceTwice;
  EOrder Order[LevelCount];
  bool LoopOnly[LevelCount];
};
// Within 31 bits, so that the word is an immediate operand.
constexpr std::uint64_t PackRunKey(SPairKey key) noexcept {
  SDataInfo const trg = DataInfo(key.TrgData), src = DataInfo(key.SrcData);
  static_assert(MaxPixelBytes < 64 && OrderCount <= 8 && 13 + 4 * LevelCount <= 31);
  std::uint64_t word = static_cast<std::uint64_t>(key.Shape.TrgStride) * trg.Bytes |
                       static_cast<std::uint64_t>(key.Shape.SrcStride) * src.Bytes << 6 |
                       std::uint64_t{key.LumAShift && key.Shape.SrcAlpha >= 0} << 12;
  for (std::size_t l = 0; l < LevelCount; ++l)
    word |= static_cast<std::uint64_t>(OrderOf(key, AllLevels[l])) << (13 + 3 * l) |
            std::uint64_t{LoopOnly(key, AllLevels[l])} << (13 + 3 * LevelCount + l);
  return word;
}
constexpr SRunKey UnpackRunKey(std::uint64_t word) noexcept {
  SRunKey key{word & 63, (word >> 6) & 63, ((word >> 12) & 1) != 0, {}, {}};
  for (std::size_t l = 0; l < LevelCount; ++l) {
    key.Order[l] = static_cast<EOrder>((word >> (13 + 3 * l)) & 7);
    key.LoopOnly[l] = ((word >> (13 + 3 * LevelCount + l)) & 1) != 0;
  }
  return key;
}

}  // namespace Nu::Detail
