// REAL(16) and complex bases raised to INTEGER(4) and INTEGER(8): the zero
// base and its reports, the n = 2 shortcut, the loop shapes.  Every
// flavour.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::bits;
using mivor::testing::f32;
using mivor::testing::q;
using mivor::testing::RecordingHandler;
using mivor::testing::Report;
using mivor::testing::same;

constexpr mivor_real16 kOne = q(0x3FFF0000), kZero = q(0), kHuge = q(0x7FFEFFFF, ~0u, ~0u, ~0u);
constexpr mivor_real16 kInf = q(0x7FFF0000), kNaN = q(0x7FFF8000);

template <class N>
mivor_real16 powq(mivor_real16 x, N n) {
    mivor_real16 r;
    if constexpr (sizeof(N) == 4)
        EXPECT_EQ(g_aqxi(&r, &x, &n), &r);
    else
        EXPECT_EQ(g_aqxj(&r, &x, &n), &r);
    return r;
}
template <class C, class N>
C powc(C x, N n) {
    C r;
    if constexpr (std::is_same_v<C, mivor_complex4>) {
        if constexpr (sizeof(N) == 4)
            g_acxi(&r, &x, &n);
        else
            g_acxj(&r, &x, &n);
    } else if constexpr (std::is_same_v<C, mivor_complex8>) {
        if constexpr (sizeof(N) == 4)
            g_axxi(&r, &x, &n);
        else
            g_axxj(&r, &x, &n);
    } else {
        if constexpr (sizeof(N) == 4)
            g_azxi(&r, &x, &n);
        else
            g_azxj(&r, &x, &n);
    }
    return r;
}

TEST(Real16Powers, ZeroBase) {
    RecordingHandler handler;
    // Zero by word 3, as the operators read it: lower words do not matter.
    EXPECT_TRUE(same(powq(q(0x80000000, 0, 0, 7), std::int32_t{0}), kOne));
    EXPECT_TRUE(same(powq(q(0x80000000), std::int64_t{3}), kZero));
    EXPECT_TRUE(same(powq(kZero, std::int64_t{1} << 40), kZero));
    EXPECT_TRUE(handler.reports().empty());

    EXPECT_TRUE(same(powq(kZero, std::int32_t{-1}), kInf));
    jwe_lca.ieee_results = 0;
    EXPECT_TRUE(same(powq(q(0x80000000), std::int64_t{-2}), kHuge));
    ASSERT_EQ(handler.numbers(), (std::vector<std::int32_t>{268, 269}));
    EXPECT_EQ(handler.reports()[0].count, 1u);  // the exponent alone
    EXPECT_EQ(handler.reports()[0].type1, MIVOR_TYPE_INTEGER4);
    EXPECT_EQ(handler.reports()[0].shown1<std::int32_t>(), -1);
    EXPECT_EQ(handler.reports()[1].type1, MIVOR_TYPE_INTEGER8);
}

TEST(Real16Powers, RetryWithACorrectedBase) {
    RecordingHandler handler([](const Report&, jwe_control_area& area) {
        std::memcpy(area.first_operand, &kOne, sizeof kOne);  // the base copy is a REAL(16)
        return true;
    });
    mivor_real16 x = kZero;
    const std::int32_t n = -5;
    g_aqxi(&x, &x, &n);  // the result area is the base itself
    EXPECT_TRUE(same(x, kOne));
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{268});
}

TEST(Real16Powers, OperatorsReportThrough) {
    RecordingHandler handler;
    // 1 / HUGE underflows in the reciprocal (279).  2^16000 squared
    // overflows (1397), and the infinity that goes on, read as a finite
    // number by the next product, overflows again.
    EXPECT_TRUE(same(powq(kHuge, std::int32_t{-1}), kZero));
    powq(q(0x7E7F0000), std::int64_t{2});
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{279, 1397, 1397}));
}

