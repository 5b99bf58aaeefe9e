// The oracle is tested first: the documented example values and counts of the value rule, the
// layout rule and the custom widening against the reference model alone, before it judges the library anywhere else.
#include "ConvertReference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

namespace {

enum : int { Byte = 5120, UByte, Short, UShort, Int, UInt, Float, Double = 5130 };

template <class TTrg, class TSrc>
TTrg Ref(int trgType, int srcType, TSrc x) {
  TTrg result{};
  NuRef::ConvertValue(trgType, &result, srcType, &x);
  return result;
}

template <class T>
std::uint64_t Bits(T value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof value);
  return bits;
}

}  // namespace

TEST(ReferenceModel, DocumentedSingleValues) {
  using S = signed char;
  for (int x : {0, 1, 2}) EXPECT_EQ((Ref<S, unsigned char>(Byte, UByte, x)), 0) << x;
  EXPECT_EQ((Ref<S, unsigned char>(Byte, UByte, 3)), 1);
  EXPECT_EQ((Ref<S, unsigned char>(Byte, UByte, 127)), 63);
  EXPECT_EQ((Ref<S, unsigned char>(Byte, UByte, 128)), 63);
  EXPECT_EQ((Ref<S, unsigned char>(Byte, UByte, 129)), 64);
  EXPECT_EQ((Ref<S, unsigned char>(Byte, UByte, 254)), 126);
  EXPECT_EQ((Ref<S, unsigned char>(Byte, UByte, 255)), 127);
  for (int x = -128; x <= 0; ++x) EXPECT_EQ((Ref<unsigned char, S>(UByte, Byte, S(x))), 0) << x;
  EXPECT_EQ((Ref<unsigned char, S>(UByte, Byte, 1)), 2);
  EXPECT_EQ((Ref<unsigned char, S>(UByte, Byte, 2)), 4);
  EXPECT_EQ((Ref<unsigned char, S>(UByte, Byte, 64)), 128);
  EXPECT_EQ((Ref<unsigned char, S>(UByte, Byte, 127)), 255);
  EXPECT_EQ((Ref<short, S>(Short, Byte, -128)), -32768);
  EXPECT_EQ((Ref<short, S>(Short, Byte, -127)), -32512);
  EXPECT_EQ((Ref<short, S>(Short, Byte, -1)), -256);
  EXPECT_EQ((Ref<short, S>(Short, Byte, 1)), 258);
  EXPECT_EQ((Ref<short, S>(Short, Byte, 127)), 32767);
  EXPECT_EQ((Ref<S, short>(Byte, Short, -32768)), -128);
  EXPECT_EQ((Ref<S, short>(Byte, Short, -32767)), -127);
  EXPECT_EQ((Ref<S, short>(Byte, Short, -256)), -1);
  EXPECT_EQ((Ref<S, short>(Byte, Short, -255)), 0);
  EXPECT_EQ((Ref<S, short>(Byte, Short, 258)), 0);
  EXPECT_EQ((Ref<S, short>(Byte, Short, 32767)), 127);
  EXPECT_EQ((Ref<S, unsigned short>(Byte, UShort, 516)), 0);
  EXPECT_EQ((Ref<S, unsigned short>(Byte, UShort, 517)), 1);
  EXPECT_EQ((Ref<S, unsigned short>(Byte, UShort, 32768)), 63);
  EXPECT_EQ((Ref<S, unsigned short>(Byte, UShort, 65535)), 127);
  EXPECT_EQ((Ref<short, unsigned short>(Short, UShort, 2)), 0);
  EXPECT_EQ((Ref<short, unsigned short>(Short, UShort, 3)), 1);
  EXPECT_EQ((Ref<short, unsigned short>(Short, UShort, 32768)), 16383);
  EXPECT_EQ((Ref<short, unsigned short>(Short, UShort, 65535)), 32767);
  EXPECT_EQ((Ref<unsigned short, short>(UShort, Short, -1)), 0);
  EXPECT_EQ((Ref<unsigned short, short>(UShort, Short, 1)), 2);
  EXPECT_EQ((Ref<unsigned short, short>(UShort, Short, 32767)), 65535);
  EXPECT_EQ((Ref<unsigned, int>(UInt, Int, -1)), 0u);
  EXPECT_EQ((Ref<unsigned, int>(UInt, Int, 1)), 2u);
  EXPECT_EQ((Ref<unsigned, int>(UInt, Int, 2147483647)), 4294967295u);
  EXPECT_EQ((Ref<int, unsigned>(Int, UInt, 2u)), 0);
  EXPECT_EQ((Ref<int, unsigned>(Int, UInt, 3u)), 1);
  EXPECT_EQ((Ref<int, unsigned>(Int, UInt, 2147483648u)), 1073741823);
  EXPECT_EQ((Ref<unsigned char, float>(UByte, Float, 0.5f)), 127);
  EXPECT_EQ((Ref<unsigned char, float>(UByte, Float, 0.999f)), 254);
  EXPECT_EQ((Ref<unsigned char, float>(UByte, Float, 1.0f)), 255);
  EXPECT_EQ((Ref<unsigned char, float>(UByte, Float, 1.5f)), 255);
  EXPECT_EQ((Ref<unsigned char, float>(UByte, Float, -0.5f)), 0);
  EXPECT_EQ((Ref<S, float>(Byte, Float, 0.5f)), 63);
  EXPECT_EQ((Ref<S, float>(Byte, Float, 1.0f)), 127);
  EXPECT_EQ((Ref<S, float>(Byte, Float, 1.5f)), 127);
  EXPECT_EQ((Ref<S, float>(Byte, Float, -0.5f)), -64);
  EXPECT_EQ((Ref<S, float>(Byte, Float, -1.0f)), -128);
  EXPECT_EQ((Ref<S, float>(Byte, Float, -1.5f)), -128);
  EXPECT_EQ((Ref<S, float>(Byte, Float, 0.0078125f)), 0);
  EXPECT_EQ((Ref<S, float>(Byte, Float, -0.0078125f)), -1);
  EXPECT_EQ((Ref<unsigned, float>(UInt, Float, 0.5f)), 2147483647u);
  EXPECT_EQ((Ref<float, S>(Float, Byte, -128)), -1.0f);
  EXPECT_EQ((Ref<float, S>(Float, Byte, 127)), 1.0f);
  EXPECT_EQ((Ref<float, int>(Float, Int, 2147483647)), 1.0f);
  EXPECT_EQ((Ref<float, float>(Float, Float, 1.0000001f)), 1.0000001f);
  EXPECT_EQ((Ref<unsigned char, float>(UByte, Float, 1.0000001f)), 255);
}

