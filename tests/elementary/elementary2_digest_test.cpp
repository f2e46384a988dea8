// The inverse circular, degree and quadrant, hyperbolic and pair functions
// give the same bits on every flavour: a digest (FNV-1a, 64 bits) of their
// results over fixed argument streams, compared with the one computed on
// the host build.  The x87 paths (FPATAN, the arcsine forms, the series of
// sinh and cosh) are where a flavour would differ if the precision control
// were not set for them: Windows programs start with 53-bit precision.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/streams.h"

namespace {

using mivor::testing::bits;
using mivor::testing::f64;
using mivor::testing::Fnv1a;
using mivor::testing::splitmix64;

// Arguments of every range the functions split on: |x| <= 1, a few units,
// hundreds (degrees, the overflow of sinh), random exponents, and a few
// near multiples of 45 degrees and of half quadrants.
double argument(std::uint64_t& s, int i) {
    const std::uint64_t r = splitmix64(s);
    const double sign = (r & 1) ? -1.0 : 1.0;
    const double u = static_cast<double>(r >> 11) * 0x1p-53;
    switch (i % 5) {
        case 0: return sign * u;
        case 1: return sign * 20.0 * u;
        case 2: return sign * 720.0 * u;
        case 3: return sign * f64(((1023 - 30 + (r >> 3) % 60) << 52) | (splitmix64(s) >> 12));
        default: return sign * (45.0 * static_cast<double>((r >> 20) % 64) + static_cast<double>(1 + ((r >> 8) & 7)) * 0x1p-40);
    }
}

constexpr int kCount = 20000;

TEST(Elementary2Digest, RealEight) {
    double (*const inside[])(const double*) = {g_dasin, g_dacos, g_dasind, g_dacosd, g_dasinq, g_dacosq};
    double (*const fns[])(const double*) = {g_datand, g_datanq, g_dsind, g_dcosd, g_dtand, g_dcotd, g_dsinq,
                                            g_dcosq,  g_dtanq,  g_dcotq, g_dsinh, g_dcosh, g_dtanh};
    double (*const two[])(const double*, const double*) = {g_datan2, g_dtan2d, g_dtan2q};
    mivor_complex8* (*const pairs[])(mivor_complex8*, const double*) = {g_dscn, g_dscnq, g_dsch, g_dschq};
    Fnv1a d;
    std::uint64_t s = 2025;
    for (int i = 0; i < kCount; ++i) {
        const double x = argument(s, i), y = argument(s, i + 2);
        if (x == 0.0 || std::fabs(x) >= 450.0) continue;  // no reports here
        const double w = x / (1.0 + std::fabs(x));       // in (-1, 1)
        for (auto f : inside) d.add_u64(bits(f(&w)));
        for (auto f : fns) d.add_u64(bits(f(&x)));
        for (auto f : two) d.add_u64(bits(f(&y, &x)));
        for (auto f : pairs) {
            mivor_complex8 r;
            f(&r, &x);
            d.add_u64(bits(r.re));
            d.add_u64(bits(r.im));
        }
        const long double e = g_datan(&x);
        d.add_u64(bits(static_cast<double>(e)));
        d.add_u64(bits(static_cast<double>(e - static_cast<double>(e))));
    }
    std::printf("REAL(8) digest %016llx\n", static_cast<unsigned long long>(d.value()));
    EXPECT_EQ(d.value(), 0x86252c9300028de5u);
}

TEST(Elementary2Digest, RealFour) {
    float (*const inside[])(const float*) = {g_asin, g_acos, g_asind, g_acosd, g_asinq, g_acosq};
    float (*const fns[])(const float*) = {g_atan, g_atand, g_atanq, g_sind, g_cosd,  g_tand, g_cotd,
                                          g_sinq, g_cosq,  g_tanq,  g_cotq, g_sinh,  g_cosh, g_tanh};
    float (*const two[])(const float*, const float*) = {g_atan2, g_atan2d, g_atan2q};
    mivor_complex4* (*const pairs[])(mivor_complex4*, const float*) = {g_scns, g_scnsq, g_scnh, g_scnhq};
    Fnv1a d;
    std::uint64_t s = 77;
    for (int i = 0; i < kCount; ++i) {
        const float x = static_cast<float>(argument(s, i)), y = static_cast<float>(argument(s, i + 2));
        if (x == std::nearbyint(x) || std::fabs(x) >= 56.0f) continue;  // no reports (poles at integers) here
        const float w = x / (1.0f + std::fabs(x));          // in (-1, 1)
        for (auto f : inside) d.add_u64(bits(f(&w)));
        for (auto f : fns) d.add_u64(bits(f(&x)));
        for (auto f : two) d.add_u64(bits(f(&y, &x)));
        for (auto f : pairs) {
            mivor_complex4 r;
            f(&r, &x);
            d.add_u64(bits(r.re));
            d.add_u64(bits(r.im));
        }
    }
    std::printf("REAL(4) digest %016llx\n", static_cast<unsigned long long>(d.value()));
    EXPECT_EQ(d.value(), 0x3c04ae788b204929u);
}

}  // namespace
