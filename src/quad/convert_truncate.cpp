// g_qint: AINT of a REAL(16), truncation toward zero.
//
// With k = E - 16383, the fraction bits of weight below 1 are the low
// 112 - k of the 112-bit fraction; they are cleared word by word.  Kept on
// purpose:
//  * |x| < 1 gives +0, also for a negative x (no -0 result), and so do both
//    zero patterns of w3 whatever the lower words hold;
//  * k > 112 returns x unchanged: it is integral already, and infinities and
//    NaNs (field 32767) come back bit for bit.
// No error is reported.
#include "frame/values.h"
#include "mivor/mivor.h"
#include "quad/convert.h"

namespace mivor::quad::convert {

Real16 truncate(const Real16& x) {
    const int k = unbiased_exponent(x);
    if (k < 0) return make(0, 0, 0, 0);
    if (k >= 112) return x;
    // Word i holds fraction bits 32i .. 32i + 31 (w3 only 96 .. 111).
    const int cleared = 112 - k;
    Real16 r = x;
    for (int i = 0; i < 4; ++i) {
        const int below = cleared - 32 * i;  // bits of this word to clear
        if (below >= 32) r.w[i] = 0;
        else if (below > 0) r.w[i] &= ~((std::uint32_t{1} << below) - 1);
    }
    return r;
}

}  // namespace mivor::quad::convert

using namespace mivor;

extern "C" mivor_real16* g_qint(mivor_real16* result, const mivor_real16* x) {
    *result = quad::convert::truncate(*x);
    return result;
}
