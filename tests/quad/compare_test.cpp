// REAL(16) comparisons, MAX/MIN, ABS, SIGN and the COMPLEX(16) part
// functions: directed cases, on every flavour.
#include <gtest/gtest.h>

#include "convert_test_support.h"

using namespace quadtest;

namespace {

int cmp(mivor_real16 x, mivor_real16 y) {
    const int a = g_acmp(&x, &y);
    EXPECT_EQ(g_acmpe(&x, &y), a);
    return a;
}

// The six relational operators as a string "eq ne gt ge lt le" of 0/1.
std::string rel(mivor_real16 x, mivor_real16 y) {
    std::string s;
    for (auto f : {g_afeq, g_afne, g_afgt, g_afge, g_aflt, g_afle}) s += static_cast<char>('0' + f(&x, &y));
    return s;
}

Words qmax(mivor_real16 x, mivor_real16 y) {
    mivor_real16 r;
    g_qmax1(&r, &x, &y);
    return W(r);
}
Words qmin(mivor_real16 x, mivor_real16 y) {
    mivor_real16 r;
    g_qmin1(&r, &x, &y);
    return W(r);
}
Words qsign(mivor_real16 a, mivor_real16 b) {
    mivor_real16 r;
    EXPECT_EQ(g_qsign(&r, &a, &b), &r);
    return W(r);
}

constexpr mivor_real16 kThree = q(0x40008000);
constexpr mivor_real16 kMinusThree = q(0xC0008000);
constexpr mivor_real16 kMinusTwo = q(0xC0000000);
constexpr mivor_real16 kTinyNegative = q(0x80000000, 0, 0, 1);  // a negative subnormal, not a zero

TEST(Compare, ThreeWayCodes) {
    EXPECT_EQ(cmp(kOne, kTwo), 1);
    EXPECT_EQ(cmp(kTwo, kOne), 2);
    EXPECT_EQ(cmp(kMinusOne, kMinusTwo), 2);
    EXPECT_EQ(cmp(kMinusTwo, kMinusOne), 1);
    EXPECT_EQ(cmp(kMinusOne, kOne), 1);
    EXPECT_EQ(cmp(kPlusZero, kMinusZero), 0);
    EXPECT_EQ(cmp(kMinusZero, kPlusZero), 0);
    EXPECT_EQ(cmp(kInf, kHuge), 2);
    EXPECT_EQ(cmp(kMinusInf, q(0xFFFEFFFF, ~0u, ~0u, ~0u)), 1);
    EXPECT_EQ(cmp(kNaN, kNaN), 3);
    EXPECT_EQ(cmp(kOne, q(0xFFFF0000, 0, 0, 1)), 3);   // a NaN by its lowest bit
    // The lowest word decides last, as an unsigned number.
    EXPECT_EQ(cmp(q(0x3FFF0000, 0, 0, 0x80000000), q(0x3FFF0000, 0, 0, 1)), 2);
    EXPECT_EQ(cmp(q(0xBFFF0000, 0, 0, 0x80000000), q(0xBFFF0000, 0, 0, 1)), 1);
    // All four words decide zero: a tiny negative is below +0.
    EXPECT_EQ(cmp(kTinyNegative, kPlusZero), 1);
    EXPECT_EQ(cmp(kPlusZero, q(0, 0, 0, 1)), 1);
}

TEST(Compare, RelationalOperators) {
    //                             eq ne gt ge lt le
    EXPECT_EQ(rel(kOne, kTwo), "010011");
    EXPECT_EQ(rel(kTwo, kOne), "011100");
    EXPECT_EQ(rel(kThree, kThree), "100101");
    EXPECT_EQ(rel(kPlusZero, kMinusZero), "100101");
    EXPECT_EQ(rel(kNaN, kNaN), "010000");
    EXPECT_EQ(rel(kNaN, kOne), "010000");
    EXPECT_EQ(rel(kOne, kNaN), "010000");
    EXPECT_EQ(rel(kMinusThree, kMinusTwo), "010011");
    EXPECT_EQ(rel(kTinyNegative, kMinusZero), "010011");
    EXPECT_EQ(rel(kInf, kInf), "100101");
}

TEST(MaxMin, OrderPatternsAsSignedValuesAndReturnAnOperand) {
    EXPECT_EQ(qmax(kOne, kTwo), W(kTwo));
    EXPECT_EQ(qmin(kOne, kTwo), W(kOne));
    EXPECT_EQ(qmax(kMinusThree, kMinusTwo), W(kMinusTwo));
    EXPECT_EQ(qmin(kMinusThree, kMinusTwo), W(kMinusThree));
    EXPECT_EQ(qmax(kMinusZero, kPlusZero), W(kPlusZero));
    EXPECT_EQ(qmax(kPlusZero, kMinusZero), W(kPlusZero));
    EXPECT_EQ(qmin(kMinusZero, kPlusZero), W(kMinusZero));
    EXPECT_EQ(qmin(kPlusZero, kMinusZero), W(kMinusZero));
    // No NaN test: a positive NaN pattern is the largest, a negative one the
    // smallest.
    EXPECT_EQ(qmax(kNaN, kInf), W(kNaN));
    EXPECT_EQ(qmin(kOne, q(0xFFFF8000)), W(0xFFFF8000));
    // The result area may be an operand.
    mivor_real16 a = kMinusThree, b = kThree;
    g_qmax1(&a, &a, &b);
    EXPECT_EQ(W(a), W(kThree));
}

TEST(AbsSign, SignBitOnlyAndMinusZeroCountsPositive) {
    mivor_real16 r;
    const mivor_real16 x = q(0xC0008000, 1, 2, 3);
    g_qabs(&r, &x);
    EXPECT_EQ(W(r), W(0x40008000, 1, 2, 3));
    EXPECT_EQ(qsign(kThree, kMinusOne), W(kMinusThree));
    EXPECT_EQ(qsign(kMinusThree, kPlusZero), W(kThree));
    EXPECT_EQ(qsign(kThree, kMinusZero), W(kThree));         // SIGN(3, -0) = 3, on purpose
    EXPECT_EQ(qsign(kMinusThree, kMinusZero), W(kThree));
    EXPECT_EQ(qsign(kThree, kTinyNegative), W(kMinusThree));  // not a -0
    EXPECT_EQ(qsign(kThree, q(0xFFFF8000)), W(kMinusThree));
    EXPECT_EQ(qsign(kNaN, kMinusOne), W(0xFFFF8000));
}

TEST(ComplexParts, CopyWordsAndAllowOverlap) {
    const mivor_real16 re = q(0x3FFF0000, 1, 2, 3), im = q(0xC0000000, 4, 5, 6);
    mivor_complex16 z;
    EXPECT_EQ(g_qcmplx(&z, &re, &im), &z);
    EXPECT_EQ(W(z.re), W(re));
    EXPECT_EQ(W(z.im), W(im));
    mivor_complex16 o;
    g_qcmpxo(&o, &re, &im);
    EXPECT_EQ(W(o.re), W(re));
    EXPECT_EQ(W(o.im), W(im));
    g_qcmpxo(&o, &im, nullptr);                              // Y absent
    EXPECT_EQ(W(o.re), W(im));
    EXPECT_EQ(W(o.im), W(0));

    mivor_real16 part;
    EXPECT_EQ(g_qreal(&part, &z), &part);
    EXPECT_EQ(W(part), W(re));
    g_qimag(&part, &z);
    EXPECT_EQ(W(part), W(im));

    mivor_complex16 c;
    EXPECT_EQ(g_qconjg(&c, &z), &c);
    EXPECT_EQ(W(c.re), W(re));
    EXPECT_EQ(W(c.im), W(0x40000000, 4, 5, 6));
    const mivor_complex16 one_zero{kOne, kPlusZero};
    g_qconjg(&c, &one_zero);
    EXPECT_EQ(W(c.im), W(kMinusZero));                       // CONJG((1, +0)) = (1, -0)

    // Results written over their operands.
    mivor_complex16 s = z;
    g_qcmplx(&s, &s.im, &s.re);                              // swap through the result area
    EXPECT_EQ(W(s.re), W(im));
    EXPECT_EQ(W(s.im), W(re));
    s = z;
    g_qimag(&s.re, &s);
    EXPECT_EQ(W(s.re), W(im));
    s = z;
    g_qconjg(&s, &s);
    EXPECT_EQ(W(s.im), W(0x40000000, 4, 5, 6));
}

}  // namespace
