// Complex multiplication and division of the three kinds.  Every flavour.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::bits;
using mivor::testing::f64;
using mivor::testing::q;
using mivor::testing::RecordingHandler;
using mivor::testing::same;

mivor_complex4 mul(mivor_complex4 x, mivor_complex4 y) {
    mivor_complex4 r;
    EXPECT_EQ(g_acmc(&r, &x, &y), &r);
    return r;
}
mivor_complex8 mul(mivor_complex8 x, mivor_complex8 y) {
    mivor_complex8 r;
    EXPECT_EQ(g_axmx(&r, &x, &y), &r);
    return r;
}
mivor_complex16 mul(mivor_complex16 x, mivor_complex16 y) {
    mivor_complex16 r;
    EXPECT_EQ(g_azmz(&r, &x, &y), &r);
    return r;
}
mivor_complex4 div(mivor_complex4 x, mivor_complex4 y) {
    mivor_complex4 r;
    EXPECT_EQ(g_acdc(&r, &x, &y), &r);
    return r;
}
mivor_complex8 div(mivor_complex8 x, mivor_complex8 y) {
    mivor_complex8 r;
    EXPECT_EQ(g_axdx(&r, &x, &y), &r);
    return r;
}
mivor_complex16 div(mivor_complex16 x, mivor_complex16 y) {
    mivor_complex16 r;
    EXPECT_EQ(g_azdz(&r, &x, &y), &r);
    return r;
}

// Small integers as REAL(16).
mivor_real16 q_of(int v) {
    mivor_real16 r;
    const std::int32_t n = v;
    g_qfloat(&r, &n);
    return r;
}
mivor_complex16 c16(int re, int im) { return {q_of(re), q_of(im)}; }

TEST(ComplexMultiply, ExactProducts) {
    const mivor_complex4 a = mul(mivor_complex4{3, -4}, mivor_complex4{-2, 5});
    EXPECT_EQ(a.re, 14.0f);
    EXPECT_EQ(a.im, 23.0f);
    const mivor_complex8 b = mul(mivor_complex8{3, -4}, mivor_complex8{-2, 5});
    EXPECT_EQ(b.re, 14.0);
    EXPECT_EQ(b.im, 23.0);
    const mivor_complex16 c = mul(c16(3, -4), c16(-2, 5));
    EXPECT_TRUE(same(c.re, q_of(14)) && same(c.im, q_of(23)));
}

TEST(ComplexMultiply, PartsFormedInExtendedPrecision) {
    // The products of (1e30, 1e30) by itself do not overflow on the x87
    // stack: the real part cancels to +0 exactly, the imaginary part
    // overflows only when it is stored.  No rescaling happens.
    const mivor_complex4 z = mul(mivor_complex4{1e30f, 1e30f}, mivor_complex4{1e30f, 1e30f});
    EXPECT_EQ(bits(z.re), 0u);
    EXPECT_EQ(z.im, HUGE_VALF);
    // A COMPLEX(8) part rounded once: (1 + 2^-27)^2 - 1 keeps the 2^-54
    // that a product rounded to REAL(8) first would lose.
    const double a = 1 + std::ldexp(1.0, -27);
    const mivor_complex8 w = mul(mivor_complex8{a, 1}, mivor_complex8{a, 1});
    EXPECT_EQ(w.re, std::ldexp(1.0, -26) + std::ldexp(1.0, -54));
    EXPECT_EQ(w.im, 2 + std::ldexp(1.0, -26));
    // IEEE arithmetic decides special values, with no recovery: Inf * i
    // has the NaN real part of Inf * 0.
    const mivor_complex8 n = mul(mivor_complex8{HUGE_VAL, 0}, mivor_complex8{0, 1});
    EXPECT_TRUE(std::isnan(n.re));
    EXPECT_EQ(n.im, HUGE_VAL);
}

