// REAL(16) exponentials and logarithms through the exports: exact results,
// correctly rounded values at known hard points, the ends of the range,
// the reports with a correcting handler and both fallbacks, and operands
// shared with the result.
#include <gtest/gtest.h>

#include <vector>

#include "quadfunc/quad_support.h"

namespace {

using namespace mivor::testing;

// Correctly rounded values (MPFR, 113 bits, to nearest).
constexpr mivor_real16 kE = q(0x40005BF0, 0xA8B14576, 0x95355FB8, 0xAC404E7A);
constexpr mivor_real16 kInvE = q(0x3FFD78B5, 0x6362CEF3, 0x7C6AEB7B, 0x1E0A4154);
constexpr mivor_real16 kLn2 = q(0x3FFE62E4, 0x2FEFA39E, 0xF35793C7, 0x673007E6);
constexpr mivor_real16 kLn10 = q(0x400026BB, 0x1BBB5551, 0x582DD4AD, 0xAC5705A6);
constexpr mivor_real16 kSqrt2 = q(0x3FFF6A09, 0xE667F3BC, 0xC908B2FB, 0x1366EA95);
constexpr mivor_real16 kLog10of3 = q(0x3FFDE892, 0x7964FD5F, 0xD08C3034, 0x3A821A24);
constexpr mivor_real16 kLog2of3 = q(0x3FFF95C0, 0x1A39FBD6, 0x879FA00B, 0x120A068C);
// ln(HUGE) lies between these two: the first is the largest argument of
// e^x that does not overflow.
constexpr mivor_real16 kExpLast = q(0x400C62E4, 0x2FEFA39E, 0xF35793C7, 0x673007E5);
constexpr mivor_real16 kExpFirstOver = q(0x400C62E4, 0x2FEFA39E, 0xF35793C7, 0x673007E6);

// ---- exponentials -----------------------------------------------------------

TEST(QuadExp, ExactResults) {
    RecordingHandler handler;
    EXPECT_Q(call(g_qexp, kZero), kOne);
    EXPECT_Q(call(g_qexp, kMZero), kOne);
    for (int k = -16382; k <= 16383; ++k) ASSERT_Q(call(g_qexp2, qd(k)), pow2q(k));
    // 10^k is exact up to 10^48 (5^48 < 2^113); products by 10 are exact
    // there too.
    mivor_real16 ten = qd(10.0), p = kOne;
    for (int k = 0; k <= 48; ++k) {
        ASSERT_Q(call(g_qexp10, qd(k)), p);
        g_aqmq(&p, &p, &ten);
    }
    // 10^49 = 5^49 2^49 with 5^49 of 114 bits: a tie, rounded to even.
    EXPECT_Q(call(g_qexp10, qd(49)), q(0x40A1B5E7, 0xE08CA3A8, 0xF6987819, 0xBAECBE22));
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadExp, CorrectlyRoundedAtKnownPoints) {
    EXPECT_Q(call(g_qexp, kOne), kE);
    EXPECT_Q(call(g_qexp, neg(kOne)), kInvE);
    EXPECT_Q(call(g_qexp2, qd(0.5)), kSqrt2);
    // 1 + x + x^2/2 is a tie for x = +-2^-56: only x^3/6 decides.
    EXPECT_Q(call(g_qexp, pow2q(-56)), q(0x3FFF0000, 0x00000000, 0x01000000, 0x00000001));
    EXPECT_Q(call(g_qexp, neg(pow2q(-56))), q(0x3FFEFFFF, 0xFFFFFFFF, 0xFE000000, 0x00000001));
    EXPECT_Q(call(g_qexp, qd(11356.5)), q(0x7FFEF427, 0xB74653BA, 0xED196748, 0x0B308DEF));
    EXPECT_Q(call(g_qexp, qd(-11355.0)), q(0x0001259E, 0xF1570032, 0xB38931DF, 0x9C2DC574));
    // Arguments too small to move the result off 1, either side.
    EXPECT_Q(call(g_qexp, pow2q(-200)), kOne);
    EXPECT_Q(call(g_qexp, neg(pow2q(-200))), kOne);
    EXPECT_Q(call(g_qexp2, q(0x00000001)), kOne);  // subnormal argument
}

TEST(QuadExp, TinyResultsAreZeroWithoutReport) {
    RecordingHandler handler;
    EXPECT_Q(call(g_qexp, kMInfQ), kZero);
    EXPECT_Q(call(g_qexp2, kMInfQ), kZero);
    EXPECT_Q(call(g_qexp10, kMInfQ), kZero);
    // 2^-16382 is the smallest result; below it no subnormals.
    EXPECT_Q(call(g_qexp2, qd(-16382)), pow2q(-16382));
    EXPECT_Q(call(g_qexp2, qd(-16382.5)), kZero);
    EXPECT_Q(call(g_qexp, qd(-11355.2)), kZero);
    EXPECT_Q(call(g_qexp10, qd(-4932.0)), kZero);
    EXPECT_Q(call(g_qexp, qd(-1e6)), kZero);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadExp, NaNComesBackQuietedUnreported) {
    RecordingHandler handler;
    const mivor_real16 snan = q(0x7FFF0000, 0, 0, 1), payload = q(0xFFFF8000, 0, 0x1234, 0);
    for (Q1 f : {g_qexp, g_qexp2, g_qexp10}) {
        EXPECT_Q(call(f, snan), q(0x7FFF8000, 0, 0, 1));
        EXPECT_Q(call(f, payload), payload);
    }
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadExp, OverflowIsReportedWithBothFallbacks) {
    struct Case {
        Q1 f;
        int number;
        mivor_real16 last, first_over;
    };
    const Case cases[] = {
        {g_qexp, 231, kExpLast, kExpFirstOver},
        {g_qexp2, 240, q(0x400CFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF), qd(16384.0)},
        // log10(HUGE) = 4932.0754489586679...
        {g_qexp10, 243, qd(4932.0754), qd(4932.0755)},
    };
    for (const Case& c : cases) {
        RecordingHandler handler;
        const mivor_real16 r = call(c.f, c.last);
        EXPECT_FALSE(same(r, kInfQ));
        EXPECT_EQ(r.w[3] >> 16, 0x7FFEu) << c.number;
        EXPECT_TRUE(handler.reports().empty());
        for (const mivor_real16& x : {c.first_over, qd(1e5), kInfQ}) {
            handler.clear();
            jwe_lca.ieee_results = 1;
            EXPECT_Q(call(c.f, x), kInfQ);
            jwe_lca.ieee_results = 0;
            EXPECT_Q(call(c.f, x), kHugeQ);
            ASSERT_EQ(handler.reports().size(), 2u);
            expect_report(handler.reports()[0], c.number, x);
        }
    }
}

TEST(QuadExp, RetryStartsAgainWithTheCorrectedArgument) {
    // First correction still overflows (reported again), the second is 1.
    int n = 0;
    RecordingHandler handler([&](const Report& r, jwe_control_area&) {
        const mivor_real16 v = ++n == 1 ? qd(20000.0) : kOne;
        std::memcpy(r.first_operand, &v, sizeof v);
        return true;
    });
    const mivor_real16 x = qd(12000.0);
    EXPECT_Q(call(g_qexp, x), kE);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{231, 231}));
    handler.clear();
    handler.decide(correct_to(qd(3.0)));
    EXPECT_Q(call(g_qexp2, kInfQ), qd(8.0));
    handler.decide(correct_to(qd(-2.0)));
    EXPECT_Q(call(g_qexp10, qd(5000.0)), call(g_qexp10, qd(-2.0)));
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{240, 243}));
}

