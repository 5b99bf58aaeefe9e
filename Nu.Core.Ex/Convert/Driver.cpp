// The driver of a run, shared by every pair: only the pairs' producers are compiled per pair.
// Linked into the library and into the tests of the levels with the generated kernel units.
#include <Nu.Core.Ex/Convert/Kernels.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <immintrin.h>

namespace Nu::Detail {
namespace {

// Whole 64-byte lines go out with non-temporal stores; the tail, under a line, with plain ones.
// No masked store: one between the streaming stores costs more than the streaming saves.
NU_TARGET_Avx512 void StreamCopy(char* trg, unsigned char const* src, std::size_t bytes) noexcept {
  std::size_t i = 0;
  for (; i + 64 <= bytes; i += 64)
    _mm512_stream_si512(reinterpret_cast<__m512i*>(trg + i), _mm512_loadu_si512(src + i));
  std::memcpy(trg + i, src + i, bytes - i);
}

// Where in `buffer` (a page longer than a block) a streaming block goes. The processor takes a
// load whose address matches an earlier store's in the low 12 bits for one that depends on it,
// and waits: the block's stores into the buffer and its loads of the source meet that way where
// they run over the same page offsets. The block starts half a page from its source's offset.
unsigned char* BlockBuffer(unsigned char* buffer, char const* from) noexcept {
  std::uintptr_t const at = reinterpret_cast<std::uintptr_t>(from) + 2048 - reinterpret_cast<std::uintptr_t>(buffer);
  return buffer + (at & 4032);
}

// Asks for the source lines from `requested` up to `end` bytes, a line at a time.
void RequestSource(char const* source, std::size_t& requested, std::size_t end) noexcept {
  for (; requested < end; requested += 64) _mm_prefetch(source + requested, _MM_HINT_T0);
}

// Runs that do not overlap, of at least FusedFrom pixels, in the order of the plan.
void ConvertApart(ELevel level, std::size_t count, void* trg, void const* src, SPairRun const& pair,
                  SRunKey const& key) noexcept {
  EOrder const order = key.Order[static_cast<std::size_t>(level)];
  std::size_t const pixelBytes = key.TrgPixelBytes;
  if (order == EOrder::Copy) {
    std::memcpy(trg, src, count * pixelBytes);
    return;
  }
  SRunPlan const plan =
      RunPlanOf(order, key.LoopOnly[static_cast<std::size_t>(level)], key.TrgPixelBytes, key.SrcPixelBytes, level);
  bool const large = plan.StreamFrom != 0 && count * pixelBytes >= plan.StreamFrom;
  // The pixels before the first line of the target where it streams, else of the source where the
  // plan says so (64: no pixel starts one). They go first, so that the steps that follow meet
  // whole lines on that side.
  std::size_t first = 0;
  std::size_t const step = large ? pixelBytes : key.SrcPixelBytes;
  auto const offset = static_cast<std::size_t>(reinterpret_cast<std::uintptr_t>(large ? trg : src) & 63);
  while (first < 64 && (offset + first * step) % 64 != 0) ++first;
  bool const streams = large && first < 64;
  if (first == 64 || first > count || (!large && !plan.AlignSource)) first = 0;
  if (first != 0) pair.Produce(level, 0, first, trg, src);
  auto const* source = static_cast<char const*>(src);
  std::size_t const srcBytes = count * key.SrcPixelBytes;
  std::size_t requested = 0;  // source bytes asked for
  if (streams) {
    // Blocks of whole lines go through a buffer and on to memory past the caches, each after the
    // requests for its source where the plan asks for them.
    alignas(64) unsigned char buffer[StreamBlock * MaxPixelBytes + 4096];
    std::size_t const block = plan.StreamPixels;
    bool const fetch = plan.FetchWhileStreaming && srcBytes >= plan.FetchFrom;
    for (std::size_t p = first; p < count; p += block) {
      std::size_t const n = count - p < block ? count - p : block;
      if (fetch) RequestSource(source, requested, std::min(srcBytes, (p + n) * key.SrcPixelBytes + plan.FetchAhead));
      unsigned char* const out = BlockBuffer(buffer, source + p * key.SrcPixelBytes);
      pair.Produce(level, p, n, out, src);
      StreamCopy(static_cast<char*>(trg) + p * pixelBytes, out, n * pixelBytes);
    }
    _mm_sfence();
    return;
  }
  if (plan.FetchFrom != 0 && srcBytes >= plan.FetchFrom) {
    // Short steps, each after a request for the source lines a few steps ahead.
    for (std::size_t p = first; p < count; p += plan.FetchPixels) {
      std::size_t const n = count - p < plan.FetchPixels ? count - p : plan.FetchPixels;
      RequestSource(source, requested, std::min(srcBytes, (p + n) * key.SrcPixelBytes + plan.FetchAhead));
      pair.Produce(level, p, n, static_cast<char*>(trg) + p * pixelBytes, src);
    }
  } else {
    pair.Produce(level, first, count - first, static_cast<char*>(trg) + first * pixelBytes, src);
  }
  if (order == EOrder::LumAShift) pair.AlphaPass(level, count, trg, src);
}

}  // namespace

void ConvertRunAt(ELevel level, unsigned int count, void* trg, void const* src, SPairRun const& pair) noexcept {
  SRunKey const key = UnpackRunKey(pair.Key);
  std::size_t const n = count;
  // The LumA rule writes a second run of target pixels, and reads one of an alpha-bearing source.
  bool const trgTwice = key.Order[static_cast<std::size_t>(level)] == EOrder::LumAShift;
  auto const trgBegin = reinterpret_cast<std::uintptr_t>(trg);
  auto const srcBegin = reinterpret_cast<std::uintptr_t>(src);
  std::uintptr_t const trgEnd = trgBegin + (trgTwice ? 2 * n : n) * key.TrgPixelBytes;
  std::uintptr_t const srcEnd = srcBegin + (key.SourceTwice ? 2 * n : n) * key.SrcPixelBytes;
  if (n >= FusedFrom && (trgEnd <= srcBegin || srcEnd <= trgBegin))
    ConvertApart(level, n, trg, src, pair, key);
  else
    pair.Forward(n, trg, src);
}

void ConvertRun(unsigned int count, void* trg, void const* src, FForward forward, FProduce produce,
                std::uint64_t key) noexcept {
  ConvertRunAt(DetectLevel(), count, trg, src, {forward, produce, nullptr, key});
}

void ConvertRunLumA(unsigned int count, void* trg, void const* src, SPairRun const& pair) noexcept {
  ConvertRunAt(DetectLevel(), count, trg, src, pair);
}

}  // namespace Nu::Detail