TEST(ReferenceModel, NegativeZeroAndNaN) {
  for (auto const& row : NuRef::DataTypes) {
    if (!row.Integer) continue;
    std::int64_t out = 0x5A5A5A5A5A5A5A5A;
    float const negativeZero = -0.0f;
    NuRef::ConvertValue(row.Id, &out, Float, &negativeZero);
    std::uint64_t const mask = row.Bytes == 8 ? ~0ull : ((1ull << (8 * row.Bytes)) - 1);
    EXPECT_EQ(static_cast<std::uint64_t>(out) & mask, 0u) << row.Name;
  }
  EXPECT_EQ(Bits(Ref<double, float>(Double, Float, -0.0f)), Bits(-0.0));
  double const nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ((Ref<signed char, double>(Byte, Double, nan)), 0);
  EXPECT_EQ((Ref<unsigned char, double>(UByte, Double, nan)), 0);
  EXPECT_EQ((Ref<short, double>(Short, Double, nan)), 0);
  EXPECT_EQ((Ref<unsigned short, double>(UShort, Double, nan)), 0);
  EXPECT_EQ((Ref<int, double>(Int, Double, nan)), INT32_MIN);
  EXPECT_EQ((Ref<unsigned, double>(UInt, Double, nan)), 0u);
  EXPECT_TRUE(std::isnan(Ref<float, double>(Float, Double, nan)));
  EXPECT_EQ((Ref<float, double>(Float, Double, 1e300)), std::numeric_limits<float>::infinity());
  EXPECT_EQ((Ref<int, double>(Int, Double, -std::numeric_limits<double>::infinity())), INT32_MIN);
}

