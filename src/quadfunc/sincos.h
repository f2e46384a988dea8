// The circular-function kernels: reduction to [-pi/4, pi/4] in radians,
// degrees and quadrants, and sine and cosine of a reduced argument.
#pragma once

#include "quadfunc/wide.h"

namespace mivor::quadfunc {

// x = k (a right angle) + r: k mod 4 and the reduced argument.
struct Reduced {
    Wide r;
    unsigned quadrant;
};

// |a| in radians, |r| <= pi/4 (1 + 2^-60), r within 2^-126.4 relative
// (reduce.cpp); a finite, a.e <= 16384.
Reduced reduce_radians(const Wide& a);

// |a| in degrees or in quadrants (right angles): k mod 4 and the exact
// remainder (|r| <= 45 or 1/2) converted to radians with one rounding
// (2^-127 relative); at a multiple of the right angle r is exactly zero
// (reduce_units.cpp).  a finite.
Reduced reduce_degrees(const Wide& a);
Reduced reduce_quadrants(const Wide& a);

// sin r and cos r for |r| <= pi/4 (1 + 2^-60): within 2^-124.7 and 2^-126
// relative (sincos.cpp).
struct SinCos {
    Wide sin, cos;
};
SinCos sincos_reduced(const Wide& r);

// The sine and cosine of k right angles plus r: quadrant 0 (sin r, cos r),
// 1 (cos r, -sin r), 2 (-sin r, -cos r), 3 (-cos r, sin r).
SinCos by_quadrant(const SinCos& sc, unsigned k);

// The four circular functions, each from the sine and cosine of one
// reduction.
enum class Fn { sin, cos, tan, cot };
template <Fn fn>
inline Wide circular(const SinCos& sc) {
    if constexpr (fn == Fn::sin) return sc.sin;
    else if constexpr (fn == Fn::cos) return sc.cos;
    else if constexpr (fn == Fn::tan) return div(sc.sin, sc.cos);
    else return div(sc.cos, sc.sin);
}

}  // namespace mivor::quadfunc