TEST(Real16Powers, ExactPowersAndTheUnsignedExponent) {
    // 3^40 is exact in 113 bits; so is 0.5^16000 reached through 1/2.
    const mivor_real16 three = q(0x40008000);
    EXPECT_TRUE(same(powq(three, std::int32_t{40}), q(0x403E5171, 0x68A4523F, 0xD0420000, 0)));
    EXPECT_TRUE(same(powq(q(0x40000000), std::int64_t{-16000}), q(0x017F0000)));
    // -2^31 is 2^31 read unsigned: 1^(2^31) of the reciprocal of 1.
    EXPECT_TRUE(same(powq(kOne, std::numeric_limits<std::int32_t>::min()), kOne));
    // (-1)^(2^32 + 1) through the 32-round loop and the high word.
    EXPECT_TRUE(same(powq(q(0xBFFF0000), (std::int64_t{1} << 32) + 1), q(0xBFFF0000)));
    EXPECT_TRUE(same(powq(q(0xBFFF0000), std::numeric_limits<std::int64_t>::min()), kOne));
}

template <class C>
struct Kind;
template <>
struct Kind<mivor_complex4> {
    static constexpr std::int32_t i4 = 273, i8 = 1414;
    static std::uint64_t re_bits(const mivor_complex4& z) { return bits(z.re); }
    static std::uint64_t im_bits(const mivor_complex4& z) { return bits(z.im); }
    static constexpr std::uint64_t nan = 0x7FC00000u, huge = 0x7F7FFFEEu, one = 0x3F800000u;
};
template <>
struct Kind<mivor_complex8> {
    static constexpr std::int32_t i4 = 274, i8 = 275;
    static std::uint64_t re_bits(const mivor_complex8& z) { return bits(z.re); }
    static std::uint64_t im_bits(const mivor_complex8& z) { return bits(z.im); }
    static constexpr std::uint64_t nan = 0x7FF8000000000000u, huge = 0x7FEFFFFFFFFFFFB6u, one = 0x3FF0000000000000u;
};

template <class C>
void complex_zero_base() {
    using K = Kind<C>;
    using Part = decltype(C{}.re);
    RecordingHandler handler;
    const Part nan = std::numeric_limits<Part>::quiet_NaN();
    C r = powc(C{0, -0.0f}, std::int32_t{0});
    EXPECT_EQ(K::re_bits(r), K::one);
    EXPECT_EQ(K::im_bits(r), 0u);
    r = powc(C{-0.0f, 0}, std::int64_t{3});
    EXPECT_EQ(K::re_bits(r) | K::im_bits(r), 0u);
    // A NaN part makes the modulus NaN: the zero path, whatever the other.
    r = powc(C{nan, 2}, std::int32_t{5});
    EXPECT_EQ(K::re_bits(r) | K::im_bits(r), 0u);
    EXPECT_TRUE(handler.reports().empty());
    // A tiny but nonzero base is not zero (its squares would underflow in
    // the part's own precision).
    r = powc(C{std::numeric_limits<Part>::denorm_min(), 0}, std::int32_t{1});
    EXPECT_EQ(r.re, std::numeric_limits<Part>::denorm_min());

    r = powc(C{0, 0}, std::int32_t{-1});
    EXPECT_EQ(K::re_bits(r), K::nan);
    EXPECT_EQ(K::im_bits(r), K::nan);
    jwe_lca.ieee_results = 0;
    r = powc(C{nan, 0}, std::int64_t{-3});
    EXPECT_EQ(K::re_bits(r), K::huge);
    EXPECT_EQ(K::im_bits(r), 0u);
    ASSERT_EQ(handler.numbers(), (std::vector<std::int32_t>{K::i4, K::i8}));
    EXPECT_EQ(handler.reports()[1].count, 1u);
    EXPECT_EQ(handler.reports()[1].type1, MIVOR_TYPE_INTEGER8);
    EXPECT_EQ(handler.reports()[1].shown1<std::int64_t>(), -3);
}

