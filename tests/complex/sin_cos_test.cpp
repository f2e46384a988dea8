// Complex sine and cosine, radians and quadrants (every flavour): finite
// products next to the overflow of cosh, exact quadrant zeros, the Annex G
// special values, and the reports with their fallbacks and retries.  The
// accuracy against MPFR and glibc: sin_cos_mpfr_test.cpp.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::bits;
using mivor::testing::RecordingHandler;
using mivor::testing::Report;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kHuge = 1.7976931348623011e+308;  // 0x7FEFFFFFFFFFFFB6
constexpr long double kHalfPi = 1.57079632679489661923132169163975144L;

using Fn8 = mivor_complex8* (*)(mivor_complex8*, const mivor_complex8*);
using Fn4 = mivor_complex4* (*)(mivor_complex4*, const mivor_complex4*);

mivor_complex8 call(Fn8 f, double x, double y) {
    const mivor_complex8 z{x, y};
    mivor_complex8 r;
    f(&r, &z);
    return r;
}
mivor_complex4 call(Fn4 f, float x, float y) {
    const mivor_complex4 z{x, y};
    mivor_complex4 r;
    f(&r, &z);
    return r;
}

template <class T>
double ulp_error(T got, long double exact) {
    int e = 0;
    frexpl(exact, &e);
    const int digits = std::numeric_limits<T>::digits;
    return static_cast<double>(fabsl(got - exact) / ldexpl(1.0L, e - digits));
}

// COMPLEX(4) computes as COMPLEX(8) does and rounds each part once: within
// half an ulp of float (and 2^-28 of one) of the COMPLEX(8) parts.
TEST(ComplexSinCos, SingleRoundsTheDoubleParts) {
    const std::pair<Fn4, Fn8> members[] = {
        {g_csin, g_cdsin}, {g_ccos, g_cdcos}, {g_csinq, g_cdsinq}, {g_ccosq, g_cdcosq}};
    for (auto [f4, f8] : members) {
        std::uint64_t s = 7;
        for (int i = 0; i < 2000; ++i) {
            s = s * 6364136223846793005u + 1442695040888963407u;
            const float x = static_cast<float>(static_cast<std::int32_t>(s >> 32)) * 0x1p-27f;  // |x| < 16
            const float y = static_cast<float>(static_cast<std::int32_t>(s)) * 0x1p-26f;        // |y| < 32
            const mivor_complex4 r4 = call(f4, x, y);
            const mivor_complex8 r8 = call(f8, x, y);
            EXPECT_LE(ulp_error(r4.re, r8.re), 0.5001) << x << " " << y;
            EXPECT_LE(ulp_error(r4.im, r8.im), 0.5001) << x << " " << y;
        }
    }
}

// cosh y beyond the largest double times a tiny sin x: the finite product.
TEST(ComplexSinCos, FiniteProductsBeyondCoshOverflow) {
    RecordingHandler handler;
    const mivor_complex8 a = call(g_cdsin, 1e-300, 800.0);
    EXPECT_LE(ulp_error(a.re, 1e-300L * (expl(800.0L) / 2)), 2.0);
    EXPECT_EQ(a.im, kInf);  // cos x sinh y overflows: reported below
    const mivor_complex8 b = call(g_cdcos, 0x1p-1074, -1400.0);
    EXPECT_EQ(b.re, kInf);
    EXPECT_LE(ulp_error(b.im, 0x1p-1074L * (expl(1400.0L) / 2)), 0.51);
    const mivor_complex8 c = call(g_cdsinq, 2.0 + 0x1p-51, 470.0);  // cosh(470 pi/2) near 2e320
    EXPECT_LE(ulp_error(-c.re, sinl(0x1p-51L * kHalfPi) * (expl(470.0L * kHalfPi) / 2)), 2.0);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{208, 208, 1410}));
}

// Multiples of a quadrant give exact zeros and the exact cosh or sinh.
TEST(ComplexSinCos, QuadrantMultiplesAreExact) {
    const mivor_complex8 a = call(g_cdsinq, 2.0, 3.0);
    EXPECT_EQ(bits(a.re), bits(-0.0));
    const mivor_complex8 b = call(g_cdsinq, 1.0, 3.0);
    EXPECT_EQ(b.im, -0.0);
    EXPECT_LE(ulp_error(b.re, coshl(3.0L * kHalfPi)), 0.51);
    const mivor_complex8 c = call(g_cdcosq, -1e300, 0.5);
    EXPECT_EQ(bits(c.im), bits(0.0));  // sin x = -0 (the sign of x): -sin x sinh y = +0
    EXPECT_LE(ulp_error(c.re, coshl(0.5L * kHalfPi)), 0.7);  // the series' fit: 0.15 ulp
    const mivor_complex4 d = call(g_ccosq, 3.0f, 1.0f);
    EXPECT_EQ(d.re, 0.0f);
}

