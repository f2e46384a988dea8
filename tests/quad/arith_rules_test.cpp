// The REAL(16) operators at the edges: zero tests on the top word only,
// unsigned zero results, exponent fields 0 and 32767 read as ordinary
// exponents, ties, and every report with its record, its fallbacks and the
// retry with corrected operands.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace mivor::testing {
namespace {

using Fn = mivor_real16* (*)(mivor_real16*, const mivor_real16*, const mivor_real16*);

constexpr mivor_real16 neg(mivor_real16 q) {
    q.w[3] ^= 0x80000000u;
    return q;
}

constexpr mivor_real16 kPlusZero = q(0);
constexpr mivor_real16 kMinusZero = q(0x80000000u);
constexpr mivor_real16 kOne = q(0x3FFF0000u);
constexpr mivor_real16 kTwo = q(0x40000000u);
constexpr mivor_real16 kThree = q(0x40008000u);
constexpr mivor_real16 kHalf = q(0x3FFE0000u);
constexpr mivor_real16 kHuge = q(0x7FFEFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu);
constexpr mivor_real16 kInf = q(0x7FFF0000u);
constexpr mivor_real16 kMinusInf = q(0xFFFF0000u);
constexpr mivor_real16 kNaN = q(0x7FFF8000u);
constexpr mivor_real16 kMinNormal = q(0x00010000u);

std::string hex(const mivor_real16& q) {
    char buf[48];
    std::snprintf(buf, sizeof buf, "%08X %08X %08X %08X", q.w[3], q.w[2], q.w[1], q.w[0]);
    return buf;
}

// Bit-for-bit comparison, printed as words.
#define EXPECT_BITS(expected, actual) EXPECT_EQ(hex(expected), hex(actual))

mivor_real16 call(Fn fn, mivor_real16 x, mivor_real16 y) {
    mivor_real16 r = q(0x12345678u, 1, 2, 3);
    EXPECT_EQ(fn(&r, &x, &y), &r);
    return r;
}

TEST(QuadArithZero, AdditionReturnsTheOtherOperandBitForBit) {
    RecordingHandler handler;
    EXPECT_BITS(kMinusZero, call(g_aqaq, kPlusZero, kMinusZero));
    EXPECT_BITS(kPlusZero, call(g_aqaq, kMinusZero, kPlusZero));
    // Only the top word counts: low words do not make a number.
    const mivor_real16 dusty = q(0, 0, 0, 1), dusty_neg = q(0x80000000u, 7, 8, 9);
    EXPECT_BITS(kThree, call(g_aqaq, dusty, kThree));
    EXPECT_BITS(neg(kThree), call(g_aqaq, neg(kThree), dusty_neg));
    EXPECT_BITS(dusty_neg, call(g_aqaq, dusty, dusty_neg));  // x is tested first
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadArithZero, SubtractionTestsTheSubtrahendFirst) {
    EXPECT_BITS(kPlusZero, call(g_aqsq, kPlusZero, kPlusZero));
    EXPECT_BITS(kMinusZero, call(g_aqsq, kMinusZero, kPlusZero));
    EXPECT_BITS(kPlusZero, call(g_aqsq, kPlusZero, kMinusZero));
    const mivor_real16 dusty = q(0, 0, 0, 1), dusty_neg = q(0x80000000u, 7, 8, 9);
    EXPECT_BITS(dusty, call(g_aqsq, dusty, dusty_neg));  // y zero: x as it is
    EXPECT_BITS(neg(kThree), call(g_aqsq, dusty, kThree));
    EXPECT_BITS(q(0x3FFF0000u, 1, 2, 3), call(g_aqsq, kMinusZero, q(0xBFFF0000u, 1, 2, 3)));
    EXPECT_BITS(kThree, call(g_aqsq, kThree, dusty_neg));
}

TEST(QuadArithZero, ProductsAndQuotientsOfZeroAreUnsigned) {
    RecordingHandler handler;
    EXPECT_BITS(kPlusZero, call(g_aqmq, kMinusZero, kThree));
    EXPECT_BITS(kPlusZero, call(g_aqmq, neg(kThree), kPlusZero));
    EXPECT_BITS(kPlusZero, call(g_aqmq, q(0x80000000u, 1, 1, 1), neg(kThree)));
    EXPECT_BITS(kPlusZero, call(g_aqmq, kHuge, q(0, 0, 0, 1)));
    EXPECT_BITS(kPlusZero, call(g_aqdq, kPlusZero, neg(kThree)));
    EXPECT_BITS(kPlusZero, call(g_aqdq, q(0x80000000u, 5, 5, 5), kThree));
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadArithRounding, TiesGoToEven) {
    const mivor_real16 two_m113 = q(0x3F8E0000u), two_m114 = q(0x3F8D0000u);
    EXPECT_BITS(kOne, call(g_aqaq, kOne, two_m113));                                 // 1 + half ulp
    EXPECT_BITS(q(0x3FFF0000u, 0, 0, 2), call(g_aqaq, q(0x3FFF0000u, 0, 0, 1), two_m113));
    EXPECT_BITS(kOne, call(g_aqsq, kOne, two_m114));  // 1 - half of the ulp below 1
    // Just past the half: the sticky bits decide.
    EXPECT_BITS(q(0x3FFEFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu),
                call(g_aqsq, kOne, q(0x3F8D0000u, 0, 0, 1)));
    EXPECT_BITS(q(0x3FFF0000u, 0, 0, 1), call(g_aqaq, kOne, q(0x3F8E0000u, 0, 0, 1)));
    // (1 + 2^-112)^2 = 1 + 2^-111 + 2^-224: the last term only below G.
    EXPECT_BITS(q(0x3FFF0000u, 0, 0, 2), call(g_aqmq, q(0x3FFF0000u, 0, 0, 1), q(0x3FFF0000u, 0, 0, 1)));
    EXPECT_BITS(kOne, call(g_aqmq, kOne, kOne));
    EXPECT_BITS(q(0x3FFD5555u, 0x55555555u, 0x55555555u, 0x55555555u), call(g_aqdq, kOne, kThree));
    EXPECT_BITS(q(0x3FFE5555u, 0x55555555u, 0x55555555u, 0x55555555u), call(g_aqdq, kOne, q(0x3FFF8000u)));
    // Carry out of the significand on rounding: (2 - 2^-112) + 2^-112 * 0.75.
    EXPECT_BITS(kTwo, call(g_aqaq, q(0x3FFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu), q(0x3F8E8000u)));
}

TEST(QuadArithRounding, QuotientsJustBelowOne) {
    // x = y minus a few units: the fraction bits of the doubled quotient
    // start with a long run of ones, where a digit estimate from the
    // divisor's leading bits alone overshoots (values from __float128).
    const struct {
        mivor_real16 x, y, quotient;
    } cases[] = {
        {q(0x3FFF8000u, 0, 0, 0x00012344u), q(0x3FFF8000u, 0, 0, 0x00012345u),
         q(0x3FFEFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu)},
        {q(0x3FFF0000u, 0x80000000u, 0xFFFFFFFFu, 0xFFFFFFFCu), q(0x3FFF0000u, 0x80000000u, 0xFFFFFFFFu, 0xFFFFFFFFu),
         q(0x3FFEFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFAu)},
        {q(0x4128ABCDu, 0xFEDCBA98u, 0x01234567u, 0x89ABCDEEu), q(0x4123ABCDu, 0xFEDCBA98u, 0x01234567u, 0x89ABCDEFu),
         q(0x4003FFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu)},
        {q(0x3FFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFEu), q(0x3FFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu),
         q(0x3FFEFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu)},
    };
    for (const auto& c : cases) {
        EXPECT_BITS(c.quotient, call(g_aqdq, c.x, c.y));
        EXPECT_BITS(neg(c.quotient), call(g_aqdq, neg(c.x), c.y));
    }
}

TEST(QuadArithRounding, ResultsWithLongRunsBelowTheLastBit) {
    // Exact quotients and quotients and products a hair from a
    // representable number (near 2 for products, where the leading one
    // moves): the bits below the last kept one are all zeros or long runs,
    // where a division's digit estimates cannot decide alone and a
    // product's sticky bits do (values from __float128).
    const struct {
        const char* what;
        Fn fn;
        mivor_real16 x, y, result;
    } cases[] = {
        {"(1 + 2^-112) / 1", g_aqdq, q(0x3FFF0000u, 0x00000000u, 0x00000000u, 0x00000001u),
         q(0x3FFF0000u, 0x00000000u, 0x00000000u, 0x00000000u),
         q(0x3FFF0000u, 0x00000000u, 0x00000000u, 0x00000001u)},
        {"3y / y", g_aqdq, q(0x4000B4E8u, 0x1B4E81B4u, 0xE681B4E8u, 0x1B4E81B2u),
         q(0x3FFF2345u, 0x6789ABCDu, 0xEF012345u, 0x6789ABCCu),
         q(0x40008000u, 0x00000000u, 0x00000000u, 0x00000000u)},
        {"x / y, quotient 1 + 2^-40", g_aqdq, q(0x3FFFABCDu, 0xEF0124F1u, 0x3578ACF1u, 0x3468ACF1u),
         q(0x3FFFABCDu, 0xEF012345u, 0x6789ABCDu, 0xEF012345u),
         q(0x3FFF0000u, 0x00000100u, 0x00000000u, 0x00000000u)},
        {"x / y, quotient next to 1 + 2^-97", g_aqdq, q(0x3FFF5555u, 0x55555555u, 0x55555555u, 0x55560000u),
         q(0x3FFF5555u, 0x55555555u, 0x55555555u, 0x55555555u),
         q(0x3FFF0000u, 0x00000000u, 0x00000000u, 0x00008000u)},
        {"x / y, quotient with runs of 16", g_aqdq, q(0x4012479Bu, 0xE0233456u, 0x6679CF13u, 0x68ABBCE0u),
         q(0x40123456u, 0x789ABCDEu, 0xF0123456u, 0x789ABCDFu),
         q(0x3FFF0FFFu, 0xFFFF0000u, 0x0000FFFFu, 0xFFFF0001u)},
        {"1 / (2 - 2^-112)", g_aqdq, q(0x3FFF0000u, 0x00000000u, 0x00000000u, 0x00000000u),
         q(0x3FFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu),
         q(0x3FFE0000u, 0x00000000u, 0x00000000u, 0x00000001u)},
        {"(2 - 2^-112) (1 + 2^-112)", g_aqmq, q(0x3FFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu),
         q(0x3FFF0000u, 0x00000000u, 0x00000000u, 0x00000001u),
         q(0x40000000u, 0x00000000u, 0x00000000u, 0x00000000u)},
        {"(2 - 2^-112) (1 + 2^-111)", g_aqmq, q(0x3FFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu),
         q(0x3FFF0000u, 0x00000000u, 0x00000000u, 0x00000002u),
         q(0x40000000u, 0x00000000u, 0x00000000u, 0x00000001u)},
        {"fl(sqrt 2)^2", g_aqmq, q(0x3FFF6A09u, 0xE667F3BCu, 0xC908B2FBu, 0x1366EA95u),
         q(0x3FFF6A09u, 0xE667F3BCu, 0xC908B2FBu, 0x1366EA95u),
         q(0x3FFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu)},
        {"(fl(sqrt 2) + ulp)^2", g_aqmq, q(0x3FFF6A09u, 0xE667F3BCu, 0xC908B2FBu, 0x1366EA96u),
         q(0x3FFF6A09u, 0xE667F3BCu, 0xC908B2FBu, 0x1366EA96u),
         q(0x40000000u, 0x00000000u, 0x00000000u, 0x00000001u)},
        {"(1 + 2^-56)^2", g_aqmq, q(0x3FFF0000u, 0x00000000u, 0x01000000u, 0x00000000u),
         q(0x3FFF0000u, 0x00000000u, 0x01000000u, 0x00000000u),
         q(0x3FFF0000u, 0x00000000u, 0x02000000u, 0x00000001u)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_BITS(c.result, call(c.fn, c.x, c.y));
        EXPECT_BITS(neg(c.result), call(c.fn, neg(c.x), c.y));
    }
}

TEST(QuadArithRounding, FarSmallerOperandLeavesTheLargerOne) {
    const mivor_real16 x = q(0x4005ABCDu, 0x01234567u, 0x89ABCDEFu, 0xFFFFFFFFu);
    for (std::uint32_t d : {114u, 145u, 146u, 147u, 400u, 16000u}) {
        const mivor_real16 tiny = q(((0x4005u - d) << 16) | 0xFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu);
        SCOPED_TRACE(d);
        EXPECT_BITS(x, call(g_aqaq, x, tiny));
        EXPECT_BITS(x, call(g_aqsq, x, tiny));
        EXPECT_BITS(neg(x), call(g_aqaq, neg(tiny), neg(x)));
        EXPECT_BITS(neg(x), call(g_aqsq, tiny, x));
    }
    // A power of two minus a far smaller number rounds back up to it.
    EXPECT_BITS(kOne, call(g_aqsq, kOne, q(0x3F000000u)));
}

TEST(QuadArithCancellation, ExactCancellationIsPlusZeroWithoutReport) {
    RecordingHandler handler;
    const mivor_real16 x = q(0xC1234567u, 0x89ABCDEFu, 1, 2);
    EXPECT_BITS(kPlusZero, call(g_aqaq, x, neg(x)));
    EXPECT_BITS(kPlusZero, call(g_aqaq, neg(x), x));
    EXPECT_BITS(kPlusZero, call(g_aqsq, x, x));
    EXPECT_BITS(kPlusZero, call(g_aqsq, neg(x), neg(x)));
    EXPECT_BITS(kPlusZero, call(g_aqsq, kInf, kInf));      // no special operands
    EXPECT_BITS(kPlusZero, call(g_aqaq, kNaN, neg(kNaN)));
    EXPECT_TRUE(handler.reports().empty());
    // Massive cancellation is exact: (1 + 2^-112) - 1 and a long borrow.
    EXPECT_BITS(q(0x3F8F0000u), call(g_aqsq, q(0x3FFF0000u, 0, 0, 1), kOne));
    EXPECT_BITS(q(0xBF8E0000u), call(g_aqsq, q(0x3FFEFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu), kOne));
}

TEST(QuadArithOddOperands, ExponentFieldZeroIsReadWithTheImplicitOne) {
    const mivor_real16 s = q(0x00000001u);  // (1 + 2^-16) 2^-16383, not a subnormal
    const mivor_real16 doubled = q(0x00010001u);
    EXPECT_BITS(doubled, call(g_aqaq, s, s));
    EXPECT_BITS(doubled, call(g_aqmq, s, kTwo));
    EXPECT_BITS(doubled, call(g_aqdq, s, kHalf));
    EXPECT_BITS(kOne, call(g_aqdq, s, s));
    EXPECT_BITS(q(0x3FFF0001u), call(g_aqmq, s, q(0x7FFE0000u)));  // 2^16383
    // The smallest normal minus it: exponent field 0 results are underflows.
    RecordingHandler handler;
    EXPECT_BITS(kPlusZero, call(g_aqsq, q(0x00020000u), q(0x00018000u)));
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{1398});
}

TEST(QuadArithOddOperands, ExponentField32767IsAFiniteExponent) {
    RecordingHandler handler;
    EXPECT_BITS(q(0x7FFE0000u), call(g_aqmq, kInf, kHalf));
    EXPECT_BITS(q(0x7FFE8000u), call(g_aqmq, kNaN, kHalf));  // payload read as fraction
    EXPECT_BITS(q(0xFFFE0000u), call(g_aqdq, kMinusInf, kTwo));
    EXPECT_BITS(q(0x7FFE0000u), call(g_aqsq, kInf, q(0x7FFE0000u)));
    EXPECT_BITS(q(0x3FFF0000u), call(g_aqdq, kInf, kInf));
    EXPECT_TRUE(handler.reports().empty());
    EXPECT_BITS(kInf, call(g_aqaq, kInf, kOne));
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{1397});
}

