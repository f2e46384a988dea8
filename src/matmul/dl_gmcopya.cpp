// Packing of alpha op(A) for the GEMM kernels (layout: gemm.h).  alpha is
// applied here, once per element of A: each packed value is alpha x A
// rounded to REAL(8), alpha the left operand, and the kernels only
// multiply and add.  Rows beyond the block are zeros, so that a kernel can
// always compute its whole tile.
#include "matmul/gemm.h"

namespace mivor::matmul {

// A as stored: each column of the block is read once, top to bottom, and
// dealt out to the micro-panels (mr adjacent values per panel and k).
void _jwe_gdl_gmcopya_n(std::int32_t mb, std::int32_t kb, double alpha, const double* a, std::int32_t lda,
                        double* packed, int mr) {
    const std::int32_t full = mb / mr * mr;
    const std::ptrdiff_t panel = static_cast<std::ptrdiff_t>(mr) * kb;
    for (std::int32_t k = 0; k < kb; ++k) {
        const double* src = a + static_cast<std::ptrdiff_t>(k) * lda;
        double* dst = packed + static_cast<std::ptrdiff_t>(k) * mr;
        std::int32_t i = 0;
        for (; i < full; i += mr, dst += panel)
            for (int r = 0; r < mr; ++r) dst[r] = alpha * src[i + r];
        if (i < mb) {
            int r = 0;
            for (; i + r < mb; ++r) dst[r] = alpha * src[i + r];
            for (; r < mr; ++r) dst[r] = 0.0;
        }
    }
}

// A transposed: a row of op(A) is a column of A as stored, adjacent in k.
void _jwe_gdl_gmcopya_t(std::int32_t mb, std::int32_t kb, double alpha, const double* a, std::int32_t lda,
                        double* packed, int mr) {
    for (std::int32_t s = 0; s < mb; s += mr, packed += static_cast<std::ptrdiff_t>(mr) * kb) {
        const int rows = mb - s < mr ? mb - s : mr;
        for (int r = 0; r < mr; ++r) {
            double* dst = packed + r;
            if (r < rows) {
                const double* src = a + static_cast<std::ptrdiff_t>(s + r) * lda;
                for (std::int32_t k = 0; k < kb; ++k) dst[static_cast<std::ptrdiff_t>(k) * mr] = alpha * src[k];
            } else {
                for (std::int32_t k = 0; k < kb; ++k) dst[static_cast<std::ptrdiff_t>(k) * mr] = 0.0;
            }
        }
    }
}

}  // namespace mivor::matmul
