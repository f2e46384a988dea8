// MATMUL for the kinds the floating-point unit computes: g_matmlr (REAL(4)),
// g_matmld (REAL(8)), g_matmlc (COMPLEX(4)), g_matmlx (COMPLEX(8)), and the
// aligned twins jwe_gmd2, jwe_gmx2.
//
// Operands are loaded in their own type; every product and every partial
// sum lives in the x87 register format (64-bit significand, 15-bit
// exponent) and is rounded to the element type only when it is stored.
// So a REAL(4) MATMUL sums at more than single precision and an
// intermediate sum may exceed the element type's range without harm: that
// is the required behaviour.  The precision-control field is set to 64 bits
// for the duration (frame/x87.h), so the bits do not depend on the caller's
// control word or on the flavour.
//
// A complex term a b enters the accumulators as two values, each rounded
// once in the register format: (a.re b.re) - (a.im b.im) into the real
// accumulator, (a.re b.im) + (a.im b.re) into the imaginary one.
//
// Vector x matrix and matrix x vector: one running sum per result element,
// from +0, over the whole inner dimension, stored once.
//
// Matrix x matrix: the inner dimension in blocks of 8 consecutive k,
// ascending, the short block last.  R starts as zeros; for each block and
// each (i, j), s = +0 + p(k0) + ... + p(k0 + 7) left to right in the
// register, then R(i, j) = s + R(i, j), rounded by the store.  So R(i, j)
// is a sum of per-block partial sums, each rounded once into R; it is not
// one running sum over all K.  Several rows are summed at once, each with
// its own chain, which changes no sum's order.
//
// The twins exist so that compiled code may hand over operands whose bases
// are multiples of 8; g_matmld and g_matmlx pass such operands to them.
// With x87 loads alignment changes no instruction, so both run the same
// loops and cannot differ in a bit.
#include <cstdint>
#include <cstring>

#include "frame/values.h"
#include "frame/x87.h"
#include "matmul/matmul.h"
#include "mivor/mivor.h"

