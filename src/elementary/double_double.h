// Double-double building blocks: a value carried as an unevaluated sum
// hi + lo of two doubles, and the exact transformations that produce such
// sums with SSE2 arithmetic alone (no fused multiply-add: a contracted
// a*b+c would change the bits between flavours).
//
// Contracts (round to nearest throughout, no overflow in the operations):
//   fast_two_sum(a, b)  s + e = a + b exactly, s = fl(a + b), provided
//                       a == 0 or exponent(a) >= exponent(b);
//   two_sum(a, b)       the same for any a, b (six operations);
//   upper(a)            a with the 27 low fraction bits cleared: at most 26
//                       significant bits, and a - upper(a) is exact with at
//                       most 27;
//   two_prod(a, b)      p + e = a * b, p = fl(a * b), |error| <= 2^-104 |p|:
//                       Dekker's product on the halves of upper(); the
//                       product of the two lower halves (27 + 27 bits) is
//                       the only rounded term.
#pragma once

#include <emmintrin.h>

#include <cstdint>

#include "frame/values.h"

namespace mivor::elementary {

struct DD {
    double hi, lo;
};

inline DD fast_two_sum(double a, double b) {
    const double s = a + b;
    return {s, (a - s) + b};
}

inline DD two_sum(double a, double b) {
    const double s = a + b;
    const double bb = s - a;
    return {s, (a - (s - bb)) + (b - bb)};
}

// (An AND in the floating-point registers: no round trip through the
// integer unit on the paths where the split is on the critical chain.)
inline double upper(double a) {
    const __m128d mask = _mm_castsi128_pd(_mm_set_epi64x(0, static_cast<long long>(~std::uint64_t{0x7FFFFFF})));
    return _mm_cvtsd_f64(_mm_and_pd(_mm_set_sd(a), mask));
}

inline DD two_prod(double a, double b) {
    const double ah = upper(a), al = a - ah;
    const double bh = upper(b), bl = b - bh;
    const double p = a * b;
    return {p, (((ah * bh - p) + ah * bl) + al * bh) + al * bl};
}

// (a.hi + a.lo)(b.hi + b.lo) to about 2^-102 relative, given |lo| <= 2^-52 |hi|.
inline DD dd_mul(DD a, DD b) {
    const DD p = two_prod(a.hi, b.hi);
    return fast_two_sum(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}

// (a.hi + a.lo) times a double.
inline DD dd_mul(DD a, double b) {
    const DD p = two_prod(a.hi, b);
    return fast_two_sum(p.hi, p.lo + a.lo * b);
}

// (a.hi + a.lo) + (b.hi + b.lo), any order of magnitude, to about 2^-104
// relative unless the sum cancels.
inline DD dd_add(DD a, DD b) {
    const DD s = two_sum(a.hi, b.hi);
    return fast_two_sum(s.hi, s.lo + (a.lo + b.lo));
}

// (a.hi + a.lo) / (b.hi + b.lo) to about 2^-100 relative: one correction of
// the double quotient.
inline DD dd_div(DD a, DD b) {
    const double q = a.hi / b.hi;
    const DD p = two_prod(q, b.hi);
    const double r = (((a.hi - p.hi) - p.lo) + a.lo) - q * b.lo;
    return fast_two_sum(q, r / b.hi);
}

}  // namespace mivor::elementary
