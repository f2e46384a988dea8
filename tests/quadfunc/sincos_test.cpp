// REAL(16) sine, cosine, tangent and cotangent in radians through the
// exports: zeros, correctly rounded values up to the largest argument and
// next to multiples of pi/2, symmetries, the refusals and the cotangent's
// pole with a correcting handler and both fallbacks.
#include <gtest/gtest.h>

#include <vector>

#include "quadfunc/quad_support.h"

namespace {

using namespace mivor::testing;

constexpr mivor_real16 kPiQ = q(0x4000921F, 0xB54442D1, 0x8469898C, 0xC51701B8);
constexpr mivor_real16 kPiOver2Q = q(0x3FFF921F, 0xB54442D1, 0x8469898C, 0xC51701B8);
constexpr mivor_real16 kSqrtHalfQ = q(0x3FFE6A09, 0xE667F3BC, 0xC908B2FB, 0x1366EA95);
constexpr mivor_real16 k1e300 = q(0x43E37E43, 0xC8800759, 0xBA59C08E, 0x14C7CD7B);
constexpr mivor_real16 k1e4000 = q(0x73E6A375, 0x0647FCAB, 0x18C21AB9, 0x05450CC3);
constexpr mivor_real16 k1e22 = q(0x40480F0C, 0xF064DD59, 0x20000000, 0x00000000);

TEST(QuadSinCos, ZerosAndCorrectlyRoundedValues) {
    RecordingHandler handler;
    EXPECT_Q(call(g_qsin, kMZero), kMZero);
    EXPECT_Q(call(g_qtan, kMZero), kMZero);
    EXPECT_Q(call(g_qcos, kMZero), kOne);
    // MPFR, 113 bits, to nearest.
    EXPECT_Q(call(g_qsin, kOne), q(0x3FFEAED5, 0x48F090CE, 0xE0418DD3, 0xD2138A1E));
    EXPECT_Q(call(g_qcos, kOne), q(0x3FFE14A2, 0x80FB5068, 0xB923848C, 0xDB2ED0E3));
    EXPECT_Q(call(g_qtan, kOne), q(0x3FFF8EB2, 0x45CBEE3A, 0x5B8ACC7D, 0x41323141));
    EXPECT_Q(call(g_qcotan, kOne), q(0x3FFE48C0, 0x5D04E1CF, 0xD83453B2, 0xB74303D6));
    // Next to multiples of pi/2 the results are the tiny distances to them.
    EXPECT_Q(call(g_qsin, kPiQ), q(0x3F8DCD12, 0x9024E088, 0xA67CC740, 0x20BBEA64));
    EXPECT_Q(call(g_qcos, kPiOver2Q), q(0x3F8CCD12, 0x9024E088, 0xA67CC740, 0x20BBEA64));
    EXPECT_Q(call(g_qtan, kPiOver2Q), q(0x40711C46, 0xBD572779, 0x93A2EE60, 0x193C957B));
    // Large arguments are reduced exactly, up to HUGE.
    EXPECT_Q(call(g_qsin, k1e22), q(0xBFFEB453, 0xAB76BF39, 0x70FA29BC, 0x83B9323E));
    EXPECT_Q(call(g_qtan, k1e300), q(0x4000F089, 0x23483293, 0xC70F2F4C, 0xE3C0D468));
    EXPECT_Q(call(g_qcos, k1e4000), q(0xBFFEDE45, 0x7E6279AA, 0x1077024A, 0x8B3C7305));
    EXPECT_Q(call(g_qsin, kHugeQ), q(0x3FFEE761, 0x623DB0B6, 0xFFC87A22, 0x04A2B017));
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadSinCos, OddAndEvenFunctionsAndTheQuadrants) {
    // sin(-x) = -sin x bit for bit, cos(-x) = cos x; over a spread of
    // magnitudes every quadrant of the reduction comes up.
    std::uint64_t s = 11;
    for (int i = 0; i < 3000; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        const mivor_real16 x = q(0x3FC00000u + static_cast<std::uint32_t>(s >> 40) % 0x01000000u,
                                 static_cast<std::uint32_t>(s), static_cast<std::uint32_t>(s >> 17), 0x5A5A5A5Au);
        ASSERT_Q(call(g_qsin, neg(x)), neg(call(g_qsin, x)));
        ASSERT_Q(call(g_qcos, neg(x)), call(g_qcos, x));
        ASSERT_Q(call(g_qtan, neg(x)), neg(call(g_qtan, x)));
        ASSERT_Q(call(g_qcotan, neg(x)), neg(call(g_qcotan, x)));
    }
    // sin(x + pi) for x a multiple of pi/2 away: the shifted values agree
    // with the quadrant rule to within the rounding of the shifted argument.
    const mivor_real16 x = qd(0.3);
    mivor_real16 shifted;
    g_aqaq(&shifted, &x, &kPiQ);
    EXPECT_LE(ulps(call(g_qsin, shifted), neg(call(g_qsin, x))), 2u);
    EXPECT_LE(ulps(call(g_qcos, shifted), neg(call(g_qcos, x))), 2u);
}

TEST(QuadSinCos, RefusedArgumentsAreReported) {
    RecordingHandler handler;
    struct Case {
        Q1 f;
        int number;
        mivor_real16 substitute;
    };
    const Case cases[] = {{g_qsin, 204, kSqrtHalfQ}, {g_qcos, 204, kSqrtHalfQ}, {g_qtan, 215, kOne},
                          {g_qcotan, 215, kOne}};
    for (const Case& c : cases) {
        for (const mivor_real16& x : {kInfQ, kMInfQ, kNaNQ, q(0x7FFF0000, 0, 0, 1)}) {
            handler.clear();
            jwe_lca.ieee_results = 1;
            EXPECT_Q(call(c.f, x), kNaNQ);
            jwe_lca.ieee_results = 0;
            EXPECT_Q(call(c.f, x), c.substitute);
            ASSERT_EQ(handler.reports().size(), 2u);
            expect_report(handler.reports()[1], c.number, x);
        }
    }
}

TEST(QuadSinCos, CotangentPoleAndOverflow) {
    RecordingHandler handler;
    // Zero, and subnormal arguments whose reciprocal exceeds HUGE.
    for (const mivor_real16& x : {kZero, kMZero, q(0, 0, 0, 1), q(0x80000000, 0, 0, 7), q(0x00004000)}) {
        handler.clear();
        jwe_lca.ieee_results = 1;
        EXPECT_Q(call(g_qcotan, x), kInfQ);
        jwe_lca.ieee_results = 0;
        EXPECT_Q(call(g_qcotan, x), kHugeQ);
        ASSERT_EQ(handler.reports().size(), 2u);
        expect_report(handler.reports()[0], 216, x);
    }
    // 2^-16384 (just above) overflows (is finite).
    handler.clear();
    const mivor_real16 r = call(g_qcotan, q(0x00004001));
    EXPECT_EQ(r.w[3] >> 16, 0x7FFEu);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadSinCos, RetryStartsAgainWithTheCorrectedArgument) {
    RecordingHandler handler(correct_to(kOne));
    EXPECT_Q(call(g_qsin, kInfQ), call(g_qsin, kOne));
    handler.decide(correct_to(kOne));
    EXPECT_Q(call(g_qcos, kNaNQ), call(g_qcos, kOne));
    // The cotangent's first correction is another pole, the second 1.
    int n = 0;
    handler.decide([&n](const Report& r, jwe_control_area&) {
        const mivor_real16 v = ++n == 1 ? kMZero : kOne;
        std::memcpy(r.first_operand, &v, sizeof v);
        return true;
    });
    mivor_real16 x = kZero;
    EXPECT_EQ(g_qcotan(&x, &x), &x);
    EXPECT_Q(x, call(g_qcotan, kOne));
    handler.decide(correct_to(kPiQ));
    EXPECT_Q(call(g_qtan, kMInfQ), call(g_qtan, kPiQ));
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{204, 204, 216, 216, 215}));
}

TEST(QuadSinCos, ResultMayShareTheArgument) {
    for (Q1 f : {g_qsin, g_qcos, g_qtan, g_qcotan}) {
        mivor_real16 x = k1e300;
        const mivor_real16 expected = call(f, x);
        EXPECT_EQ(f(&x, &x), &x);
        EXPECT_Q(x, expected);
    }
}

}  // namespace
