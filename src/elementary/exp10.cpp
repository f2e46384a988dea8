// g_dexp10: 10^x in REAL(8).
//
// Method: k = round(64 x log2 10) by a shifter, r = x - (k/64) log10 2 with
// log10 2 split in two (the high part has 33 bits and k at most 17, so the
// first product is exact and the subtraction too), |r| <= log10(2)/128;
// 10^x = 2^(k>>6) 2^((k&63)/64) 10^r, 10^r - 1 = r (p1 + r (p2 + ...)).
// y = (P hi + lo) + hi rounds once at the end.
//
// Paths by the high word of |x|:
//   <= 0x40730000 (|x| up to 304), or NaN: direct, 2^m from bits (m stays
//       within [-1010, 1010]).  A NaN flows through, unreported.
//   x <= -307.95: +0.0 (results below about 2^-1023; not reported).
//   x >= 308.254, +Inf: error 242, direct form; without a retry +Inf, or
//       0x7FEFFFFFFFFFFFB6 when IEEE results are off.  The limit sits a
//       little inside the true overflow point (308.2547) on purpose.
//   in between: the same kernel with 2^m applied in two steps, the first
//       exact and the second rounding once (into the subnormals below).
#include <cstdint>

#include "elementary/exp_data.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

using namespace mivor;
using mivor::elementary::exp2_e;

namespace {

constexpr double lg2_10 = 0x1.a934f0979a371p+1;  // log2 10
constexpr double lg2a = 0x1.34413509p-2;         // log10 2, high part (33 bits)
constexpr double lg2b = 0x1.ef3fde623e256p-35;   // log10 2, low part
constexpr double bg = 0x1.8p+46;                 // ulp 2^-6: rounds to k/64
// 10^r - 1 on |r| <= 2^-8.7, fitted (ln 10, (ln 10)^2/2, ... adjusted):
// relative error below 2^-59.
constexpr double p1 = 0x1.26bb1bbb55515p+1;
constexpr double p2 = 0x1.53524c73ccb14p+1;
constexpr double p3 = 0x1.0470591de61e2p+1;
constexpr double p4 = 0x1.2bd77d6f9b1f2p+0;
constexpr double p5 = 0x1.1429efb858ab4p-1;
constexpr std::uint32_t kDirectLimit = 0x40730000u;  // high word of 304.0
constexpr double kUnderflow = -0x1.33f3333333333p+8; // -307.95
constexpr double kOverflow = 0x1.34410624dd2f2p+8;   // 308.254
constexpr std::uint64_t kOneBits = 0x3FF0000000000000u;

struct Reduced {
    std::int32_t k;
    double y;
};

inline Reduced reduce(double x) {
    const double s = bg + x * lg2_10;
    const double t = s - bg;  // k/64
    const double r = (x - t * lg2a) - t * lg2b;
    const double P = r * (p1 + r * (p2 + r * (p3 + r * (p4 + r * p5))));
    const auto k = static_cast<std::int32_t>(static_cast<std::uint32_t>(bits_of(s)));
    const auto& e = exp2_e[k & 63];
    return {k, (P * e.hi + e.lo) + e.hi};
}

inline double pow2(int m) { return double_from_bits((std::uint64_t(m) << 52) + kOneBits); }

[[gnu::cold, gnu::noinline]] double outside(double x) {
    return report::settle<report::Form::direct>(
        [](double x) -> report::Step<double, double> {
            if ((high_word(x) & 0x7FFFFFFFu) <= kDirectLimit || x != x) return g_dexp10(&x);
            if (x <= kUnderflow) return 0.0;
            if (x >= kOverflow) return report::fail(Error::exp10_overflow_r8, _Inf_D, kHuge_D);
            const Reduced red = reduce(x);
            const int m = red.k >> 6;  // 1009..1024 or -1023..-1010
            if (m > 0) return red.y * pow2(m - 64) * 0x1p+64;
            return red.y * pow2(m + 64) * 0x1p-64;
        },
        x);
}

}  // namespace

extern "C" MIVOR_DISPATCHED double g_dexp10(const double* arg) {
    const double x = *arg;
    if ((high_word(x) & 0x7FFFFFFFu) > kDirectLimit && x == x) return outside(x);
    const Reduced red = reduce(x);
    return red.y * pow2(red.k >> 6);
}