TEST(QuadArith, ResultMayAliasAnOperand) {
    mivor_real16 x = kThree, y = kTwo;
    g_aqaq(&x, &x, &y);
    EXPECT_BITS(q(0x40014000u), x);
    g_aqsq(&y, &x, &y);
    EXPECT_BITS(kThree, y);
    g_aqmq(&x, &x, &x);
    EXPECT_BITS(q(0x40039000u), x);  // 25
    g_aqdq(&y, &x, &y);
    EXPECT_BITS(q(0x40020AAAu, 0xAAAAAAAAu, 0xAAAAAAAAu, 0xAAAAAAABu), y);  // 25/3
}

// The result written over the operand of larger magnitude while it is the
// second one (the operands are exchanged), also after a massive or exact
// cancellation.
TEST(QuadArith, ResultMayAliasTheLargerSecondOperand) {
    mivor_real16 x = kTwo, y = q(0x40014000u);  // 5
    g_aqaq(&y, &x, &y);
    EXPECT_BITS(q(0x4001C000u), y);  // 7
    g_aqsq(&y, &x, &y);
    EXPECT_BITS(q(0xC0014000u), y);  // -5
    mivor_real16 one = kOne, z = q(0xBFFF0000u, 0, 0, 1);  // -(1 + 2^-112)
    g_aqaq(&z, &one, &z);
    EXPECT_BITS(q(0xBF8F0000u), z);
    mivor_real16 w = q(0x3FFF0000u, 0, 0, 1);
    g_aqsq(&w, &kOne, &w);
    EXPECT_BITS(q(0xBF8F0000u), w);
    g_aqsq(&w, &w, &w);
    EXPECT_BITS(kPlusZero, w);
}

