// g_dexp2: 2^x in REAL(8).
//
// Method: k = round(64 x) by a shifter, r = x - k/64 (exact, |r| <= 1/128),
// 2^x = 2^(k>>6) 2^((k&63)/64) 2^r with 2^(j/64) = hi + lo from the table
// and 2^r - 1 = r (p1 + r (p2 + r (p3 + r (p4 + r p5)))).
// y = (P hi + lo) + hi rounds once at the end: 0.5 ulp plus about 0.01.
//
// Paths by the high word of |x|:
//   <= 0x408FF800 (|x| up to 1023 and a little), or NaN: direct; 2^m is
//       built from the bits of the shifted sum.  For m = -1023 it is
//       applied in two steps, the first exact, the second rounding once
//       into the subnormals.  A NaN flows through and gives a NaN, unreported.
//   x <= -1023: +0.0 (underflow is not reported).
//   1023 < x < 1024: the same kernel with 2^m applied in two exact steps
//       (m reaches 1024, whose power is not a double).
//   x >= 1024, +Inf: error 239, direct form; without a retry +Inf, or
//       0x7FEFFFFFFFFFFFB6 when IEEE results are off.
#include <cstdint>

#include "elementary/exp_data.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

using namespace mivor;
using mivor::elementary::exp2_e;

namespace {

constexpr double bg = 0x1.8p+46;  // ulp 2^-6: rounds to k/64
// 2^r - 1 on |r| <= 1/128, fitted (ln 2, (ln 2)^2/2, ... adjusted):
// relative error below 2^-60.
constexpr double p1 = 0x1.62e42fefa39efp-1;
constexpr double p2 = 0x1.ebfbdff829822p-3;
constexpr double p3 = 0x1.c6b08d704fdb4p-5;
constexpr double p4 = 0x1.3b2ad544641fbp-7;
constexpr double p5 = 0x1.5d87ea183aedfp-10;
constexpr std::uint32_t kDirectLimit = 0x408FF800u;  // high word of 1023.0
constexpr double kUnderflow = -0x1.ff8p+9;           // -1023.0
constexpr double kOverflow = 0x1p+10;                // 1024.0
constexpr std::uint64_t kOneBits = 0x3FF0000000000000u;

struct Reduced {
    std::int32_t k;  // round(64 x)
    double y;        // 2^((k&63)/64) 2^r, in [0.994, 2)
};

inline Reduced reduce(double x) {
    const double s = bg + x;
    const double r = x - (s - bg);
    const double P = r * (p1 + r * (p2 + r * (p3 + r * (p4 + r * p5))));
    // The low 32 bits of s hold k, two's complement (bg has none set).
    const auto k = static_cast<std::int32_t>(static_cast<std::uint32_t>(bits_of(s)));
    const auto& e = exp2_e[k & 63];
    return {k, (P * e.hi + e.lo) + e.hi};
}

inline double pow2(int m) { return double_from_bits((std::uint64_t(m) << 52) + kOneBits); }

[[gnu::cold, gnu::noinline]] double outside(double x) {
    return report::settle<report::Form::direct>(
        [](double x) -> report::Step<double, double> {
            if ((high_word(x) & 0x7FFFFFFFu) <= kDirectLimit || x != x) return g_dexp2(&x);
            if (x <= kUnderflow) return 0.0;
            if (x >= kOverflow) return report::fail(Error::exp2_overflow_r8, _Inf_D, kHuge_D);
            // 1023 < x < 1024: m is 1023 or 1024.
            const Reduced red = reduce(x);
            return red.y * pow2((red.k >> 6) - 64) * 0x1p+64;
        },
        x);
}

}  // namespace

extern "C" MIVOR_DISPATCHED double g_dexp2(const double* arg) {
    const double x = *arg;
    if ((high_word(x) & 0x7FFFFFFFu) > kDirectLimit && x == x) return outside(x);
    const Reduced red = reduce(x);
    const int m = red.k >> 6;
    if (m == -1023) return red.y * 0x1p-959 * 0x1p-64;  // exact, then one rounding
    return red.y * pow2(m);
}
