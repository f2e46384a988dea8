// Conversions, AINT, FLOOR and the comparisons against the compiler's
// __float128 (host only): over pseudo-random operands, the library's result
// must be the IEEE one wherever it is meant to be, and the deliberate
// departures must be exactly the documented ones.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

extern "C" {
#include <quadmath.h>
}

#include "convert_random.h"
#include "convert_test_support.h"

using namespace quadtest;

namespace {

constexpr int kCases = 200000;

__float128 F(const mivor_real16& v) {
    __float128 f;
    std::memcpy(&f, &v, 16);
    return f;
}
mivor_real16 Q(__float128 f) {
    mivor_real16 v;
    std::memcpy(&v, &f, 16);
    return v;
}
bool negative(const mivor_real16& v) { return (v.w[3] >> 31) != 0; }
int field(const mivor_real16& v) { return static_cast<int>((v.w[3] >> 16) & 0x7FFF); }
bool top_is_zero(const mivor_real16& v) { return (v.w[3] & 0x7FFFFFFFu) == 0; }

TEST(Ieee, DbleqIsTheCastInsideTheRange) {
    Random r{1};
    int ties = 0;
    for (int i = 0; i < kCases; ++i) {
        // Around the subnormal limit, across the range, around overflow.
        static constexpr int centers[] = {15360 - 40, 15360 + 1000, 15360 + 2030, 16383};
        const mivor_real16 x = real16_near(r, centers[i % 4], 40);
        const std::uint64_t sign = std::uint64_t{negative(x)} << 63;
        std::uint64_t want;
        if (x.w[3] == 0) {
            want = 0;
        } else if (field(x) == 0x7FFF) {
            want = sign | 0x7FEFFFFFFFFFFFFFu;
        } else {
            const double cast = static_cast<double>(F(x));
            if (std::isinf(cast)) want = sign | 0x7FEFFFFFFFFFFFFFu;
            else if (field(x) - 15360 < -52) want = 0;  // the sign of a vanishing value is dropped
            else want = bits(cast);
        }
        ties += (x.w[1] & 0x0FFFFFFFu) == 0x08000000u && x.w[0] == 0;
        ASSERT_EQ(dbleq(x), want) << W(x);
    }
    EXPECT_GT(ties, 100);
}

TEST(Ieee, SnglqIsTheCastInsideTheRange) {
    Random r{2};
    for (int i = 0; i < kCases; ++i) {
        static constexpr int centers[] = {16256 - 20, 16256 + 100, 16256 + 250, 16383};
        const mivor_real16 x = real16_near(r, centers[i % 4], 20);
        const std::uint32_t sign = std::uint32_t{negative(x)} << 31;
        std::uint32_t want;
        if (x.w[3] == 0) {
            want = 0;
        } else if (field(x) == 0x7FFF) {
            want = sign | 0x3F7FFFFFu;
        } else {
            const float cast = static_cast<float>(F(x));
            if (std::isinf(cast)) want = sign | 0x3F7FFFFFu;
            else if (field(x) - 16256 < -23) want = 0;
            else want = bits(cast);
        }
        ASSERT_EQ(snglq(x), want) << W(x);
    }
}

TEST(Ieee, WideningIsExactForEveryFiniteValue) {
    Random r{3};
    for (int i = 0; i < kCases; ++i) {
        const double d = real8(r);
        const float f = real4(r);
        if (std::isfinite(d)) {
            const mivor_real16 want = d == 0.0 ? q(0) : Q(static_cast<__float128>(d));
            ASSERT_EQ(qextd(d), W(want)) << std::hexfloat << d;
        }
        if (std::isfinite(f)) {
            const mivor_real16 want = f == 0.0f ? q(0) : Q(static_cast<__float128>(f));
            ASSERT_EQ(qext(f), W(want)) << std::hexfloat << f;
        }
    }
}

TEST(Ieee, IntegersConvertExactly) {
    Random r{4};
    for (int i = 0; i < kCases; ++i) {
        const std::int32_t a = integer32(r);
        const std::int64_t b = integer64(r);
        ASSERT_EQ(qfloat(a), W(Q(static_cast<__float128>(a)))) << a;
        ASSERT_EQ(aqcj(b), W(Q(static_cast<__float128>(b)))) << b;
    }
}

TEST(Ieee, IntegerResultsTruncateInRange) {
    Random r{5};
    const __float128 two31 = 2147483648.0, two63 = 9223372036854775808.0, two64 = 2 * two63;
    for (int i = 0; i < kCases; ++i) {
        const mivor_real16 x = real16_near(r, 16383 + 32, 36);
        const __float128 v = F(x);
        const __float128 m = fabsq(v);
        if (field(x) == 0x7FFF) continue;  // directed tests
        const std::int32_t want4 = m < two31 ? static_cast<std::int32_t>(v) : (negative(x) ? INT32_MIN : INT32_MAX);
        ASSERT_EQ(iqint(x), want4) << W(x);
        std::int64_t want8;
        if (m < two63) want8 = static_cast<std::int64_t>(v);
        else if (m < two64) want8 = static_cast<std::int64_t>(static_cast<std::uint64_t>(m));  // no negation
        else want8 = 0;
        ASSERT_EQ(ajcq(x), want8) << W(x);
    }
}

TEST(Ieee, AintAndFloorAreTruncqAndFloorq) {
    Random r{6};
    for (int i = 0; i < kCases; ++i) {
        const mivor_real16 x = real16_near(r, 16383 + 56, 60);
        if (field(x) == 0x7FFF) {
            ASSERT_EQ(qint(x), W(x));
            ASSERT_EQ(gflq(x), W(x));
            continue;
        }
        const __float128 t = truncq(F(x));
        ASSERT_EQ(qint(x), W(t == 0 ? q(0) : Q(t))) << W(x);  // zeros unsigned
        const mivor_real16 fl = top_is_zero(x) ? q(0) : Q(floorq(F(x)));
        ASSERT_EQ(gflq(x), W(fl)) << W(x);
    }
}

TEST(Ieee, NarrowFloorsAreLibmFloors) {
    Random r{7};
    for (int i = 0; i < kCases; ++i) {
        const float f = real4(r);
        const double d = real8(r);
        const float gf = jwe_gflo(&f);
        const double gd = jwe_gfld(&d);
        if (std::isnan(f)) ASSERT_EQ(bits(gf), bits(f) | 0x00400000u);
        else ASSERT_EQ(bits(gf), bits(std::floor(f))) << std::hexfloat << f;
        if (std::isnan(d)) ASSERT_EQ(bits(gd), bits(d) | 0x0008000000000000u);
        else ASSERT_EQ(bits(gd), bits(std::floor(d))) << std::hexfloat << d;
    }
}

TEST(Ieee, ComparisonsAreTheIeeeOnes) {
    Random r{8};
    for (int i = 0; i < kCases; ++i) {
        mivor_real16 x, y;
        comparison_pair(r, x, y);
        const __float128 a = F(x), b = F(y);
        const int want = (isnanq(a) || isnanq(b)) ? 3 : a == b ? 0 : a < b ? 1 : 2;
        ASSERT_EQ(g_acmp(&x, &y), want) << W(x) << " " << W(y);
        ASSERT_EQ(g_acmpe(&x, &y), want);
        ASSERT_EQ(g_afeq(&x, &y), a == b);
        ASSERT_EQ(g_afne(&x, &y), a != b);
        ASSERT_EQ(g_afgt(&x, &y), a > b);
        ASSERT_EQ(g_afge(&x, &y), a >= b);
        ASSERT_EQ(g_aflt(&x, &y), a < b);
        ASSERT_EQ(g_afle(&x, &y), a <= b);
    }
}

TEST(Ieee, MaxMinPickTheIeeeLargerOrSmaller) {
    Random r{9};
    for (int i = 0; i < kCases; ++i) {
        mivor_real16 x, y;
        comparison_pair(r, x, y);
        const __float128 a = F(x), b = F(y);
        if (isnanq(a) || isnanq(b)) continue;
        // Equal values are equal patterns except +-0, where -0 is the smaller.
        const bool x_larger = a > b || (a == b && !negative(x));
        mivor_real16 mx, mn;
        g_qmax1(&mx, &x, &y);
        g_qmin1(&mn, &x, &y);
        ASSERT_EQ(W(mx), W(x_larger ? x : y)) << W(x) << " " << W(y);
        ASSERT_EQ(W(mn), W(x_larger ? y : x)) << W(x) << " " << W(y);
    }
}

// Within the normal range the REAL(16) operators round like IEEE, so the
// functions built on them equal the same formula in __float128, up to the
// sign of zero results (the library's are +0).
bool ordinary(const mivor_real16& v) { return field(v) > 16383 - 1000 && field(v) < 16383 + 1000; }
Words unsigned_zero(__float128 f) { return f == 0 ? W(0) : W(Q(f)); }

TEST(Ieee, FunctionsOverTheOperatorsFollowTheirFormulas) {
    Random r{10};
    int checked = 0;
    for (int i = 0; i < kCases; ++i) {
        const mivor_real16 x = real16_near(r, 16383 + 40, 60), y = real16_near(r, 16383, 40);
        const double d = real8(r);
        if (!ordinary(x) || !ordinary(y) || !std::isfinite(d)) continue;
        ++checked;
        const __float128 fx = F(x), fy = F(y), fd = d;
        mivor_real16 out;
        g_qmod(&out, &x, &y);
        ASSERT_EQ(W(out), unsigned_zero(fx - truncq(fx / fy) * fy)) << W(x) << " " << W(y);
        g_qdim(&out, &x, &y);
        ASSERT_EQ(W(out), unsigned_zero(fx > fy ? fx - fy : 0)) << W(x) << " " << W(y);
        const __float128 rounded = truncq(negative(x) ? fx - 0.5 : fx + 0.5);
        g_qnint(&out, &x);
        ASSERT_EQ(W(out), unsigned_zero(rounded)) << W(x);
        ASSERT_EQ(g_iqnint(&x), iqint(Q(rounded == 0 ? 0 : rounded))) << W(x);
        jwe_gdsq(&out, d, y);
        ASSERT_EQ(W(out), unsigned_zero(fd - fy)) << d << " " << W(y);
        jwe_gqmd(&out, y, d);
        ASSERT_EQ(W(out), unsigned_zero(fy * fd)) << W(y) << " " << d;
        jwe_gddq(&out, d, y);
        ASSERT_EQ(W(out), unsigned_zero(fd / fy)) << d << " " << W(y);
        const double e = real8(r);
        if (std::isfinite(e)) {
            g_qprod(&out, &d, &e);
            ASSERT_EQ(W(out), unsigned_zero(fd * static_cast<__float128>(e))) << d << " " << e;
        }
    }
    EXPECT_GT(checked, kCases / 2);
}

}  // namespace
