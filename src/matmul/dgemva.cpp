// _jwe_gdgemva: _jwe_gdgemv, then y = y + z.  Its own check comes first,
// with the codes of its longer argument list (incz 10, incy 13); after the
// product each element of y (over the length of y, whatever the product
// did) receives one addition y(i) + z(i), both vectors walked by the
// classic convention.
#include "matmul/gemm.h"

namespace mivor::matmul {

int _jwe_gdgemva(const char* trans, const std::int32_t* m, const std::int32_t* n, const double* alpha, const double* a,
                 const std::int32_t* lda, const double* x, const std::int32_t* incx, const double* z,
                 const std::int32_t* incz, const double* beta, double* y, const std::int32_t* incy) {
    if (!valid_trans(*trans)) return 1;
    if (*m < 0) return 2;
    if (*n < 0) return 3;
    if (*lda < (*m < 1 ? 1 : *m)) return 6;
    if (*incx == 0) return 8;
    if (*incz == 0) return 10;
    if (*incy == 0) return 13;
    _jwe_gdgemv(trans, m, n, alpha, a, lda, x, incx, beta, y, incy);
    const std::int32_t len = transposes(*trans) ? *n : *m, iy = *incy, iz = *incz;
    double* y0 = first_of(y, len, iy);
    const double* z0 = first_of(z, len, iz);
    for (std::int32_t i = 0; i < len; ++i) {
        double& yi = y0[static_cast<std::ptrdiff_t>(i) * iy];
        yi = yi + z0[static_cast<std::ptrdiff_t>(i) * iz];
    }
    return 0;
}

}  // namespace mivor::matmul