TEST(QuadExp, ResultMayShareTheArgument) {
    for (Q1 f : {g_qexp, g_qexp2, g_qexp10}) {
        mivor_real16 x = qd(1.375);
        const mivor_real16 expected = call(f, x);
        EXPECT_EQ(f(&x, &x), &x);
        EXPECT_Q(x, expected);
    }
}

// ---- logarithms -------------------------------------------------------------

TEST(QuadLog, ExactResults) {
    RecordingHandler handler;
    EXPECT_Q(call(g_qlog, kOne), kZero);
    EXPECT_Q(call(g_qlog2, kOne), kZero);
    EXPECT_Q(call(g_qlog10, kOne), kZero);
    for (int k = -16382; k <= 16383; ++k) ASSERT_Q(call(g_qlog2, pow2q(k)), qd(k));
    // Subnormal arguments are read at their value: 2^-16494 is the least.
    EXPECT_Q(call(g_qlog2, q(0, 0, 0, 1)), qd(-16494));
    EXPECT_Q(call(g_qlog2, q(0x00008000)), qd(-16383));
    mivor_real16 ten = qd(10.0), p = kOne;
    for (int k = 0; k <= 48; ++k) {
        ASSERT_Q(call(g_qlog10, p), qd(k));
        g_aqmq(&p, &p, &ten);
    }
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadLog, CorrectlyRoundedAtKnownPoints) {
    EXPECT_Q(call(g_qlog, qd(2.0)), kLn2);
    EXPECT_Q(call(g_qlog, qd(10.0)), kLn10);
    // kE lies below e by more than 2^-114 e: its logarithm is just below 1.
    EXPECT_Q(call(g_qlog, kE), q(0x3FFEFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF));
    EXPECT_Q(call(g_qlog10, qd(3.0)), kLog10of3);
    EXPECT_Q(call(g_qlog2, qd(3.0)), kLog2of3);
    // ln(1 + 6 2^-112): z - z^2/2 is a tie, decided by z^3/3.
    EXPECT_Q(call(g_qlog, q(0x3FFF0000, 0, 0, 6)), q(0x3F917FFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFC));
    // The largest finite argument and the least subnormal.
    EXPECT_EQ(dq(call(g_qlog, kHugeQ)), 11356.523406294144);
    EXPECT_NEAR(dq(call(g_qlog, q(0, 0, 0, 1))), -16494 * 0.6931471805599453, 1e-11);
}

