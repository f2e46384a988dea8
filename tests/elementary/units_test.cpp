// Sine, cosine, tangent and cotangent of angles in degrees and quadrants,
// REAL(8) and REAL(4), through the exports: exact results at every
// multiple of a right angle (with the sign rules of the zeros), values
// against correctly rounded references (MPFR), the exact reduction of the
// largest arguments, reports, poles and fallbacks.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::bits;
using mivor::testing::f64;
using mivor::testing::RecordingHandler;
using mivor::testing::Report;
using mivor::testing::ulps;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr float kInfF = std::numeric_limits<float>::infinity();
constexpr std::uint64_t kNegZero = 0x8000000000000000u;
constexpr std::uint64_t kHuge = 0x7FEFFFFFFFFFFFB6u;
constexpr double kLimit = 2.0299994561825997e17;  // the first refused degree argument

using Fn8 = double (*)(const double*);
using Fn4 = float (*)(const float*);
double call(Fn8 f, double x) { return f(&x); }
float call(Fn4 f, float x) { return f(&x); }

// sin, cos, tan, cot of each unit.
constexpr Fn8 kDegrees8[4] = {g_dsind, g_dcosd, g_dtand, g_dcotd};
constexpr Fn8 kQuadrants8[4] = {g_dsinq, g_dcosq, g_dtanq, g_dcotq};
constexpr Fn4 kDegrees4[4] = {g_sind, g_cosd, g_tand, g_cotd};
constexpr Fn4 kQuadrants4[4] = {g_sinq, g_cosq, g_tanq, g_cotq};

// The result at k right angles: sin, cos, -sin, -cos of an exact zero by
// the quadrant n (k for the sine, k + 1 for the cosine), the negation a
// sign flip, so that its zeros are -0.
double at_right_angle(long long n) {
    switch (((n % 4) + 4) % 4) {
        case 0: return 0.0;
        case 1: return 1.0;
        case 2: return -0.0;
        default: return -1.0;
    }
}

