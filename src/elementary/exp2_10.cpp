// g_dexp2, g_dexp10: 2^x and 10^x in REAL(8), one kernel for both bases.
//
// Method: k = round(64 x log2 b) by a shifter and the reduced argument r,
// with 2^x = 2^(k>>6) 2^((k&63)/64) 2^r (base 2) or 10^x = 2^(k>>6)
// 2^((k&63)/64) 10^r (base 10); 2^(j/64) = hi + lo comes from the table
// that both bases share, and b^r - 1 = r (p1 + r (p2 + r (p3 + r (p4 +
// r p5)))).  y = (P hi + lo) + hi rounds once at the end: 0.5 ulp plus about
// 0.01 (the polynomials' own error).
//   base 2:  r = x - k/64, exact, |r| <= 1/128;
//   base 10: r = x - (k/64) log10 2 with log10 2 split in two (the high
//            part has 33 bits and k at most 17, so the first product is
//            exact and the subtraction too), |r| <= log10(2)/128.
//
// Paths by the high word of |x|:
//   up to the direct limit (|x| <= 1023 for base 2, 304 for base 10), or
//       NaN: 2^m is built from the bits of the shifted sum (base 10: m stays
//       within [-1010, 1010]).  For base 2 and m = -1023 it is applied in
//       two steps, the first exact, the second rounding once into the
//       subnormals.  A NaN flows through and gives a NaN, unreported.
//   x at or below the underflow limit (-1023, -307.95): +0.0 (results below
//       about 2^-1023; underflow is not reported).
//   x at or above the overflow limit (1024, 308.254), +Inf: error 239
//       (base 2) or 242 (base 10), direct form; without a retry +Inf, or
//       0x7FEFFFFFFFFFFFB6 when IEEE results are off.  The base-10 limit
//       sits a little inside the true overflow point (308.2547) on purpose.
//   in between: the same kernel with 2^m applied in two steps, the first
//       exact and the second rounding once (m reaches 1024, whose power is
//       not a double; below, into the subnormals).
#include <cstdint>

#include "elementary/exp_data.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

using namespace mivor;
using mivor::elementary::exp2_e;

namespace {

enum class Base { two, ten };

template <Base base>
struct Constants;

template <>
struct Constants<Base::two> {
    // 2^r - 1 on |r| <= 1/128, fitted (ln 2, (ln 2)^2/2, ... adjusted):
    // relative error below 2^-60.
    static constexpr double p1 = 0x1.62e42fefa39efp-1;
    static constexpr double p2 = 0x1.ebfbdff829822p-3;
    static constexpr double p3 = 0x1.c6b08d704fdb4p-5;
    static constexpr double p4 = 0x1.3b2ad544641fbp-7;
    static constexpr double p5 = 0x1.5d87ea183aedfp-10;
    static constexpr std::uint32_t kDirectLimit = 0x408FF800u;  // high word of 1023.0
    static constexpr double kUnderflow = -0x1.ff8p+9;           // -1023.0
    static constexpr double kOverflow = 0x1p+10;                // 1024.0
    static constexpr Error kOverflowError = Error::exp2_overflow_r8;
};

template <>
struct Constants<Base::ten> {
    // 10^r - 1 on |r| <= 2^-8.7, fitted (ln 10, (ln 10)^2/2, ... adjusted):
    // relative error below 2^-59.
    static constexpr double p1 = 0x1.26bb1bbb55515p+1;
    static constexpr double p2 = 0x1.53524c73ccb14p+1;
    static constexpr double p3 = 0x1.0470591de61e2p+1;
    static constexpr double p4 = 0x1.2bd77d6f9b1f2p+0;
    static constexpr double p5 = 0x1.1429efb858ab4p-1;
    static constexpr std::uint32_t kDirectLimit = 0x40730000u;  // high word of 304.0
    static constexpr double kUnderflow = -0x1.33f3333333333p+8; // -307.95
    static constexpr double kOverflow = 0x1.34410624dd2f2p+8;   // 308.254
    static constexpr Error kOverflowError = Error::exp10_overflow_r8;
};

constexpr double bg = 0x1.8p+46;                 // ulp 2^-6: rounds to k/64
constexpr double lg2_10 = 0x1.a934f0979a371p+1;  // log2 10
constexpr double lg2a = 0x1.34413509p-2;         // log10 2, high part (33 bits)
constexpr double lg2b = 0x1.ef3fde623e256p-35;   // log10 2, low part
constexpr std::uint64_t kOneBits = 0x3FF0000000000000u;

struct Reduced {
    std::int32_t k;  // round(64 x log2 b)
    double y;        // 2^((k&63)/64) b^r, in [0.994, 2)
};

template <Base base>
inline Reduced reduce(double x) {
    using C = Constants<base>;
    double s, r;
    if constexpr (base == Base::two) {
        s = bg + x;
        r = x - (s - bg);
    } else {
        s = bg + x * lg2_10;
        const double t = s - bg;  // k/64
        r = (x - t * lg2a) - t * lg2b;
    }
    const double P = r * (C::p1 + r * (C::p2 + r * (C::p3 + r * (C::p4 + r * C::p5))));
    // The low 32 bits of s hold k, two's complement (bg has none set).
    const auto k = static_cast<std::int32_t>(static_cast<std::uint32_t>(bits_of(s)));
    const auto& e = exp2_e[k & 63];
    return {k, (P * e.hi + e.lo) + e.hi};
}

inline double pow2(int m) { return double_from_bits((std::uint64_t(m) << 52) + kOneBits); }

template <Base base>
double outside(double x);

template <Base base>
inline double scalar(double x) {
    if ((high_word(x) & 0x7FFFFFFFu) > Constants<base>::kDirectLimit && x == x) return outside<base>(x);
    const Reduced red = reduce<base>(x);
    const int m = red.k >> 6;
    if constexpr (base == Base::two) {
        if (m == -1023) return red.y * 0x1p-959 * 0x1p-64;  // exact, then one rounding
    }
    return red.y * pow2(m);
}

template <Base base>
[[gnu::cold, gnu::noinline]] double outside(double x) {
    return report::settle<report::Form::direct>(
        [](double x) -> report::Step<double, double> {
            using C = Constants<base>;
            if ((high_word(x) & 0x7FFFFFFFu) <= C::kDirectLimit || x != x) return scalar<base>(x);
            if (x <= C::kUnderflow) return 0.0;
            if (x >= C::kOverflow) return report::fail(C::kOverflowError, _Inf_D, kHuge_D);
            // m is 1009..1024 or -1023..-1010 (base 2: 1023 or 1024).
            const Reduced red = reduce<base>(x);
            const int m = red.k >> 6;
            if (m > 0) return red.y * pow2(m - 64) * 0x1p+64;
            return red.y * pow2(m + 64) * 0x1p-64;
        },
        x);
}

}  // namespace

extern "C" MIVOR_DISPATCHED double g_dexp2(const double* arg) { return scalar<Base::two>(*arg); }
extern "C" MIVOR_DISPATCHED double g_dexp10(const double* arg) { return scalar<Base::ten>(*arg); }