// One error site: operands, what is reported, and the two fallbacks.
struct ErrorCase {
    const char* what;
    Fn fn;
    mivor_real16 x, y;
    std::int32_t number;
    bool described;  // the record carries descriptors of both operands
    mivor_real16 ieee, finite;
};

const ErrorCase kErrorCases[] = {
    {"HUGE + HUGE", g_aqaq, kHuge, kHuge, 1397, false, kInf, kHuge},
    {"-HUGE + -HUGE", g_aqaq, neg(kHuge), neg(kHuge), 1397, false, kMinusInf, kHuge},
    {"-HUGE - HUGE", g_aqsq, neg(kHuge), kHuge, 1397, false, kMinusInf, kHuge},
    {"HUGE - -HUGE", g_aqsq, kHuge, neg(kHuge), 1397, false, kInf, kHuge},
    {"2^-16381 + -1.5 2^-16382", g_aqaq, q(0x00020000u), q(0x80018000u), 1398, false, kPlusZero, kPlusZero},
    {"-2^-16381 - -1.5 2^-16382", g_aqsq, q(0x80020000u), q(0x80018000u), 1398, false, kPlusZero, kPlusZero},
    {"HUGE * 2", g_aqmq, kHuge, kTwo, 1397, false, kInf, kHuge},
    {"-HUGE * 2", g_aqmq, neg(kHuge), kTwo, 1397, false, kMinusInf, kHuge},
    {"HUGE * -HUGE", g_aqmq, kHuge, neg(kHuge), 1397, false, kMinusInf, kHuge},
    {"min * 0.5", g_aqmq, kMinNormal, kHalf, 1398, false, kPlusZero, kPlusZero},
    {"-min * 0.5", g_aqmq, neg(kMinNormal), kHalf, 1398, false, kPlusZero, kPlusZero},
    {"HUGE / 0.5", g_aqdq, kHuge, kHalf, 278, true, kInf, kHuge},
    {"HUGE / -0.5", g_aqdq, kHuge, neg(kHalf), 278, true, kMinusInf, kHuge},
    {"min / -2", g_aqdq, kMinNormal, neg(kTwo), 279, true, kPlusZero, kPlusZero},
    {"1 / +0", g_aqdq, kOne, kPlusZero, 280, false, kInf, kHuge},
    {"-1 / +0", g_aqdq, neg(kOne), kPlusZero, 280, false, kMinusInf, kHuge},
    {"-1 / -0", g_aqdq, neg(kOne), kMinusZero, 280, false, kMinusInf, kHuge},
    {"1 / -0 with low words", g_aqdq, kOne, q(0x80000000u, 1, 2, 3), 280, false, kInf, kHuge},
    {"0 / 0", g_aqdq, kPlusZero, kPlusZero, 280, false, kNaN, kPlusZero},
    {"-0 / -0", g_aqdq, kMinusZero, kMinusZero, 280, false, kNaN, kPlusZero},
};

