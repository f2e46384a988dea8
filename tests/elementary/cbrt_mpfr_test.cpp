// Cube roots against MPFR (host flavour): random arguments over the whole
// range, log-uniform in magnitude and uniform in bit pattern, subnormals
// included.  The extended result of g_dcbrt is held to the bound of its
// error analysis (2^-56 relative, i.e. at most 256 units of a 64-bit
// significand); once rounded to REAL(8) that is within 0.5 + 2^-3 ulp.
// g_cbrt must be correctly rounded.
#include <gtest/gtest.h>
#include <mpfr.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>

#include "mivor/mivor.h"

namespace {

class Reference {
public:
    Reference() { mpfr_inits2(256, x_, y_, d_, static_cast<mpfr_ptr>(nullptr)); }
    ~Reference() { mpfr_clears(x_, y_, d_, static_cast<mpfr_ptr>(nullptr)); }
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;

    // Cube root of x to 256 bits (exact enough for any comparison here).
    void set(double x) {
        mpfr_set_d(x_, x, MPFR_RNDN);
        mpfr_cbrt(y_, x_, MPFR_RNDN);
    }
    // |v - cbrt(x)| in units of 2^(E - p + 1), E the exponent of the root.
    double ulps(long double v, int p) {
        mpfr_set_ld(d_, v, MPFR_RNDN);
        mpfr_sub(d_, d_, y_, MPFR_RNDN);
        mpfr_abs(d_, d_, MPFR_RNDN);
        mpfr_mul_2si(d_, d_, p - mpfr_get_exp(y_), MPFR_RNDN);  // root in [2^(E-1), 2^E)
        return mpfr_get_d(d_, MPFR_RNDN);
    }
    float rounded_float() { return mpfr_get_flt(y_, MPFR_RNDN); }

private:
    mpfr_t x_, y_, d_;
};

double random_argument(std::mt19937_64& rng, int i) {
    std::uint64_t b;
    if (i % 2 == 0) {
        b = rng();  // uniform bit pattern
    } else {        // log-uniform magnitude: uniform exponent field
        b = (rng() & 0x800FFFFFFFFFFFFFu) | ((rng() % 2047) << 52);
    }
    double x;
    std::memcpy(&x, &b, 8);
    return x;
}

TEST(CbrtMpfr, Double) {
    Reference ref;
    std::mt19937_64 rng(2024);
    double worst_ext = 0, worst_dbl = 0;
    for (int i = 0; i < 100000; ++i) {
        const double x = random_argument(rng, i);
        if (std::isnan(x) || std::isinf(x) || x == 0.0) continue;
        const long double y = g_dcbrt(&x);
        ref.set(x);
        worst_ext = std::max(worst_ext, ref.ulps(y, 64));
        worst_dbl = std::max(worst_dbl, ref.ulps(static_cast<double>(y), 53));
        ASSERT_LE(ref.ulps(y, 64), 256.0) << std::hexfloat << x;
    }
    EXPECT_LE(worst_dbl, 0.625);
    RecordProperty("max_ulp_extended", std::to_string(worst_ext));
    RecordProperty("max_ulp_double", std::to_string(worst_dbl));
}

TEST(CbrtMpfr, FloatIsCorrectlyRounded) {
    Reference ref;
    std::mt19937_64 rng(99);
    for (int i = 0; i < 200000; ++i) {
        float x;
        const std::uint32_t b = static_cast<std::uint32_t>(rng());
        std::memcpy(&x, &b, 4);
        if (std::isnan(x) || std::isinf(x) || x == 0.0f) continue;
        const float y = g_cbrt(&x);
        ref.set(x);
        ASSERT_EQ(y, ref.rounded_float()) << std::hexfloat << x;
    }
}

}  // namespace
