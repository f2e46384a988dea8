// COMPLEX(16) abs, sqrt, exp, log, sin, cos and the quadrant forms through
// the exports (every flavour): agreement with the REAL(16) functions on
// the axes, exact values, identities that tie the functions together, the
// C99 special values, and the reports with their fallbacks and retries.
// The accuracy against MPFR: `mivor accuracy g_cq...` (tests/tools).
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "quadfunc/quad_support.h"

namespace mivor::testing {
namespace {

using C1 = mivor_complex16* (*)(mivor_complex16*, const mivor_complex16*);

mivor_complex16 cc(const mivor_real16& re, const mivor_real16& im) { return {re, im}; }
using testing::call;
mivor_complex16 call(C1 f, const mivor_complex16& z) {
    mivor_complex16 r;
    EXPECT_EQ(f(&r, &z), &r);
    return r;
}
mivor_real16 abs_of(const mivor_complex16& z) {
    mivor_real16 r;
    EXPECT_EQ(g_cqabs(&r, &z), &r);
    return r;
}
mivor_complex16 mul(const mivor_complex16& a, const mivor_complex16& b) {
    mivor_complex16 r;
    g_azmz(&r, &a, &b);
    return r;
}
mivor_real16 qmul(const mivor_real16& a, const mivor_real16& b) {
    mivor_real16 r;
    g_aqmq(&r, &a, &b);
    return r;
}
constexpr mivor_real16 kHalfPi = q(0x3FFF921Fu, 0xB54442D1u, 0x8469898Cu, 0xC51701B8u);
constexpr mivor_real16 kPi = q(0x4000921Fu, 0xB54442D1u, 0x8469898Cu, 0xC51701B8u);
mivor_real16 sub(const mivor_real16& a, const mivor_real16& b) {
    mivor_real16 r;
    g_aqsq(&r, &a, &b);
    return r;
}

// Both parts within `n` ulps of the larger part's magnitude.
::testing::AssertionResult near_z(const mivor_complex16& a, const mivor_complex16& b, double n) {
    const mivor_real16 big = dq(abs_of(b)) > 0 ? abs_of(b) : kOne;
    const mivor_real16 d[2] = {sub(a.re, b.re), sub(a.im, b.im)};
    for (const auto& x : d) {
        const double ratio = std::abs(dq(x) / dq(big));
        if (!(ratio <= n * 0x1p-112)) {
            return ::testing::AssertionFailure() << "(" << hex(a.re) << ", " << hex(a.im) << ") vs (" << hex(b.re) << ", "
                                                 << hex(b.im) << "): " << ratio / 0x1p-112 << " ulps";
        }
    }
    return ::testing::AssertionSuccess();
}

mivor_real16 random_q(std::mt19937_64& g, double lo, double hi) {
    return qd(std::uniform_real_distribution<double>(lo, hi)(g));
}

TEST(QuadComplex, OnTheAxesTheRealFunctionsBits) {
    for (double d : {1e-30, 0.25, 1.0, 3.0, 100.0, 11000.0}) {
        const mivor_real16 x = qd(d), mx = neg(x);
        for (const mivor_real16& zero : {kZero, kMZero}) {
            mivor_complex16 r = call(g_cqexp, cc(mx, zero));
            EXPECT_Q(r.re, call(g_qexp, mx));
            EXPECT_Q(r.im, zero);
            r = call(g_cqlog, cc(x, zero));
            EXPECT_Q(r.re, call(g_qlog, x));
            EXPECT_Q(r.im, zero);
            r = call(g_cqsqrt, cc(x, zero));
            EXPECT_Q(r.re, call(g_qsqrt, x));
            EXPECT_Q(r.im, zero);
            r = call(g_cqsqrt, cc(mx, zero));  // the root on the imaginary axis, y's side
            EXPECT_Q(r.re, kZero);
            EXPECT_Q(r.im, zero.w[3] ? neg(call(g_qsqrt, x)) : call(g_qsqrt, x));
            EXPECT_Q(call(g_cqsin, cc(mx, zero)).re, call(g_qsin, mx));
            EXPECT_Q(call(g_cqcos, cc(mx, zero)).re, call(g_qcos, mx));
            EXPECT_Q(call(g_cqsinq, cc(x, zero)).re, call(g_qsinq, x));
            EXPECT_Q(call(g_cqcosq, cc(x, zero)).re, call(g_qcosq, x));
            EXPECT_Q(abs_of(cc(mx, zero)), x);
            EXPECT_Q(abs_of(cc(zero, mx)), x);
        }
        // Imaginary arguments: sin(iy) = i sinh y, cos(iy) = cosh y.
        if (d < 1e4) {
            const mivor_complex16 s = call(g_cqsin, cc(kZero, x)), c = call(g_cqcos, cc(kZero, x));
            EXPECT_Q(s.re, kZero);
            EXPECT_LE(ulps(s.im, call(g_qsinh, x)), 1u) << d;
            EXPECT_LE(ulps(c.re, call(g_qcosh, x)), 1u) << d;
            EXPECT_Q(c.im, kMZero);
            EXPECT_Q(call(g_cqlog, cc(mx, kZero)).im, kPi);
        }
    }
}

TEST(QuadComplex, ExactValues) {
    EXPECT_Q(abs_of(cc(qd(3), qd(-4))), qd(5));
    const mivor_complex16 r = call(g_cqsqrt, cc(qd(-3), qd(-4)));  // (1 - 2i)^2
    EXPECT_Q(r.re, qd(1));
    EXPECT_Q(r.im, qd(-2));
    const mivor_complex16 s = call(g_cqsqrt, cc(qd(0), qd(8)));
    EXPECT_Q(s.re, qd(2));
    EXPECT_Q(s.im, qd(2));
    // Quadrants: exact zeros and ones at integers, whatever y is.
    const mivor_complex16 a = call(g_cqsinq, cc(qd(2), qd(0.75)));
    EXPECT_EQ(a.re.w[3] & 0x7FFFFFFFu, 0u);
    EXPECT_LE(ulps(neg(a.im), call(g_qsinh, qmul(qd(0.75), kHalfPi))), 2u);
    const mivor_complex16 b = call(g_cqcosq, cc(qd(-1), qd(3)));
    EXPECT_EQ(b.re.w[3] & 0x7FFFFFFFu, 0u);
    // cos(1 + 0i) quadrants: (0, -0 sinh 0); sin(1 + 0i): (1, 0).
    EXPECT_Q(call(g_cqsinq, cc(qd(1), kZero)).re, kOne);
    // |z| = 1 exactly: log has a zero real part; log i = i pi/2.
    EXPECT_Q(call(g_cqlog, cc(kZero, kOne)).re, kZero);
    EXPECT_Q(call(g_cqlog, cc(kZero, kOne)).im, kHalfPi);
}

TEST(QuadComplex, LogNearTheUnitCircleKeepsEveryDigit) {
    // ln|1 + i 2^-60| = ln(1 + 2^-120)/2 = 2^-121 - 2^-242 + ...: a sum of
    // squares rounded to REAL(16) first would give 0.
    EXPECT_Q(call(g_cqlog, cc(kOne, pow2q(-60))).re, pow2q(-121));
    // (1 - 2^-113)^2 + (2^-56)^2 = 1 - 2^-112 + 2^-226 + 2^-112: 2^-226,
    // and the real part is 2^-227 (less 2^-340, far below its last place).
    const mivor_real16 below_one = q(0x3FFEFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu);
    EXPECT_Q(call(g_cqlog, cc(below_one, pow2q(-56))).re, pow2q(-227));
}

TEST(QuadComplex, IdentitiesHold) {
    std::mt19937_64 g(41);
    for (int i = 0; i < 300; ++i) {
        const mivor_complex16 z = cc(random_q(g, -3, 3), random_q(g, -3, 3));
        // exp(log z) = z; sqrt(z)^2 = z; |sqrt z|^2 = |z|.
        EXPECT_TRUE(near_z(call(g_cqexp, call(g_cqlog, z)), z, 8));
        const mivor_complex16 r = call(g_cqsqrt, z);
        EXPECT_TRUE(near_z(mul(r, r), z, 4));
        EXPECT_EQ(r.re.w[3] >> 31, 0u);
        // sin^2 + cos^2 = 1, and the quadrant forms are sin(z pi/2).
        const mivor_complex16 s = call(g_cqsin, z), c = call(g_cqcos, z);
        mivor_complex16 one = mul(s, s), c2 = mul(c, c);
        g_aqaq(&one.re, &one.re, &c2.re);
        g_aqaq(&one.im, &one.im, &c2.im);
        const double scale = dq(abs_of(mul(s, s)));
        EXPECT_TRUE(near_z(one, cc(kOne, kZero), 8 * (scale > 1 ? scale : 1)));
        const mivor_complex16 zq{qmul(z.re, kHalfPi), qmul(z.im, kHalfPi)};
        // z pi/2 rounded moves the reference by up to |z| 2^-113 times
        // the derivative.
        EXPECT_TRUE(near_z(call(g_cqsinq, z), call(g_cqsin, zq), 16));
        EXPECT_TRUE(near_z(call(g_cqcosq, z), call(g_cqcos, zq), 16));
    }
}

// C99 Annex G values where no report decides (and, with IEEE results on,
// where one does): one row per case, NaN parts compared by kind.
TEST(QuadComplex, SpecialValues) {
    const mivor_real16 I = kInfQ, mI = kMInfQ, N = kNaNQ, z = kZero, mz = kMZero, one = kOne, two = qd(2);
    struct Row {
        C1 f;
        mivor_real16 x, y, re, im;
    };
    const mivor_real16 quarter_pi = q(0x3FFE921Fu, 0xB54442D1u, 0x8469898Cu, 0xC51701B8u);
    const mivor_real16 three_quarter_pi = q(0x40002D97u, 0xC7F3321Du, 0x234F2729u, 0x93D1414Au);
    const Row rows[] = {
        {g_cqsqrt, z, mz, z, mz},    {g_cqsqrt, mz, z, z, z},     {g_cqsqrt, N, I, I, I},
        {g_cqsqrt, one, mI, I, mI},  {g_cqsqrt, mI, two, z, I},   {g_cqsqrt, I, mz, I, mz},
        {g_cqsqrt, mI, N, N, I},     {g_cqsqrt, I, N, I, N},      {g_cqsqrt, N, one, N, N},
        {g_cqexp, mI, two, mz, z},   {g_cqexp, N, mz, N, mz},     {g_cqexp, N, one, N, N},
        {g_cqexp, one, I, N, N},     {g_cqexp, I, N, I, N},       {g_cqexp, mI, I, z, z},
        {g_cqlog, mI, two, I, kPi},  {g_cqlog, I, neg(two), I, mz},     {g_cqlog, one, mI, I, neg(kHalfPi)},
        {g_cqlog, mI, I, I, three_quarter_pi}, {g_cqlog, I, I, I, quarter_pi}, {g_cqlog, N, I, I, N},
        {g_cqlog, I, N, I, N},       {g_cqlog, N, one, N, N},     {g_cqlog, mz, mz, mI, neg(kPi)},
        {g_cqsin, mz, I, mz, I},     {g_cqsin, one, N, N, N},     {g_cqsin, z, N, z, N},
        {g_cqsin, I, z, N, z},       {g_cqsin, I, I, N, I},       {g_cqsin, N, mI, N, mI},
        {g_cqcos, z, I, I, mz},      {g_cqcos, z, N, N, mz},      {g_cqcos, I, I, I, N},
        {g_cqcos, N, one, N, N},     {g_cqsinq, two, N, mz, N},   {g_cqcosq, one, I, mz, mI},
    };
    RecordingHandler handler;  // declines: the IEEE fallback where a row reports
    for (const Row& r : rows) {
        const mivor_complex16 v = call(r.f, cc(r.x, r.y));
        for (int part = 0; part < 2; ++part) {
            const mivor_real16& got = part ? v.im : v.re;
            const mivor_real16& want = part ? r.im : r.re;
            if (is_nan(want)) EXPECT_TRUE(is_nan(got)) << hex(r.x) << ", " << hex(r.y) << " part " << part;
            else EXPECT_Q(got, want) << hex(r.x) << ", " << hex(r.y) << " part " << part;
        }
    }
    EXPECT_Q(abs_of(cc(N, mI)), kInfQ);
    EXPECT_TRUE(is_nan(abs_of(cc(one, N))));
    EXPECT_Q(abs_of(cc(mz, z)), kZero);
    // |z| past HUGE is +Inf, unreported; parts past HUGE squared are not.
    EXPECT_Q(abs_of(cc(kHugeQ, kHugeQ)), kInfQ);
    EXPECT_Q(abs_of(cc(kHugeQ, one)), kHugeQ);
}

// What each report shows: the number, the part that decided (type 11) and
// both fallbacks; a handler's correction of that part restarts the whole
// computation.
TEST(QuadComplex, ReportsDescribeTheDecidingPart) {
    const mivor_real16 I = kInfQ;
    struct Case {
        C1 f;
        mivor_complex16 z;
        std::int32_t number;
        bool second;  // the imaginary part is described
    };
    const Case cases[] = {
        {g_cqexp, cc(kOne, I), 236, true},      {g_cqexp, cc(qd(12000), kOne), 237, false},
        {g_cqsin, cc(I, kOne), 209, false},     {g_cqsin, cc(kOne, qd(12000)), 210, true},
        {g_cqcos, cc(kNaNQ, kOne), 209, false}, {g_cqcos, cc(kOne, kMInfQ), 210, true},
        {g_cqsinq, cc(I, kOne), 1411, false},   {g_cqcosq, cc(qd(0.5), qd(-8000)), 1412, true},
    };
    for (const Case& c : cases) {
        RecordingHandler handler;
        jwe_lca.ieee_results = 1;
        const mivor_complex16 ieee = call(c.f, c.z);
        jwe_lca.ieee_results = 0;
        const mivor_complex16 finite = call(c.f, c.z);
        ASSERT_EQ(handler.reports().size(), 2u) << c.number;
        expect_report(handler.reports()[0], c.number, c.second ? c.z.im : c.z.re);
        // The overflows: +-Inf parts, or +-HUGE in their place.
        if (c.number == 237 || c.number == 210 || c.number == 1412) {
            EXPECT_EQ(ieee.re.w[3] & 0x7FFFFFFFu, 0x7FFF0000u) << c.number;
            EXPECT_EQ(finite.re.w[3] & 0x7FFFFFFFu, 0x7FFEFFFFu) << c.number;
        } else {
            EXPECT_TRUE(is_nan(ieee.re)) << c.number;
            EXPECT_FALSE(is_nan(finite.re)) << c.number;
        }
    }
    // The refused part's substitute: the formula with sqrt(1/2) for the
    // circular factors: exp(1 + i Inf) gives e sqrt(1/2) twice.
    {
        RecordingHandler handler;
        jwe_lca.ieee_results = 0;
        const mivor_complex16 r = call(g_cqexp, cc(kOne, I));
        const mivor_real16 e_half = qmul(call(g_qexp, kOne), q(0x3FFE6A09u, 0xE667F3BCu, 0xC908B2FBu, 0x1366EA95u));
        EXPECT_LE(ulps(r.re, e_half), 1u);
        EXPECT_Q(r.im, r.re);
        jwe_lca.ieee_results = 1;
    }
    // log(0): both parts described; -Inf or -HUGE.
    {
        RecordingHandler handler;
        EXPECT_Q(call(g_cqlog, cc(kMZero, kZero)).re, kMInfQ);
        jwe_lca.ieee_results = 0;
        EXPECT_Q(call(g_cqlog, cc(kMZero, kZero)).re, kMHugeQ);
        jwe_lca.ieee_results = 1;
        ASSERT_EQ(handler.reports().size(), 2u);
        const Report& r = handler.reports()[0];
        EXPECT_EQ(r.number, 249);
        EXPECT_EQ(r.count, 2u);
        EXPECT_EQ(r.type2, MIVOR_TYPE_REAL16);
        EXPECT_Q(r.shown1<mivor_real16>(), kMZero);
        EXPECT_Q(r.shown2<mivor_real16>(), kZero);
    }
}

TEST(QuadComplex, RetryRestartsWithTheCorrectedPart) {
    // log(0) corrected to log(e + 0i) = (ln e, 0).
    const mivor_real16 e = call(g_qexp, kOne);
    RecordingHandler handler(correct_to(e));
    const mivor_complex16 l = call(g_cqlog, cc(kZero, kZero));
    EXPECT_Q(l.re, call(g_qlog, e));
    EXPECT_Q(l.im, kZero);
    // exp(1 + i Inf) with the imaginary part corrected to 0: (e, 0).
    handler.clear();
    handler.decide([](const Report& r, jwe_control_area&) {
        std::memcpy(r.second_operand, &kZero, sizeof kZero);
        return true;
    });
    const mivor_complex16 ez = call(g_cqexp, cc(kOne, kInfQ));
    EXPECT_Q(ez.re, e);
    EXPECT_Q(ez.im, kZero);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{236}));
    // sin(Inf + i) corrected first to NaN (refused again), then to 0.
    int n = 0;
    handler.clear();
    handler.decide([&](const Report& r, jwe_control_area&) {
        const mivor_real16 v = ++n == 1 ? kNaNQ : kZero;
        std::memcpy(r.first_operand, &v, sizeof v);
        return true;
    });
    const mivor_complex16 s = call(g_cqsin, cc(kInfQ, kOne));
    EXPECT_Q(s.re, kZero);
    EXPECT_Q(s.im, call(g_qsinh, kOne));
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{209, 209}));
}

}  // namespace
}  // namespace mivor::testing