TEST(QuadArithReports, RecordAndFallbacks) {
    for (const ErrorCase& c : kErrorCases) {
        SCOPED_TRACE(c.what);
        for (const bool ieee : {true, false}) {
            RecordingHandler handler([&](const Report& r, jwe_control_area&) {
                // The published copies hold the operands.
                EXPECT_BITS(c.x, *static_cast<const mivor_real16*>(r.first_operand));
                EXPECT_BITS(c.y, *static_cast<const mivor_real16*>(r.second_operand));
                return false;
            });
            jwe_lca.ieee_results = ieee ? 1 : 0;
            RecordingHandler::scribble();
            EXPECT_BITS(ieee ? c.ieee : c.finite, call(c.fn, c.x, c.y));
            ASSERT_EQ(handler.reports().size(), 1u);
            const Report& r = handler.reports()[0];
            EXPECT_EQ(r.number, c.number);
            EXPECT_TRUE(r.cleared);
            EXPECT_EQ(r.retry_pointer, &jwe_lca.retry_word);
            EXPECT_EQ(r.record, static_cast<void*>(&jwe_lca.error_number));
            if (c.described) {
                EXPECT_EQ(r.count, 2u);
                EXPECT_EQ(r.type1, MIVOR_TYPE_REAL16);
                EXPECT_EQ(r.type2, MIVOR_TYPE_REAL16);
                EXPECT_EQ(r.pad1, 0);
                EXPECT_EQ(r.pad2, 0);
                EXPECT_BITS(c.x, r.shown1<mivor_real16>());
                EXPECT_BITS(c.y, r.shown2<mivor_real16>());
            } else {
                // Nothing described: the field the scribble filled is left.
                EXPECT_NE(r.count, 1u);
                EXPECT_NE(r.count, 2u);
            }
        }
    }
}