// The closed integer forms of the table of 64 pairs, for every value of the 8- and 16-bit
// sources and for the bounds and a fixed-seed sample of the 32-bit ones.
TEST(ReferenceModel, ClosedFormsOfThePairTable) {
  for (int x = -128; x <= 127; ++x) {
    auto const s = static_cast<signed char>(x);
    if (x <= 0) {
      EXPECT_EQ((Ref<short, signed char>(Short, Byte, s)), x * 256);
      EXPECT_EQ((Ref<int, signed char>(Int, Byte, s)), x * 16777216);
      EXPECT_EQ((Ref<double, signed char>(Double, Byte, s)), x / 128.0);
      EXPECT_EQ((Ref<float, signed char>(Float, Byte, s)), static_cast<float>(x / 128.0));
    }
  }
  for (unsigned x = 0; x <= 255; ++x) {
    auto const u = static_cast<unsigned char>(x);
    EXPECT_EQ((Ref<unsigned short, unsigned char>(UShort, UByte, u)), x * 257u);
    EXPECT_EQ((Ref<unsigned, unsigned char>(UInt, UByte, u)), x * 16843009u);
  }
  for (int x = -32768; x <= 32767; ++x) {
    auto const s = static_cast<short>(x);
    if (x <= 0) {
      EXPECT_EQ((Ref<signed char, short>(Byte, Short, s)), x / 256);
      EXPECT_EQ((Ref<int, short>(Int, Short, s)), x * 65536);
      EXPECT_EQ((Ref<double, short>(Double, Short, s)), x / 32768.0);
    }
  }
  for (unsigned x = 0; x <= 65535; ++x) {
    auto const u = static_cast<unsigned short>(x);
    ASSERT_EQ((Ref<unsigned char, unsigned short>(UByte, UShort, u)), x / 257u) << x;
    ASSERT_EQ((Ref<unsigned, unsigned short>(UInt, UShort, u)), x * 65537u) << x;
  }
  std::mt19937 random(20261122);
  for (int i = 0; i < 200000; ++i) {
    std::uint32_t const u = i < 4 ? std::uint32_t{0xFFFFFFFFu - i} : random();
    auto const s = static_cast<std::int32_t>(u);
    ASSERT_EQ((Ref<unsigned char, unsigned>(UByte, UInt, u)), u / 16843009u) << u;
    ASSERT_EQ((Ref<unsigned short, unsigned>(UShort, UInt, u)), u / 65537u) << u;
    if (s <= 0) {
      ASSERT_EQ((Ref<signed char, int>(Byte, Int, s)), s / 16777216) << s;
      ASSERT_EQ((Ref<short, int>(Short, Int, s)), s / 65536) << s;
      ASSERT_EQ((Ref<double, int>(Double, Int, s)), s / 2147483648.0) << s;
    }
  }
}

namespace {

// How many values of the first type come back changed by a round trip through the second.
template <class TFirst, class TSecond>
int RoundTripLosses(int first, int second, int* oneTooLow = nullptr) {
  int changed = 0;
  int low = 0;
  for (long long v = std::numeric_limits<TFirst>::min(); v <= std::numeric_limits<TFirst>::max(); ++v) {
    auto const x = static_cast<TFirst>(v);
    TSecond const there = Ref<TSecond, TFirst>(second, first, x);
    TFirst const back = Ref<TFirst, TSecond>(first, second, there);
    if (back != x) ++changed;
    if (static_cast<long long>(back) == v - 1) ++low;
  }
  if (oneTooLow != nullptr) *oneTooLow = low;
  return changed;
}

}  // namespace

