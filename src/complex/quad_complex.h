// Shared pieces of the COMPLEX(16) elementary functions (quad_*.cpp): the
// parts read as working values, the circular and hyperbolic factors of
// one reduction and one exponential, the logarithm of the modulus with
// x^2 + y^2 - 1 formed exactly, and the rounding of a part with its
// overflow noted.  Everything runs in the working format of the REAL(16)
// functions (quadfunc/wide.h), whose 32-bit scale keeps every
// intermediate value, x^2 + y^2 of the largest parts included, free of
// overflow and underflow; each part is rounded once, at the end.
#pragma once

#include "frame/special_values.h"
#include "frame/values.h"
#include "quadfunc/sincos.h"
#include "quadfunc/special.h"
#include "quadfunc/wide.h"

namespace mivor::complex::quad16 {

using quadfunc::Rounded;
using quadfunc::Wide;

inline bool finite(const Real16& x) { return quad::exponent_field(x) != 0x7FFF; }
inline bool is_nan(const Real16& x) { return quadfunc::kind_of(x) == quadfunc::Kind::nan; }
inline bool is_inf(const Real16& x) { return quadfunc::kind_of(x) == quadfunc::Kind::infinite; }
inline bool is_zero(const Real16& x) { return quadfunc::kind_of(x) == quadfunc::Kind::zero; }
inline std::uint32_t sign_of(const Real16& x) { return x.w[3] >> 31; }
inline Real16 with_sign(Real16 x, std::uint32_t neg) {
    x.w[3] = (x.w[3] & ~quad::kSignBit) | (neg << 31);
    return x;
}
inline Real16 inf_q(std::uint32_t neg) { return with_sign(_Inf_Q, neg); }
inline Real16 zero_q(std::uint32_t neg) { return with_sign(quadfunc::kZeroQ, neg); }

// The NaN a result passes on: the first NaN operand quieted, else the
// quiet NaN.
inline Real16 nan_of(const Real16& a, const Real16& b) {
    if (is_nan(a)) return quadfunc::quieted(a);
    if (is_nan(b)) return quadfunc::quieted(b);
    return _NaN_Q;
}

// The fallback of a report with IEEE results off: every infinite part
// becomes the REAL(16) HUGE pattern with its sign.
inline Complex16 huge_for_infinite(Complex16 c) {
    if (is_inf(c.re)) c.re = with_sign(kHuge_Q, sign_of(c.re));
    if (is_inf(c.im)) c.im = with_sign(kHuge_Q, sign_of(c.im));
    return c;
}

// A part rounded to REAL(16): an overflow gives the infinity of its sign.
struct Part {
    Real16 value;
    bool overflow;
};
inline Part part(const Wide& w) {
    const Rounded r = quadfunc::round_to_real16(w);
    return {r.value, r.overflow};
}

// sin t and cos t of a finite angle in radians (quadrants = false) or in
// right angles (quadrants = true), from one reduction; a zero angle gives
// its own signed zero and exactly 1, a multiple of the right angle in
// quadrants exact zeros and ones.
quadfunc::SinCos sin_cos(const Wide& t, bool quadrants);

// sinh t and cosh t from one exponential.  `big` says that |t| (in
// radians, or t pi/2 for quadrants) is 2^14 or more: every nonzero
// product with them then overflows, and the values are not formed.
struct Hyperbolic {
    Wide sinh, cosh;
    bool big;
};
Hyperbolic sinh_cosh(const Wide& t, bool quadrants);

// ln |z| of a finite z (not both parts zero) as the sum of three working
// values, so that a result near 0 is rounded once from its exact terms.
// x^2 + y^2 is summed exactly in 384 bits; within 2^-8 of 1 its distance
// d from 1 is exact to 2^-256 relative and ln(1 + d) = d + d^2 q(d) takes
// the logarithm kernel's polynomial on d itself; elsewhere ln of the top
// 128 bits of the sum plus the rest over it.
struct LogModulus {
    Wide a, b, c;
    Rounded rounded() const;
    Wide wide() const;
};
LogModulus log_modulus(const Wide& x, const Wide& y);

// The angle of a zero z or of one with an infinite part (neither a NaN),
// by the signs: 0 or pi for a zero, pi/2, pi/4, 3pi/4, 0 or pi with an
// infinity, the sign of y.
Real16 special_angle(const Real16& x, const Real16& y);

}  // namespace mivor::complex::quad16
