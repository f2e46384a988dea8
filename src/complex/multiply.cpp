// Complex multiplication x * y: g_acmc (COMPLEX(4)), g_axmx (COMPLEX(8)),
// g_azmz (COMPLEX(16)).  The textbook formula (a*c - b*d, b*c + a*d); the
// kinds' arithmetic is described in complex/arithmetic.h.  No error of its
// own: COMPLEX(16) passes on the reports of the REAL(16) operators.
//
// Every operand is read before the result area, which may be either of
// them, is written.
#include "complex/arithmetic.h"
#include "frame/x87.h"
#include "mivor/mivor.h"

namespace mivor::complex {
namespace {

template <class C>
C multiply_parts(const C& x, const C& y) {
    x87::ExtendedPrecision scope;
    const Extended p = multiply(Extended{scope.pin(x.re), scope.pin(x.im)}, Extended{scope.pin(y.re), scope.pin(y.im)});
    using Part = decltype(x.re);
    return C{static_cast<Part>(scope.pin(p.re)), static_cast<Part>(scope.pin(p.im))};
}

}  // namespace
}  // namespace mivor::complex

using namespace mivor;

extern "C" mivor_complex4* g_acmc(mivor_complex4* result, const mivor_complex4* x, const mivor_complex4* y) {
    *result = complex::multiply_parts(*x, *y);
    return result;
}

extern "C" mivor_complex8* g_axmx(mivor_complex8* result, const mivor_complex8* x, const mivor_complex8* y) {
    *result = complex::multiply_parts(*x, *y);
    return result;
}

extern "C" mivor_complex16* g_azmz(mivor_complex16* result, const mivor_complex16* x, const mivor_complex16* y) {
    *result = complex::multiply(*x, *y);
    return result;
}