// Degrees reduce the signed argument: sind(180) and sind(-180) are both -0.
// Quadrants reduce |u| and give the sine the sign of u last.
TEST(Units, RightAnglesAreExact) {
    RecordingHandler handler;
    const long long big[] = {4503599627370497LL, 4503599627370498LL, 9007199254740994LL, 1LL << 54, (1LL << 54) + 4};
    std::vector<long long> ks;
    for (long long k = -21; k <= 21; ++k) ks.push_back(k);
    for (long long k : big) {
        ks.push_back(k);
        ks.push_back(-k);
    }
    for (long long k : ks) {
        const double deg = 90.0 * static_cast<double>(k);
        if (std::fabs(deg) < kLimit) {
            EXPECT_EQ(bits(call(g_dsind, deg)), bits(at_right_angle(k))) << deg;
            EXPECT_EQ(bits(call(g_dcosd, deg)), bits(at_right_angle(k + 1))) << deg;
            if (k % 2 == 0) EXPECT_EQ(bits(call(g_dtand, deg)), 0u) << deg;
            else EXPECT_EQ(bits(call(g_dcotd, deg)), kNegZero) << deg;
            EXPECT_EQ(bits(call(g_sind, static_cast<float>(deg))), bits(static_cast<float>(at_right_angle(k)))) << deg;
            EXPECT_EQ(bits(call(g_cosd, static_cast<float>(deg))), bits(static_cast<float>(at_right_angle(k + 1))));
        }
        const double u = static_cast<double>(k);
        const double sign = u < 0 ? -1.0 : 1.0;
        const long long a = k < 0 ? -k : k;
        EXPECT_EQ(bits(call(g_dsinq, u)), bits(sign * at_right_angle(a))) << u;
        EXPECT_EQ(bits(call(g_dcosq, u)), bits(at_right_angle(a + 1))) << u;
        if (a % 2 == 0) EXPECT_EQ(bits(call(g_dtanq, u)), bits(sign * 0.0)) << u;
        else EXPECT_EQ(bits(call(g_dcotq, u)), bits(-sign * 0.0)) << u;
        const float uf = static_cast<float>(u);
        if (uf == u) {
            EXPECT_EQ(bits(call(g_sinq, uf)), bits(static_cast<float>(sign * at_right_angle(a)))) << u;
            EXPECT_EQ(bits(call(g_cosq, uf)), bits(static_cast<float>(at_right_angle(a + 1)))) << u;
        }
    }
    EXPECT_TRUE(handler.reports().empty());
    // The named cases, and every double beyond 2^54 is a multiple of four.
    EXPECT_EQ(call(g_dsind, 90.0), 1.0);
    EXPECT_EQ(call(g_dsind, -270.0), 1.0);
    EXPECT_EQ(bits(call(g_dsind, 180.0)), kNegZero);
    EXPECT_EQ(bits(call(g_dcosd, 90.0)), kNegZero);
    EXPECT_EQ(call(g_dsinq, 1.0), 1.0);
    EXPECT_EQ(call(g_dsinq, 2.0), 0.0);
    EXPECT_EQ(bits(call(g_dsinq, 1e300)), 0u);
    EXPECT_EQ(call(g_dcosq, -1e300), 1.0);
    EXPECT_EQ(call(g_dtand, 45.0), 1.0);
    EXPECT_EQ(call(g_dtand, -225.0), -1.0);
    EXPECT_EQ(call(g_dcotd, 135.0), -1.0);
    EXPECT_EQ(call(g_dtanq, 0.5), 1.0);
    EXPECT_EQ(call(g_dcotq, -2.5), -1.0);
    EXPECT_EQ(call(g_tand, 45.0f), 1.0f);
    EXPECT_EQ(call(g_cotq, 0.5f), 1.0f);
    EXPECT_EQ(call(g_sind, 30.0f), 0.5f);
    EXPECT_EQ(bits(call(g_dsind, -0.0)), kNegZero);
    EXPECT_EQ(bits(call(g_dtanq, -0.0)), kNegZero);
}

