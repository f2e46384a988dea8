// Complex product and quotient, the kernels of g_acmc, g_acdc, g_axmx,
// g_axdx, g_azmz, g_azdz and of the complex integer powers.
//
// COMPLEX(4) and COMPLEX(8) compute on the x87 stack in extended precision
// (the caller holds an x87::ExtendedPrecision scope) and round each part to
// its kind once, when it is stored: products of the parts and their sums
// are rounded to 64 bits, then the part to 24 or 53.  No scaling, no
// recovery of infinities from NaN results, no fused operation: IEEE
// arithmetic decides every special case.
//
//   product   (a*c - b*d, b*c + a*d);
//   quotient  Smith's method with one reciprocal:
//             |d| <= |c| (ties included):  r = d/c, k = 1/(c + d*r),
//                                          ((a + b*r)*k, (b - a*r)*k);
//             otherwise, and when the comparison is unordered (a NaN in c
//             or d):                       r = c/d, k = 1/(c*r + d),
//                                          ((a*r + b)*k, (b*r - a)*k).
//   Both parts are multiplied by the one reciprocal k, which stays on the
//   x87 stack: two multiplications instead of two divisions, and a last
//   bit that differs from a division by the denominator.
//
// COMPLEX(16) forms the same expressions with the REAL(16) operators
// (g_aqaq, g_aqsq, g_aqmq, g_aqdq), whose reports reach the caller.  Its
// quotient divides both parts by the denominator instead of multiplying by
// a reciprocal (one rounding less per part, and at the same cost: a
// REAL(16) division costs about two multiplications), and a zero part of
// the divisor (word 3 zero, as the operators test it) is taken first:
// d = 0 gives (a/c, b/c), c = 0 gives (b/d, -a/d).  Those agree with
// Smith's method within rounding and divide a real or imaginary divisor
// exactly once per part; a divisor (0, 0) is reported by g_aqdq (280) for
// each part.  The branch compares the magnitudes as the REAL(16) operators
// read them: word 3 without the sign, then words 2, 1, 0, unsigned.
#pragma once

#include "frame/values.h"
#include "mivor/mivor.h"
#include "quad/operators.h"

namespace mivor::complex {

struct Extended {
    long double re, im;
};

inline Extended multiply(const Extended& x, const Extended& y) {
    return {x.re * y.re - x.im * y.im, x.im * y.re + x.re * y.im};
}

inline Extended divide(const Extended& x, const Extended& y) {
    const long double a = x.re, b = x.im, c = y.re, d = y.im;
    if (__builtin_fabsl(d) <= __builtin_fabsl(c)) {
        const long double r = d / c;
        const long double k = 1.0L / (c + d * r);
        return {(a + b * r) * k, (b - a * r) * k};
    }
    const long double r = c / d;
    const long double k = 1.0L / (c * r + d);
    return {(a * r + b) * k, (b * r - a) * k};
}

// The REAL(16) operators as functions of values (their value forms on the
// 64-bit target, quad/operators.h).
#if defined(__x86_64__)
inline Real16 add(const Real16& x, const Real16& y) {
    return quad::detail::to_real16(quad::add(quad::detail::load(&x), quad::detail::load(&y)));
}
inline Real16 sub(const Real16& x, const Real16& y) {
    return quad::detail::to_real16(quad::subtract(quad::detail::load(&x), quad::detail::load(&y)));
}
inline Real16 mul(const Real16& x, const Real16& y) {
    return quad::detail::to_real16(quad::multiply(quad::detail::load(&x), quad::detail::load(&y)));
}
inline Real16 div(const Real16& x, const Real16& y) {
    return quad::detail::to_real16(quad::divide(quad::detail::load(&x), quad::detail::load(&y)));
}
#else
inline Real16 add(const Real16& x, const Real16& y) {
    Real16 r;
    g_aqaq(&r, &x, &y);
    return r;
}
inline Real16 sub(const Real16& x, const Real16& y) {
    Real16 r;
    g_aqsq(&r, &x, &y);
    return r;
}
inline Real16 mul(const Real16& x, const Real16& y) {
    Real16 r;
    g_aqmq(&r, &x, &y);
    return r;
}
inline Real16 div(const Real16& x, const Real16& y) {
    Real16 r;
    g_aqdq(&r, &x, &y);
    return r;
}
#endif

inline bool top_is_zero(const Real16& x) { return (x.w[3] & ~quad::kSignBit) == 0; }

// |x| < |y| as the REAL(16) operators read magnitudes.
inline bool smaller_magnitude(const Real16& x, const Real16& y) {
    const std::uint32_t tx = x.w[3] & ~quad::kSignBit, ty = y.w[3] & ~quad::kSignBit;
    if (tx != ty) return tx < ty;
    for (int i = 2; i >= 0; --i)
        if (x.w[i] != y.w[i]) return x.w[i] < y.w[i];
    return false;
}

inline Complex16 multiply(const Complex16& x, const Complex16& y) {
    return {sub(mul(x.re, y.re), mul(x.im, y.im)), add(mul(x.im, y.re), mul(x.re, y.im))};
}

inline Complex16 divide(const Complex16& x, const Complex16& y) {
    const Real16 &a = x.re, &b = x.im, &c = y.re, &d = y.im;
    if (top_is_zero(d)) return {div(a, c), div(b, c)};
    if (top_is_zero(c)) return {div(b, d), div(sub(quad::make(0, 0, 0, 0), a), d)};
    if (!smaller_magnitude(c, d)) {  // |d| <= |c|
        const Real16 r = div(d, c);
        const Real16 den = add(c, mul(d, r));
        return {div(add(a, mul(b, r)), den), div(sub(b, mul(a, r)), den)};
    }
    const Real16 r = div(c, d);
    const Real16 den = add(mul(c, r), d);
    return {div(add(mul(a, r), b), den), div(sub(mul(b, r), a), den)};
}

}  // namespace mivor::complex
