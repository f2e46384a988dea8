// The functions built on the REAL(16) operators: ANINT, NINT, DIM, MOD,
// DPROD and the REAL(8)/REAL(16) helpers; with the reports that reach them
// from the operators.  Every flavour.
#include <gtest/gtest.h>

#include "convert_test_support.h"
#include "support/recording_handler.h"

using namespace quadtest;
using mivor::testing::RecordingHandler;

namespace {

Words qnint(mivor_real16 x) {
    mivor_real16 r;
    EXPECT_EQ(g_qnint(&r, &x), &r);
    return W(r);
}
std::int32_t iqnint(mivor_real16 x) { return g_iqnint(&x); }
std::int64_t jqnint(mivor_real16 x) { return g_jqnint(&x); }
Words qdim(mivor_real16 x, mivor_real16 y) {
    mivor_real16 r;
    g_qdim(&r, &x, &y);
    return W(r);
}
Words qmod(mivor_real16 x, mivor_real16 y) {
    mivor_real16 r;
    g_qmod(&r, &x, &y);
    return W(r);
}
Words qprod(double a, double b) {
    mivor_real16 r;
    EXPECT_EQ(g_qprod(&r, &a, &b), &r);
    return W(r);
}
Words gdsq(double d, mivor_real16 x) {
    mivor_real16 r;
    EXPECT_EQ(jwe_gdsq(&r, d, x), &r);
    return W(r);
}
Words gqmd(mivor_real16 x, double d) {
    mivor_real16 r;
    EXPECT_EQ(jwe_gqmd(&r, x, d), &r);
    return W(r);
}
Words gddq(double d, mivor_real16 x) {
    mivor_real16 r;
    EXPECT_EQ(jwe_gddq(&r, d, x), &r);
    return W(r);
}

constexpr mivor_real16 kTwoAndHalf = q(0x40004000);
constexpr mivor_real16 kThree = q(0x40008000);
constexpr mivor_real16 kSeven = q(0x4001C000);
constexpr mivor_real16 kBelowHalf = q(0x3FFDFFFF, ~0u, ~0u, ~0u);  // 0.5 - 2^-114

TEST(Nint, HalvesAwayFromZero) {
    RecordingHandler handler;
    EXPECT_EQ(iqnint(kTwoAndHalf), 3);
    EXPECT_EQ(iqnint(q(0xC0004000)), -3);
    EXPECT_EQ(qnint(kTwoAndHalf), W(kThree));
    EXPECT_EQ(qnint(q(0xBFFE0000)), W(kMinusOne));            // -0.5
    EXPECT_EQ(qnint(q(0x3FFD0000)), W(0));                    // 0.25
    EXPECT_EQ(qnint(q(0xBFFD0000)), W(0));                    // -0.25: no -0
    EXPECT_EQ(qnint(kMinusZero), W(0));
    EXPECT_EQ(jqnint(q(0x403D0000, 0, 0x00020000)), (std::int64_t{1} << 62) + 1);  // 2^62 + 0.5
    EXPECT_EQ(jqnint(q(0xC0004000)), -3);
    EXPECT_EQ(iqnint(q(0x401E65A0, 0xBC000000)), INT32_MAX);  // 3e9 saturates
    EXPECT_EQ(static_cast<std::uint64_t>(jqnint(q(0xC03E8000))), 0xC000000000000000u);
    EXPECT_EQ(jqnint(q(0x403F0000)), 0);                      // 2^64
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Nint, TheRoundedAdditionIsKept) {
    RecordingHandler handler;
    // 0.5 - 2^-114 plus 0.5 rounds to 1.
    EXPECT_EQ(qnint(kBelowHalf), W(kOne));
    EXPECT_EQ(iqnint(kBelowHalf), 1);
    // 2^112 + 1 plus 0.5 is a tie, rounded to the even 2^112 + 2.
    EXPECT_EQ(qnint(q(0x406F0000, 0, 0, 1)), W(0x406F0000, 0, 0, 2));
    EXPECT_EQ(qnint(q(0x406F0000, 0, 0, 2)), W(0x406F0000, 0, 0, 2));
    // An infinity is a finite number to the addition, which overflows.
    EXPECT_EQ(qnint(kInf), W(kInf));
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{1397});
}