struct Row8 {
    double x, f[4];  // sin, cos, tan, cot, correctly rounded
};
constexpr Row8 kDegreeRows[] = {
    {30.0, {0x1p-1, 0x1.bb67ae8584caap-1, 0x1.279a74590331cp-1, 0x1.bb67ae8584caap+0}},
    {1.0, {0x1.1df0b2b89dd1ep-6, 0x1.ffec097f5af8ap-1, 0x1.1dfbd9410a422p-6, 0x1.ca51d76749a7p+5}},
    {-100.25, {-0x1.f7d42eaca5cedp-1, -0x1.6c6daa62c1695p-3, 0x1.61ecb4fa4879fp+2, 0x1.7256b6ef8cb2cp-3}},
    {0x1.67fffffffffffp+5, {0x1.6a09e667f3bccp-1, 0x1.6a09e667f3bcdp-1, 0x1.ffffffffffffep-1, 0x1.0000000000001p+0}},
    {0x1.0e00000000001p+7, {0x1.6a09e667f3bc9p-1, -0x1.6a09e667f3bdp-1, -0x1.ffffffffffff7p-1, -0x1.0000000000004p+0}},
    {0x1.2a05f20026666p+33, {-0x1.f7bfc7ae592ap-1, 0x1.6e2fd950dcb0fp-3, -0x1.602b55df8d6c7p+2, -0x1.742f453f07021p-3}},
    {0x1.0000000000003p+52, {0x1.4d61bd000cddbp-2, 0x1.e41b02bfeb4cbp-1, 0x1.60976af8c1613p-2, 0x1.73bd2e9a270ep+1}},
    {0x1.feef63f97d79bp+52, {0x1.4d61bd000cddbp-2, 0x1.e41b02bfeb4cbp-1, 0x1.60976af8c1613p-2, 0x1.73bd2e9a270ep+1}},
    {0x1.0a741a46278p+57, {-0x1.bb67ae8584caap-1, -0x1p-1, 0x1.bb67ae8584caap+0, 0x1.279a74590331cp-1}},
    {0x1.56e1fc2f8f359p-997, {0x1.7f00f350a8dddp-1003, 0x1p+0, 0x1.7f00f350a8dddp-1003, 0x1.5638a23f1bc65p+1002}},
    {-0x1.45e5bd5e9ac01p-14, {-0x1.6c07e9eb3fd55p-20, 0x1.fffffffffdfa6p-1, -0x1.6c07e9eb41456p-20, -0x1.680ead6e6e50ep+19}},
};
constexpr Row8 kQuadrantRows[] = {
    {0.5, {0x1.6a09e667f3bcdp-1, 0x1.6a09e667f3bcdp-1, 1.0, 1.0}},
    {0.25, {0x1.87de2a6aea963p-2, 0x1.d906bcf328d46p-1, 0x1.a827999fcef32p-2, 0x1.3504f333f9de6p+1}},
    {-1.75, {-0x1.87de2a6aea963p-2, -0x1.d906bcf328d46p-1, 0x1.a827999fcef32p-2, 0x1.3504f333f9de6p+1}},
    {0x1.fffffffffffffp-2, {0x1.6a09e667f3bccp-1, 0x1.6a09e667f3bcdp-1, 0x1.ffffffffffffep-1, 0x1.0000000000001p+0}},
    {0x1.2a05f20026666p+33, {0x1.d0e29b0b98726p-2, 0x1.c83214155d492p-1, 0x1.04e052652b1bbp-1, 0x1.f66e05ed4f34bp+0}},
    {3.333, {-0x1.bb89fb114c24dp-1, 0x1.ff891ce5ea594p-2, -0x1.bbf1108a1ad21p+0, -0x1.273efa0322689p-1}},
    {0x1.56e1fc2f8f359p-997, {0x1.0d4cab14b6bcp-996, 0x1p+0, 0x1.0d4cab14b6bcp-996, 0x1.e6b6f220dd8bdp+995}},
};
struct Row4 {
    float x, f[4];
};
constexpr Row4 kDegreeRows4[] = {
    {30.0f, {0x1p-1f, 0x1.bb67aep-1f, 0x1.279a74p-1f, 0x1.bb67aep+0f}},
    {1.0f, {0x1.1df0b2p-6f, 0x1.ffec0ap-1f, 0x1.1dfbdap-6f, 0x1.ca51d8p+5f}},
    {-100.25f, {-0x1.f7d42ep-1f, -0x1.6c6daap-3f, 0x1.61ecb4p+2f, 0x1.7256b6p-3f}},
    {0x1.2a05f2p+33f, {-0x1.f838b8p-1f, 0x1.63a1a8p-3f, -0x1.6af648p+2f, -0x1.691e1ep-3f}},
    {0x1.e240b4p+16f, {-0x1.94fccp-2f, 0x1.d6416ep-1f, -0x1.b8f018p-2f, -0x1.2941dep+1f}},
    {0x1.4484cp-100f, {0x1.6a7d9ep-106f, 1.0f, 0x1.6a7d9ep-106f, 0x1.699652p+105f}},
    {0x1.67fffep+5f, {0x1.6a09e4p-1f, 0x1.6a09e8p-1f, 0x1.fffffcp-1f, 0x1.000002p+0f}},
};
constexpr Row4 kQuadrantRows4[] = {
    {0.5f, {0x1.6a09e6p-1f, 0x1.6a09e6p-1f, 1.0f, 1.0f}},
    {0.25f, {0x1.87de2ap-2f, 0x1.d906bcp-1f, 0x1.a8279ap-2f, 0x1.3504f4p+1f}},
    {-1.75f, {-0x1.87de2ap-2f, -0x1.d906bcp-1f, 0x1.a8279ap-2f, 0x1.3504f4p+1f}},
    {12345.5f, {0x1.6a09e6p-1f, -0x1.6a09e6p-1f, -1.0f, -1.0f}},
    {3.333f, {-0x1.bb89fcp-1f, 0x1.ff8918p-2f, -0x1.bbf116p+0f, -0x1.273ef6p-1f}},
    {0x1.4484cp-100f, {0x1.fdc0a8p-100f, 1.0f, 0x1.fdc0a8p-100f, 0x1.0120f2p+99f}},
};

