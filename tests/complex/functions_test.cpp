// The complex absolute value, square root, exponential and logarithm,
// COMPLEX(4) and COMPLEX(8).  Every flavour.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <functional>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::bits;
using mivor::testing::f32;
using mivor::testing::f64;
using mivor::testing::RecordingHandler;
using mivor::testing::Report;

constexpr double I = INFINITY;
const double N = std::nan("");
constexpr double kPi = 0x1.921fb54442d18p+1;

struct Pair {
    double re, im;
};

// Each function of both kinds as a function of a COMPLEX(8) value; the
// COMPLEX(4) form on the parts rounded to REAL(4).
using Fn = std::function<Pair(double, double)>;
template <mivor_complex8* (*F)(mivor_complex8*, const mivor_complex8*)>
Pair c8(double x, double y) {
    mivor_complex8 z{x, y}, r;
    EXPECT_EQ(F(&r, &z), &r);
    return {r.re, r.im};
}
template <mivor_complex4* (*F)(mivor_complex4*, const mivor_complex4*)>
Pair c4(double x, double y) {
    mivor_complex4 z{static_cast<float>(x), static_cast<float>(y)}, r;
    EXPECT_EQ(F(&r, &z), &r);
    return {r.re, r.im};
}
const auto cdexp = c8<g_cdexp>, cdlog = c8<g_cdlog>, cdsqrt = c8<g_cdsqrt>;
const auto cexp = c4<g_cexp>, clog = c4<g_clog>, csqrt = c4<g_csqrt>;
Pair cdabs(double x, double y) {
    mivor_complex8 z{x, y};
    return {g_cdabs(&z), 0.0};
}
Pair cabs(double x, double y) {
    mivor_complex4 z{static_cast<float>(x), static_cast<float>(y)};
    return {g_cabs(&z), 0.0};
}

// Equal as IEEE values with the sign of zero, any NaN matching any NaN;
// for COMPLEX(4) the expectation rounded to REAL(4).
bool same(double got, double want, bool single) {
    if (single) want = static_cast<float>(want);
    if (std::isnan(want)) return std::isnan(got);
    return bits(got) == bits(want);
}

