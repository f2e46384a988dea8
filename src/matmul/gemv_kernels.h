// The unit-stride GEMV kernels beneath _jwe_gdgemv: what each computes and
// in which order, and the registry.
//
// ---- Kernel contract -------------------------------------------------------
//
// Every operation is rounded to REAL(8) (SSE2 arithmetic, no fused
// multiply-add), and every kernel gives the bits of the portable reference.
//
// `n_rows` (A as stored, _jwe_gdl_gemv1b): for each row i < m of a
// contiguous y,
//     s = +0.0;  s = s + A(i, j) x(j)  for j = 0 .. n-1 ascending;
//     y(i) = y(i) + alpha s.
// One chain per row; vector kernels run rows along the lanes and keep the
// chains in memory while columns stream past.  x(j) is at
// x + j incx, any nonzero incx (the caller points x at the first element
// in the walking order).
//
// `t_cols` (A transposed, _jwe_gdl_gemv2b): for each column j < n, over
// the m rows of a contiguous x,
//     part(l) = +0.0 + A(l, j) x(l) + A(l + 8, j) x(l + 8) + ...
//               for l = 0 .. 7, over the rows below 8 (m div 8);
//     s = ((part 0 + part 4) + (part 2 + part 6))
//         + ((part 1 + part 5) + (part 3 + part 7));
//     s = s + A(i, j) x(i) for the m mod 8 remaining rows, ascending;
//     y(j) = y(j) + alpha s,   y(j) at y + j incy.
// The eight parts are the eight lanes of one AVX-512 register, two AVX2
// registers or four SSE2 registers; the width changes no sum.
//
// As for GEMM, when two NaNs of different bits meet in one addition the
// survivor is the instruction's choice; computations whose NaNs all have
// the same bits agree on every kernel.
// ---------------------------------------------------------------------------
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace mivor::matmul {

struct GemvKernel {
    const char* name;
    bool (*supported)();
    void (*n_rows)(std::int32_t m, std::int32_t n, double alpha, const double* a, std::int32_t lda, const double* x,
                   std::int32_t incx, double* y);
    void (*t_cols)(std::int32_t m, std::int32_t n, double alpha, const double* a, std::int32_t lda, const double* x,
                   double* y, std::int32_t incy);
};

std::span<const GemvKernel* const> gemv_kernels();
const GemvKernel& gemv_kernel();
const GemvKernel* find_gemv_kernel(const char* name);

extern const GemvKernel kGemvKernelReference;
extern const GemvKernel kGemvKernelSse2;
#if defined(MIVOR_MATMUL_AVX)
extern const GemvKernel kGemvKernelAvx2;
extern const GemvKernel kGemvKernelAvx512;
#endif

// The fixed tree that joins the eight parts of t_cols.
inline double join_parts(const double p[8]) {
    const double h0 = p[0] + p[4], h1 = p[1] + p[5], h2 = p[2] + p[6], h3 = p[3] + p[7];
    return (h0 + h2) + (h1 + h3);
}

}  // namespace mivor::matmul