TEST(ComplexDivide, SmithsBranchesAndTheOneReciprocal) {
    // |d| <= |c| with a tie: r = 1, k = 1/4.
    const mivor_complex4 a = div(mivor_complex4{1, 1}, mivor_complex4{2, 2});
    EXPECT_EQ(a.re, 0.5f);
    EXPECT_EQ(bits(a.im), 0u);
    const mivor_complex8 b = div(mivor_complex8{3, -1}, mivor_complex8{1, -2});
    EXPECT_EQ(b.re, 1.0);
    EXPECT_EQ(b.im, 1.0);
    // Both parts are multiplied by one reciprocal of the denominator: the
    // real part of (67 + 2i) / (33 + 80i) = 2371/7489 comes out one unit
    // below the correctly rounded 0x1.44322e6bd08dbp-2 that a division by
    // the denominator would give.
    const mivor_complex8 c = div(mivor_complex8{67, 2}, mivor_complex8{33, 80});
    EXPECT_EQ(bits(c.re), bits(0x1.44322e6bd08dap-2));
    EXPECT_EQ(bits(c.im), bits(-0x1.69ef4006902f9p-1));
}

TEST(ComplexDivide, ZeroAndNaNDivisorsGoThroughTheArithmetic) {
    RecordingHandler handler;
    const mivor_complex8 z = div(mivor_complex8{1, 1}, mivor_complex8{0, 0});  // 0/0 in r
    EXPECT_TRUE(std::isnan(z.re) && std::isnan(z.im));
    const mivor_complex4 n = div(mivor_complex4{1, 0}, mivor_complex4{std::nanf(""), 1});
    EXPECT_TRUE(std::isnan(n.re) && std::isnan(n.im));
    const mivor_complex8 i = div(mivor_complex8{1, 0}, mivor_complex8{0, HUGE_VAL});  // r = 0, k = 0
    EXPECT_EQ(i.re, 0.0);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(ComplexDivide, ResultMayBeAnOperand) {
    mivor_complex8 x{5, 10}, y{1, 2};
    g_axdx(&x, &x, &y);
    EXPECT_EQ(x.re, 5.0);
    EXPECT_EQ(bits(x.im), 0u);
    mivor_complex16 u = c16(0, 8), v = c16(0, 2);
    g_azdz(&v, &u, &v);
    EXPECT_TRUE(same(v.re, q_of(4)));
}

TEST(Complex16Divide, RealAndImaginaryDivisorsDividePartByPart) {
    // (1 + 2i) / 3: each part one correctly rounded division.
    const mivor_complex16 a = div(c16(1, 2), c16(3, 0));
    mivor_real16 third, two_thirds;
    const mivor_real16 one = q_of(1), two = q_of(2), three = q_of(3);
    g_aqdq(&third, &one, &three);
    g_aqdq(&two_thirds, &two, &three);
    EXPECT_TRUE(same(a.re, third));
    EXPECT_TRUE(same(a.im, two_thirds));
    // (1 + 2i) / 4i = 1/2 - i/4.
    const mivor_complex16 b = div(c16(1, 2), c16(0, 4));
    EXPECT_TRUE(same(b.re, q(0x3FFE0000)));
    EXPECT_TRUE(same(b.im, q(0xBFFD0000)));
    // The general branches: (3 - i) / (1 - 2i) = 1 + i, (5 + 5i) / (4 + 3i) = 7/5 + i/5.
    const mivor_complex16 c = div(c16(3, -1), c16(1, -2));
    EXPECT_TRUE(same(c.re, one) && same(c.im, one));
    const mivor_complex16 d = div(c16(10, 5), c16(1, 2));  // 4 - 3i
    EXPECT_TRUE(same(d.re, q_of(4)) && same(d.im, q_of(-3)));
}

TEST(Complex16, OperatorsReportThrough) {
    RecordingHandler handler;
    const mivor_real16 huge = q(0x7FFEFFFF, ~0u, ~0u, ~0u);
    mul(mivor_complex16{huge, q_of(0)}, c16(2, 0));  // HUGE * 2 overflows
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{1397});
    handler.clear();
    div(c16(1, 1), c16(0, 0));  // a zero divisor: each part divides by 0
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{280, 280}));
}

}  // namespace