TEST(Units, CloseToCorrectlyRounded) {
    RecordingHandler handler;
    for (const Row8& r : kDegreeRows)
        for (int f = 0; f < 4; ++f) EXPECT_LE(ulps(call(kDegrees8[f], r.x), r.f[f]), 1u) << f << " x=" << r.x;
    for (const Row8& r : kQuadrantRows)
        for (int f = 0; f < 4; ++f) EXPECT_LE(ulps(call(kQuadrants8[f], r.x), r.f[f]), 1u) << f << " x=" << r.x;
    for (const Row4& r : kDegreeRows4)
        for (int f = 0; f < 4; ++f) EXPECT_EQ(call(kDegrees4[f], r.x), r.f[f]) << f << " x=" << r.x;
    for (const Row4& r : kQuadrantRows4)
        for (int f = 0; f < 4; ++f) EXPECT_EQ(call(kQuadrants4[f], r.x), r.f[f]) << f << " x=" << r.x;
    EXPECT_TRUE(handler.reports().empty());
}

// From 2^52 on the degree argument is reduced on integers: each result
// must be the one of the same angle below 360 (computed independently
// here), bit for bit; and shifts by whole turns change nothing.
TEST(Units, LargeArgumentsReduceExactly) {
    std::uint64_t s = 11;
    for (int i = 0; i < 3000; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        const double x = std::ldexp(static_cast<double>((s >> 11) | (1ull << 52)), static_cast<int>(s % 6));
        if (x >= kLimit) continue;
        const std::uint64_t n = static_cast<std::uint64_t>(x) % 360u;
        if (n % 90u == 45u) continue;  // a tie may take either neighbour
        const double small = static_cast<double>(n);
        for (int f = 0; f < 4; ++f) {
            if (f >= 2 && n % 90u == 0) continue;  // poles
            EXPECT_EQ(bits(call(kDegrees8[f], x)), bits(call(kDegrees8[f], small))) << f << " x=" << x;
            EXPECT_EQ(bits(call(kDegrees8[f], -x)), bits(call(kDegrees8[f], n == 0 ? -360.0 : -small)))
                << f << " x=" << -x;
        }
        // Quadrants: u and u + 4k give the same bits where both are exact.
        const double u = static_cast<double>(s >> 40) * 0x1p-10;
        for (int f = 0; f < 2; ++f)
            EXPECT_EQ(bits(call(kQuadrants8[f], u + 4096.0)), bits(call(kQuadrants8[f], u + 4.0))) << u;
    }
}

