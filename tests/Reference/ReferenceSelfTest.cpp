// The oracle is pinned first, independently of the library: values, layouts and custom words
// worked out by hand from the documented rules.
#include "ConvertReference.h"
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

namespace {

enum : int { Byte = 5120, UByte, Short, UShort, Int, UInt, Float, Double = 5130 };
constexpr double NaN = std::numeric_limits<double>::quiet_NaN(), Keep = 1e300;  // Keep: an element left as it was

char const* Name(int id) { return NuRef::FindDataType(id) ? NuRef::FindDataType(id)->Name : NuRef::FindLayout(id)->Name; }

// An element of a data type as raw bits.
std::uint64_t Raw(int type, double v) {
  NuRef::SDataRow const& row = *NuRef::FindDataType(type);
  if (row.Integer) return static_cast<std::uint64_t>(static_cast<std::int64_t>(v)) & (~0ull >> (64 - 8 * row.Bytes));
  return row.Bytes == 4 ? std::bit_cast<std::uint32_t>(static_cast<float>(v)) : std::bit_cast<std::uint64_t>(v);
}
// Elements of a data type as a run of raw bytes, Keep as the bytes 0x55.
std::vector<unsigned char> Elements(int type, std::vector<double> const& values) {
  unsigned const size = NuRef::FindDataType(type)->Bytes;
  std::vector<unsigned char> bytes(values.size() * size, 0x55);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i] == Keep) continue;
    std::uint64_t const bits = Raw(type, values[i]);
    std::memcpy(&bytes[i * size], &bits, size);
  }
  return bytes;
}

}  // namespace