// The special values of C99 (Annex G), both kinds; the reporting ones with
// IEEE results and a handler that declines the retry.
TEST(ComplexFunctions, AnnexGSpecialValues) {
    const double e = std::exp(1.0);
    struct Case {
        const char* name;
        Fn f8, f4;
        Pair z, want;
    };
    const Case cases[] = {
        {"exp", cdexp, cexp, {+0.0, +0.0}, {1.0, +0.0}},
        {"exp", cdexp, cexp, {-0.0, -0.0}, {1.0, -0.0}},
        {"exp", cdexp, cexp, {N, +0.0}, {N, +0.0}},
        {"exp", cdexp, cexp, {N, -0.0}, {N, -0.0}},
        {"exp", cdexp, cexp, {-I, 1.0}, {+0.0, +0.0}},
        {"exp", cdexp, cexp, {-I, 2.0}, {-0.0, +0.0}},
        {"exp", cdexp, cexp, {-I, -1.0}, {+0.0, -0.0}},
        {"exp", cdexp, cexp, {-I, I}, {+0.0, +0.0}},
        {"exp", cdexp, cexp, {-I, N}, {+0.0, +0.0}},
        {"exp", cdexp, cexp, {I, +0.0}, {I, +0.0}},
        {"exp", cdexp, cexp, {I, -3.0}, {-I, -I}},
        {"exp", cdexp, cexp, {I, I}, {I, N}},
        {"exp", cdexp, cexp, {I, N}, {I, N}},
        {"exp", cdexp, cexp, {1.0, I}, {N, N}},
        {"exp", cdexp, cexp, {1.0, N}, {N, N}},
        {"exp", cdexp, cexp, {N, 1.0}, {N, N}},
        {"exp", cdexp, cexp, {N, N}, {N, N}},
        {"exp", cdexp, cexp, {1.0, -0.0}, {e, -0.0}},
        {"log", cdlog, clog, {+0.0, +0.0}, {-I, +0.0}},
        {"log", cdlog, clog, {+0.0, -0.0}, {-I, -0.0}},
        {"log", cdlog, clog, {-0.0, +0.0}, {-I, kPi}},
        {"log", cdlog, clog, {-0.0, -0.0}, {-I, -kPi}},
        {"log", cdlog, clog, {1.0, +0.0}, {+0.0, +0.0}},
        {"log", cdlog, clog, {-1.0, +0.0}, {+0.0, kPi}},
        {"log", cdlog, clog, {-1.0, -0.0}, {+0.0, -kPi}},
        {"log", cdlog, clog, {1.0, I}, {I, kPi / 2}},
        {"log", cdlog, clog, {N, -I}, {I, N}},
        {"log", cdlog, clog, {-I, 1.0}, {I, kPi}},
        {"log", cdlog, clog, {-I, -1.0}, {I, -kPi}},
        {"log", cdlog, clog, {I, 1.0}, {I, +0.0}},
        {"log", cdlog, clog, {-I, I}, {I, 0x1.2d97c7f3321d2p+1}},
        {"log", cdlog, clog, {I, -I}, {I, -kPi / 4}},
        {"log", cdlog, clog, {I, N}, {I, N}},
        {"log", cdlog, clog, {1.0, N}, {N, N}},
        {"log", cdlog, clog, {N, 1.0}, {N, N}},
        {"sqrt", cdsqrt, csqrt, {+0.0, +0.0}, {+0.0, +0.0}},
        {"sqrt", cdsqrt, csqrt, {-0.0, -0.0}, {+0.0, -0.0}},
        {"sqrt", cdsqrt, csqrt, {-4.0, +0.0}, {+0.0, 2.0}},
        {"sqrt", cdsqrt, csqrt, {-4.0, -0.0}, {+0.0, -2.0}},
        {"sqrt", cdsqrt, csqrt, {4.0, -0.0}, {2.0, -0.0}},
        {"sqrt", cdsqrt, csqrt, {1.0, I}, {I, I}},
        {"sqrt", cdsqrt, csqrt, {N, -I}, {I, -I}},
        {"sqrt", cdsqrt, csqrt, {-I, 1.0}, {+0.0, I}},
        {"sqrt", cdsqrt, csqrt, {-I, -1.0}, {+0.0, -I}},
        {"sqrt", cdsqrt, csqrt, {I, 1.0}, {I, +0.0}},
        {"sqrt", cdsqrt, csqrt, {I, -1.0}, {I, -0.0}},
        {"sqrt", cdsqrt, csqrt, {I, N}, {I, N}},
        {"sqrt", cdsqrt, csqrt, {-I, N}, {N, I}},
        {"sqrt", cdsqrt, csqrt, {1.0, N}, {N, N}},
        {"sqrt", cdsqrt, csqrt, {N, 1.0}, {N, N}},
        {"abs", cdabs, cabs, {I, N}, {I, 0.0}},
        {"abs", cdabs, cabs, {N, -I}, {I, 0.0}},
        {"abs", cdabs, cabs, {N, 1.0}, {N, 0.0}},
        {"abs", cdabs, cabs, {-0.0, -0.0}, {+0.0, 0.0}},
        {"abs", cdabs, cabs, {-3.0, 4.0}, {5.0, 0.0}},
    };
    RecordingHandler handler;  // declines; IEEE results
    for (const Case& c : cases) {
        for (bool single : {false, true}) {
            const Pair r = (single ? c.f4 : c.f8)(c.z.re, c.z.im);
            EXPECT_TRUE(same(r.re, c.want.re, single) && same(r.im, c.want.im, single))
                << c.name << (single ? " COMPLEX(4)" : " COMPLEX(8)") << " of (" << c.z.re << ", " << c.z.im
                << ") gave (" << r.re << ", " << r.im << "), not (" << c.want.re << ", " << c.want.im << ")";
        }
    }
}

