// REAL(16) conversions, AINT, INT and FLOOR: directed cases, on every
// flavour.  The rounding boundaries of the narrowing conversions, the exact
// widening of subnormals, and each result that differs from IEEE on purpose.
#include <gtest/gtest.h>

#include <climits>

#include "convert_test_support.h"

using namespace quadtest;

namespace {

TEST(Dbleq, RoundsToNearestEvenAtTheLastBit) {
    EXPECT_EQ(dbleq(kOne), 0x3FF0000000000000u);
    EXPECT_EQ(dbleq(q(0x3FFF0000, 0, 0x08000000, 0)), 0x3FF0000000000000u);  // 1 + 2^-53, tie to even
    EXPECT_EQ(dbleq(q(0x3FFF0000, 0, 0x18000000, 0)), 0x3FF0000000000002u);  // 1 + 3 * 2^-53, tie up
    EXPECT_EQ(dbleq(q(0x3FFF0000, 0, 0x08000000, 1)), 0x3FF0000000000001u);  // just above the tie
    EXPECT_EQ(dbleq(q(0x3FFF0000, 0, 0x08010000, 0)), 0x3FF0000000000001u);  // sticky in w1
    EXPECT_EQ(dbleq(q(0x3FFF0000, 0, 0x07FFFFFF, 0xFFFFFFFF)), 0x3FF0000000000000u);
    EXPECT_EQ(dbleq(q(0xC000FFFF, 0xFFFFFFFF, 0xF8000000, 0)), 0xC010000000000000u);  // carry into the exponent
}

TEST(Dbleq, SubnormalResultsAndTheVanishingLimit) {
    EXPECT_EQ(dbleq(q(0x3BCD0000)), 1u);                      // 2^-1074
    EXPECT_EQ(dbleq(q(0x3C00FFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF)),
              0x0010000000000000u);                          // rounds up to the smallest normal
    EXPECT_EQ(dbleq(q(0x3BCC0000)), 0u);                      // 2^-1075: tie to even zero
    EXPECT_EQ(dbleq(q(0xBBCC0000)), 0x8000000000000000u);     // ... keeping its sign
    EXPECT_EQ(dbleq(q(0xBBCC0000, 0, 0, 1)), 0x8000000000000001u);
    EXPECT_EQ(dbleq(q(0x3BCC8000)), 1u);                      // 1.5 * 2^-1075
    // Below 2^-1075 the sign is dropped on purpose.
    EXPECT_EQ(dbleq(q(0xBBCBFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF)), 0u);
    EXPECT_EQ(dbleq(q(0xBFFE0000) /* -0.5 */), 0xBFE0000000000000u);
}

TEST(Dbleq, DeliberateResults) {
    // Zero on the top word alone; -0 gives +0.
    EXPECT_EQ(dbleq(q(0, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF)), 0u);
    EXPECT_EQ(dbleq(kMinusZero), 0u);
    EXPECT_EQ(dbleq(q(0x80000000, 0, 0, 1)), 0u);
    EXPECT_EQ(dbleq(q(0x00000001)), 0u);
    // Overflow by exponent or by rounding: HUGE with the sign, no infinity.
    EXPECT_EQ(dbleq(q(0x43FF0000)), 0x7FEFFFFFFFFFFFFFu);     // 2^1024
    EXPECT_EQ(dbleq(q(0x43FEFFFF, 0xFFFFFFFF, 0xF8000000, 0)), 0x7FEFFFFFFFFFFFFFu);
    EXPECT_EQ(dbleq(q(0xC3FEFFFF, 0xFFFFFFFF, 0xF8000000, 0)), 0xFFEFFFFFFFFFFFFFu);
    EXPECT_EQ(dbleq(kInf), 0x7FEFFFFFFFFFFFFFu);
    EXPECT_EQ(dbleq(kMinusInf), 0xFFEFFFFFFFFFFFFFu);
    EXPECT_EQ(dbleq(q(0xFFFF8000)), 0xFFEFFFFFFFFFFFFFu);     // a NaN
}

TEST(Snglq, RoundsAndKeepsTheOddOverflowValue) {
    EXPECT_EQ(snglq(q(0x3FFF0000, 0x01000000)), 0x3F800000u);        // 1 + 2^-24, tie to even
    EXPECT_EQ(snglq(q(0x3FFF0000, 0x01000000, 0, 1)), 0x3F800001u);  // sticky in w0
    EXPECT_EQ(snglq(q(0x3FFF0000, 0x03000000)), 0x3F800002u);
    EXPECT_EQ(snglq(q(0x407EFFFF, 0xFE000000)), 0x7F7FFFFFu);        // the largest REAL(4)
    EXPECT_EQ(snglq(q(0x3F6A0000)), 1u);                             // 2^-149
    EXPECT_EQ(snglq(q(0x3F690000)), 0u);                             // 2^-150, tie
    EXPECT_EQ(snglq(q(0xBF690000)), 0x80000000u);
    EXPECT_EQ(snglq(q(0xBF68FFFF, 0xFFFFFFFF)), 0u);                 // vanishes unsigned
    EXPECT_EQ(snglq(kMinusZero), 0u);
    // Overflow is +-0.99999994 (0x3F7FFFFF), not HUGE and not infinity.
    EXPECT_EQ(snglq(q(0x40C70000)), 0x3F7FFFFFu);                    // 2^200
    EXPECT_EQ(snglq(q(0xC0C70000)), 0xBF7FFFFFu);
    EXPECT_EQ(snglq(q(0x407EFFFF, 0xFF000000)), 0x3F7FFFFFu);        // rounding carry
    EXPECT_EQ(snglq(kInf), 0x3F7FFFFFu);
    EXPECT_EQ(snglq(q(0xFFFF8000)), 0xBF7FFFFFu);
}

TEST(Widen, ExactWithSubnormalsNormalised) {
    EXPECT_EQ(qextd(1.5), W(0x3FFF8000));
    EXPECT_EQ(qextd(-f64(0x000FFFFFFFFFFFFFu)), W(0xBC00FFFF, 0xFFFFFFFF, 0xE0000000));
    EXPECT_EQ(qextd(f64(1)), W(0x3BCD0000));                          // 2^-1074
    EXPECT_EQ(qextd(f64(0x7FEFFFFFFFFFFFFFu)), W(0x43FEFFFF, 0xFFFFFFFF, 0xF0000000));
    EXPECT_EQ(qext(f32(1)), W(0x3F6A0000));                           // 2^-149
    EXPECT_EQ(qext(f32(0x00400000)), W(0x3F800000));                  // 2^-127
    EXPECT_EQ(qext(-f32(0x007FFFFF)), W(0xBF80FFFF, 0xFC000000));
    EXPECT_EQ(qext(f32(0x3F800001)), W(0x3FFF0000, 0x02000000));
}

TEST(Widen, DeliberateResults) {
    EXPECT_EQ(qextd(-0.0), W(0));
    EXPECT_EQ(qext(-0.0f), W(0));
    // Infinities and NaNs become finite numbers with the rebiased field.
    EXPECT_EQ(qextd(f64(0x7FF0000000000000u)), W(0x43FF0000));
    EXPECT_EQ(qextd(f64(0xFFF8000000000001u)), W(0xC3FF8000, 0, 0x10000000));
    EXPECT_EQ(qext(f32(0xFF800000)), W(0xC07F0000));
    EXPECT_EQ(qext(f32(0x7FC00001)), W(0x407F8000, 0x02000000));
}

TEST(FromInteger, ExactIncludingTheMostNegative) {
    EXPECT_EQ(qfloat(0), W(0));
    EXPECT_EQ(qfloat(1), W(0x3FFF0000));
    EXPECT_EQ(qfloat(-3), W(0xC0008000));
    EXPECT_EQ(qfloat(INT32_MIN), W(0xC01E0000));
    EXPECT_EQ(qfloat(INT32_MAX), W(0x401DFFFF, 0xFFFC0000));
    EXPECT_EQ(aqcj(0), W(0));
    EXPECT_EQ(aqcj(INT64_MIN), W(0xC03E0000));
    EXPECT_EQ(aqcj(INT64_MAX), W(0x403DFFFF, 0xFFFFFFFF, 0xFFFC0000));
    EXPECT_EQ(aqcj(-(std::int64_t{1} << 40) - 1), W(0xC0270000, 0x00000100));
}

TEST(ToInteger4, TruncatesAndSaturates) {
    EXPECT_EQ(iqint(q(0x40004000)), 2);        // 2.5
    EXPECT_EQ(iqint(q(0xC0004000)), -2);
    EXPECT_EQ(iqint(q(0x3FFEFFFF, 0xFFFFFFFF)), 0);
    EXPECT_EQ(iqint(q(0xBFFEFFFF, 0xFFFFFFFF)), 0);
    EXPECT_EQ(iqint(q(0x401DFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF)), INT32_MAX);  // 2^31 - tiny
    EXPECT_EQ(iqint(q(0xC01DFFFF, 0xFFFC0000)), -INT32_MAX);
    EXPECT_EQ(iqint(q(0x401E65A0, 0xBC000000)), INT32_MAX);  // 3e9
    EXPECT_EQ(iqint(q(0xC01E65A0, 0xBC000000)), INT32_MIN);
    EXPECT_EQ(iqint(q(0xC01E0000)), INT32_MIN);              // -2^31 itself saturates
    EXPECT_EQ(iqint(kInf), INT32_MAX);
    EXPECT_EQ(iqint(q(0xFFFF8000)), INT32_MIN);
    EXPECT_EQ(iqint(q(0, 0xFFFFFFFF)), 0);
}

TEST(ToInteger8, ZeroAboveTwoToThe64AndNoNegationAbove63) {
    EXPECT_EQ(ajcq(q(0xC001E000)), -7);                      // -7.5
    EXPECT_EQ(ajcq(q(0x403DFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF)), INT64_MAX);
    EXPECT_EQ(ajcq(q(0x40450000)), 0);                       // 2^70
    EXPECT_EQ(ajcq(q(0x403F0000)), 0);                       // 2^64
    EXPECT_EQ(ajcq(kInf), 0);
    EXPECT_EQ(ajcq(q(0xC03E0000)), INT64_MIN);               // -2^63
    EXPECT_EQ(static_cast<std::uint64_t>(ajcq(q(0xC03E8000))), 0xC000000000000000u);  // not negated
    EXPECT_EQ(static_cast<std::uint64_t>(ajcq(q(0x403E8000))), 0xC000000000000000u);
    EXPECT_EQ(static_cast<std::uint64_t>(ajcq(q(0x403EFFFF, 0xFFFFFFFF, 0xFFFF8000))), ~std::uint64_t{0});
    for (std::int64_t v : {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, std::int64_t{1} << 52,
                           -(std::int64_t{1} << 62) - 12345, INT64_MAX, INT64_MIN + 1}) {
        mivor_real16 x;
        g_aqcj(&x, &v);
        EXPECT_EQ(ajcq(x), v) << v;
    }
}

TEST(Aint, ClearsTheFractionAtEveryWordBoundary) {
    EXPECT_EQ(qint(q(0x40006000)), W(0x40000000));           // 2.75
    EXPECT_EQ(qint(q(0xBFFF8000)), W(0xBFFF0000));           // -1.5
    EXPECT_EQ(qint(q(0x400F0000, 0x80000000)), W(0x400F0000));                      // k = 16
    EXPECT_EQ(qint(q(0x4010FFFF, 0xFFFFFFFF, 1)), W(0x4010FFFF, 0x80000000));       // k = 17
    EXPECT_EQ(qint(q(0x402F1234, 0x56789ABC, 0xDEF01234, 5)), W(0x402F1234, 0x56789ABC));  // k = 48
    EXPECT_EQ(qint(q(0x40301234, 0x56789ABC, 0xDEF01234, 5)), W(0x40301234, 0x56789ABC, 0x80000000));
    EXPECT_EQ(qint(q(0x40501234, 0x56789ABC, 0xDEF01234, 0xFFFFFFFF)),
              W(0x40501234, 0x56789ABC, 0xDEF01234, 0x80000000));                  // k = 81
    EXPECT_EQ(qint(q(0x406E0000, 0, 0, 1)), W(0x406E0000));                         // 2^111 + 0.5
    EXPECT_EQ(qint(q(0x406F0000, 0, 0, 1)), W(0x406F0000, 0, 0, 1));                // k = 112
}

TEST(Aint, DeliberateResults) {
    EXPECT_EQ(qint(q(0xBFFE8000)), W(0));                    // -0.75 gives +0
    EXPECT_EQ(qint(kMinusZero), W(0));
    EXPECT_EQ(qint(q(0x80000000, 1, 2, 3)), W(0));
    EXPECT_EQ(qint(q(0x40700000, 0, 0, 1)), W(0x40700000, 0, 0, 1));  // 2^113 unchanged
    EXPECT_EQ(qint(q(0xFFFF8000, 0, 0, 7)), W(0xFFFF8000, 0, 0, 7));   // NaN unchanged
}

TEST(Negate, MinusZeroNeverComesOut) {
    auto gqqc = [](mivor_real16 x) {
        mivor_real16 r;
        EXPECT_EQ(jwe_gqqc(&r, x), &r);
        return W(r);
    };
    EXPECT_EQ(gqqc(kOne), W(kMinusOne));
    EXPECT_EQ(gqqc(kMinusOne), W(kOne));
    EXPECT_EQ(gqqc(kPlusZero), W(0));
    EXPECT_EQ(gqqc(kMinusZero), W(0));
    EXPECT_EQ(gqqc(q(0, 0, 0, 5)), W(0, 0, 0, 5));
    EXPECT_EQ(gqqc(q(0x80000000, 0, 0, 5)), W(0, 0, 0, 5));
    EXPECT_EQ(gqqc(kNaN), W(0xFFFF8000));
}

TEST(Floor, Real16) {
    EXPECT_EQ(gflq(q(0x40004000)), W(0x40000000));           // 2.5 -> 2
    EXPECT_EQ(gflq(q(0xC0004000)), W(0xC0008000));           // -2.5 -> -3
    EXPECT_EQ(gflq(q(0xC000C000)), W(0xC0010000));           // -3.5 -> -4, carry into the exponent
    EXPECT_EQ(gflq(q(0xC0008000)), W(0xC0008000));           // integral
    EXPECT_EQ(gflq(q(0xBFFD0000)), W(0xBFFF0000));           // -0.25 -> -1
    EXPECT_EQ(gflq(q(0x3FFD0000)), W(0));
    EXPECT_EQ(gflq(q(0xC06EFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF)), W(0xC06F0000));  // -(2^112 - 0.5)
    EXPECT_EQ(gflq(q(0xC04F0000, 0, 0x80000000, 0)), W(0xC04F0000, 0, 0x80000000, 0));
    EXPECT_EQ(gflq(q(0xC04E0000, 0, 0x80000000, 0)), W(0xC04E0000, 0, 0x80000000, 0));
    EXPECT_EQ(gflq(q(0xC04D0000, 0, 0x80000002, 0)), W(0xC04D0000, 0, 0x80000004, 0));  // the unit in w1
    EXPECT_EQ(gflq(q(0xC0300000, 0, 0x80000001, 0)), W(0xC0300000, 1, 0, 0));            // carry from w1 to w2
    // The arithmetic's reading of zero and of exponent field 0.
    EXPECT_EQ(gflq(kMinusZero), W(0));
    EXPECT_EQ(gflq(q(0x80000000, 0, 0, 1)), W(0));
    EXPECT_EQ(gflq(q(0x80000001)), W(0xBFFF0000));
    EXPECT_EQ(gflq(kMinusInf), W(kMinusInf));
}

TEST(Floor, Real4AndReal8FollowIeee) {
    auto flo = [](float x) { return bits(jwe_gflo(&x)); };
    auto fld = [](double x) { return bits(jwe_gfld(&x)); };
    EXPECT_EQ(flo(-0.5f), bits(-1.0f));
    EXPECT_EQ(flo(0.5f), 0u);
    EXPECT_EQ(flo(-0.0f), 0x80000000u);
    EXPECT_EQ(flo(-3.5f), bits(-4.0f));
    EXPECT_EQ(flo(f32(0xBF800001)), bits(-2.0f));
    EXPECT_EQ(flo(-8388607.5f), bits(-8388608.0f));
    EXPECT_EQ(flo(1e30f), bits(1e30f));
    EXPECT_EQ(flo(f32(0xFF800000)), 0xFF800000u);
    EXPECT_EQ(flo(f32(0x7F800001)), 0x7FC00001u);            // NaNs come back quiet
    EXPECT_EQ(fld(-f64(1)), bits(-1.0));
    EXPECT_EQ(fld(f64(1)), 0u);
    EXPECT_EQ(fld(-0.0), 0x8000000000000000u);
    EXPECT_EQ(fld(-4503599627370495.5), bits(-4503599627370496.0));
    EXPECT_EQ(fld(1234.999), bits(1234.0));
    EXPECT_EQ(fld(-1234.001), bits(-1235.0));
    EXPECT_EQ(fld(f64(0xFFF0000000000000u)), 0xFFF0000000000000u);
}

}  // namespace
