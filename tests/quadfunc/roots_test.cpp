// REAL(16) square and cube roots through the exports: exact roots of
// squares and cubes and their neighbours (where the rounding decision is
// made exactly), correctly rounded values, the special cases and the
// square root's report with a correcting handler and both fallbacks.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "quadfunc/quad_support.h"

namespace {

using namespace mivor::testing;

mivor_real16 mul(const mivor_real16& a, const mivor_real16& b) {
    mivor_real16 r;
    g_aqmq(&r, &a, &b);
    return r;
}
// The REAL(16) numbers next to x (x positive, normal).
mivor_real16 next_up(mivor_real16 x) {
    if (++x.w[0] == 0 && ++x.w[1] == 0 && ++x.w[2] == 0) ++x.w[3];
    return x;
}
mivor_real16 next_down(mivor_real16 x) {
    if (x.w[0]-- == 0 && x.w[1]-- == 0 && x.w[2]-- == 0) --x.w[3];
    return x;
}

TEST(QuadRoots, SquaresAndCubesAndTheirNeighbours) {
    RecordingHandler handler;
    for (int k = -16382; k <= 16383; k += 2) ASSERT_Q(call(g_qsqrt, pow2q(k)), pow2q(k / 2)) << k;
    for (int k = -16380; k <= 16383; k += 3) ASSERT_Q(call(g_qcbrt, pow2q(k)), pow2q(k / 3)) << k;
    // s of 56 bits: s^2 is exact, and the roots of its neighbours lie within
    // a unit of s, on the side of s or past the halfway point as the first-
    // order term says: ulp(x)/(2s) against ulp(s)/2, far apart for such s.
    // Likewise cubes of 37-bit c, where the term is ulp(y)/(3c^2).
    std::uint64_t r = 5;
    for (int i = 0; i < 3000; ++i) {
        r = r * 6364136223846793005u + 1442695040888963407u;
        const double sd = static_cast<double>((r >> 8) | (std::uint64_t{1} << 55)) * 0x1p-30;
        const mivor_real16 s = qd(sd), x = mul(s, s);
        const int es = static_cast<int>(s.w[3] >> 16) - 0x3FFF, ex = static_cast<int>(x.w[3] >> 16) - 0x3FFF;
        const bool moves = sd * std::ldexp(1.0, es - ex) < 1.0;
        ASSERT_Q(call(g_qsqrt, x), s) << sd;
        ASSERT_Q(call(g_qsqrt, next_up(x)), moves ? next_up(s) : s) << sd;
        ASSERT_Q(call(g_qsqrt, next_down(x)), moves ? next_down(s) : s) << sd;
        const double cd = static_cast<double>((r >> 27) | (std::uint64_t{1} << 36)) * 0x1p-20;
        const mivor_real16 c = qd(cd), y = mul(mul(c, c), c);
        const int ec = static_cast<int>(c.w[3] >> 16) - 0x3FFF, ey = static_cast<int>(y.w[3] >> 16) - 0x3FFF;
        const bool cube_moves = 1.5 * cd * cd * std::ldexp(1.0, ec - ey) < 1.0;
        ASSERT_Q(call(g_qcbrt, y), c) << cd;
        ASSERT_Q(call(g_qcbrt, neg(y)), neg(c)) << cd;
        ASSERT_Q(call(g_qcbrt, next_up(y)), cube_moves ? next_up(c) : c) << cd;
    }
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadRoots, CorrectlyRoundedValues) {
    // MPFR, 113 bits, to nearest.
    EXPECT_Q(call(g_qsqrt, qd(2)), q(0x3FFF6A09, 0xE667F3BC, 0xC908B2FB, 0x1366EA95));
    EXPECT_Q(call(g_qcbrt, qd(2)), q(0x3FFF428A, 0x2F98D728, 0xAE223DDA, 0xB715BE25));
    EXPECT_Q(call(g_qcbrt, q(0xBFFB9999, 0x99999999, 0x99999999, 0x9999999A)),
             q(0xBFFDDB4C, 0x7760BCFF, 0x278B543B, 0x85058C89));  // cbrt(-0.1)
    // The least subnormal, read at its value.
    EXPECT_Q(call(g_qsqrt, q(0, 0, 0, 1)), q(0x1FC80000));
    EXPECT_Q(call(g_qcbrt, q(0, 0, 0, 1)), q(0x2A850000));
    EXPECT_Q(call(g_qsqrt, kHugeQ), q(0x5FFEFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF));
}

TEST(QuadRoots, SpecialValues) {
    RecordingHandler handler;
    EXPECT_Q(call(g_qsqrt, kMZero), kZero);  // the sign is dropped on purpose
    EXPECT_Q(call(g_qcbrt, kMZero), kZero);
    EXPECT_Q(call(g_qsqrt, kInfQ), kInfQ);
    EXPECT_Q(call(g_qcbrt, kMInfQ), kMInfQ);
    EXPECT_Q(call(g_qsqrt, q(0xFFFF0000, 0, 0, 2)), q(0xFFFF8000, 0, 0, 2));  // a NaN, not a negative
    EXPECT_Q(call(g_qcbrt, q(0x7FFF0000, 0, 2)), q(0x7FFF8000, 0, 2));
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadRoots, SquareRootOfANegativeNumberIsReported) {
    RecordingHandler handler;
    for (const mivor_real16& x : {qd(-4), kMInfQ, q(0x80000000, 0, 0, 1)}) {
        handler.clear();
        jwe_lca.ieee_results = 1;
        EXPECT_Q(call(g_qsqrt, x), kNaNQ);
        jwe_lca.ieee_results = 0;
        EXPECT_Q(call(g_qsqrt, x), call(g_qsqrt, neg(x)));  // the root of |x|
        ASSERT_EQ(handler.reports().size(), 2u);
        expect_report(handler.reports()[0], 228, x);
        expect_report(handler.reports()[1], 228, x);
    }
    handler.decide(correct_to(qd(9)));
    mivor_real16 x = qd(-1);
    EXPECT_EQ(g_qsqrt(&x, &x), &x);
    EXPECT_Q(x, qd(3));
}

}  // namespace