// Values that a textbook formula in double gets wrong: squares that
// overflow or underflow, the cancellation of log|z| next to |z| = 1, an
// exponential that overflows alone while its product with a sine does not.
TEST(ComplexFunctions, NoSpuriousOverflowUnderflowOrCancellation) {
    EXPECT_EQ(cdabs(3 * 0x1p1020, -4 * 0x1p1020).re, 5 * 0x1p1020);
    EXPECT_EQ(cdabs(3 * 0x1p-1074, 4 * 0x1p-1074).re, 5 * 0x1p-1074);
    EXPECT_EQ(cdabs(DBL_MAX, 0x1p-1074).re, DBL_MAX);
    EXPECT_EQ(cdabs(DBL_MAX, DBL_MAX).re, I);
    EXPECT_EQ(cabs(3 * 0x1p100, 4 * 0x1p100).re, 5 * 0x1p100);
    EXPECT_EQ(cabs(3 * 0x1p-149, 4 * 0x1p-149).re, 5 * 0x1p-149);

    // sqrt((2 + i)^2 2^1020) and sqrt((2 - i)^2 2^-1070), exactly.
    Pair r = cdsqrt(3 * 0x1p1020, 4 * 0x1p1020);
    EXPECT_EQ(r.re, 2 * 0x1p510);
    EXPECT_EQ(r.im, 0x1p510);
    r = cdsqrt(3 * 0x1p-1070, -4 * 0x1p-1070);
    EXPECT_EQ(r.re, 2 * 0x1p-535);
    EXPECT_EQ(r.im, -0x1p-535);
    r = cdsqrt(-3 * 0x1p1020, -4 * 0x1p1020);
    EXPECT_EQ(r.re, 0x1p510);
    EXPECT_EQ(r.im, -2 * 0x1p510);

    // (1 - 2^-27)^2 + 2^-26 = 1 + 2^-54: log|z| = 2^-55 (1 - 2^-55) rounds
    // to 2^-55, where |z| rounded to double is 1.
    EXPECT_EQ(cdlog(1 - 0x1p-27, 0x1p-13).re, 0x1p-55);
    EXPECT_EQ(cdlog(1 + 0x1p-40, 0.0).re, 0x1p-40 - 0x1p-81);
    EXPECT_EQ(cdlog(0x1p-13, 1 - 0x1p-27).re, 0x1p-55);
    EXPECT_EQ(clog(1 - 0x1p-13, 0x1p-6).re, 0x1p-27);
    // Huge and tiny moduli: log(2^1000 sqrt 2) and log(2^-1074).
    EXPECT_DOUBLE_EQ(cdlog(0x1p1000, 0x1p1000).re, 1000.5 * std::log(2.0));
    EXPECT_NEAR(cdlog(0x1p-1074, 0.0).re, -744.44007192138126, 1e-13);

    // e^1000 sin(2^-1000) = e^(1000 (1 - ln 2)) = e^306.85...: finite (the
    // real part overflows and reports).
    {
        RecordingHandler handler;
        r = cdexp(1000.0, 0x1p-1000);
        EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{235});
    }
    EXPECT_EQ(r.re, I);
    EXPECT_NEAR(r.im / std::exp(1000.0 - 1000.0 * std::log(2.0)), 1.0, 1e-12);
    // e^710 (cos, sin)(pi/4 + pi/2): both parts finite, e^710 is not.
    {
        RecordingHandler handler;
        r = cdexp(710.0, 3 * kPi / 4);
        EXPECT_TRUE(handler.reports().empty());
        EXPECT_NEAR(r.re / -1.5796728482882013e308, 1.0, 1e-15);
        EXPECT_NEAR(r.im / 1.5796728482882015e308, 1.0, 1e-15);
    }
    // Subnormal parts rounded once: e^-745 cos 0 = 2^-1074 (e^-745 is
    // 0.57 of it), e^-700 sin(2^-40) near 2^-1050.
    EXPECT_EQ(cdexp(-745.0, 0x1p-60).re, 0x1p-1074);
    EXPECT_NEAR(cdexp(-700.0, 0x1p-40).im / (std::exp(-700.0) * 0x1p-40), 1.0, 1e-6);
}

