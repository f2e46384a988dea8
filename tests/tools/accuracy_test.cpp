// The machinery of `mivor accuracy`, checked on subjects whose errors are
// known: formats and keys against the bit patterns, rounding against MPFR's
// own conversions, judgements of exact ties and of results that only look
// like ties at the working precision, complex and packed layouts, the
// sampler's domains, and the reference registry against the export table.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <random>

#include "accuracy_core.h"
#include "exports/registry.h"

namespace mivor::accuracy {
namespace {

class Mp {
public:
    explicit Mp(mpfr_prec_t p = 256) { mpfr_init2(v_, p); }
    ~Mp() { mpfr_clear(v_); }
    Mp(const Mp&) = delete;
    Mp& operator=(const Mp&) = delete;
    operator mpfr_ptr() { return v_; }

private:
    mpfr_t v_;
};

std::uint64_t bits64(double d) {
    std::uint64_t b;
    std::memcpy(&b, &d, sizeof b);
    return b;
}

// ---- formats ---------------------------------------------------------------

// The key of a positive value is its bit pattern; a negative value -v has
// key -key(v) - 1.
TEST(AccuracyFormats, KeysAreTheBitPatterns) {
    std::mt19937_64 rng(7);
    Mp v, back;
    mpz_t k;
    mpz_init(k);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t b = rng() & 0x7FFFFFFFFFFFFFFFu;
        double d;
        std::memcpy(&d, &b, sizeof d);
        if (!std::isfinite(d)) continue;
        mpfr_set_d(v, d, MPFR_RNDN);
        key_of(k, v, format_of(Scalar::binary64));
        ASSERT_EQ(mpz_get_ui(k), b);
        mpfr_neg(v, v, MPFR_RNDN);
        key_of(k, v, format_of(Scalar::binary64));
        ASSERT_EQ(mpz_get_si(k), -static_cast<long>(b) - 1);
        value_of(back, k, format_of(Scalar::binary64));
        ASSERT_TRUE(mpfr_equal_p(back, v) && mpfr_signbit(back)) << d;

        const auto f = static_cast<std::uint32_t>(rng() & 0x7F7FFFFFu);
        float x;
        std::memcpy(&x, &f, sizeof x);
        mpfr_set_flt(v, x, MPFR_RNDN);
        key_of(k, v, format_of(Scalar::binary32));
        ASSERT_EQ(mpz_get_ui(k), f);
    }
    // -0 and +0 are neighbours; the least subnormal follows +0.
    mpfr_set_zero(v, -1);
    key_of(k, v, format_of(Scalar::binary128));
    EXPECT_EQ(mpz_get_si(k), -1);
    mpz_set_si(k, 1);
    value_of(v, k, format_of(Scalar::binary128));
    EXPECT_EQ(mpfr_cmp_ui_2exp(v, 1, -16494), 0);
    mpz_clear(k);
}

// REAL(16) words and MPFR numbers: a value computed by __float128, which
// rounds correctly, equals MPFR's own rounding to 113 bits, both ways.
TEST(AccuracyFormats, Real16WordsAgreeWithFloat128) {
    std::mt19937_64 rng(11);
    Mp a(113), b(113), q(113), got(113);
    for (int i = 0; i < 2000; ++i) {
        const double x = std::ldexp(static_cast<double>(rng() >> 11) + 1, static_cast<int>(rng() % 200) - 100);
        const double y = std::ldexp(static_cast<double>(rng() >> 11) + 1, static_cast<int>(rng() % 200) - 100);
        const __float128 quotient = static_cast<__float128>(x) / static_cast<__float128>(y);
        mivor_real16 words;
        std::memcpy(&words, &quotient, sizeof words);
        mpfr_set_d(a, x, MPFR_RNDN);
        mpfr_set_d(b, y, MPFR_RNDN);
        mpfr_div(q, a, b, MPFR_RNDN);
        real16_to_mpfr(got, words);
        ASSERT_TRUE(mpfr_equal_p(got, q)) << x << " / " << y;
        const mivor_real16 back = real16_from_mpfr(q);
        ASSERT_EQ(std::memcmp(&back, &words, sizeof back), 0);
    }
    // A subnormal and the largest value.
    for (const mivor_real16 w : {mivor_real16{{1, 0, 0, 0}}, mivor_real16{{~0u, ~0u, ~0u, 0x7FFEFFFFu}}}) {
        real16_to_mpfr(got, w);
        const mivor_real16 back = real16_from_mpfr(got);
        EXPECT_EQ(std::memcmp(&back, &w, sizeof w), 0);
    }
}

// round_to agrees with MPFR's conversions, subnormals and ties included.
TEST(AccuracyFormats, RoundingAgreesWithMpfrConversions) {
    gmp_randstate_t rng;
    gmp_randinit_mt(rng);
    gmp_randseed_ui(rng, 3);
    Mp v(160), r(128);
    for (int i = 0; i < 20000; ++i) {
        mpfr_urandomb(v, rng);
        const long e = static_cast<long>(gmp_urandomm_ui(rng, 2200)) - 1100;
        mpfr_mul_2si(v, v, e, MPFR_RNDN);
        if (i % 3 == 0) mpfr_set_d(v, std::ldexp(1 + 2 * static_cast<double>(i), -1060), MPFR_RNDN);  // ties
        round_to(r, v, format_of(Scalar::binary64));
        ASSERT_EQ(bits64(mpfr_get_d(r, MPFR_RNDN)), bits64(mpfr_get_d(v, MPFR_RNDN)));
        round_to(r, v, format_of(Scalar::binary32));
        ASSERT_EQ(mpfr_get_flt(r, MPFR_RNDN), mpfr_get_flt(v, MPFR_RNDN));
    }
    mpfr_set_d(v, DBL_MAX, MPFR_RNDN);
    mpfr_mul_d(v, v, 1 + 0x1p-52, MPFR_RNDN);  // more than half an ulp above: rounds to infinity
    round_to(r, v, format_of(Scalar::binary64));
    EXPECT_TRUE(mpfr_inf_p(r));
    gmp_randclear(rng);
}

// ---- judging --------------------------------------------------------------------

Layout layout(std::string_view args, std::string_view result) {
    std::string error;
    Layout l = layout_of(args, result, error);
    EXPECT_EQ(error, "");
    return l;
}

Point point(std::initializer_list<double> xs) {
    Point p{};
    std::size_t i = 0;
    for (double x : xs) p.args[i++].r8 = x;
    return p;
}

Value r8(double x) {
    Value v{};
    v.r8 = x;
    return v;
}

TEST(AccuracyJudge, CountsUlpsAndCorrectRounding) {
    const Reference ref{"sqrt", mpfr_sqrt};
    const Layout l = layout("r8", "r8");
    Judge judge(ref, l, nullptr);
    Tally right, wrong;
    std::mt19937_64 rng(5);
    std::uniform_real_distribution<double> u(0.5, 8.0);
    for (int i = 0; i < 5000; ++i) {
        const double x = u(rng);
        const Point p = point({x});
        judge.judge(p, r8(std::sqrt(x)), right);
        judge.judge(p, r8(std::nextafter(std::sqrt(x), 10.0)), wrong);
    }
    EXPECT_EQ(right.figures[0].correct, 5000u);
    EXPECT_LE(right.figures[0].max(), 0.5);
    EXPECT_EQ(wrong.figures[0].correct, 0u);
    EXPECT_GT(wrong.figures[0].normal.err, 1.0);
    EXPECT_LE(wrong.figures[0].normal.err, 1.5);
    EXPECT_NEAR(wrong.figures[0].mean(), 1.0, 0.05);
    // A NaN for a finite value is a mismatch, not an error figure.
    judge.judge(point({2.0}), r8(NAN), wrong);
    EXPECT_EQ(wrong.figures[0].mismatches, 1u);
    EXPECT_EQ(wrong.figures[0].count, 5000u);
}

// Sums that are exact ties between two doubles: only the even neighbour is
// correctly rounded, and the odd one is 0.5 ulp away too.
TEST(AccuracyJudge, ExactTiesGoToEven) {
    const Reference ref{"add", mpfr_add};
    const Layout l = layout("r8,r8", "r8");
    Judge judge(ref, l, nullptr);
    Tally even, odd;
    std::mt19937_64 rng(9);
    for (int i = 0; i < 2000; ++i) {
        const double a = 1 + std::ldexp(static_cast<double>(rng() >> 12), -52);
        const double b = 0x1p-53;  // half an ulp of a
        const double s = a + b;    // the hardware rounds ties to even
        const double other = s == a ? std::nextafter(a, 2.0) : a;
        judge.judge(point({a, b}), r8(s), even);
        judge.judge(point({a, b}), r8(other), odd);
    }
    EXPECT_EQ(even.figures[0].correct, 2000u);
    EXPECT_EQ(odd.figures[0].correct, 0u);
    EXPECT_EQ(odd.figures[0].normal.err, 0.5);
}

// 1 + 3 2^-53 - 2^-200 lies just below a tie of doubles; at the working
// precision (160 bits) it is the tie itself, whose even neighbour is the
// wrong answer.  The judge must look further.
TEST(AccuracyJudge, NearTiesAreDecidedWithMorePrecision) {
    const Reference ref{"add", mpfr_add};
    const Layout l = layout("r16,r16", "r8");
    Judge judge(ref, l, nullptr);
    Mp a(113), b(113);
    mpfr_set_d(a, 1 + 0x1p-52, MPFR_RNDN);
    mpfr_add_d(a, a, 0x1p-53, MPFR_RNDN);
    mpfr_set_d(b, -0x1p-200, MPFR_RNDN);
    Point p{};
    p.args[0].r16 = real16_from_mpfr(a);
    p.args[1].r16 = real16_from_mpfr(b);
    Tally t;
    judge.judge(p, r8(1 + 0x1p-52), t);
    EXPECT_EQ(t.figures[0].correct, 1u);
    judge.judge(p, r8(1 + 0x1p-51), t);  // what rounding twice gives
    EXPECT_EQ(t.figures[0].correct, 1u);
    EXPECT_EQ(t.figures[0].normal.err, 0.5);  // 0.5 + 2^-148, as a double
    EXPECT_EQ(t.undecided, 0u);
}

// Complex results: each part in its own ulps, the norm in ulps of |y|.
TEST(AccuracyJudge, ComplexPartsAndNorm) {
    const Reference ref{"conjg", +[](mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x) {
                            mpfr_set(re, x[0], MPFR_RNDN);
                            mpfr_neg(im, x[1], MPFR_RNDN);
                            return true;
                        }};
    const Layout l = layout("c8", "c8");
    ASSERT_EQ(check_reference(ref, l), "");
    Judge judge(ref, l, nullptr);
    Point p{};
    p.args[0].c8 = {1.5, 0.75};
    Tally t;
    Value v{};
    v.c8 = {1.5, -0.75};
    judge.judge(p, v, t);
    v.c8 = {std::nextafter(1.5, 2.0), -0.75};
    judge.judge(p, v, t);
    EXPECT_EQ(t.figures[0].normal.err, 1.0);
    EXPECT_EQ(t.figures[1].normal.err, 0.0);
    EXPECT_EQ(t.figures[2].normal.err, 1.0);  // |y| = 1.68, the ulp of the real part
    EXPECT_EQ(t.figures[2].correct, 1u);
    v.c8 = {1.5, NAN};
    judge.judge(p, v, t);
    EXPECT_EQ(t.figures[1].mismatches, 1u);
    EXPECT_EQ(t.figures[2].count, 2u);
}

// Packed results: each lane is one result of the lane's argument.
TEST(AccuracyJudge, PackedLanesAreJudgedApart) {
    const Reference ref{"pk_sqrt", mpfr_sqrt};
    const Layout l = layout("v2r8", "v2r8");
    ASSERT_EQ(check_reference(ref, l), "");
    Judge judge(ref, l, nullptr);
    Point p{};
    const double x[2] = {2.0, 3.0};
    std::memcpy(p.args[0].bytes, x, sizeof x);
    const double y[2] = {std::sqrt(2.0), std::nextafter(std::sqrt(3.0), 0.0)};
    Value v{};
    std::memcpy(v.bytes, y, sizeof y);
    Tally t;
    judge.judge(p, v, t);
    EXPECT_EQ(t.figures[0].count, 2u);
    EXPECT_EQ(t.figures[0].correct, 1u);
    EXPECT_EQ(t.figures[0].normal.at.lane, 1);
}

// ---- drawing ----------------------------------------------------------------------

TEST(AccuracySampler, StaysInTheDomainAndCoversIt) {
    constexpr Range hard[] = {{"multiples of 1/4", near_multiples(8, 15, nullptr, 0.25L, 0, 0)}};
    const Reference ref{"pow", mpfr_pow, {magnitudes(2, 4), interval(-5, 70)}, hard};
    const Layout l = layout("r8,i4", "r8");
    Sampler sampler(ref, l, 1);
    int negative = 0, large = 0;
    for (int i = 0; i < 4000; ++i) {
        const Point p = sampler.random();
        const double x = p.args[0].r8;
        ASSERT_TRUE(std::fabs(x) >= 2 && std::fabs(x) <= 4) << x;
        ASSERT_TRUE(p.args[1].i4 >= -5 && p.args[1].i4 <= 70) << p.args[1].i4;
        negative += x < 0;
        large += p.args[1].i4 > 35;
    }
    EXPECT_GT(negative, 1500);
    EXPECT_GT(large, 500);
    Point p;
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(sampler.hard(hard[0], p));
        EXPECT_EQ(std::fmod(p.args[0].r8 * 4, 1.0), 0.0);
        EXPECT_TRUE(p.args[0].r8 >= 2 && p.args[0].r8 <= 3.75);
    }
}

