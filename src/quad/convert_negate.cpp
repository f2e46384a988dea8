// jwe_gqqc: -q for the REAL(16) elementary functions, which pass q by value
// (four words on the stack).
//
// The sign bit of w3 is inverted, except that a w3 of exactly 0x00000000
// stays as it is: -(+0) is +0, and -(-0) is +0 as well, so negation never
// makes a negative zero.  Kept on purpose (the callers rely on a zero
// staying positive).  Any other pattern, a w3 of 0x00000000 with non-zero
// lower words included, keeps its lower words unchanged.
#include "frame/values.h"
#include "mivor/mivor.h"

using namespace mivor;

extern "C" mivor_real16* jwe_gqqc(mivor_real16* result, mivor_real16 q) {
    if (q.w[3] != 0) q.w[3] ^= quad::kSignBit;
    *result = q;
    return result;
}
