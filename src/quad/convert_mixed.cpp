// jwe_gdsq, jwe_gqmd, jwe_gddq: d - q, q * d and d / q for a REAL(8) d and
// a REAL(16) q, both passed by value, for the REAL(16) elementary functions.
//
// d is widened exactly (as by g_qextd: +-0.0 gives +0, infinities and NaNs
// become finite patterns) and the REAL(16) operator does the rest, with its
// rounding, its reports (1397/1398, 278/279) and their fallbacks.
//
// jwe_gddq returns +0 at once when q's top word is a zero (0x00000000 or
// 0x80000000, the operators' own reading of zero) and never reaches the
// division-by-zero report: its callers divide only by values they have
// checked, and an unsigned zero is what they expect back.
#include "frame/values.h"
#include "mivor/mivor.h"
#include "quad/convert.h"

using namespace mivor;

extern "C" mivor_real16* jwe_gdsq(mivor_real16* result, double d, mivor_real16 q) {
    const Real16 wide = quad::convert::from_double(d);
    return g_aqsq(result, &wide, &q);
}

extern "C" mivor_real16* jwe_gqmd(mivor_real16* result, mivor_real16 q, double d) {
    const Real16 wide = quad::convert::from_double(d);
    return g_aqmq(result, &q, &wide);
}

extern "C" mivor_real16* jwe_gddq(mivor_real16* result, double d, mivor_real16 q) {
    if ((q.w[3] & ~quad::kSignBit) == 0) {
        *result = quad::make(0, 0, 0, 0);
        return result;
    }
    const Real16 wide = quad::convert::from_double(d);
    return g_aqdq(result, &wide, &q);
}