// Values first, Lum to Lum one pixel per value (count 0), then layouts.
TEST(ReferenceModel, DocumentedValuesAndLayouts) {
  enum : int { RGBA = 6408, RGB = 6407, BGRA = 32993, BGR = 32992, L = 6409, LumA = 6410, Bayer1 = 8193, Bayer2, Bayer4 = 8196 };
  struct {
    int TrgPixel, TrgData, SrcPixel, SrcData;
    unsigned Count;
    std::vector<double> Src, Trg;
  } const cases[] = {
      {L, Byte, L, UByte, 0, {0, 1, 2, 3, 127, 128, 129, 254, 255}, {0, 0, 0, 1, 63, 63, 64, 126, 127}},
      {L, UByte, L, Byte, 0, {-128, -1, 0, 1, 2, 64, 127}, {0, 0, 0, 2, 4, 128, 255}},
      {L, Short, L, Byte, 0, {-128, -127, -1, 1, 127}, {-32768, -32512, -256, 258, 32767}},
      {L, Byte, L, Short, 0, {-32768, -32767, -256, -255, 258, 32767}, {-128, -127, -1, 0, 0, 127}},
      {L, Byte, L, UShort, 0, {516, 517, 32768, 65535}, {0, 1, 63, 127}}, {L, Short, L, UShort, 0, {2, 3, 32768, 65535}, {0, 1, 16383, 32767}},
      {L, UShort, L, Short, 0, {-1, 1, 32767}, {0, 2, 65535}}, {L, UInt, L, Int, 0, {-1, 1, 2147483647}, {0, 2, 4294967295.0}},
      {L, Int, L, UInt, 0, {2, 3, 2147483648.0}, {0, 1, 1073741823}}, {L, UInt, L, Float, 0, {0.5, -0.0}, {2147483647, 0}},
      {L, UByte, L, Float, 0, {0.5, 0.999, 1.0, 1.5, -0.5, 1.0000001, -0.0}, {127, 254, 255, 255, 0, 255, 0}},
      {L, Byte, L, Float, 0, {0.5, 1, 1.5, -0.5, -1, -1.5, 0.0078125, -0.0078125}, {63, 127, 127, -64, -128, -128, 0, -1}},
      {L, Float, L, Byte, 0, {-128, 127}, {-1, 1}}, {L, Float, L, Int, 0, {2147483647}, {1}}, {L, Double, L, Float, 0, {-0.0}, {-0.0}},
      {L, Float, L, Double, 0, {1e300, NaN}, {INFINITY, NaN}}, {L, Int, L, Double, 0, {NaN, -INFINITY, -0.0}, {-2147483648.0, -2147483648.0, 0}},
      {L, Byte, L, Double, 0, {NaN}, {0}}, {L, UByte, L, Double, 0, {NaN}, {0}}, {L, Short, L, Double, 0, {NaN}, {0}},
      {L, UShort, L, Double, 0, {NaN}, {0}}, {L, UInt, L, Double, 0, {NaN}, {0}}, {L, Double, L, Double, 0, {NaN}, {NaN}},
      {L, UShort, L, UByte, 0, {1, 255}, {257, 65535}}, {L, UInt, L, UShort, 0, {1, 65535}, {65537, 4294967295.0}},
      {L, UByte, L, UInt, 0, {16843008, 16843009}, {0, 1}},
      {L, UByte, RGB, UByte, 1, {10, 20, 30}, {10}},       {L, UByte, BGR, UByte, 1, {10, 20, 30}, {30}},
      {L, UByte, BGRA, UByte, 1, {10, 20, 30, 40}, {30}},  {BGR, UByte, RGB, UByte, 1, {10, 20, 30}, {30, 20, 10}},
      {BGRA, UByte, RGBA, UByte, 1, {10, 20, 30, 40}, {30, 20, 10, 40}}, {BGRA, UByte, L, UByte, 1, {7}, {7, 7, 7, 255}},
      {RGBA, Float, L, Float, 1, {0.5}, {0.5, 0.5, 0.5, 1}}, {RGBA, Double, L, Int, 1, {2147483647}, {1, 1, 1, 1}},
      {RGB, UByte, LumA, UByte, 1, {7, 9}, {7, 7, 7}},     {RGBA, UByte, LumA, UByte, 1, {7, 9}, {7, 7, 7, 9}},
      {L, UByte, LumA, UByte, 1, {7, 9}, {7}},             {LumA, UByte, L, UByte, 1, {7}, {7, 255}},
      {RGBA, UByte, RGBA, Float, 1, {0.1, 0.2, 0.3, 2.0}, {25, 51, 76, 255}},
      {BGRA, Float, RGBA, Float, 1, {0.1, 0.2, 300.0, 2.0}, {300.0, 0.2, 0.1, 2.0}},
      {LumA, Byte, L, Short, 1, {32767}, {127, Keep, Keep, 127}},
      {LumA, Byte, LumA, Short, 2, {-32768, 1, 32767, 2, 0, 32767, 0, -32768}, {-128, Keep, 127, Keep, Keep, 127, Keep, -128}},
      {LumA, Byte, RGB, UByte, 3, {10, 20, 30, 40, 50, 60, 70, 80, 90}, {4, Keep, 19, Keep, 34, Keep, Keep, 127, Keep, 127, Keep, 127}},
      {RGB, UByte, Bayer1, UByte, 4, {10, 20, 30, 40}, {10, 10, 10, 20, 20, 20, 30, 30, 30, 40, 40, 40}},
      {BGRA, UByte, Bayer4, UByte, 1, {7}, {7, 7, 7, 255}}, {RGBA, Double, Bayer2, Double, 1, {0.25}, {0.25, 0.25, 0.25, 1}},
      {LumA, UByte, Bayer2, UByte, 1, {7}, {7, 255}},      {Bayer1, Float, Bayer1, UByte, 1, {255}, {1}},
      {LumA, Short, Bayer2, UByte, 2, {0, 255}, {0, Keep, 32767, Keep, Keep, 32767, Keep, 32767}},
  };
  for (auto const& c : cases) {
    std::vector<unsigned char> trg = Elements(c.TrgData, std::vector<double>(c.Trg.size(), Keep));
    unsigned const count = c.Count != 0 ? c.Count : static_cast<unsigned>(c.Src.size());
    NuRef::ConvertRun(c.TrgPixel, c.TrgData, trg.data(), c.SrcPixel, c.SrcData, Elements(c.SrcData, c.Src).data(), count);
    EXPECT_EQ(trg, Elements(c.TrgData, c.Trg)) << Name(c.TrgPixel) << "/" << Name(c.TrgData) << " <- " << Name(c.SrcPixel) << "/"
                                               << Name(c.SrcData) << ", first value " << c.Src[0];
  }
}

TEST(ReferenceModel, DocumentedCustomWidening) {
  struct {
    int Type;
    std::uint16_t Word, Result;
  } const cases[] = {
      {10, 0, 0},       {10, 1, 64},       {10, 341, 21845}, {10, 511, 32735}, {10, 512, 32799}, {10, 1022, 65470},
      {10, 1023, 65535}, {10, 1024, 63},   {10, 2047, 62},   {10, 65535, 3972}, {10, 617, 39526}, {12, 1, 16},
      {12, 2047, 32759}, {12, 2048, 32775}, {12, 4095, 65535}, {12, 4096, 15},  {12, 65535, 224}, {12, 2183, 34936},
  };
  for (auto const& c : cases) EXPECT_EQ(NuRef::WidenCustom(c.Type, c.Word), c.Result) << c.Type << " " << c.Word;
}