// REAL(4): below 2^32 the argument is reduced in double with k from x/90
// rounded, above it on integers; the quadrant sine takes the row two
// quadrants on for a negative u.  Across that border each result must be
// the one of the same angle below 360 degrees, bit for bit; next to the
// odd multiples of 45 degrees, where x/90 is next to a half-integer and k
// may be either neighbour, within an ulp of an extended-precision
// reference; and sinq(-u) is -sinq(u), zeros included.
std::uint32_t ulps4(float a, float b) {  // same sign
    return bits(a) > bits(b) ? bits(a) - bits(b) : bits(b) - bits(a);
}
TEST(Units, RealFourReduction) {
    std::uint64_t s = 29;
    for (int i = 0; i < 4000; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        const float x = std::ldexp(static_cast<float>((s >> 41) | (1u << 23)), 7 + static_cast<int>(s % 4));
        const std::uint64_t n = static_cast<std::uint64_t>(x) % 360u;
        if (n % 90u == 45u) continue;  // a tie may take either neighbour
        const float small = static_cast<float>(n);
        for (int f = 0; f < 2; ++f) {
            EXPECT_EQ(bits(call(kDegrees4[f], x)), bits(call(kDegrees4[f], small))) << f << " x=" << x;
            EXPECT_EQ(bits(call(kDegrees4[f], -x)), bits(call(kDegrees4[f], n == 0 ? -360.0f : -small)))
                << f << " x=" << -x;
        }
    }
    const long double pi = 3.14159265358979323846264338327950288L;
    for (long j = 0; j < 186000; j += 373) {
        float x = 45.0f * static_cast<float>(2 * j + 1);
        for (int k = 0; k < 3; ++k) x = std::nextafter(x, 0.0f);
        for (int k = 0; k < 7; ++k, x = std::nextafter(x, 1e30f)) {
            const long double a = std::fmod(static_cast<long double>(x), 360.0L) * (pi / 180);
            EXPECT_LE(ulps4(call(g_sind, x), static_cast<float>(std::sin(a))), 1u) << x;
            EXPECT_LE(ulps4(call(g_cosd, -x), static_cast<float>(std::cos(a))), 1u) << x;
            const float u = x * 0x1p-10f;
            const long double b = std::fmod(static_cast<long double>(u), 4.0L) * (pi / 2);
            if (u != std::floor(u)) {  // integers: exact zeros, checked above
                EXPECT_LE(ulps4(call(g_sinq, u), static_cast<float>(std::sin(b))), 1u) << u;
            }
            EXPECT_EQ(bits(call(g_sinq, -u)), bits(call(g_sinq, u)) ^ 0x80000000u) << u;
            EXPECT_EQ(bits(call(g_cosq, -u)), bits(call(g_cosq, u))) << u;
        }
    }
}

TEST(Units, OddAndEven) {
    std::uint64_t s = 5;
    for (int i = 0; i < 2000; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        const double x = static_cast<double>(s >> 11) * 0x1p-53 * 1000.0 + 0x1p-20;
        for (int f = 0; f < 4; ++f) {
            const double a = call(kQuadrants8[f], x), b = call(kQuadrants8[f], -x);
            EXPECT_EQ(bits(b), f == 1 ? bits(a) : bits(a) ^ kNegZero) << f << " " << x;
            if (std::fmod(x, 90.0) != 45.0) {
                const double c = call(kDegrees8[f], x), d = call(kDegrees8[f], -x);
                EXPECT_EQ(bits(d), f == 1 ? bits(c) : bits(c) ^ kNegZero) << f << " " << x;
            }
        }
    }
}

// The degree forms refuse |x| >= 2.0299994561825997e17, Inf and NaN; the
// quadrant sine and cosine have no limit and no report.
TEST(Units, Refused) {
    RecordingHandler handler;
    const double limit_below = std::nextafter(kLimit, 0.0);
    EXPECT_FALSE(std::isnan(call(g_dsind, limit_below)));
    EXPECT_TRUE(handler.reports().empty());
    for (double x : {kLimit, -kInf, kNaN}) {
        for (Fn8 f : kDegrees8) EXPECT_TRUE(std::isnan(call(f, x))) << x;
        for (Fn4 f : kDegrees4) EXPECT_TRUE(std::isnan(call(f, static_cast<float>(x)))) << x;
    }
    std::vector<std::int32_t> expected;
    for (int i = 0; i < 3; ++i) expected.insert(expected.end(), {1362, 1362, 1364, 1364, 1361, 1361, 1363, 1363});
    EXPECT_EQ(handler.numbers(), expected);
    EXPECT_EQ(handler.reports()[0].shown1<double>(), kLimit);
    EXPECT_EQ(handler.reports()[4].type1, MIVOR_TYPE_REAL4);

    handler.clear();
    jwe_lca.ieee_results = 0;
    EXPECT_EQ(call(g_dsind, kInf), 0x1.6a09e667f3bcdp-1);
    EXPECT_EQ(call(g_dcotd, 1e300), 1.0);
    EXPECT_EQ(bits(call(g_cosd, kInfF)), 0x3F3504F3u);
    EXPECT_EQ(call(g_tand, std::numeric_limits<float>::quiet_NaN()), 1.0f);
    EXPECT_EQ(call(g_dtanq, kInf), 1.0);  // the quadrant tangents report Inf and NaN
    EXPECT_EQ(call(g_cotq, -kInfF), 1.0f);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{1362, 1364, 1361, 1363, 1356, 1355}));

    handler.clear();
    EXPECT_EQ(bits(call(g_dsinq, kInf)), 0x7FF8000000000000u);
    EXPECT_TRUE(std::isnan(call(g_dcosq, kNaN)));
    EXPECT_TRUE(std::isnan(call(g_sinq, -kInfF)));
    EXPECT_EQ(call(g_dsinq, 1e308), 0.0);
    EXPECT_TRUE(handler.reports().empty());
}

