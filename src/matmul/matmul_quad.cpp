// MATMUL for REAL(16) (g_matmlq) and COMPLEX(16) (g_matmlz), on the
// library's own binary128 operators: every product and every sum is one
// call of g_aqmq, g_aqaq or g_aqsq and is rounded to binary128 at once.
// Their reports (1397, 1398) reach the caller as the operators make them;
// MATMUL itself reports only non-conforming shapes (matmul.h).
//
// Vector x matrix and matrix x vector: acc starts as the all-zero pattern
// and takes acc = g_aqaq(acc, g_aqmq(a, b)) term by term; it is stored once
// per element.  A sum of nothing but -0 products is therefore +0.
//
// Matrix x matrix has no 8-term blocks and another loop order: R is zeroed,
// then for k (outermost), for j, for i: R(i, j) = g_aqaq(R(i, j),
// g_aqmq(A(i, k), B(k, j))).  Each R(i, j) is one left-to-right sum over k,
// rounded after every term.  The calls are made in exactly that order, so
// a handler sees the reports in the order of the terms.
//
// A COMPLEX(16) term: re = g_aqsq(g_aqmq(a.re, b.re), g_aqmq(a.im, b.im)) is
// formed and added into the real part first, then im = g_aqaq(g_aqmq(a.re,
// b.im), g_aqmq(a.im, b.re)) into the imaginary part.
#include <cstdint>
#include <cstring>

#include "frame/values.h"
#include "matmul/matmul.h"
#include "mivor/mivor.h"

namespace mivor::matmul {
namespace {

// The accumulator's start: binary128 +0.
constexpr Real16 zero = {{0, 0, 0, 0}};

inline void accumulate(Real16& acc, const Real16& a, const Real16& b) {
    Real16 p;
    g_aqmq(&p, &a, &b);
    g_aqaq(&acc, &acc, &p);
}

inline void accumulate(Complex16& acc, const Complex16& a, const Complex16& b) {
    Real16 p, q, t;
    g_aqmq(&p, &a.re, &b.re);
    g_aqmq(&q, &a.im, &b.im);
    g_aqsq(&t, &p, &q);
    g_aqaq(&acc.re, &acc.re, &t);
    g_aqmq(&p, &a.re, &b.im);
    g_aqmq(&q, &a.im, &b.re);
    g_aqaq(&t, &p, &q);
    g_aqaq(&acc.im, &acc.im, &t);
}

template <class T>
struct QuadArith {
    using Acc = T;
    static Acc zero() {
        if constexpr (sizeof(T) == sizeof(Real16))
            return matmul::zero;
        else
            return T{matmul::zero, matmul::zero};
    }
    static void add(Acc& s, const T& a, const T& b) { accumulate(s, a, b); }
    static T store(const Acc& s) { return s; }
};

template <class T>
struct QuadProducts {
    static void vector_matrix(const Operand<T>& a, const Operand<T>& b, T* r, std::int32_t k, std::int32_t n) {
        matmul::vector_matrix<QuadArith<T>>(a, b, r, k, n);
    }
    static void matrix_vector(const Operand<T>& a, const Operand<T>& b, T* r, std::int32_t m, std::int32_t k) {
        matmul::matrix_vector<QuadArith<T>>(a, b, r, m, k);
    }
    static void matrix_matrix(const Operand<T>& a, const Operand<T>& b, T* r, std::int32_t m, std::int32_t k,
                              std::int32_t n) {
        std::memset(static_cast<void*>(r), 0, static_cast<std::size_t>(std::int64_t{m} * n) * sizeof(T));
        for (std::int32_t l = 0; l < k; ++l)
            for (std::int32_t j = 0; j < n; ++j) {
                const T blj = b.at(l, j);
                T* r_col = r + static_cast<std::ptrdiff_t>(j) * m;
                for (std::int32_t i = 0; i < m; ++i) {
                    T rij = load(r_col + i);
                    accumulate(rij, a.at(i, l), blj);
                    store(r_col + i, rij);
                }
            }
    }
};

}  // namespace
}  // namespace mivor::matmul

using namespace mivor::matmul;

extern "C" void g_matmlq(const void* block) { run<mivor::Real16, QuadProducts<mivor::Real16>>(block); }

extern "C" void g_matmlz(const void* block) { run<mivor::Complex16, QuadProducts<mivor::Complex16>>(block); }
