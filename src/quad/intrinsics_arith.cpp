// DIM, MOD and DPROD of REAL(16): g_qdim, g_qmod, g_qprod, built on the
// REAL(16) operators, whose reports and fallbacks reach the caller
// unchanged.
//
// g_qdim(x, y): x - y by g_aqsq; a result with the sign bit set becomes +0.
//
// g_qmod(x, y): x - AINT(x / y) * y, each operation rounded, in this order:
// q = x / y, t = AINT(q), p = t * y, x - p.  Kept on purpose: no exact
// remainder is formed, so when x / y is large the result carries the
// rounding error of q (as the run-time always has); a zero y is reported
// by the division (280) and the formula goes on with its fallback.
//
// g_qprod(a, b): the two REAL(8) values widened exactly and multiplied by
// g_aqmq.  53 x 53 significand bits fit in 113, so the product is exact,
// and with exponents within REAL(8)'s it can neither overflow nor
// underflow; a zero factor gives +0 (the operator's unsigned zero).
#include "frame/values.h"
#include "mivor/mivor.h"
#include "quad/convert.h"

using namespace mivor;

extern "C" mivor_real16* g_qdim(mivor_real16* result, const mivor_real16* x, const mivor_real16* y) {
    Real16 d;
    g_aqsq(&d, x, y);
    if (quad::sign(d)) d = quad::make(0, 0, 0, 0);
    *result = d;
    return result;
}

extern "C" mivor_real16* g_qmod(mivor_real16* result, const mivor_real16* x, const mivor_real16* y) {
    const Real16 xv = *x, yv = *y;
    Real16 q, p;
    g_aqdq(&q, &xv, &yv);
    const Real16 t = quad::convert::truncate(q);
    g_aqmq(&p, &t, &yv);
    return g_aqsq(result, &xv, &p);
}

extern "C" mivor_real16* g_qprod(mivor_real16* result, const double* a, const double* b) {
    const Real16 x = quad::convert::from_double(*a), y = quad::convert::from_double(*b);
    return g_aqmq(result, &x, &y);
}