TEST(ComplexPowers, ZeroBase) {
    complex_zero_base<mivor_complex4>();
    complex_zero_base<mivor_complex8>();
    RecordingHandler handler;
    const mivor_complex16 zero{q(0x80000000, 0, 0, 1), kZero};
    mivor_complex16 r = powc(zero, std::int32_t{0});
    EXPECT_TRUE(same(r.re, kOne) && same(r.im, kZero));
    r = powc(zero, std::int32_t{-1});
    EXPECT_TRUE(same(r.re, kNaN) && same(r.im, kNaN));
    jwe_lca.ieee_results = 0;
    r = powc(zero, std::int64_t{-1});
    EXPECT_TRUE(same(r.re, kHuge) && same(r.im, kZero));
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{276, 277}));
}

TEST(ComplexPowers, RetryRunsTheWholePowerAgain) {
    // The exponent copy corrected from -1 to 2 on a zero base: (0, 0).
    RecordingHandler handler([](const Report& r, jwe_control_area& area) {
        EXPECT_EQ(r.type1, MIVOR_TYPE_INTEGER4);
        *static_cast<std::int32_t*>(area.second_operand) = 2;
        return true;
    });
    const mivor_complex8 z = powc(mivor_complex8{0, 0}, std::int32_t{-1});
    EXPECT_EQ(bits(z.re) | bits(z.im), 0u);
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{274});
}

TEST(ComplexPowers, SquareShortcut) {
    // (a - b)(a + b): with a = -1, b = 1 the real part is (-2)(+0) = -0,
    // where a*a - b*b would give +0.
    const mivor_complex8 z8 = powc(mivor_complex8{-1, 1}, std::int64_t{2});
    EXPECT_EQ(bits(z8.re), bits(-0.0));
    EXPECT_EQ(z8.im, -2.0);
    const mivor_complex4 z4 = powc(mivor_complex4{-3, 3}, std::int32_t{2});
    EXPECT_EQ(bits(z4.re), bits(-0.0f));
    EXPECT_EQ(z4.im, -18.0f);
}

TEST(ComplexPowers, IntegerPowersOfGaussianIntegers) {
    // (1 + i)^n = 2^(n/2) cis(n pi/4): exact in every kind.
    const double expected_re[] = {1, 1, 0, -2, -4, -4, 0, 8, 16};
    const double expected_im[] = {0, 1, 2, 2, 0, -4, -8, -8, 0};
    for (int n = 0; n <= 8; ++n) {
        const mivor_complex4 a = powc(mivor_complex4{1, 1}, std::int32_t{n});
        const mivor_complex8 b = powc(mivor_complex8{1, 1}, std::int64_t{n});
        EXPECT_EQ(a.re, expected_re[n]) << n;
        EXPECT_EQ(a.im, expected_im[n]) << n;
        EXPECT_EQ(b.re, expected_re[n]) << n;
        EXPECT_EQ(b.im, expected_im[n]) << n;
        // (1 + i)^-n = conj((1 + i)^n) / 2^n.
        const mivor_complex8 c = powc(mivor_complex8{1, 1}, std::int32_t{-n});
        EXPECT_EQ(c.re, std::ldexp(expected_re[n], -n)) << -n;
        EXPECT_EQ(c.im, std::ldexp(-expected_im[n], -n)) << -n;
    }
    const mivor_complex16 one_plus_i{kOne, kOne};
    const mivor_complex16 z = powc(one_plus_i, std::int64_t{-4});  // -1/4
    EXPECT_TRUE(same(z.re, q(0xBFFD0000)));
    EXPECT_EQ(z.im.w[3] & 0x7FFFFFFFu, 0u);
    // -2^31: 31 squarings and the reciprocal of the last square.
    const mivor_complex8 i = powc(mivor_complex8{0, 1}, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(i.re, 1.0);
}

}  // namespace
