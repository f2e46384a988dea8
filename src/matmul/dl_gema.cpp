// _jwe_gdl_gema: C = C + D over an m x n block, one addition per element
// (C(i, j) + D(i, j), C the left operand), so the order of the elements
// does not affect the result.
#include "matmul/gemm.h"

namespace mivor::matmul {

void _jwe_gdl_gema(std::int32_t m, std::int32_t n, const double* d, std::int32_t ldd, double* c, std::int32_t ldc) {
    for (std::int32_t j = 0; j < n; ++j) {
        double* cj = c + static_cast<std::ptrdiff_t>(j) * ldc;
        const double* dj = d + static_cast<std::ptrdiff_t>(j) * ldd;
        for (std::int32_t i = 0; i < m; ++i) cj[i] = cj[i] + dj[i];
    }
}

}  // namespace mivor::matmul
