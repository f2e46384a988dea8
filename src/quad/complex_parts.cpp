// COMPLEX(16) constructors and part selectors: g_qcmplx (CMPLX(X, Y) of
// two REAL(16) values), g_qcmpxo (CMPLX(X [, Y]) with Y optional),
// g_qreal, g_qimag, g_qconjg.  Word copies only; the result area may
// overlap an operand, so operands are read completely first.
//
// g_qcmpxo serves the call sites where Y is an OPTIONAL dummy of the caller
// and may be absent: compiled code passes a null address for an absent
// optional argument, and CMPLX(X) is then (X, +0).  With Y present it is
// g_qcmplx.
//
// g_qconjg inverts the sign bit of the imaginary part unconditionally, so
// CONJG((1, +0)) is (1, -0) and a NaN's sign flips too.
#include "frame/values.h"
#include "mivor/mivor.h"

using namespace mivor;

extern "C" mivor_complex16* g_qcmplx(mivor_complex16* result, const mivor_real16* re, const mivor_real16* im) {
    const Complex16 z{*re, *im};
    *result = z;
    return result;
}

extern "C" mivor_complex16* g_qcmpxo(mivor_complex16* result, const mivor_real16* re, const mivor_real16* im) {
    const Complex16 z{*re, im != nullptr ? *im : quad::make(0, 0, 0, 0)};
    *result = z;
    return result;
}

extern "C" mivor_real16* g_qreal(mivor_real16* result, const mivor_complex16* z) {
    const Real16 r = z->re;
    *result = r;
    return result;
}

extern "C" mivor_real16* g_qimag(mivor_real16* result, const mivor_complex16* z) {
    const Real16 r = z->im;
    *result = r;
    return result;
}

extern "C" mivor_complex16* g_qconjg(mivor_complex16* result, const mivor_complex16* z) {
    Complex16 c = *z;
    c.im.w[3] ^= quad::kSignBit;
    *result = c;
    return result;
}
