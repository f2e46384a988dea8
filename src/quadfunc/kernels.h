// The kernels of the REAL(16) elementary functions, on the working format
// (wide.h) and on fixed-point integers (fixed.h).  Each g_q export reads
// its operand, sorts out the special cases and the reports, calls a kernel
// and rounds once; the jwe_gu exports hand the same kernels to sibling
// libraries.  Every kernel states its domain and its error bound.
#pragma once

#include <cstdint>

#include "frame/values.h"
#include "quadfunc/fixed.h"
#include "quadfunc/wide.h"

namespace mivor::quadfunc {

// ---- polynomials --------------------------------------------------------

// Horner's scheme in fixed point: sum c[i] z^(n-1-i) with the coefficients
// c (highest degree first) in S.127 and z = Z / 2^(128 + s), 0 < s < 64,
// |z| < 2^-7, the partial sums below 1 in magnitude.  Each step rounds its
// product twice, to nearest in S.(127 + s) and then in S.127 (1/2 + 2^-s-1
// units of 2^-127); an earlier step's error is multiplied by |z| <= 2^-7
// in each later one, so the result is within 0.51 units of 2^-127 of the
// polynomial's value for s >= 6.
U128 horner_s127(const U128* c, int n, U128 z, int s);

// Rounded arithmetic shift right of a signed 128-bit value, 0 < s < 128.
inline U128 sar_round(U128 x, int s) { return sar(add(x, shl(U128{0, 1}, s - 1)), s); }

// ---- exponential --------------------------------------------------------

// 2^(k/256) e^r with r = R / 2^136, |r| <= ln2/512 (1 + 2^-20), k below
// 2^30 in magnitude; within 2^-127 relative (see exp.cpp).
Wide exp_reduced(std::int64_t k, U128 R);

// e^x for x = X / 2^176 (S.176, two's complement), |x| < 2^15; within
// 2^-126.9 relative plus the error of x itself (an absolute error d of x
// is a relative error d of the result).
Wide exp_s176(U192 X);

// x (a working value with |x| < 2^15) in S.176, rounded to nearest.
U192 to_s176(const Wide& x);

// x^2 in S.176 for |x| < 2^7.5, from the exact 256-bit square of the
// significand, rounded to nearest (2^-177): e^(-x^2) then needs nothing
// more.
U192 square_s176(const Wide& x);

// e^x rounded to REAL(16) for |x| < 2^-20: 1 + x + x^2 q(x) summed
// exactly and rounded once (accumulate.h), so that the ties of 1 + x +
// x^2/2 are told apart by the terms beyond.
Rounded exp_near_zero(const Wide& x);

// 2^x and 10^x for finite binary128 x with |x| < 2^14 and 2^13.
Wide exp2_kernel(const Wide& x);
Wide exp10_kernel(const Wide& x);
// The same 10^x, exact for the integers 0..55 (5^55 < 2^128), so that
// the one rounding decides the ties among them (10^49: 5^49 has 114 bits).
Wide exp10_exact_integers(const Wide& x);

// ---- logarithm ----------------------------------------------------------

// ln x for finite x > 0, in one of two forms.  Far from 1 the sum is kept
// in S.176, which carries 48 bits beyond 128 for every result of
// magnitude 2^-9 or more (fixed is true, value in s176; at most 2^-139.2
// absolute error).  Within 2^-8 of 1 it is z + tail with z = x - 1 exact
// and |tail| < 2^-9 |z| within 2^-126.4 relative (fixed is false), to be
// summed exactly where the result is rounded (see accumulate.h).
struct LogResult {
    bool fixed;
    U192 s176;
    Wide z, tail;
};
LogResult log_kernel(const Wide& x);

// ln x rounded to REAL(16): the above with one rounding of the exact sum.
Rounded log_rounded(const Wide& x);

// ln x, log2 x, log10 x as working values (x finite and positive): within
// 2^-126.5, 2^-125.9 and 2^-125.9 relative.
Wide log_wide(const Wide& x);
Wide log2_wide(const Wide& x);
Wide log10_wide(const Wide& x);

}  // namespace mivor::quadfunc