// The unit forms take MPFR's exact functions of a fraction of a turn.
TEST(AccuracyRegistry, UnitFormsAreExactInTheUnit) {
    const Exact sind(unit<mpfr_sinu, 360>), atan2q(unit2<mpfr_atan2u, 4>);
    Mp x(53), y(53), out(53), ignored(53);
    mpfr_set_ui(x, 30, MPFR_RNDN);
    mpfr_srcptr args[2] = {x, y};
    EXPECT_TRUE(sind.evaluate(out, ignored, args));
    EXPECT_EQ(mpfr_cmp_d(out, 0.5), 0);
    mpfr_set_si(x, -1, MPFR_RNDN);  // atan2(-1, -1): -3/8 of a turn, -1.5 quadrants
    mpfr_set_si(y, -1, MPFR_RNDN);
    EXPECT_TRUE(atan2q.evaluate(out, ignored, args));
    EXPECT_EQ(mpfr_cmp_d(out, -1.5), 0);
}

// Every reference names an export of the table whose kinds it can measure,
// with axes for its argument coordinates only.
TEST(AccuracyRegistry, EveryReferenceFitsItsRow) {
    for (const Reference& ref : references()) {
        const exports::Row* row = exports::find(ref.name);
        ASSERT_NE(row, nullptr) << ref.name;
        std::string error;
        const Layout l = layout_of(row->args, row->result, error);
        EXPECT_EQ(error, "") << ref.name;
        EXPECT_EQ(check_reference(ref, l), "") << ref.name;
    }
}

}  // namespace
}  // namespace mivor::accuracy
