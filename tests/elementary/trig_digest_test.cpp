// The radian circular functions give the same bits on every flavour: a
// digest (FNV-1a, 64 bits) of the results over a fixed argument stream is
// compared with the one computed on the host build.  A mismatch on i386 or
// win32 means an operation rounds differently there (x87 arithmetic, a
// contracted multiply-add, a platform libm call), not that the host is
// right: the accuracy is checked elsewhere.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/streams.h"

namespace {

using mivor::testing::bits;
using mivor::testing::f64;
using mivor::testing::Fnv1a;
using mivor::testing::splitmix64;

// Arguments below 3.53e15: a quarter with random exponents (2^-40 .. 2^51),
// a quarter uniform in [-10, 10], a quarter next to multiples of pi/2 up to
// 2^40 (1 pi/2 = 0x1.921fb54442d18p+0 times k, moved by a few ulps), and a
// quarter in [1.05e8, 3.5e15].
double argument(std::uint64_t& s, int i) {
    const std::uint64_t r = splitmix64(s);
    const double sign = (r & 1) ? -1.0 : 1.0;
    switch (i & 3) {
        case 0: {
            const std::uint64_t e = 1023 - 40 + (r >> 1) % 91;
            return sign * f64((e << 52) | (splitmix64(s) >> 12));
        }
        case 1: return -10.0 + static_cast<double>(r >> 11) * 0x1p-53 * 20.0;
        case 2: {
            const double k = static_cast<double>(((r >> 24) & ((1u << 30) - 1)) | 1);
            const double x = k * 0x1.921fb54442d18p+0;
            return sign * f64(bits(x) + ((r >> 8) & 7) - 3);
        }
        default: return sign * (1.05e8 + static_cast<double>(r >> 11) * 0x1p-53 * 3.49e15);
    }
}

constexpr int kCount = 40000;

TEST(TrigDigest, RealEight) {
    double (*const fns[4])(const double*) = {g_dsin, g_dcos, g_dtan, g_dcotan};
    Fnv1a d;
    std::uint64_t s = 2024;
    for (int i = 0; i < kCount; ++i) {
        const double x = argument(s, i);
        for (auto f : fns) d.add_u64(bits(f(&x)));
    }
    std::printf("REAL(8) digest %016llx\n", static_cast<unsigned long long>(d.value()));
    EXPECT_EQ(d.value(), 0xae66b52bb1bdaf6du);
}

TEST(TrigDigest, Packed) {
    Fnv1a d;
    std::uint64_t s = 77;
    for (int i = 0; i < kCount; ++i) {
        const double x0 = argument(s, i), x1 = argument(s, i + 1);
        alignas(16) double r[4];
        _mm_store_pd(r, pk_dsin(_mm_set_pd(x1, x0)));
        _mm_store_pd(r + 2, pk_dcos(_mm_set_pd(x1, x0)));
        for (double v : r) d.add_u64(bits(v));
    }
    std::printf("pk digest %016llx\n", static_cast<unsigned long long>(d.value()));
    EXPECT_EQ(d.value(), 0x256635f5bc9f6614u);
}

TEST(TrigDigest, RealFour) {
    float (*const fns[4])(const float*) = {g_sin, g_cos, g_tan, g_cotan};
    Fnv1a d;
    std::uint64_t s = 99;
    for (int i = 0; i < kCount; ++i) {
        const std::uint64_t r = splitmix64(s);
        float x;
        if (i & 1) {
            const std::uint32_t b = static_cast<std::uint32_t>(r) & 0x7FFFFFFFu;
            std::memcpy(&x, &b, sizeof x);
            if (!(x < 823000.0f)) x = static_cast<float>(static_cast<double>(r >> 45) * 0x1p-4);
        } else {
            x = static_cast<float>(-1000.0 + static_cast<double>(r >> 11) * 0x1p-53 * 2000.0);
        }
        if (r & 2) x = -x;
        if (x == 0.0f) x = 1.0f;  // cot(0) reports
        for (auto f : fns) d.add_u64(bits(f(&x)));
    }
    std::printf("REAL(4) digest %016llx\n", static_cast<unsigned long long>(d.value()));
    EXPECT_EQ(d.value(), 0xe0215fc4e26d40a3u);
}

}  // namespace