TEST(QuadLog, InverseOfTheExponentials) {
    // exp(log x) and log(exp x) within a unit or two of x over wide ranges:
    // both directions, every table row and both forms of the logarithm.
    std::uint64_t s = 7;
    auto next = [&s] {
        s = s * 6364136223846793005u + 1442695040888963407u;
        return s;
    };
    for (int i = 0; i < 4000; ++i) {
        const mivor_real16 x = q(0x3FF00000u + static_cast<std::uint32_t>(next() >> 44) % 0x200000u,
                                 static_cast<std::uint32_t>(next()), static_cast<std::uint32_t>(next()),
                                 static_cast<std::uint32_t>(next()));
        // The rounding of log x, half a unit of 2^-112 |log x|, moves its
        // exponential by that relative amount: about |k| units for x near
        // 2^k, beside the two roundings.
        const int k = static_cast<int>(x.w[3] >> 16) - 0x3FFF;
        const std::uint64_t allowed = 2 + static_cast<std::uint64_t>(k < 0 ? -k : k);
        ASSERT_LE(ulps(call(g_qexp, call(g_qlog, x)), x), allowed) << hex(x);
        ASSERT_LE(ulps(call(g_qexp2, call(g_qlog2, x)), x), allowed) << hex(x);
        // y in [1, 8): e^y keeps y's last place (ln of its rounding moves
        // the result by at most half a unit of 2^-112).
        const mivor_real16 y = q(0x3FFF0000u + static_cast<std::uint32_t>(next() >> 45) % 0x30000u,
                                 static_cast<std::uint32_t>(next()), static_cast<std::uint32_t>(next()), 0);
        ASSERT_LE(ulps(call(g_qlog, call(g_qexp, y)), y), 1u) << hex(y);
    }
}

TEST(QuadLog, ZeroIsReportedAndGivesMinusInfinityOrMinusHuge) {
    RecordingHandler handler;
    for (Q1 f : {g_qlog, g_qlog2, g_qlog10}) {
        for (const mivor_real16& x : {kZero, kMZero}) {
            handler.clear();
            jwe_lca.ieee_results = 1;
            EXPECT_Q(call(f, x), kMInfQ);
            jwe_lca.ieee_results = 0;
            EXPECT_Q(call(f, x), kMHugeQ);
            ASSERT_EQ(handler.reports().size(), 2u);
            expect_report(handler.reports()[0], 246, x);
        }
    }
}

TEST(QuadLog, NegativeArgumentGivesNaNOrTheLogarithmOfItsMagnitude) {
    RecordingHandler handler;
    for (Q1 f : {g_qlog, g_qlog2, g_qlog10}) {
        handler.clear();
        jwe_lca.ieee_results = 1;
        EXPECT_Q(call(f, qd(-8.0)), kNaNQ);
        EXPECT_Q(call(f, kMInfQ), kNaNQ);
        jwe_lca.ieee_results = 0;
        EXPECT_Q(call(f, qd(-8.0)), call(f, qd(8.0)));  // one report, then |x|
        EXPECT_Q(call(f, kMInfQ), kInfQ);
        ASSERT_EQ(handler.reports().size(), 4u);
        expect_report(handler.reports()[2], 246, qd(-8.0));
    }
    EXPECT_Q(call(g_qlog, kInfQ), kInfQ);
}

TEST(QuadLog, NaNIsReportedUntilTheHandlerCorrectsIt) {
    // With IEEE results off a NaN flips its sign and is reported again on
    // every pass; the third report puts 2.5 in its place.
    int n = 0;
    RecordingHandler handler([&](const Report& r, jwe_control_area&) {
        if (++n < 3) return false;
        const mivor_real16 v = qd(2.5);
        std::memcpy(r.first_operand, &v, sizeof v);
        return true;
    });
    jwe_lca.ieee_results = 0;
    EXPECT_Q(call(g_qlog, kNaNQ), call(g_qlog, qd(2.5)));
    ASSERT_EQ(handler.numbers(), (std::vector<std::int32_t>{246, 246, 246}));
    expect_report(handler.reports()[0], 246, kNaNQ);
    expect_report(handler.reports()[1], 246, neg(kNaNQ));
    jwe_lca.ieee_results = 1;
    n = 10;
    handler.decide([](const Report&, jwe_control_area&) { return false; });
    EXPECT_Q(call(g_qlog10, kNaNQ), kNaNQ);
}

TEST(QuadLog, RetryWithACorrectedArgument) {
    RecordingHandler handler(correct_to(qd(1024.0)));
    EXPECT_Q(call(g_qlog2, kZero), qd(10.0));
    handler.decide(correct_to(qd(100.0)));
    mivor_real16 x = qd(-1.0);
    EXPECT_EQ(g_qlog10(&x, &x), &x);
    EXPECT_Q(x, qd(2.0));
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{246, 246}));
}

}  // namespace
