// _jwe_gdgemv: y = alpha op(A) x + beta y with the classic dgemv argument
// list, and the gathering layers _jwe_gdl_gemv1 (A as stored) and
// _jwe_gdl_gemv2 (A transposed) above the unit-stride kernels.
//
//  1. Arguments are checked in the classic order; the first invalid one
//     ends the call silently with its code, y untouched.
//  2. m = 0 or n = 0, or alpha = 0 and beta = 1 (IEEE comparisons): return.
//  3. beta not 1: y = +0.0 without reading it (beta = 0) or y = beta x y.
//  4. alpha = 0: return.  Otherwise the product.
//
// The kernels want the vector they walk contiguous.  _jwe_gdl_gemv1 walks
// y: with an increment other than 1 it gathers y in chunks of at most 1024
// into an aligned buffer on the stack, runs the kernel on the chunk's rows
// and scatters the chunk back; every y(i) still gets its whole sum, so the
// chunks change no bit.  _jwe_gdl_gemv2 walks x: gathered the same way,
// and then each y(j) receives its dot product in portions of at most 1024
// rows, one addition into y per portion.  With a unit increment the kernel
// runs once over the whole problem.  Nothing is static: the path is
// reentrant.
#include "matmul/gemm.h"

namespace mivor::matmul {
namespace {

constexpr std::int32_t kChunk = 1024;

inline std::int32_t at_least_1(std::int32_t v) { return v < 1 ? 1 : v; }
inline std::int32_t min32(std::int32_t a, std::int32_t b) { return a < b ? a : b; }

// y = y + alpha A x, y walked with incy.
void _jwe_gdl_gemv1(const GemvKernel& kernel, std::int32_t m, std::int32_t n, double alpha, const double* a,
                    std::int32_t lda, const double* x, std::int32_t incx, double* y, std::int32_t incy) {
    if (incy == 1) {
        kernel.n_rows(m, n, alpha, a, lda, x, incx, y);
        return;
    }
    alignas(16) double buffer[kChunk];
    for (std::int32_t i0 = 0; i0 < m; i0 += kChunk) {
        const std::int32_t len = min32(kChunk, m - i0);
        double* yc = y + static_cast<std::ptrdiff_t>(i0) * incy;
        for (std::int32_t r = 0; r < len; ++r) buffer[r] = yc[static_cast<std::ptrdiff_t>(r) * incy];
        kernel.n_rows(len, n, alpha, a + i0, lda, x, incx, buffer);
        for (std::int32_t r = 0; r < len; ++r) yc[static_cast<std::ptrdiff_t>(r) * incy] = buffer[r];
    }
}

// y = y + alpha A^T x, x walked with incx.
void _jwe_gdl_gemv2(const GemvKernel& kernel, std::int32_t m, std::int32_t n, double alpha, const double* a,
                    std::int32_t lda, const double* x, std::int32_t incx, double* y, std::int32_t incy) {
    if (incx == 1) {
        kernel.t_cols(m, n, alpha, a, lda, x, y, incy);
        return;
    }
    alignas(16) double buffer[kChunk];
    for (std::int32_t i0 = 0; i0 < m; i0 += kChunk) {
        const std::int32_t len = min32(kChunk, m - i0);
        const double* xc = x + static_cast<std::ptrdiff_t>(i0) * incx;
        for (std::int32_t r = 0; r < len; ++r) buffer[r] = xc[static_cast<std::ptrdiff_t>(r) * incx];
        kernel.t_cols(len, n, alpha, a + i0, lda, buffer, y, incy);
    }
}

}  // namespace

int _jwe_gdgemv(const char* trans, const std::int32_t* m, const std::int32_t* n, const double* alpha, const double* a,
                const std::int32_t* lda, const double* x, const std::int32_t* incx, const double* beta, double* y,
                const std::int32_t* incy, const GemvKernel* kernel) {
    const char t = *trans;
    if (!valid_trans(t)) return 1;
    if (*m < 0) return 2;
    if (*n < 0) return 3;
    if (*lda < at_least_1(*m)) return 6;
    if (*incx == 0) return 8;
    if (*incy == 0) return 11;

    const std::int32_t mm = *m, nn = *n, ix = *incx, iy = *incy;
    if (mm == 0 || nn == 0) return 0;
    const double al = *alpha, be = *beta;
    if (al == 0.0 && be == 1.0) return 0;
    const bool trans_a = transposes(t);
    const std::int32_t len_x = trans_a ? mm : nn, len_y = trans_a ? nn : mm;
    const double* x0 = first_of(x, len_x, ix);
    double* y0 = first_of(y, len_y, iy);

    if (be != 1.0) {
        if (be == 0.0)
            for (std::int32_t i = 0; i < len_y; ++i) y0[static_cast<std::ptrdiff_t>(i) * iy] = 0.0;
        else
            for (std::int32_t i = 0; i < len_y; ++i) {
                double& yi = y0[static_cast<std::ptrdiff_t>(i) * iy];
                yi = be * yi;
            }
    }
    if (al == 0.0) return 0;
    const GemvKernel& k = kernel != nullptr ? *kernel : gemv_kernel();
    if (trans_a)
        _jwe_gdl_gemv2(k, mm, nn, al, a, *lda, x0, ix, y0, iy);
    else
        _jwe_gdl_gemv1(k, mm, nn, al, a, *lda, x0, ix, y0, iy);
    return 0;
}

}  // namespace mivor::matmul