// Reports: which number, what the record describes, the fallbacks with
// IEEE results on and off, and a retry on the corrected part.
TEST(ComplexExpLogReports, DescribeTheDecidingPartAndRetry) {
    RecordingHandler handler;
    const double e = std::exp(1.0), s8 = 0.7071067811865476;

    // Imaginary part refused: 234, y described (REAL(8)).
    Pair r = cdexp(1.0, I);
    ASSERT_EQ(handler.numbers(), std::vector<std::int32_t>{234});
    EXPECT_EQ(handler.reports()[0].count, 1u);
    EXPECT_EQ(handler.reports()[0].type1, 10);
    EXPECT_EQ(handler.reports()[0].shown1<double>(), I);
    EXPECT_TRUE(std::isnan(r.re) && std::isnan(r.im));
    jwe_lca.ieee_results = 0;
    r = cdexp(1.0, 1e16);
    EXPECT_DOUBLE_EQ(r.re, e * s8);
    EXPECT_EQ(r.im, r.re);
    r = cdexp(800.0, N);  // the substitute of e^800: huge
    EXPECT_EQ(bits(r.re), 0x7FEFFFFFFFFFFFB6u);
    jwe_lca.ieee_results = 1;

    // Overflow: 235, x described.
    handler.clear();
    r = cdexp(800.0, -1.0);
    ASSERT_EQ(handler.numbers(), std::vector<std::int32_t>{235});
    EXPECT_EQ(handler.reports()[0].shown1<double>(), 800.0);
    EXPECT_EQ(r.re, I);
    EXPECT_EQ(r.im, -I);
    jwe_lca.ieee_results = 0;
    r = cdexp(800.0, -1.0);
    EXPECT_EQ(bits(r.re), 0x7FEFFFFFFFFFFFB6u);
    EXPECT_EQ(bits(r.im), 0xFFEFFFFFFFFFFFB6u);
    jwe_lca.ieee_results = 1;

    // COMPLEX(4): 232 beyond g_sin's 823000, 233 beyond the REAL(4) range.
    handler.clear();
    r = cexp(0.0, 1e6);
    r = cexp(100.0, 0.5);
    ASSERT_EQ(handler.numbers(), (std::vector<std::int32_t>{232, 233}));
    EXPECT_EQ(handler.reports()[0].type1, 9);
    EXPECT_EQ(handler.reports()[0].shown1<float>(), 1e6f);
    EXPECT_EQ(handler.reports()[1].shown1<float>(), 100.0f);
    EXPECT_EQ(r.re, I);
    EXPECT_EQ(cexp(1e6, 0.5).re, I);

    // A retry with the corrected part starts again: y = inf -> 0.
    handler.clear();
    handler.decide([](const Report& rep, jwe_control_area&) {
        if (rep.number != 234) return false;
        *static_cast<double*>(rep.second_operand) = 0.0;
        return true;
    });
    r = cdexp(1.0, -I);
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{234});
    EXPECT_EQ(r.re, e);
    EXPECT_EQ(r.im, 0.0);

    // log(0): 247 for COMPLEX(4) with both parts described, none for
    // COMPLEX(8).
    handler.decide({});
    handler.clear();
    r = cdlog(0.0, -0.0);
    EXPECT_TRUE(handler.reports().empty());
    r = clog(-0.0, 0.0);
    ASSERT_EQ(handler.numbers(), std::vector<std::int32_t>{247});
    EXPECT_EQ(handler.reports()[0].count, 2u);
    EXPECT_EQ(handler.reports()[0].type1, 9);
    EXPECT_EQ(handler.reports()[0].type2, 9);
    EXPECT_EQ(r.re, -I);
    EXPECT_EQ(r.im, static_cast<float>(kPi));
    jwe_lca.ieee_results = 0;
    r = clog(-0.0, 0.0);
    EXPECT_EQ(bits(static_cast<float>(r.re)), 0xFF7FFFEEu);
    EXPECT_EQ(bits(r.im), bits(0.0));
    handler.decide([](const Report& rep, jwe_control_area&) {
        *static_cast<float*>(rep.first_operand) = -1.0f;
        return true;
    });
    r = clog(0.0, 0.0);
    EXPECT_EQ(r.re, 0.0);
    EXPECT_EQ(r.im, static_cast<float>(kPi));
}

}  // namespace
