#pragma once
// The kernels every pair shares and the driver of a run, as the pairs (Convert/Leaf.h) and the
// tests see them: declared here, compiled once in the generated kernel units and
// Convert/Driver.cpp, so that neither the 80 loop units nor the tests compile them again.
#include <Nu.Core.Ex/Convert/Plan.h>

#include <cstddef>
#include <cstdint>

namespace Nu::Detail {

// n contiguous elements through the value rule, by the value kernel the plan names for the
// level (Convert/Values.h). The runs do not overlap.
template <class TE, class SE>
void ConvertValues(ELevel level, std::size_t n, TE* trg, SE const* src) noexcept;

// The elements of count pixels moved by the layout rule for one pass, on elements of one size
// (bits), by the move kernel the plan names for the level (Convert/Moves.h). fill is the
// target maximum's bits. The runs do not overlap.
template <class T, SShape Shape, EPass Pass>
void MoveElements(ELevel level, std::size_t count, T* trg, T const* src, T fill) noexcept;

// The full pass between two types of one size, each value mapped by the rule as it moves, in
// one permute sweep: the order Mapped, which the plans give with VBMI only.
template <class TE, class SE, SShape Shape>
NU_TARGET_Avx512Vbmi NU_NOCLONE void MoveMapped(std::size_t count, TE* trg, SE const* src) noexcept;

// ---- the driver (Convert/Driver.cpp): one for every pair --------------------------------------
// A pair hands over its plain forward passes, its block producer (pixels first .. first +
// count - 1 of the run into `to`, in the target layout; null where the order is Copy at every
// level), for the LumA rule its alpha pass (alphas of pixels count .. 2 count - 1), and its
// packed run key (PackRunKey).
using FForward = void (*)(std::size_t count, void* trg, void const* src) noexcept;
using FProduce = void (*)(ELevel level, std::size_t first, std::size_t count, void* to, void const* src) noexcept;
using FAlphaPass = void (*)(ELevel level, std::size_t count, void* trg, void const* src) noexcept;
struct SPairRun {
  FForward Forward;
  FProduce Produce;
  FAlphaPass AlphaPass;
  std::uint64_t Key;
};

// A run of count (>= 1) pixels at a level: the fused path of the plan where the runs do not
// overlap and the run is long enough, the forward passes otherwise.
void ConvertRunAt(ELevel level, unsigned int count, void* trg, void const* src, SPairRun const& pair) noexcept;

// The same at this CPU's level. The pairs' entries: every argument in a register.
void ConvertRun(unsigned int count, void* trg, void const* src, FForward forward, FProduce produce,
                std::uint64_t key) noexcept;
void ConvertRunLumA(unsigned int count, void* trg, void const* src, SPairRun const& pair) noexcept;

}  // namespace Nu::Detail