namespace mivor::matmul {
namespace {

using Ext = long double;

template <class T>
struct RealArith {
    using Acc = Ext;
    static Acc zero() { return 0.0L; }
    static void add(Acc& s, const T& a, const T& b) { s = s + static_cast<Ext>(a) * static_cast<Ext>(b); }
    static T store(const Acc& s) { return static_cast<T>(s); }
    static T store_plus(const Acc& s, const T& r) { return static_cast<T>(s + static_cast<Ext>(r)); }
};

struct ComplexAcc {
    Ext re, im;
};

template <class C>
struct ComplexArith {
    using Acc = ComplexAcc;
    using Part = decltype(C{}.re);
    static Acc zero() { return {0.0L, 0.0L}; }
    static void add(Acc& s, const C& a, const C& b) {
        const Ext ar = a.re, ai = a.im, br = b.re, bi = b.im;
        const Ext re = ar * br - ai * bi;
        const Ext im = ar * bi + ai * br;
        s.re = s.re + re;
        s.im = s.im + im;
    }
    static C store(const Acc& s) { return C{static_cast<Part>(s.re), static_cast<Part>(s.im)}; }
    static C store_plus(const Acc& s, const C& r) {
        // Real part first.
        const Part re = static_cast<Part>(s.re + static_cast<Ext>(r.re));
        const Part im = static_cast<Part>(s.im + static_cast<Ext>(r.im));
        return C{re, im};
    }
};

constexpr std::int32_t kBlock = 8;

// One block of k for rows [i0, i0 + kRows) of column j: kRows running sums
// side by side, each its own chain.
template <class Arith, int kRows, class T>
inline void block_rows(const Operand<T>& a, const T* b_col, std::int32_t b_step, T* r_col, std::int32_t i0,
                       std::int32_t k0, std::int32_t kb) {
    typename Arith::Acc s[kRows];
    for (int q = 0; q < kRows; ++q) s[q] = Arith::zero();
    // Offsets from A's element (i0, k0), kept as integers: stepping a
    // pointer past the last column would form an address outside the
    // array, which a stride of any size may wrap on a 32-bit target.
    const T* ap = a.ptr(i0, k0);
    std::ptrdiff_t column = 0;
    for (std::int32_t k = 0; k < kb; ++k) {
        const T bk = load(b_col + static_cast<std::ptrdiff_t>(k) * b_step);
        for (int q = 0; q < kRows; ++q)
            Arith::add(s[q], load(ap + (column + static_cast<std::ptrdiff_t>(q) * a.stride1)), bk);
        column += a.stride2;
    }
    for (int q = 0; q < kRows; ++q) store(r_col + i0 + q, Arith::store_plus(s[q], load(r_col + i0 + q)));
}

// kRows: how many chains fit the eight x87 registers with room for the
// operands (four real sums, or two complex pairs).
template <class T, class Arith, int kRows>
struct FpuProducts {
    static void vector_matrix(const Operand<T>& a, const Operand<T>& b, T* r, std::int32_t k, std::int32_t n) {
        x87::ExtendedPrecision guard;
        matmul::vector_matrix<Arith>(a, b, r, k, n);
    }
    static void matrix_vector(const Operand<T>& a, const Operand<T>& b, T* r, std::int32_t m, std::int32_t k) {
        x87::ExtendedPrecision guard;
        matmul::matrix_vector<Arith>(a, b, r, m, k);
    }
    static void matrix_matrix(const Operand<T>& a, const Operand<T>& b, T* r, std::int32_t m, std::int32_t k,
                              std::int32_t n) {
        x87::ExtendedPrecision guard;
        std::memset(static_cast<void*>(r), 0, static_cast<std::size_t>(std::int64_t{m} * n) * sizeof(T));
        for (std::int32_t k0 = 0; k0 < k; k0 += kBlock) {
            const std::int32_t kb = k - k0 < kBlock ? k - k0 : kBlock;
            for (std::int32_t j = 0; j < n; ++j) {
                const T* b_col = b.ptr(k0, j);
                T* r_col = r + static_cast<std::ptrdiff_t>(j) * m;
                std::int32_t i = 0;
                for (; i + kRows <= m; i += kRows) block_rows<Arith, kRows>(a, b_col, b.stride1, r_col, i, k0, kb);
                for (; i < m; ++i) block_rows<Arith, 1>(a, b_col, b.stride1, r_col, i, k0, kb);
            }
        }
    }
};

using Real4 = FpuProducts<float, RealArith<float>, 4>;
using Real8 = FpuProducts<double, RealArith<double>, 4>;
using Cplx4 = FpuProducts<Complex4, ComplexArith<Complex4>, 2>;
using Cplx8 = FpuProducts<Complex8, ComplexArith<Complex8>, 2>;

bool both_aligned(const void* block) {
    const auto* args = static_cast<const mivor_matmul_args*>(block);
    const auto a = reinterpret_cast<std::uintptr_t>(args->a->base);
    const auto b = reinterpret_cast<std::uintptr_t>(args->b->base);
    return (a % 8 == 0) && (b % 8 == 0);
}

}  // namespace
}  // namespace mivor::matmul

using namespace mivor::matmul;

extern "C" void g_matmlr(const void* block) { run<float, Real4>(block); }

extern "C" void jwe_gmd2(const void* block) { run<double, Real8>(block); }

extern "C" void g_matmld(const void* block) {
    if (both_aligned(block)) {
        jwe_gmd2(block);
        return;
    }
    run<double, Real8>(block);
}

extern "C" void g_matmlc(const void* block) { run<mivor::Complex4, Cplx4>(block); }

extern "C" void jwe_gmx2(const void* block) { run<mivor::Complex8, Cplx8>(block); }

extern "C" void g_matmlx(const void* block) {
    if (both_aligned(block)) {
        jwe_gmx2(block);
        return;
    }
    run<mivor::Complex8, Cplx8>(block);
}
