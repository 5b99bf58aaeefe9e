// The fused conversion path of separate runs, shared by every pair: only the block producers
// are compiled per pair. Linked into the library and into the tests of the instruction-set
// paths with the generated kernel units.
#include <Nu.Core.Ex/NuImageConvertImpl.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <immintrin.h>

namespace Nu::Detail {
namespace {

// Whole 64-byte lines go out with non-temporal stores (narrower ones measured slower than
// plain stores here); the tail, under a line, with plain ones. No masked store: on this CPU one
// between the streaming stores costs more than the streaming saves.
NU_ISA_AVX512 void StreamCopyAvx512(char* trg, unsigned char const* src, std::size_t bytes) noexcept {
  std::size_t i = 0;
  for (; i + 64 <= bytes; i += 64)
    _mm512_stream_si512(reinterpret_cast<__m512i*>(trg + i), _mm512_loadu_si512(src + i));
  std::memcpy(trg + i, src + i, bytes - i);
}

}  // namespace

void ConvertApart(std::size_t count, void* trg, void const* src, SApart const& apart) noexcept {
  std::size_t const pixelBytes = apart.TrgPixelBytes;
  if (apart.Produce == nullptr) {
    std::memcpy(trg, src, count * pixelBytes);
    return;
  }
  bool const large = apart.AlphaPass == nullptr && count * pixelBytes >= StreamBytes && apart.Streams();
  std::size_t first = 0;  // pixels before the first target line (64: no pixel starts one)
  auto const offset = static_cast<std::size_t>(reinterpret_cast<std::uintptr_t>(trg) & 63);
  while (large && first < 64 && (offset + first * pixelBytes) % 64 != 0) ++first;
  if (large && first < 64) {
    // A target far larger than the caches: blocks of whole lines go through a buffer and on to
    // memory with non-temporal stores, which spare the reading of the target's lines.
    static_assert(StreamBlock % 64 == 0);
    apart.Produce(0, first, trg, src);
    alignas(64) unsigned char out[StreamBlock * MaxPixelBytes];
    std::size_t const block = apart.StreamPixels;
    for (std::size_t p = first; p < count; p += block) {
      std::size_t const n = count - p < block ? count - p : block;
      apart.Produce(p, n, out, src);
      StreamCopyAvx512(static_cast<char*>(trg) + p * pixelBytes, out, n * pixelBytes);
    }
    _mm_sfence();
  } else if (std::size_t const srcBytes = count * apart.SrcPixelBytes; srcBytes >= FetchFromBytes) {
    // A source far larger than the caches: short steps, each after a request for the source
    // lines a few steps ahead, keep its reads in flight while the kernels work.
    std::size_t const step = FetchPixels(apart.SrcPixelBytes);
    auto const* source = static_cast<char const*>(src);
    std::size_t fetched = 0;
    for (std::size_t p = 0; p < count; p += step) {
      std::size_t const n = count - p < step ? count - p : step;
      std::size_t const ahead = std::min(srcBytes, (p + n) * apart.SrcPixelBytes + FetchAheadBytes);
      for (; fetched < ahead; fetched += 64) _mm_prefetch(source + fetched, _MM_HINT_T0);
      apart.Produce(p, n, static_cast<char*>(trg) + p * pixelBytes, src);
    }
    if (apart.AlphaPass != nullptr) apart.AlphaPass(count, trg, src);
  } else {
    apart.Produce(0, count, trg, src);
    if (apart.AlphaPass != nullptr) apart.AlphaPass(count, trg, src);
  }
}

namespace {

void RunApartOrForward(unsigned int count, void* trg, void const* src, FForward forward, SApart const& apart,
                       bool trgTwice, bool srcTwice) noexcept {
  std::size_t const n = count;
  auto const trgBegin = reinterpret_cast<std::uintptr_t>(trg);
  auto const srcBegin = reinterpret_cast<std::uintptr_t>(src);
  std::uintptr_t const trgEnd = trgBegin + (trgTwice ? 2 * n : n) * apart.TrgPixelBytes;
  std::uintptr_t const srcEnd = srcBegin + (srcTwice ? 2 * n : n) * apart.SrcPixelBytes;
  if (n >= SmallRun && (trgEnd <= srcBegin || srcEnd <= trgBegin))
    ConvertApart(n, trg, src, apart);
  else
    forward(n, trg, src);
}

}  // namespace

void ConvertRun(unsigned int count, void* trg, void const* src, FForward forward, FProduce produce,
                std::uint64_t sizes) noexcept {
  SApart const apart{produce, nullptr, sizes & 0xFF, (sizes >> 8) & 0xFF, sizes >> 16, &TMovesHere::Streams};
  RunApartOrForward(count, trg, src, forward, apart, false, false);
}

void ConvertRunLumA(unsigned int count, void* trg, void const* src, FForward forward, SApart const& apart,
                    bool srcTwice) noexcept {
  RunApartOrForward(count, trg, src, forward, apart, true, srcTwice);
}

}  // namespace Nu::Detail
