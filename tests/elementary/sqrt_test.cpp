// Square roots: FSQRT behind the domain check.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::RecordingHandler;
using mivor::testing::bits;

long double dsqrt(double x) { return g_dsqrt(&x); }
float ssqrt(float x) { return g_sqrt(&x); }

TEST(Sqrt, SpecialArguments) {
    RecordingHandler handler;
    EXPECT_EQ(bits(static_cast<double>(dsqrt(-0.0))), 0u);  // sign dropped
    EXPECT_EQ(bits(static_cast<double>(dsqrt(0.0))), 0u);
    EXPECT_EQ(dsqrt(HUGE_VAL), HUGE_VAL);
    EXPECT_TRUE(std::isnan(dsqrt(std::nan(""))));
    EXPECT_TRUE(std::isnan(ssqrt(std::nanf(""))));
    EXPECT_EQ(std::signbit(ssqrt(-0.0f)), false);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Sqrt, NegativeArgumentsReport) {
    RecordingHandler handler;
    EXPECT_TRUE(std::isnan(dsqrt(-4.0)));
    EXPECT_TRUE(std::isnan(ssqrt(-4.0f)));
    jwe_lca.ieee_results = 0;  // finite results: the root of the magnitude
    EXPECT_EQ(dsqrt(-4.0), 2.0L);
    EXPECT_EQ(ssqrt(-9.0f), 3.0f);
    EXPECT_EQ(dsqrt(-HUGE_VAL), HUGE_VAL);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{227, 226, 227, 226, 227}));
    EXPECT_EQ(handler.reports()[1].type1, MIVOR_TYPE_REAL4);
    EXPECT_EQ(handler.reports()[1].shown1<float>(), -4.0f);
}

TEST(Sqrt, RetryWithCorrectedArgument) {
    RecordingHandler handler([](const mivor::testing::Report&, jwe_control_area& area) {
        double& x = *static_cast<double*>(area.first_operand);
        x = x < -1.0 ? -1.0 : 16.0;  // first a value that fails again
        return true;
    });
    EXPECT_EQ(dsqrt(-2.0), 4.0L);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{227, 227}));
}

TEST(Sqrt, ExtendedResultIsTheRoundedRootAt64Bits) {
    // sqrt(2) at 64 bits: 0xB504F333F9DE6484 (the next bits, 597D..., round down).
    const long double r = dsqrt(2.0);
    std::uint64_t mant;
    std::memcpy(&mant, &r, 8);
    EXPECT_EQ(mant, 0xB504F333F9DE6484u);
    // The REAL(4) root is correctly rounded.
    std::mt19937 random(7);
    for (int i = 0; i < 100000; ++i) {
        std::uint32_t b = random() & 0x7FFFFFFFu;
        if (b >= 0x7F800000u) continue;
        float x;
        std::memcpy(&x, &b, 4);
        EXPECT_EQ(ssqrt(x), static_cast<float>(std::sqrt(static_cast<double>(x)))) << x;
    }
}

}  // namespace
