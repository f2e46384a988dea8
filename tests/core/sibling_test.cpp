// The stand-in for the intrinsic run-time mivorfsse2: the truncations that
// decide whether a power's exponent is integral, and the leading-zero count
// of the REAL(16) conversions from integers.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "mivorfsse2.h"
#include "support/bits.h"

namespace {

using mivor::testing::bits;

double dint(double x) { return f_dint(&x); }
float aint(float x) { return f_aint(&x); }

TEST(Sibling, TruncationTowardZeroKeepsTheSign) {
    const double cases[][2] = {
        {2.5, 2.0},     {-2.5, -2.0},   {0.999, 0.0},        {-0.5, -0.0},
        {1.0, 1.0},     {-7.0, -7.0},   {0x1p52 + 0.5, 0x1p52},
        {0x1p52 + 1, 0x1p52 + 1},       {0x1p53, 0x1p53},    {1e300, 1e300},
        {0x1p-1074, 0.0},               {-0x1p-1074, -0.0},  {4503599627370495.5, 4503599627370495.0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(bits(dint(c[0])), bits(c[1])) << c[0];
        const auto f = static_cast<float>(c[0]);
        EXPECT_EQ(bits(aint(f)), bits(std::trunc(f))) << f;
    }
    EXPECT_EQ(bits(aint(8388607.5f)), bits(8388607.0f));
    EXPECT_EQ(bits(aint(-0x1p-149f)), bits(-0.0f));
    EXPECT_EQ(bits(dint(HUGE_VAL)), bits(HUGE_VAL));
    EXPECT_EQ(bits(aint(-HUGE_VALF)), bits(-HUGE_VALF));
    EXPECT_TRUE(std::isnan(dint(std::nan(""))));
    EXPECT_TRUE(std::isnan(aint(std::nanf(""))));
}

TEST(Sibling, LeadingZeroCount) {
    for (int k = 0; k < 32; ++k) {
        const std::uint32_t w = 1u << k, below = w | (w - 1) >> 1;
        EXPECT_EQ(jwe_fnzb(&w), 31 - k);
        EXPECT_EQ(jwe_fnzb(&below), 31 - k);
    }
    const std::uint32_t zero = 0, all = 0xFFFFFFFFu;
    EXPECT_EQ(jwe_fnzb(&zero), 32);
    EXPECT_EQ(jwe_fnzb(&all), 0);
}

}  // namespace
