// g_azxz, COMPLEX(16) ** COMPLEX(16), through the export (every flavour):
// agreement with the integer powers, the square root and the exponential,
// exact special exponents, the special operands, and no report ever.
// The accuracy against MPFR: `mivor accuracy g_azxz` (tests/tools).
#include <gtest/gtest.h>

#include <random>

#include "quadfunc/quad_support.h"

namespace mivor::testing {
namespace {

mivor_complex16 cc(const mivor_real16& re, const mivor_real16& im) { return {re, im}; }
mivor_complex16 pow_z(const mivor_complex16& z, const mivor_complex16& w) {
    mivor_complex16 r;
    EXPECT_EQ(g_azxz(&r, &z, &w), &r);
    return r;
}

// Both parts within n ulps of |expected|.
::testing::AssertionResult near_z(const mivor_complex16& a, const mivor_complex16& b, double n) {
    mivor_real16 m;
    g_cqabs(&m, &b);
    for (int part = 0; part < 2; ++part) {
        mivor_real16 d;
        g_aqsq(&d, part ? &a.im : &a.re, part ? &b.im : &b.re);
        const double ratio = std::abs(dq(d) / dq(m)) / 0x1p-112;
        if (!(ratio <= n))
            return ::testing::AssertionFailure() << "(" << hex(a.re) << ", " << hex(a.im) << ") vs (" << hex(b.re) << ", "
                                                 << hex(b.im) << "): " << ratio << " ulps";
    }
    return ::testing::AssertionSuccess();
}

TEST(QuadComplexPower, AgreesWithTheIntegerPowersAndTheRoot) {
    std::mt19937_64 g(7);
    std::uniform_real_distribution<double> u(-4, 4);
    RecordingHandler handler;
    for (int i = 0; i < 300; ++i) {
        const mivor_complex16 z = cc(qd(u(g)), qd(u(g)));
        for (int n : {1, 2, 3, -1, -5}) {
            mivor_complex16 p;
            g_azxi(&p, &z, &n);
            // The integer power's own error grows with its products and
            // its reciprocal (4.3 ulps seen for n = -5).
            EXPECT_TRUE(near_z(pow_z(z, cc(qd(n), kZero)), p, 8)) << n;
        }
        mivor_complex16 r;
        g_cqsqrt(&r, &z);
        EXPECT_TRUE(near_z(pow_z(z, cc(qd(0.5), kZero)), r, 2));
        // e^w: the base e rounded costs |w| 2^-113 relative.
        mivor_real16 e;
        const mivor_real16 one = kOne;
        g_qexp(&e, &one);
        const mivor_complex16 w = cc(qd(u(g)), qd(u(g)));
        mivor_complex16 ew;
        g_cqexp(&ew, &w);
        EXPECT_TRUE(near_z(pow_z(cc(e, kZero), w), ew, 12));
    }
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadComplexPower, ExactAndSpecialOperands) {
    const mivor_real16 N = kNaNQ, I = kInfQ;
    const mivor_real16 half_pi = q(0x3FFF921Fu, 0xB54442D1u, 0x8469898Cu, 0xC51701B8u);
    // i^i = e^(-pi/2), real.
    const mivor_complex16 ii = pow_z(cc(kZero, kOne), cc(kZero, kOne));
    EXPECT_LE(ulps(ii.re, call(g_qexp, neg(half_pi))), 1u);
    EXPECT_Q(ii.im, kZero);
    // 4^(1/2) = 2, 2^10 = 1024 on the real axis: exact.
    EXPECT_Q(pow_z(cc(qd(4), kZero), cc(qd(0.5), kZero)).re, qd(2));
    EXPECT_Q(pow_z(cc(qd(2), kZero), cc(qd(10), kZero)).re, qd(1024));
    // w = 0 gives 1 for every base; a zero base by the sign of Re w.
    for (const mivor_real16& x : {N, I, kZero, qd(-3)}) {
        const mivor_complex16 r = pow_z(cc(x, x), cc(kMZero, kZero));
        EXPECT_Q(r.re, kOne);
        EXPECT_Q(r.im, kZero);
    }
    mivor_complex16 r = pow_z(cc(kZero, kMZero), cc(qd(2), qd(5)));
    EXPECT_Q(r.re, kZero);
    EXPECT_Q(r.im, kZero);
    r = pow_z(cc(kZero, kZero), cc(qd(-1), kZero));
    EXPECT_Q(r.re, kInfQ);
    EXPECT_TRUE(is_nan(pow_z(cc(kOne, N), cc(qd(2), kZero)).re));
    EXPECT_TRUE(is_nan(pow_z(cc(kOne, kZero), cc(I, qd(1))).im));
    // Overflow and underflow of the result: infinite or zero parts, no report.
    RecordingHandler handler;
    r = pow_z(cc(qd(10), kZero), cc(qd(5000), kZero));
    EXPECT_Q(r.re, kInfQ);
    EXPECT_Q(r.im, kZero);
    r = pow_z(cc(qd(10), kZero), cc(qd(-5000), kZero));
    EXPECT_Q(r.re, kZero);
    // An infinite base: |z|^Re w with Re w > 0 grows without bound.
    r = pow_z(cc(I, kZero), cc(qd(2), kZero));
    EXPECT_Q(r.re, kInfQ);
    EXPECT_TRUE(handler.reports().empty());
}

}  // namespace
}  // namespace mivor::testing