// C99 Annex G, through csin(z) = -i csinh(iz) and ccos(z) = ccosh(iz).  A
// zero expected part is compared with its sign; NaN stands for any NaN.
TEST(ComplexSinCos, AnnexGSpecialValues) {
    struct Case {
        Fn8 f;
        double x, y, re, im;
    };
    const Case cases[] = {
        {g_cdsin, 0.0, 0.0, 0.0, 0.0},       {g_cdsin, -0.0, -0.0, -0.0, -0.0},
        {g_cdcos, 0.0, 0.0, 1.0, -0.0},      {g_cdcos, -0.0, 0.0, 1.0, 0.0},
        {g_cdsin, 0.0, kNaN, 0.0, kNaN},     {g_cdsin, 1.0, kNaN, kNaN, kNaN},
        {g_cdcos, 2.0, kNaN, kNaN, kNaN},    {g_cdsin, 2.5, 0.0, std::sin(2.5), -0.0},
        {g_cdsinq, 2.0, kNaN, -0.0, kNaN},   {g_cdcosq, 1.0, -0.0, -0.0, 0.0},
        {g_cdsinq, -0.0, 1e-300, -0.0, 1e-300 * static_cast<double>(kHalfPi)},
    };
    RecordingHandler handler;
    for (const Case& c : cases) {
        const mivor_complex8 r = call(c.f, c.x, c.y);
        for (auto [got, want] : {std::pair{r.re, c.re}, std::pair{r.im, c.im}}) {
            if (std::isnan(want)) EXPECT_TRUE(std::isnan(got)) << c.x << " " << c.y;
            else if (want == 0) EXPECT_EQ(bits(got), bits(want)) << c.x << " " << c.y;
            else EXPECT_LE(ulp_error(got, want), 1.0) << c.x << " " << c.y;
        }
    }
    EXPECT_TRUE(handler.reports().empty());
    // Infinite y reports the overflow; declined, the IEEE parts are Annex G's.
    const Case reported[] = {
        {g_cdsin, 0.0, kInf, 0.0, kInf},     {g_cdcos, 0.0, kInf, kInf, -0.0},
        {g_cdcos, -0.0, kInf, kInf, 0.0},    {g_cdsin, 1.0, kInf, kInf, kInf},
        {g_cdcos, 1.0, -kInf, kInf, kInf},   {g_cdsin, 4.0, kInf, -kInf, -kInf},
    };
    for (const Case& c : reported) {
        const mivor_complex8 r = call(c.f, c.x, c.y);
        EXPECT_EQ(bits(r.re), bits(c.re)) << c.x << " " << c.y;
        EXPECT_EQ(bits(r.im), bits(c.im)) << c.x << " " << c.y;
    }
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>(6, 208));
}

// Out of range (x refused) and overflow (y): the component described, the
// fallbacks by byte 589, and a retry on the handler's corrected copy.
TEST(ComplexSinCos, ReportsFallbacksAndRetries) {
    RecordingHandler handler;
    const mivor_complex8 a = call(g_cdsin, kInf, 0.0);
    EXPECT_TRUE(std::isnan(a.re));
    EXPECT_EQ(bits(a.im), bits(0.0));
    const mivor_complex8 b = call(g_cdcos, 3.6e15, kInf);
    EXPECT_EQ(b.re, kInf);
    EXPECT_TRUE(std::isnan(b.im));
    const mivor_complex4 c = call(g_csinq, 1.0f, 60.0f);
    EXPECT_EQ(c.re, std::numeric_limits<float>::infinity());
    ASSERT_EQ(handler.numbers(), (std::vector<std::int32_t>{207, 207, 1408}));
    const Report& r0 = handler.reports()[0];
    EXPECT_EQ(r0.count, 1u);
    EXPECT_EQ(r0.type1, 10);
    EXPECT_EQ(r0.shown1<double>(), kInf);
    EXPECT_EQ(handler.reports()[2].type1, 9);
    EXPECT_EQ(handler.reports()[2].shown1<float>(), 60.0f);

    handler.clear();
    jwe_lca.ieee_results = 0;
    const mivor_complex8 d = call(g_cdsin, kNaN, 2.0);
    EXPECT_LE(ulp_error(d.re, 0.7071067811865476L * coshl(2.0L)), 1.0);
    EXPECT_LE(ulp_error(d.im, 0.7071067811865476L * sinhl(2.0L)), 1.0);
    const mivor_complex8 e = call(g_cdcos, 1.0, -800.0);
    EXPECT_EQ(bits(e.re), bits(kHuge));
    EXPECT_EQ(bits(e.im), bits(kHuge));
    const mivor_complex4 f = call(g_ccos, 1e30f, 100.0f);
    EXPECT_EQ(bits(f.re), 0x7F7FFFEEu);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{207, 208, 205}));

    // The handler corrects the described component (x at 696, y at 700).
    handler.clear();
    handler.decide([](const Report& r, jwe_control_area&) {
        if (r.number == 207) *static_cast<double*>(r.first_operand) = 0.5;
        else *static_cast<double*>(r.second_operand) = 2.0;
        return true;
    });
    const mivor_complex8 g = call(g_cdcos, -kInf, 900.0);  // x corrected, then y
    const mivor_complex8 h = call(g_cdcos, 0.5, 2.0);
    EXPECT_EQ(bits(g.re), bits(h.re));
    EXPECT_EQ(bits(g.im), bits(h.im));
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{207, 208}));
}

}  // namespace
