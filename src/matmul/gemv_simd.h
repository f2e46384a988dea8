// The vector GEMV kernels, one template over the vector width (contract:
// gemv_kernels.h).  Included by one source per instruction set, like
// gemm_simd.h, and for the same reason everything has internal linkage.
#pragma once

#include <cstddef>
#include <cstdint>

#include "matmul/gemv_kernels.h"

namespace mivor::matmul {
namespace {

// n_rows: the running sums of a chunk of rows live in a buffer on the
// stack, and the columns stream past them NC at a time (each column read
// front to back, as memory and its prefetchers like), each sum taking its
// terms in ascending j.  Then y = y + alpha s for the chunk.
constexpr std::int32_t kRowChunk = 2048;

template <class Ops, int NC>
void rows_chunk(std::int32_t m, std::int32_t n, double alpha, const double* a, std::ptrdiff_t lda, const double* x,
                std::ptrdiff_t incx, double* y, double* s) {
    using V = typename Ops::V;
    constexpr int L = Ops::kLanes;
    const std::int32_t mv = m / L * L;
    for (std::int32_t i = 0; i < m; ++i) s[i] = 0.0;
    std::int32_t j = 0;
    for (; j + NC <= n; j += NC) {
        const double* aj = a + j * lda;
        V xv[NC];
        for (int c = 0; c < NC; ++c) xv[c] = Ops::broadcast(x + (j + c) * incx);
        for (std::int32_t i = 0; i < mv; i += L) {
            V acc = Ops::loadu(s + i);
            for (int c = 0; c < NC; ++c) acc = Ops::add(acc, Ops::mul(Ops::loadu(aj + c * lda + i), xv[c]));
            Ops::storeu(s + i, acc);
        }
        for (std::int32_t i = mv; i < m; ++i) {
            double acc = s[i];
            for (int c = 0; c < NC; ++c) acc = acc + aj[c * lda + i] * x[(j + c) * incx];
            s[i] = acc;
        }
    }
    for (; j < n; ++j) {
        const double* aj = a + j * lda;
        const double xj = x[j * incx];
        for (std::int32_t i = 0; i < m; ++i) s[i] = s[i] + aj[i] * xj;
    }
    for (std::int32_t i = 0; i < m; ++i) y[i] = y[i] + alpha * s[i];
}

template <class Ops, int NC>
void simd_n_rows(std::int32_t m, std::int32_t n, double alpha, const double* a, std::int32_t lda, const double* x,
                 std::int32_t incx, double* y) {
    alignas(64) double s[kRowChunk];
    for (std::int32_t i0 = 0; i0 < m; i0 += kRowChunk) {
        const std::int32_t len = m - i0 < kRowChunk ? m - i0 : kRowChunk;
        rows_chunk<Ops, NC>(len, n, alpha, a + i0, lda, x, incx, y + i0, s);
    }
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
