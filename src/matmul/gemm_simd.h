// The vector GEMM kernels, one template over the vector width: rows run
// along the lanes, so each lane of each accumulator is one (r, c) of the
// tile with its own even or odd chain, and the width changes no sum.
//
// Included by exactly one source per instruction set, which defines `Ops`
// (the vector type; load, add, multiply, store, and mul_broadcast, a
// vector times one value of op(B) in every lane, that value stored
// kBWidth times in the panel) and compiles with that set enabled.
// Everything here has internal linkage so that no code built for a wider
// set can be shared with the baseline by the linker.
#pragma once

#include <cstddef>

#include "matmul/gemm_kernels.h"

namespace mivor::matmul {
namespace {

// Every loop over the tile's registers is unrolled completely, so that the
// accumulators are plain variables to the compiler and stay in registers.
#define MIVOR_UNROLL _Pragma("GCC unroll 16")

// MV vectors of Ops::kLanes rows, NR columns: 2 MV NR accumulators.  The
// start and the parity of kb are template arguments, so that each variant
// is straight-line code around one loop.
template <class Ops, int MV, int NR, Start kStart, bool kOdd>
[[gnu::always_inline]] inline void simd_tile(int kb, const double* a, const double* b, double* c, std::ptrdiff_t ldc,
                                             double beta) {
    using V = typename Ops::V;
    constexpr int L = Ops::kLanes;
    constexpr int MR = MV * L;
    static_assert(MR <= kMaxMr && NR <= kMaxNr, "the drivers' edge tiles hold kMaxMr x kMaxNr");
    V even[NR][MV], odd[NR][MV];
    MIVOR_UNROLL for (int j = 0; j < NR; ++j) {
        MIVOR_UNROLL for (int v = 0; v < MV; ++v) {
            if constexpr (kStart == Start::zero)
                even[j][v] = Ops::zero();
            else if constexpr (kStart == Start::copy)
                even[j][v] = Ops::loadu(c + j * ldc + v * L);
            else
                even[j][v] = Ops::mul(Ops::set1(beta), Ops::loadu(c + j * ldc + v * L));
            odd[j][v] = Ops::zero();
        }
    }
    constexpr int W = Ops::kBWidth;
    const double* const a_end = a + (kb & ~1) * MR;
    if constexpr (Ops::template kHandLoop<MV, NR>) {
        // The instruction set's own schedule of the same operations.
        Ops::pairs(a, a_end, b, even, odd);
    } else {
        for (; a != a_end; a += 2 * MR, b += 2 * NR * W) {
            V a0[MV], a1[MV];
            MIVOR_UNROLL for (int v = 0; v < MV; ++v) a0[v] = Ops::load(a + v * L);
            MIVOR_UNROLL for (int j = 0; j < NR; ++j) {
                MIVOR_UNROLL for (int v = 0; v < MV; ++v) even[j][v] =
                    Ops::add(even[j][v], Ops::mul_broadcast(a0[v], b + j * W));
            }
            MIVOR_UNROLL for (int v = 0; v < MV; ++v) a1[v] = Ops::load(a + MR + v * L);
            MIVOR_UNROLL for (int j = 0; j < NR; ++j) {
                MIVOR_UNROLL for (int v = 0; v < MV; ++v) odd[j][v] =
                    Ops::add(odd[j][v], Ops::mul_broadcast(a1[v], b + (NR + j) * W));
            }
        }
    }
    if constexpr (kOdd) {
        MIVOR_UNROLL for (int j = 0; j < NR; ++j) {
            MIVOR_UNROLL for (int v = 0; v < MV; ++v) even[j][v] =
                Ops::add(even[j][v], Ops::mul_broadcast(Ops::load(a + v * L), b + j * W));
        }
    }
    MIVOR_UNROLL for (int j = 0; j < NR; ++j) {
        MIVOR_UNROLL for (int v = 0; v < MV; ++v) Ops::storeu(c + j * ldc + v * L, Ops::add(odd[j][v], even[j][v]));
    }
}

#undef MIVOR_UNROLL

// The tiles of C ahead are most likely in memory, not in cache: ask for
// them while the current one computes, so that their first additions do
// not wait (with a short k-block a tile computes for less time than memory
// takes to answer).  The lines of the tile's rows (the middle one of three
// is left to the processor's own fetching when a column is misaligned).
constexpr int kPrefetchAhead = 2;

template <int MR, int NR>
inline void prefetch_tile(const double* c, std::ptrdiff_t ldc) {
    for (int j = 0; j < NR; ++j) {
        const double* col = c + j * ldc;
        for (int r = 0; r + 8 < MR; r += 8) __builtin_prefetch(col + r, 1, 3);
        __builtin_prefetch(col + MR - 1, 1, 3);
    }
}

template <class Ops, int MV, int NR, Start kStart, bool kOdd>
void simd_tiles(int kb, int tiles, const double* a, const double* b, double* c, std::ptrdiff_t ldc, double beta) {
    constexpr int MR = MV * Ops::kLanes;
    const std::ptrdiff_t panel = static_cast<std::ptrdiff_t>(MR) * kb;
    for (int t = 0; t < tiles; ++t, a += panel, c += MR) {
        if (t + kPrefetchAhead < tiles) prefetch_tile<MR, NR>(c + kPrefetchAhead * MR, ldc);
        simd_tile<Ops, MV, NR, kStart, kOdd>(kb, a, b, c, ldc, beta);
    }
}

template <class Ops, int MV, int NR>
void simd_kernel(int kb, int tiles, const double* a, const double* b, double* c, std::ptrdiff_t ldc, Start start,
                 double beta) {
    const bool odd = (kb & 1) != 0;
    switch (start) {
        case Start::zero:
            return odd ? simd_tiles<Ops, MV, NR, Start::zero, true>(kb, tiles, a, b, c, ldc, beta)
                       : simd_tiles<Ops, MV, NR, Start::zero, false>(kb, tiles, a, b, c, ldc, beta);
        case Start::copy:
            return odd ? simd_tiles<Ops, MV, NR, Start::copy, true>(kb, tiles, a, b, c, ldc, beta)
                       : simd_tiles<Ops, MV, NR, Start::copy, false>(kb, tiles, a, b, c, ldc, beta);
        case Start::scale:
            return odd ? simd_tiles<Ops, MV, NR, Start::scale, true>(kb, tiles, a, b, c, ldc, beta)
                       : simd_tiles<Ops, MV, NR, Start::scale, false>(kb, tiles, a, b, c, ldc, beta);
    }
}

}  // namespace
}  // namespace mivor::matmul
