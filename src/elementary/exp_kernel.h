// The kernel of g_dexp (see exp.cpp for the method and its accuracy),
// shared with the hyperbolic functions: the reduction of x by k ln2/256 and
// 2^(j/256) e^r, before the scale 2^(k>>8).
#pragma once

#include <cstdint>

#include "elementary/exp_data.h"
#include "frame/values.h"

namespace mivor::elementary::exp_kernel {

inline constexpr double LG2 = 0x1.71547652b82fep+0;    // 1/ln 2
inline constexpr double BIG = 0x1.8p+44;               // ulp 2^-8: rounds to k/256
inline constexpr double LG2B = -0x1.62e42fep-1;        // -ln 2, high part: 28 bits, k*LG2B exact
inline constexpr double LG2C = -0x1.f473de6af278ep-30; // -ln 2, low part
// e^r = 1 + r q(r), |r| <= 2^-9.4; fitted, relative error of 1 + r q
// below 2^-62 on that range.
inline constexpr double P1 = 0x1.fffffffffffb1p-1;
inline constexpr double P2 = 0x1.000000000003bp-1;
inline constexpr double P3 = 0x1.555557e548294p-3;
inline constexpr double P4 = 0x1.5555544670f74p-5;
inline constexpr std::uint64_t kOneBits = 0x3FF0000000000000u;

struct Reduced {
    std::uint64_t s;  // bits of BIG + x/ln2: k in the low bits
    double y;         // 2^(j/256) e^r, in [0.9993, 2)
};

inline Reduced reduce(double x) {
    const double s = BIG + x * LG2;
    const double t = s - BIG;  // k/256 exactly
    const double r = (x + t * LG2B) + t * LG2C;
    const double r2 = r * r;
    const double q = (P1 + P2 * r) + (P3 + P4 * r) * r2;
    const std::uint64_t sb = bits_of(s);
    const auto& e = exp_e[sb & 255];
    return {sb, (q * (r * e.hi) + e.lo) + e.hi};
}

// e^x for |x| < 708.3984375 (the fast path of g_dexp, bit for bit).
inline double fast(double x) {
    const Reduced red = reduce(x);
    const double scale = double_from_bits(((red.s >> 8) << 52) + kOneBits);
    return red.y * scale;
}

}  // namespace mivor::elementary::exp_kernel
