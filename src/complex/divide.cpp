// Complex division x / y: g_acdc (COMPLEX(4)), g_axdx (COMPLEX(8)), g_azdz
// (COMPLEX(16)).  Smith's method, branch on |d| <= |c|; the kinds'
// arithmetic is described in complex/arithmetic.h.  No error of its own:
// a zero divisor gives NaN parts through 0/0 for COMPLEX(4) and COMPLEX(8),
// and COMPLEX(16) passes on the reports of the REAL(16) operators.
//
// Every operand is read before the result area, which may be either of
// them, is written.
#include "complex/arithmetic.h"
#include "frame/x87.h"
#include "mivor/mivor.h"

namespace mivor::complex {
namespace {

template <class C>
C divide_parts(const C& x, const C& y) {
    x87::ExtendedPrecision scope;
    const Extended q = divide(Extended{scope.pin(x.re), scope.pin(x.im)}, Extended{scope.pin(y.re), scope.pin(y.im)});
    using Part = decltype(x.re);
    return C{static_cast<Part>(scope.pin(q.re)), static_cast<Part>(scope.pin(q.im))};
}

}  // namespace
}  // namespace mivor::complex

using namespace mivor;

extern "C" mivor_complex4* g_acdc(mivor_complex4* result, const mivor_complex4* x, const mivor_complex4* y) {
    *result = complex::divide_parts(*x, *y);
    return result;
}

extern "C" mivor_complex8* g_axdx(mivor_complex8* result, const mivor_complex8* x, const mivor_complex8* y) {
    *result = complex::divide_parts(*x, *y);
    return result;
}

extern "C" mivor_complex16* g_azdz(mivor_complex16* result, const mivor_complex16* x, const mivor_complex16* y) {
    *result = complex::divide(*x, *y);
    return result;
}
