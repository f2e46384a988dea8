// g_qnint, g_iqnint, g_jqnint: ANINT and NINT of a REAL(16).
//
// The plain formula, with a rounded operation: 0.5 is added (sign bit clear)
// or subtracted (sign bit set) with the REAL(16) operators, then the sum is
// truncated by AINT, INT or AINT followed by INT(8).  Kept on purpose, since
// compiled programs see these results:
//  * the addition rounds, so the largest value below 0.5 gives 1 and the odd
//    integers from 2^112 on, whose halves are not representable, are moved
//    to the even neighbour by the addition's tie rule;
//  * only the sign bit chooses, so -0 takes the subtracting branch (its
//    ANINT is still +0: AINT gives no negative zeros);
//  * the operators read no specials: an infinity plus 0.5 overflows, and
//    the report 1397 and its fallback come from the operator;
//  * g_iqnint saturates like INT, g_jqnint gives 0 from 2^64 on and does
//    not negate in [2^63, 2^64), like INT(8).
#include "frame/values.h"
#include "mivor/mivor.h"
#include "quad/convert.h"

namespace mivor::quad {
namespace {

// x + 0.5 or x - 0.5 by x's sign bit.
Real16 add_half(const Real16& x) {
    static constexpr Real16 half = make(0x3FFE0000u, 0, 0, 0);
    Real16 r;
    if (sign(x)) g_aqsq(&r, &x, &half);
    else g_aqaq(&r, &x, &half);
    return r;
}

}  // namespace
}  // namespace mivor::quad

using namespace mivor;

extern "C" mivor_real16* g_qnint(mivor_real16* result, const mivor_real16* x) {
    *result = quad::convert::truncate(quad::add_half(*x));
    return result;
}

extern "C" std::int32_t g_iqnint(const mivor_real16* x) { return quad::convert::to_int32(quad::add_half(*x)); }

extern "C" std::int64_t g_jqnint(const mivor_real16* x) {
    return quad::convert::to_int64(quad::convert::truncate(quad::add_half(*x)));
}
