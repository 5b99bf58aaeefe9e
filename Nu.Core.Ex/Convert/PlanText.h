#pragma once
// A plan as one line of text, for tests/Golden/ConvertPlans.txt and NuConvertBench --plan.
#include <Nu.Core.Ex/Convert/Plan.h>

#include <cstdio>
#include <string>

namespace Nu::Detail {

inline std::string FormatName(int pixelType, int dataType) {
  char const* layout = "?";
  char const* data = "?";
#define NU_LAYOUT_NAME_(L, ...) \
  if (pixelType == EPixelType::L) layout = #L;
  NU_PIXEL_LAYOUTS(NU_LAYOUT_NAME_)
#undef NU_LAYOUT_NAME_
#define NU_DATA_NAME_(D, ...) \
  if (dataType == EDataType::D) data = #D;
  NU_DATA_TYPES(NU_DATA_NAME_)
#undef NU_DATA_NAME_
  return std::string(layout) + "/" + data;
}

inline std::string Bytes(std::size_t bytes) {
  return bytes % (1u << 20) == 0 ? std::to_string(bytes >> 20) + "MiB" : std::to_string(bytes) + "B";
}

// "BGR/Float <- RGBA/UByte   avx512vbmi  moves-first   values loop@avx512      moves permute@avx512vbmi
//  block 256   start source stream >=16MiB by 512  fetch >=8MiB by 64 ahead 4096B"
inline std::string PlanLine(int trgPixel, int trgData, int srcPixel, int srcData, ELevel level) {
  SPlan const plan = PlanOf(PairKeyOf(trgPixel, trgData, srcPixel, srcData), level);
  auto kernel = [](char const* name, ELevel at) {
    return std::string(name) + (std::string(name) == "none" ? "" : std::string("@") + LevelName(at));
  };
  std::string const stream = plan.Run.StreamFrom == 0 ? std::string("no")
                                                      : ">=" + Bytes(plan.Run.StreamFrom) + " by " +
                                                            std::to_string(plan.Run.StreamPixels);
  std::string const fetch = plan.Run.FetchFrom == 0 ? std::string("no")
                                                    : ">=" + Bytes(plan.Run.FetchFrom) + " by " +
                                                          std::to_string(plan.Run.FetchPixels) + " ahead " +
                                                          Bytes(plan.Run.FetchAhead) +
                                                          (plan.Run.FetchWhileStreaming ? ", streaming too" : "");
  char line[256];
  std::snprintf(line, sizeof line,
                "%-25s %-11s %-13s values %-21s moves %-23s block %-5zu start %-6s stream %-16s fetch %s",
                (FormatName(trgPixel, trgData) + " <- " + FormatName(srcPixel, srcData)).c_str(), LevelName(level),
                OrderName(plan.Order), kernel(ValueKernelName(plan.Values.Kind), plan.Values.At).c_str(),
                kernel(MoveKernelName(plan.Moves.Kind), plan.Moves.At).c_str(), plan.Block,
                plan.Run.AlignSource ? "source" : "any", stream.c_str(), fetch.c_str());
  return line;
}

}  // namespace Nu::Detail