TEST(QuadArithReports, DisabledOrSuppressedReportsGoStraightToTheFallback) {
    for (const ErrorCase& c : kErrorCases) {
        SCOPED_TRACE(c.what);
        RecordingHandler handler;
        jwe_lca.handler_enabled = 0;
        jwe_lca.ieee_results = 1;
        EXPECT_BITS(c.ieee, call(c.fn, c.x, c.y));
        jwe_lca.handler_enabled = 1;
        jwe_lca.suppress = 1;
        jwe_lca.ieee_results = 7;
        EXPECT_BITS(c.finite, call(c.fn, c.x, c.y));
        EXPECT_TRUE(handler.reports().empty());
    }
}

TEST(QuadArithReports, RetryStartsAgainWithTheCorrectedOperands) {
    struct RetryCase {
        const char* what;
        Fn fn;
        mivor_real16 x, y, new_x, new_y, expected;
    } cases[] = {
        {"sum becomes finite", g_aqaq, kHuge, kHuge, kHuge, kOne, kHuge},
        {"into the zero shortcut", g_aqaq, kHuge, kHuge, kMinusZero, kThree, kThree},
        {"difference cancels", g_aqsq, kHuge, neg(kHuge), kHuge, kHuge, kPlusZero},
        {"product", g_aqmq, kHuge, kTwo, kHuge, kHalf, q(0x7FFDFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu)},
        {"product underflow", g_aqmq, kMinNormal, kHalf, kMinNormal, kTwo, q(0x00020000u)},
        {"quotient", g_aqdq, kHuge, kHalf, kOne, kThree, q(0x3FFD5555u, 0x55555555u, 0x55555555u, 0x55555555u)},
        {"zero divisor", g_aqdq, kOne, kPlusZero, kOne, kTwo, kHalf},
        {"zero divisor, then zero dividend", g_aqdq, kOne, kMinusZero, kMinusZero, kTwo, kPlusZero},
    };
    for (const RetryCase& c : cases) {
        SCOPED_TRACE(c.what);
        int calls = 0;
        RecordingHandler handler([&](const Report& r, jwe_control_area&) {
            if (calls++ > 0) return false;
            *static_cast<mivor_real16*>(r.first_operand) = c.new_x;
            *static_cast<mivor_real16*>(r.second_operand) = c.new_y;
            return true;
        });
        EXPECT_BITS(c.expected, call(c.fn, c.x, c.y));
        EXPECT_EQ(handler.reports().size(), 1u);
    }
}

TEST(QuadArithReports, RetryWithUnchangedOperandsReportsAgain) {
    for (const ErrorCase& c : kErrorCases) {
        SCOPED_TRACE(c.what);
        int calls = 0;
        RecordingHandler handler([&](const Report&, jwe_control_area&) { return ++calls < 3; });
        EXPECT_BITS(c.ieee, call(c.fn, c.x, c.y));
        EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>(3, c.number));
    }
}

}  // namespace
}  // namespace mivor::testing
