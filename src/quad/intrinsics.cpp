// ABS and SIGN of a REAL(16): g_qabs, g_qsign.  Bit operations on w3; the
// lower words are copied.
//
// g_qsign(a, b) gives a with the sign bit of b, except that a b of -0 (w3 =
// 0x80000000 and the lower words zero) counts as positive: SIGN(a, -0) is
// |a|.  Kept on purpose: for this run-time a negative zero carries no sign
// for SIGN.  Every other b, negative subnormals and NaNs included, lends its
// sign bit.
#include "frame/values.h"
#include "mivor/mivor.h"

using namespace mivor;

extern "C" mivor_real16* g_qabs(mivor_real16* result, const mivor_real16* x) {
    Real16 r = *x;
    r.w[3] &= ~quad::kSignBit;
    *result = r;
    return result;
}

extern "C" mivor_real16* g_qsign(mivor_real16* result, const mivor_real16* a, const mivor_real16* b) {
    Real16 r = *a;
    const Real16 s = *b;
    const bool negative_zero = s.w[3] == quad::kSignBit && (s.w[2] | s.w[1] | s.w[0]) == 0;
    const std::uint32_t sign = negative_zero ? 0u : (s.w[3] & quad::kSignBit);
    r.w[3] = (r.w[3] & ~quad::kSignBit) | sign;
    *result = r;
    return result;
}
