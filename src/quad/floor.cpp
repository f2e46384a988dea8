// jwe_gflo, jwe_gfld, jwe_gflq: FLOOR of a REAL(4), REAL(8), REAL(16) as a
// value of the same kind, the kernels of MODULO and of the sibling
// libraries' FLOOR; the method and its rules are in quad/floor.h.
#include "quad/floor.h"

#include "mivor/mivor.h"

using namespace mivor;

extern "C" float jwe_gflo(const float* x) { return quad::floor_of(*x); }

extern "C" double jwe_gfld(const double* x) { return quad::floor_of(*x); }

extern "C" mivor_real16* jwe_gflq(mivor_real16* result, const mivor_real16* x) {
    *result = quad::floor_real16(*x);
    return result;
}
