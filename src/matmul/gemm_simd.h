// The vector GEMM kernels, one template over the vector width: rows run
// along the lanes, so each lane of each accumulator is one (r, c) of the
// tile with its own even or odd chain, and the width changes no sum.
//
// Included by exactly one source per instruction set, which defines `Ops`
// (the vector type and load, broadcast, add, multiply, store) and compiles
// with that set enabled.  Everything here has internal linkage so that no
// code built for a wider set can be shared with the baseline by the linker.
#pragma once

#include <cstddef>

#include "matmul/gemm_kernels.h"

namespace mivor::matmul {
namespace {

// MV vectors of Ops::kLanes rows, NR columns: 2 MV NR accumulators.
template <class Ops, int MV, int NR>
void simd_kernel(int kb, const double* a, const double* b, double* c, std::ptrdiff_t ldc, Start start,
                 double beta) {
    using V = typename Ops::V;
    constexpr int L = Ops::kLanes;
    constexpr int MR = MV * L;
    V even[NR][MV], odd[NR][MV];
    const V zero = Ops::zero();
    if (start == Start::zero) {
        for (int j = 0; j < NR; ++j)
            for (int v = 0; v < MV; ++v) even[j][v] = zero;
    } else if (start == Start::copy) {
        for (int j = 0; j < NR; ++j)
            for (int v = 0; v < MV; ++v) even[j][v] = Ops::loadu(c + j * ldc + v * L);
    } else {
        const V vb = Ops::set1(beta);
        for (int j = 0; j < NR; ++j)
            for (int v = 0; v < MV; ++v) even[j][v] = Ops::mul(vb, Ops::loadu(c + j * ldc + v * L));
    }
    for (int j = 0; j < NR; ++j)
        for (int v = 0; v < MV; ++v) odd[j][v] = zero;

    int k = 0;
    for (; k + 1 < kb; k += 2) {
        const double* ak = a + k * MR;
        const double* bk = b + k * NR;
        V a0[MV];
        for (int v = 0; v < MV; ++v) a0[v] = Ops::load(ak + v * L);
        for (int j = 0; j < NR; ++j) {
            const V bb = Ops::broadcast(bk + j);
            for (int v = 0; v < MV; ++v) even[j][v] = Ops::add(even[j][v], Ops::mul(a0[v], bb));
        }
        V a1[MV];
        for (int v = 0; v < MV; ++v) a1[v] = Ops::load(ak + MR + v * L);
        for (int j = 0; j < NR; ++j) {
            const V bb = Ops::broadcast(bk + NR + j);
            for (int v = 0; v < MV; ++v) odd[j][v] = Ops::add(odd[j][v], Ops::mul(a1[v], bb));
        }
    }
    if (k < kb) {
        const double* ak = a + k * MR;
        const double* bk = b + k * NR;
        for (int j = 0; j < NR; ++j) {
            const V bb = Ops::broadcast(bk + j);
            for (int v = 0; v < MV; ++v) even[j][v] = Ops::add(even[j][v], Ops::mul(Ops::load(ak + v * L), bb));
        }
    }
    for (int j = 0; j < NR; ++j)
        for (int v = 0; v < MV; ++v) Ops::storeu(c + j * ldc + v * L, Ops::add(odd[j][v], even[j][v]));
}

}  // namespace
}  // namespace mivor::matmul
