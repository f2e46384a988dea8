// NEAREST: integer steps on the bit pattern, in all six forms.
#include <gtest/gtest.h>

#include <cstring>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::bits;
using mivor::testing::f32;
using mivor::testing::f64;
using mivor::testing::q;
using mivor::testing::same;

std::uint32_t near4(float x, float s) { return bits(g_neare(&x, &s)); }
std::uint64_t near8(double x, double s) { return bits(g_neared(&x, &s)); }
mivor_real16 near16(mivor_real16 x, mivor_real16 s) {
    mivor_real16 r;
    EXPECT_EQ(g_neareq(&r, &x, &s), &r);
    return r;
}

TEST(Nearest, StepsOnThePattern) {
    EXPECT_EQ(near4(1.0f, 2.0f), 0x3F800001u);
    EXPECT_EQ(near4(1.0f, -2.0f), 0x3F7FFFFFu);
    EXPECT_EQ(near4(-1.0f, 2.0f), 0xBF7FFFFFu);
    EXPECT_EQ(near4(-1.0f, -2.0f), 0xBF800001u);
    EXPECT_EQ(near8(1.0, -1.0), 0x3FEFFFFFFFFFFFFFu);
    EXPECT_EQ(near8(-2.0, 1.0), 0xBFFFFFFFFFFFFFFFu);
}

TEST(Nearest, ZerosStepToTheSmallestSubnormalWithTheSignOfS) {
    EXPECT_EQ(near4(0.0f, -1.0f), 0x80000001u);
    EXPECT_EQ(near4(-0.0f, -1.0f), 0x80000001u);
    EXPECT_EQ(near4(-0.0f, 1.0f), 0x00000001u);
    EXPECT_EQ(near8(0.0, -3.0), 0x8000000000000001u);
    EXPECT_EQ(near8(-0.0, 3.0), 0x0000000000000001u);
    EXPECT_TRUE(same(near16(q(0x80000000, 0, 0, 0), q(0x3FFF0000, 0, 0, 0)), q(0, 0, 0, 1)));
    EXPECT_TRUE(same(near16(q(0, 0, 0, 0), q(0xBFFF0000, 0, 0, 0)), q(0x80000000, 0, 0, 1)));
    // Back from the smallest subnormal to a zero of X's sign.
    EXPECT_EQ(near4(f32(0x80000001u), 1.0f), 0x80000000u);
    EXPECT_EQ(near8(f64(1), -1.0), 0u);
}

TEST(Nearest, NoSpecialCaseForInfinitiesAndNaNs) {
    EXPECT_EQ(near4(f32(0x7F800000u), -1.0f), 0x7F7FFFFFu);
    // The pattern after +Inf is a signalling NaN; a 32-bit caller receives
    // it quieted through the x87 stack, and every flavour returns that.
    EXPECT_EQ(near4(f32(0x7F800000u), 1.0f), 0x7FC00001u);
    EXPECT_EQ(near8(f64(0x7FF0000000000000u), 1.0), 0x7FF8000000000001u);
    EXPECT_EQ(near4(f32(0x7F7FFFFFu), 1.0f), 0x7F800000u);
    EXPECT_EQ(near8(f64(0x7FF0000000000000u), -1.0), 0x7FEFFFFFFFFFFFFFu);
    EXPECT_EQ(near8(f64(0x7FF8000000000000u), 1.0), 0x7FF8000000000001u);
    // The sign of a NaN direction still counts.
    EXPECT_EQ(near4(1.0f, f32(0xFFC00000u)), 0x3F7FFFFFu);
}

TEST(Nearest, Real16CarriesAndBorrowsAcrossWords) {
    EXPECT_TRUE(same(near16(q(0x3FFF0000, 0, 0, 0), q(0xBFFF0000, 0, 0, 0)),
                     q(0x3FFEFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF)));
    EXPECT_TRUE(same(near16(q(0x3FFEFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF), q(0x3FFF0000, 0, 0, 0)),
                     q(0x3FFF0000, 0, 0, 0)));
    EXPECT_TRUE(same(near16(q(0xC0000000, 0, 0xFFFFFFFF, 0xFFFFFFFF), q(0xBFFF0000, 0, 0, 0)),
                     q(0xC0000000, 1, 0, 0)));
    EXPECT_TRUE(same(near16(q(0x7FFF0000, 0, 0, 0), q(0x3FFF0000, 0, 0, 0)), q(0x7FFF0000, 0, 0, 1)));
    // A REAL(16) direction is zero by its words: a tiny nonzero one is not.
    EXPECT_TRUE(same(near16(q(0x3FFF0000, 0, 0, 0), q(0x80000000, 0, 0, 1)),
                     q(0x3FFEFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF)));
}

TEST(Nearest, AnyKindDirection) {
    const float one = 1.0f;
    const double s8 = -3.0;
    const std::int32_t code8 = 10, code4 = 9, code16 = 11;
    EXPECT_EQ(bits(g_neare2(&one, &s8, &code8)), 0x3F7FFFFFu);
    const float s4 = 2.0f;
    const double x8 = 1.0;
    EXPECT_EQ(bits(g_neared2(&x8, &s4, &code4)), 0x3FF0000000000001u);
    const mivor_real16 s16 = q(0x80000000, 0, 0, 5);  // negative, nonzero
    EXPECT_EQ(bits(g_neared2(&x8, &s16, &code16)), 0x3FEFFFFFFFFFFFFFu);
    mivor_real16 x16 = q(0x3FFF0000, 0, 0, 0), r;
    g_neareq2(&r, &x16, &s8, &code8);
    EXPECT_TRUE(same(r, q(0x3FFEFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF)));
    // The result area may be the operand itself.
    g_neareq2(&x16, &x16, &s4, &code4);
    EXPECT_TRUE(same(x16, q(0x3FFF0000, 0, 0, 1)));
}

TEST(Nearest, ZeroDirectionIsReportedAndReturnsX) {
    mivor::testing::RecordingHandler handler([](const mivor::testing::Report&, jwe_control_area&) {
        return true;  // ignored by the short form
    });
    EXPECT_EQ(near4(1.5f, 0.0f), bits(1.5f));
    EXPECT_EQ(near8(-7.0, -0.0), bits(-7.0));
    const mivor_real16 x = q(0x40000000, 1, 2, 3);
    EXPECT_TRUE(same(near16(x, q(0x80000000, 0, 0, 0)), x));
    const float one = 1.0f;
    const mivor_real16 zero16 = q(0, 0, 0, 0);
    const std::int32_t code16 = 11;
    EXPECT_EQ(bits(g_neare2(&one, &zero16, &code16)), bits(1.0f));
    mivor_real16 r;
    const double zero8 = 0.0;
    const std::int32_t code8 = 10;
    g_neareq2(&r, &x, &zero8, &code8);
    EXPECT_TRUE(same(r, x));
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>(5, 1393));
    for (const auto& rep : handler.reports()) EXPECT_EQ(rep.count, 0u);
}

}  // namespace