TEST(Dim, PositiveDifferenceOrUnsignedZero) {
    RecordingHandler handler;
    EXPECT_EQ(qdim(kOne, kTwo), W(0));
    EXPECT_EQ(qdim(kTwo, kOne), W(kOne));
    EXPECT_EQ(qdim(kMinusOne, kMinusOne), W(0));
    EXPECT_EQ(qdim(kMinusZero, kPlusZero), W(0));              // the operator's -0 becomes +0
    EXPECT_TRUE(handler.reports().empty());
    mivor_real16 minus_huge = kHuge;
    minus_huge.w[3] |= 0x80000000u;
    EXPECT_EQ(qdim(kHuge, minus_huge), W(kInf));
    jwe_lca.ieee_results = 0;
    EXPECT_EQ(qdim(kHuge, minus_huge), W(kHuge));
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{1397, 1397}));
}

TEST(Mod, RoundedFormulaWithTheSignOfX) {
    RecordingHandler handler;
    mivor_real16 minus_seven = kSeven, minus_three = kThree;
    minus_seven.w[3] |= 0x80000000u;
    minus_three.w[3] |= 0x80000000u;
    EXPECT_EQ(qmod(kSeven, kThree), W(kOne));
    EXPECT_EQ(qmod(minus_seven, kThree), W(kMinusOne));
    EXPECT_EQ(qmod(kSeven, minus_three), W(kOne));
    EXPECT_EQ(qmod(minus_seven, minus_three), W(kMinusOne));
    EXPECT_EQ(qmod(q(0x4001C000), kTwoAndHalf), W(kTwo));  // 7 mod 2.5 = 2
    EXPECT_EQ(qmod(kOne, kThree), W(kOne));
    EXPECT_EQ(qmod(kSeven, kSeven), W(0));
    // The result area may be an operand.
    mivor_real16 x = kSeven;
    g_qmod(&x, &x, &kThree);
    EXPECT_EQ(W(x), W(kOne));
    EXPECT_TRUE(handler.reports().empty());
    // 2^120 + 2^8 mod 3: q is rounded to 113 bits, the product cannot take
    // it back exactly, and the result is not the true remainder 2.
    EXPECT_NE(qmod(q(0x40770000, 0, 0, 1), kThree), W(kTwo));
}

TEST(Mod, ZeroDivisorIsReportedByTheDivision) {
    RecordingHandler handler;
    // 7 / 0 falls back to +Inf; AINT keeps it; Inf * 0 is +0; 7 - 0 is 7.
    EXPECT_EQ(qmod(kSeven, kPlusZero), W(kSeven));
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{280});
}

TEST(Prod, ExactProductOfTwoDoubles) {
    RecordingHandler handler;
    EXPECT_EQ(qprod(1.5, -3.0), W(0xC0012000));
    const double one_ulp = 1.0 + 0x1p-52;
    EXPECT_EQ(qprod(one_ulp, one_ulp), W(0x3FFF0000, 0, 0x20000000, 0x00000100));  // 1 + 2^-51 + 2^-104
    EXPECT_EQ(qprod(f64(1), -f64(1)), W(0xB79B0000));                              // -2^-2148
    EXPECT_EQ(qprod(-0.0, 3.0), W(0));
    EXPECT_EQ(qprod(3.0, -0.0), W(0));
    EXPECT_EQ(qprod(f64(0x7FEFFFFFFFFFFFFFu), f64(0x7FEFFFFFFFFFFFFFu)),
              W(0x47FEFFFF, 0xFFFFFFFF, 0xE0000000, 0x00000080));  // (2^1024 - 2^971)^2
    EXPECT_TRUE(handler.reports().empty());
}

TEST(MixedHelpers, WidenThenOperate) {
    RecordingHandler handler;
    EXPECT_EQ(gdsq(1.0, q(0x3FFD0000)), W(0x3FFE8000));        // 1 - 0.25
    EXPECT_EQ(gdsq(0.0, kThree), W(0xC0008000));               // +0 - 3
    EXPECT_EQ(gdsq(-0.0, kThree), W(0xC0008000));
    EXPECT_EQ(gdsq(3.0, kThree), W(0));
    EXPECT_EQ(gqmd(kThree, 0.5), W(0x3FFF8000));
    EXPECT_EQ(gqmd(kThree, -0.0), W(0));
    EXPECT_EQ(gddq(-3.0, kTwo), W(0xBFFF8000));
    EXPECT_EQ(gddq(1.0, q(0x40010000)), W(0x3FFD0000));        // 1 / 4
    EXPECT_EQ(gddq(0.0, kThree), W(0));
    // A zero divisor by its top word: +0 and no report, either sign.
    EXPECT_EQ(gddq(1.0, kPlusZero), W(0));
    EXPECT_EQ(gddq(1.0, kMinusZero), W(0));
    EXPECT_EQ(gddq(-1.0, q(0x80000000, 0, 0, 9)), W(0));
    EXPECT_TRUE(handler.reports().empty());
    EXPECT_EQ(gqmd(kHuge, 2.0), W(kInf));
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{1397});
}

}  // namespace
