// The vector GEMV kernels, one template over the vector width (contract:
// gemv_kernels.h).  Included by one source per instruction set, like
// gemm_simd.h, and for the same reason everything has internal linkage.
#pragma once

#include <cstddef>
#include <cstdint>

#include "matmul/gemv_kernels.h"

namespace mivor::matmul {
namespace {

// n_rows on MV vectors of rows at once (MV chains), then narrower blocks
// and single rows for the rest.
template <class Ops, int MV>
void rows_block(std::int32_t n, double alpha, const double* a, std::ptrdiff_t lda, const double* x,
                std::ptrdiff_t incx, double* y) {
    using V = typename Ops::V;
    constexpr int L = Ops::kLanes;
    V s[MV];
    for (int v = 0; v < MV; ++v) s[v] = Ops::zero();
    for (std::int32_t j = 0; j < n; ++j) {
        const V xj = Ops::broadcast(x + j * incx);
        const double* aj = a + j * lda;
        for (int v = 0; v < MV; ++v) s[v] = Ops::add(s[v], Ops::mul(Ops::loadu(aj + v * L), xj));
    }
    const V va = Ops::set1(alpha);
    for (int v = 0; v < MV; ++v) Ops::storeu(y + v * L, Ops::add(Ops::loadu(y + v * L), Ops::mul(va, s[v])));
}

inline void row_single(std::int32_t n, double alpha, const double* a, std::ptrdiff_t lda, const double* x,
                       std::ptrdiff_t incx, double* y) {
    double s = 0.0;
    for (std::int32_t j = 0; j < n; ++j) s = s + a[j * lda] * x[j * incx];
    *y = *y + alpha * s;
}

template <class Ops, int MV>
void simd_n_rows(std::int32_t m, std::int32_t n, double alpha, const double* a, std::int32_t lda, const double* x,
                 std::int32_t incx, double* y) {
    constexpr int R = MV * Ops::kLanes;
    std::int32_t i = 0;
    for (; i + R <= m; i += R) rows_block<Ops, MV>(n, alpha, a + i, lda, x, incx, y + i);
    for (; i + Ops::kLanes <= m; i += Ops::kLanes) rows_block<Ops, 1>(n, alpha, a + i, lda, x, incx, y + i);
    for (; i < m; ++i) row_single(n, alpha, a + i, lda, x, incx, y + i);
}

// t_cols on NC columns at once: 8 / L vectors of parts per column.
template <class Ops, int NC>
void cols_block(std::int32_t m, double alpha, const double* a, std::ptrdiff_t lda, const double* x, double* y,
                std::ptrdiff_t incy) {
    using V = typename Ops::V;
    constexpr int L = Ops::kLanes, P = 8 / L;
    V part[NC][P];
    for (int c = 0; c < NC; ++c)
        for (int q = 0; q < P; ++q) part[c][q] = Ops::zero();
    std::int32_t i = 0;
    for (; i + 8 <= m; i += 8) {
        V xv[P];
        for (int q = 0; q < P; ++q) xv[q] = Ops::loadu(x + i + q * L);
        for (int c = 0; c < NC; ++c)
            for (int q = 0; q < P; ++q)
                part[c][q] = Ops::add(part[c][q], Ops::mul(Ops::loadu(a + c * lda + i + q * L), xv[q]));
    }
    for (int c = 0; c < NC; ++c) {
        double p[8];
        for (int q = 0; q < P; ++q) Ops::storeu(p + q * L, part[c][q]);
        double s = join_parts(p);
        const double* ac = a + c * lda;
        for (std::int32_t r = i; r < m; ++r) s = s + ac[r] * x[r];
        double& yc = y[c * incy];
        yc = yc + alpha * s;
    }
}

template <class Ops, int NC>
void simd_t_cols(std::int32_t m, std::int32_t n, double alpha, const double* a, std::int32_t lda, const double* x,
                 double* y, std::int32_t incy) {
    std::int32_t j = 0;
    for (; j + NC <= n; j += NC)
        cols_block<Ops, NC>(m, alpha, a + static_cast<std::ptrdiff_t>(j) * lda, lda, x,
                            y + static_cast<std::ptrdiff_t>(j) * incy, incy);
    for (; j < n; ++j)
        cols_block<Ops, 1>(m, alpha, a + static_cast<std::ptrdiff_t>(j) * lda, lda, x,
                           y + static_cast<std::ptrdiff_t>(j) * incy, incy);
}

}  // namespace
}  // namespace mivor::matmul
