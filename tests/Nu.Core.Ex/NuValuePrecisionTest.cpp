#include <Nu.Core.Ex/NuValuePrecision.h>

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

using Nu::CNuValuePrecision;

TEST(NuValuePrecision, FloatingDefaultsAreExactBits) {
  EXPECT_EQ(std::bit_cast<std::uint32_t>(CNuValuePrecision<float>::DefaultPrecision()),
            0x358637BDu);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(CNuValuePrecision<double>::DefaultPrecision()),
            0x3D719799812DEA11u);
  EXPECT_EQ(CNuValuePrecision<float>::DefaultPrecision(), static_cast<float>(1e-6));
}

TEST(NuValuePrecision, IntegerDefaultsAreZero) {
  EXPECT_EQ(CNuValuePrecision<int>::DefaultPrecision(), 0);
  EXPECT_EQ(CNuValuePrecision<unsigned int>::DefaultPrecision(), 0u);
  EXPECT_EQ(CNuValuePrecision<unsigned long>::DefaultPrecision(), 0ul);
  EXPECT_EQ(CNuValuePrecision<double>().Precision, 1e-12);
}
