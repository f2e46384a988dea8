// Complex bases to complex exponents: g_acxc, g_axxx.  Every flavour; the
// comparison with libquadmath's cpowq on the Linux flavours.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "mivor/mivor.h"
#include "support/bits.h"

#if !defined(_WIN32)
#include <quadmath.h>
#endif

namespace {

using mivor::testing::bits;

mivor_complex8 pow8(mivor_complex8 z, mivor_complex8 w) {
    mivor_complex8 r;
    EXPECT_EQ(g_axxx(&r, &z, &w), &r);
    return r;
}
mivor_complex4 pow4(mivor_complex4 z, mivor_complex4 w) {
    mivor_complex4 r;
    EXPECT_EQ(g_acxc(&r, &z, &w), &r);
    return r;
}

TEST(ComplexPower, SpecialCasesAndExactValues) {
    const double nan = std::nan("");
    // w = 0 gives (1, 0) for every base, NaN included; a zero base gives 0
    // for Re w > 0 and +Inf for a negative real exponent.
    for (mivor_complex8 z : {mivor_complex8{0, 0}, mivor_complex8{nan, 1}, mivor_complex8{-INFINITY, 2}}) {
        const mivor_complex8 r = pow8(z, {-0.0, 0.0});
        EXPECT_EQ(r.re, 1.0);
        EXPECT_EQ(bits(r.im), bits(0.0));
    }
    mivor_complex8 r = pow8({0.0, -0.0}, {0.5, -3.0});
    EXPECT_EQ(bits(r.re), bits(0.0));
    EXPECT_EQ(bits(r.im), bits(0.0));
    r = pow8({-0.0, 0.0}, {-2.0, 0.0});
    EXPECT_EQ(r.re, INFINITY);
    r = pow8({0.0, 0.0}, {0.0, 1.0});
    EXPECT_TRUE(std::isnan(r.re) && std::isnan(r.im));

    // Real powers of positive reals are exact where the real power is, with
    // a zero imaginary part: 2^10, 9^0.5, 0.5^-1074 (subnormal side) ...
    r = pow8({2.0, 0.0}, {10.0, 0.0});
    EXPECT_EQ(r.re, 1024.0);
    EXPECT_EQ(r.im, 0.0);
    r = pow8({9.0, 0.0}, {0.5, 0.0});
    EXPECT_EQ(r.re, 3.0);
    r = pow8({0.5, 0.0}, {1074.0, 0.0});
    EXPECT_EQ(r.re, 0x1p-1074);
    r = pow8({2.0, 0.0}, {1024.25, 0.0});
    EXPECT_EQ(r.re, INFINITY);  // no report
    const mivor_complex4 f = pow4({2.0f, 0.0f}, {-3.0f, 0.0f});
    EXPECT_EQ(f.re, 0.125f);
    EXPECT_EQ(f.im, 0.0f);

    // i^i = e^(-pi/2); (-1)^(1/2) = i, up to the angle's extended
    // precision (a double pi would leave 6.1e-17); (1 + i)^2 = 2i.
    r = pow8({0.0, 1.0}, {0.0, 1.0});
    EXPECT_EQ(r.re, 0.2078795763507619);
    EXPECT_EQ(r.im, 0.0);
    r = pow8({-1.0, 0.0}, {0.5, 0.0});
    EXPECT_LT(std::fabs(r.re), 1e-19);
    EXPECT_EQ(r.im, 1.0);
    r = pow8({1.0, 1.0}, {2.0, 0.0});
    EXPECT_NEAR(r.re, 0.0, 1e-15);
    EXPECT_EQ(r.im, 2.0);
}

#if !defined(_WIN32)
// Against cpowq (binary128: its own error, growing like |w log z| 2^-113,
// stays far below a double's ulp here).  The error is measured against the
// modulus of the result, since a part next to zero is as uncertain as the
// angle.  A double log z multiplied in double, as C libraries do, is
// |w log z| 2^-53 off in the angle: hundreds of ulps at |w log z| = 1000.
TEST(ComplexPower, WithinTwoUlpsOfTheModulusForLargeExponents) {
    std::mt19937_64 random(20261124);
    std::uniform_real_distribution<double> angle(-3.14, 3.14), modulus(0.5, 2.0), expo(-300.0, 300.0);
    double worst = 0;
    for (int i = 0; i < 20000; ++i) {
        const double m = modulus(random), t = angle(random);
        const mivor_complex8 z{m * std::cos(t), m * std::sin(t)}, w{expo(random), expo(random) / 4};
        const mivor_complex8 r = pow8(z, w);
        __complex128 zq, wq;
        __real__ zq = z.re;
        __imag__ zq = z.im;
        __real__ wq = w.re;
        __imag__ wq = w.im;
        const __complex128 p = cpowq(zq, wq);
        const __float128 size = cabsq(p);
        if (!(size > 1e-290 && size < 1e290)) continue;
        const double ulp = std::ldexp(1.0, std::ilogb(static_cast<double>(size)) - 52);
        __complex128 rq;
        __real__ rq = r.re;
        __imag__ rq = r.im;
        const double err = static_cast<double>(cabsq(p - rq)) / ulp;
        worst = std::max(worst, err);
        ASSERT_LE(err, 2.0) << "(" << z.re << ", " << z.im << ") ** (" << w.re << ", " << w.im << ")";
    }
    EXPECT_GT(worst, 0.0);
}
#endif

}  // namespace