// Poles: tan at odd right angles, cot at even ones: reported, +Inf or the
// finite substitute whatever the side; a retry computes the corrected one.
TEST(Units, Poles) {
    RecordingHandler handler;
    EXPECT_EQ(call(g_dtand, 90.0), kInf);
    EXPECT_EQ(call(g_dtand, -270.0), kInf);
    EXPECT_EQ(call(g_dcotd, -0.0), kInf);
    EXPECT_EQ(call(g_dcotd, 1.8e17), kInf);  // 1.8e17 = 2 10^15 180
    EXPECT_EQ(call(g_dtanq, -3.0), kInf);
    EXPECT_EQ(call(g_dcotq, 1e300), kInf);
    EXPECT_EQ(call(g_tand, 450.0f), kInfF);
    EXPECT_EQ(call(g_cotq, 2.0f), kInfF);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{1366, 1366, 1366, 1366, 1356, 1356, 1365, 1355}));
    EXPECT_EQ(handler.reports()[1].shown1<double>(), -270.0);
    EXPECT_EQ(handler.reports()[1].count, 1u);

    jwe_lca.ieee_results = 0;
    EXPECT_EQ(bits(call(g_dcotd, 180.0)), kHuge);
    EXPECT_EQ(bits(call(g_cotd, -360.0f)), 0x7F7FFFEEu);
    EXPECT_EQ(bits(call(g_dtanq, -1.0)), kHuge);

    int calls = 0;
    handler.decide([&](const Report& r, jwe_control_area& a) {
        ++calls;
        if (r.type1 == MIVOR_TYPE_REAL8) *static_cast<double*>(a.first_operand) = calls == 1 ? 270.0 : 45.0;
        else *static_cast<float*>(a.first_operand) = 0.5f;
        return true;
    });
    handler.clear();
    EXPECT_EQ(call(g_dtand, 90.0), 1.0);  // 90 -> 270 (a pole again) -> 45
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{1366, 1366}));
    EXPECT_EQ(call(g_tanq, 1.0f), 1.0f);
}

// Next to the poles the tangent is the reciprocal of a tiny reduced angle:
// its relative accuracy is that of the reduction, which is exact here.
TEST(Units, NextToPoles) {
    EXPECT_LE(ulps(call(g_dtand, 0x1.67ffffffffffdp+6), 0x1.3193d66ed2bfap+50), 1u);  // 90 - 3 ulp
    // tanq(1 - 2^-40) = cot(2^-40 pi/2), cotq(2^-1000) = cot(2^-1000 pi/2).
    EXPECT_LE(ulps(call(g_dtanq, 1.0 - 0x1p-40), 0x1.45f306dc9c883p+39), 1u);
    EXPECT_LE(ulps(call(g_dcotq, 0x1p-1000), 0x1.45f306dc9c883p+999), 1u);
    EXPECT_EQ(call(g_dcotd, 0x1p-1074), kInf);  // 57.3/2^-1074 overflows, unreported
}

}  // namespace