TEST(ReferenceModel, DocumentedRoundTrips) {
  using S = signed char;
  using U = unsigned char;
  EXPECT_EQ((RoundTripLosses<U, unsigned short>(UByte, UShort)), 0);
  EXPECT_EQ((RoundTripLosses<U, unsigned>(UByte, UInt)), 0);
  EXPECT_EQ((RoundTripLosses<U, float>(UByte, Float)), 0);
  EXPECT_EQ((RoundTripLosses<U, double>(UByte, Double)), 0);
  EXPECT_EQ((RoundTripLosses<unsigned short, unsigned>(UShort, UInt)), 0);
  EXPECT_EQ((RoundTripLosses<unsigned short, double>(UShort, Double)), 0);
  EXPECT_EQ((RoundTripLosses<S, double>(Byte, Double)), 0);
  EXPECT_EQ((RoundTripLosses<short, double>(Short, Double)), 0);
  int low = 0;
  EXPECT_EQ((RoundTripLosses<S, float>(Byte, Float, &low)), 67);
  EXPECT_EQ(low, 67);
  EXPECT_EQ((RoundTripLosses<short, float>(Short, Float, &low)), 16639);
  EXPECT_EQ(low, 16639);
  EXPECT_EQ((RoundTripLosses<unsigned short, float>(UShort, Float, &low)), 32895);
  EXPECT_EQ(low, 32895);
  EXPECT_EQ((RoundTripLosses<S, short>(Byte, Short, &low)), 126);
  EXPECT_EQ(low, 126);
  EXPECT_EQ((RoundTripLosses<short, int>(Short, Int, &low)), 32766);
  EXPECT_EQ(low, 32766);
  EXPECT_EQ((RoundTripLosses<U, S>(UByte, Byte)), 254);
  EXPECT_EQ((RoundTripLosses<unsigned short, short>(UShort, Short)), 65534);
  EXPECT_EQ((Ref<U, S>(UByte, Byte, Ref<S, U>(Byte, UByte, 3))), 2);
  EXPECT_EQ((RoundTripLosses<unsigned short, U>(UShort, UByte)), 65536 - 256);
}

TEST(ReferenceModel, DocumentedLayoutExample) {
  // Target LumA of Byte, source RGB of UByte, count 3.
  unsigned char const src[9] = {10, 20, 30, 40, 50, 60, 70, 80, 90};
  signed char trg[12];
  std::memset(trg, 0x55, sizeof trg);
  NuRef::ConvertRun(6410, Byte, trg, 6407, UByte, src, 3);
  EXPECT_EQ(trg[0], (Ref<signed char, unsigned char>(Byte, UByte, 10)));
  EXPECT_EQ(trg[2], (Ref<signed char, unsigned char>(Byte, UByte, 40)));
  EXPECT_EQ(trg[4], (Ref<signed char, unsigned char>(Byte, UByte, 70)));
  for (int i : {7, 9, 11}) EXPECT_EQ(trg[i], 127) << i;
  for (int i : {1, 3, 5, 6, 8, 10}) EXPECT_EQ(trg[i], 0x55) << i;
}

TEST(ReferenceModel, DocumentedCustomWidening) {
  struct Case {
    int Type;
    unsigned Word, Result;
  } const cases[] = {
      {10, 0, 0},          {10, 1, 64},        {10, 2, 128},       {10, 341, 21845},
      {10, 511, 32735},    {10, 512, 32799},   {10, 682, 43690},   {10, 1022, 65470},
      {10, 1023, 65535},   {10, 1024, 63},     {10, 1025, 127},    {10, 2047, 62},
      {10, 32768, 2018},   {10, 65535, 3972},  {10, 617, 39526},   {12, 0, 0},
      {12, 1, 16},         {12, 15, 240},      {12, 16, 256},      {12, 2047, 32759},
      {12, 2048, 32775},   {12, 4094, 65518},  {12, 4095, 65535},  {12, 4096, 15},
      {12, 4097, 31},      {12, 32768, 120},   {12, 65535, 224},   {12, 2183, 34936},
  };
  for (Case const& c : cases)
    EXPECT_EQ(NuRef::WidenCustom(c.Type, static_cast<std::uint16_t>(c.Word)), c.Result)
        << c.Type << " " << c.Word;
  // Within the sample range: the exact integer quotient, apart from one word each.
  for (unsigned type : {10u, 12u}) {
    unsigned const divisor = type == 10 ? 1023 : 4095;
    int exceptions = 0;
    for (unsigned w = 0; w <= divisor; ++w)
      if (NuRef::WidenCustom(static_cast<int>(type), static_cast<std::uint16_t>(w)) != w * 65535u / divisor)
        ++exceptions;
    EXPECT_EQ(exceptions, 1) << type;
  }
}
