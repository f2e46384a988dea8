// What the matrix tests share: descriptors over test-owned storage, random
// operands, and plain scalar references of the stated summation orders,
// written from the description of each routine and independent of the
// library's loops (they share only the REAL(16) operators, which are the
// specified arithmetic of those kinds).
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

#include "mivor/descriptor.h"
#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/streams.h"

namespace mivor::testing {

// ---- descriptors --------------------------------------------------------

// A descriptor and the four cells it points at.  Not movable: the
// descriptor holds the cells' addresses.
struct Desc {
    std::int32_t stride1 = 0, extent1 = 0, stride2 = 0, extent2 = 0;
    mivor_descriptor d{};

    Desc(void* base, int rank, std::int32_t s1, std::int32_t e1, std::int32_t s2 = 0, std::int32_t e2 = 0)
        : stride1(s1), extent1(e1), stride2(s2), extent2(e2) {
        d.base = base;
        d.rank = static_cast<std::int8_t>(rank);
        d.stride1 = &stride1;
        d.extent1 = &extent1;
        d.stride2 = &stride2;
        d.extent2 = &extent2;
    }
    Desc(const Desc&) = delete;
    Desc& operator=(const Desc&) = delete;
};

// ---- random values ------------------------------------------------------

struct Random {
    std::uint64_t state;
    explicit Random(std::uint64_t seed) : state(seed) {}
    std::uint64_t next() { return splitmix64(state); }
    std::int32_t below(std::int32_t n) { return static_cast<std::int32_t>(next() % static_cast<std::uint64_t>(n)); }
    // A double in +-[0.5, 1) x 2^[-8, 8) with a full significand: sums of
    // such terms round differently in almost every order.
    double real() {
        const std::uint64_t b = next();
        const double m = 1.0 + static_cast<double>(b >> 12) * 0x1p-52;
        return std::ldexp((b & 1) ? -m : m, static_cast<int>((b >> 1) % 16) - 9);
    }
};

template <class T>
T random_element(Random& r);
template <>
inline float random_element<float>(Random& r) {
    return static_cast<float>(r.real());
}
template <>
inline double random_element<double>(Random& r) {
    return r.real();
}
template <>
inline mivor_complex4 random_element<mivor_complex4>(Random& r) {
    return {static_cast<float>(r.real()), static_cast<float>(r.real())};
}
template <>
inline mivor_complex8 random_element<mivor_complex8>(Random& r) {
    return {r.real(), r.real()};
}
template <>
inline mivor_real16 random_element<mivor_real16>(Random& r) {
    mivor_real16 q;
    const double d = r.real();
    g_qextd(&q, &d);
    q.w[0] ^= static_cast<std::uint32_t>(r.next());  // bits below double precision
    q.w[1] ^= static_cast<std::uint32_t>(r.next());
    return q;
}
template <>
inline mivor_complex16 random_element<mivor_complex16>(Random& r) {
    return {random_element<mivor_real16>(r), random_element<mivor_real16>(r)};
}

// ---- a strided operand over its own storage -------------------------------

// A rank-1 or rank-2 operand whose elements are `gap` apart in dimension 1
// (in elements, any sign) and `gap2` in dimension 2, with byte strides that
// may carry an extra remainder `slack` (0 < slack < element size) which the
// library must drop.  Storage is large enough for every element addressed.
template <class T>
struct Strided {
    std::vector<T> storage;
    T* base = nullptr;
    std::int32_t e1, e2, s1, s2;  // extents and element strides
    std::unique_ptr<Desc> desc;

    Strided(Random& r, int rank, std::int32_t rows, std::int32_t cols, std::int32_t gap, std::int32_t gap2,
            std::int32_t slack = 0)
        : e1(rows), e2(cols), s1(gap), s2(gap2) {
        const std::int64_t span1 = std::int64_t{rows > 0 ? rows - 1 : 0} * gap;
        const std::int64_t span2 = rank == 2 ? std::int64_t{cols > 0 ? cols - 1 : 0} * gap2 : 0;
        const std::int64_t low = (span1 < 0 ? span1 : 0) + (span2 < 0 ? span2 : 0);
        const std::int64_t high = (span1 > 0 ? span1 : 0) + (span2 > 0 ? span2 : 0);
        storage.resize(static_cast<std::size_t>(high - low + 1));
        for (T& v : storage) v = random_element<T>(r);
        base = storage.data() - low;
        const std::int32_t size = sizeof(T);
        const std::int32_t bytes1 = gap * size + (gap < 0 ? -slack : slack);
        const std::int32_t bytes2 = gap2 * size + (gap2 < 0 ? -slack : slack);
        desc = std::make_unique<Desc>(base, rank, bytes1, rows, bytes2, rank == 2 ? cols : 0);
    }
    const T& at(std::int32_t i, std::int32_t j = 0) const { return base[std::int64_t{i} * s1 + std::int64_t{j} * s2]; }
};

// ---- bit comparison -------------------------------------------------------

template <class T>
bool same_bits(const T& a, const T& b) {
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}

// Long double has padding bytes on every flavour; compare the values' bits.
template <class T>
::testing::AssertionResult all_same(const T* got, const T* want, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        if (!same_bits(got[i], want[i]))
            return ::testing::AssertionFailure() << "first difference at element " << i << " of " << n;
    return ::testing::AssertionSuccess();
}

// ---- reference MATMUL -------------------------------------------------------

using Ext = long double;

// x87 at 64-bit precision, round to nearest, for the references' duration.
class X87Extended {
public:
    X87Extended() {
        __asm__ __volatile__("fnstcw %0" : "=m"(saved_));
        const std::uint16_t wanted = static_cast<std::uint16_t>((saved_ & ~0x0F00) | 0x0300);
        __asm__ __volatile__("fldcw %0" : : "m"(wanted) : "memory");
    }
    ~X87Extended() { __asm__ __volatile__("fldcw %0" : : "m"(saved_) : "memory"); }

private:
    std::uint16_t saved_;
};

struct ExtComplex {
    Ext re = 0.0L, im = 0.0L;
};

inline void ref_add(Ext& s, float a, float b) { s = s + Ext(a) * Ext(b); }
inline void ref_add(Ext& s, double a, double b) { s = s + Ext(a) * Ext(b); }
template <class C>
void ref_add(ExtComplex& s, const C& a, const C& b) {
    const Ext re = Ext(a.re) * Ext(b.re) - Ext(a.im) * Ext(b.im);
    const Ext im = Ext(a.re) * Ext(b.im) + Ext(a.im) * Ext(b.re);
    s.re = s.re + re;
    s.im = s.im + im;
}
inline float ref_round(Ext s, float) { return static_cast<float>(s); }
inline double ref_round(Ext s, double) { return static_cast<double>(s); }
inline mivor_complex4 ref_round(const ExtComplex& s, mivor_complex4) {
    return {static_cast<float>(s.re), static_cast<float>(s.im)};
}
inline mivor_complex8 ref_round(const ExtComplex& s, mivor_complex8) {
    return {static_cast<double>(s.re), static_cast<double>(s.im)};
}
template <class T>
struct AccOf {
    using type = Ext;
};
template <>
struct AccOf<mivor_complex4> {
    using type = ExtComplex;
};
template <>
struct AccOf<mivor_complex8> {
    using type = ExtComplex;
};

// R(i, j) = s + R(i, j) for one 8-term block: s first, rounded by the store.
inline float ref_store_plus(Ext s, float r) { return static_cast<float>(s + Ext(r)); }
inline double ref_store_plus(Ext s, double r) { return static_cast<double>(s + Ext(r)); }
template <class C>
C ref_store_plus(const ExtComplex& s, const C& r) {
    using P = decltype(r.re);
    return {static_cast<P>(s.re + Ext(r.re)), static_cast<P>(s.im + Ext(r.im))};
}

inline void quad_term(mivor_real16& acc, const mivor_real16& a, const mivor_real16& b) {
    mivor_real16 p;
    g_aqmq(&p, &a, &b);
    g_aqaq(&acc, &acc, &p);
}
inline void quad_term(mivor_complex16& acc, const mivor_complex16& a, const mivor_complex16& b) {
    mivor_real16 p, q, t;
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
constexpr bool is_quad = std::is_same_v<T, mivor_real16> || std::is_same_v<T, mivor_complex16>;

// MATMUL of conforming, non-empty operands, as the description reads: one
// running sum per element for the vector cases; for matrix x matrix 8-term
// blocks (register kinds) or a k-outermost update (REAL(16) kinds).
template <class T>
std::vector<T> ref_matmul(const Strided<T>& a, int rank_a, const Strided<T>& b, int rank_b) {
    const std::int32_t m = a.e1, kk = rank_a == 2 ? a.e2 : a.e1, n = b.e2;
    std::vector<T> r;
    if constexpr (is_quad<T>) {
        const T zero{};
        if (rank_a == 1) {
            for (std::int32_t j = 0; j < n; ++j) {
                T s = zero;
                for (std::int32_t k = 0; k < kk; ++k) quad_term(s, a.at(k), b.at(k, j));
                r.push_back(s);
            }
        } else if (rank_b == 1) {
            for (std::int32_t i = 0; i < m; ++i) {
                T s = zero;
                for (std::int32_t k = 0; k < kk; ++k) quad_term(s, a.at(i, k), b.at(k));
                r.push_back(s);
            }
        } else {
            r.assign(static_cast<std::size_t>(m) * n, zero);
            for (std::int32_t k = 0; k < kk; ++k)
                for (std::int32_t j = 0; j < n; ++j)
                    for (std::int32_t i = 0; i < m; ++i) quad_term(r[i + std::size_t(j) * m], a.at(i, k), b.at(k, j));
        }
        return r;
    } else {
        X87Extended x87;
        using Acc = typename AccOf<T>::type;
        if (rank_a == 1) {
            for (std::int32_t j = 0; j < n; ++j) {
                Acc s{};
                for (std::int32_t k = 0; k < kk; ++k) ref_add(s, a.at(k), b.at(k, j));
                r.push_back(ref_round(s, T{}));
            }
        } else if (rank_b == 1) {
            for (std::int32_t i = 0; i < m; ++i) {
                Acc s{};
                for (std::int32_t k = 0; k < kk; ++k) ref_add(s, a.at(i, k), b.at(k));
                r.push_back(ref_round(s, T{}));
            }
        } else {
            r.assign(static_cast<std::size_t>(m) * n, T{});
            for (std::int32_t k0 = 0; k0 < kk; k0 += 8)
                for (std::int32_t j = 0; j < n; ++j)
                    for (std::int32_t i = 0; i < m; ++i) {
                        Acc s{};
                        for (std::int32_t k = k0; k < k0 + 8 && k < kk; ++k) ref_add(s, a.at(i, k), b.at(k, j));
                        T& rij = r[i + std::size_t(j) * m];
                        rij = ref_store_plus(s, rij);
                    }
        }
        return r;
    }
}

// ---- reference GEMM and GEMV ----------------------------------------------

inline double op_at(const double* x, std::int32_t ld, bool trans, std::int32_t row, std::int32_t col) {
    return trans ? x[col + std::int64_t{row} * ld] : x[row + std::int64_t{col} * ld];
}

// C = alpha op(A) op(B) + beta C for valid arguments, as described: the
// trivial cases, the x87 loops when m, n, k are all at most 7, otherwise
// per element the k-blocks (short one first) with their even/odd chains.
inline void ref_gemm(bool ta, bool tb, std::int32_t m, std::int32_t n, std::int32_t k, double alpha, const double* a,
                     std::int32_t lda, const double* b, std::int32_t ldb, double beta, double* c, std::int32_t ldc) {
    if (m == 0 || n == 0) return;
    if ((alpha == 0.0 || k == 0) && beta == 1.0) return;
    auto cc = [&](std::int32_t i, std::int32_t j) -> double& { return c[i + std::int64_t{j} * ldc]; };
    if (alpha == 0.0 || k == 0) {
        for (std::int32_t j = 0; j < n; ++j)
            for (std::int32_t i = 0; i < m; ++i) cc(i, j) = beta == 0.0 ? 0.0 : beta * cc(i, j);
        return;
    }
    if (m <= 7 && n <= 7 && k <= 7) {
        X87Extended x87;
        for (std::int32_t j = 0; j < n; ++j) {
            if (ta) {
                for (std::int32_t i = 0; i < m; ++i) {
                    Ext t = 0.0L;
                    for (std::int32_t l = 0; l < k; ++l)
                        t = t + Ext(op_at(a, lda, true, i, l)) * Ext(op_at(b, ldb, tb, l, j));
                    cc(i, j) =
                        beta == 0.0 ? double(Ext(alpha) * t) : double(Ext(alpha) * t + Ext(beta) * Ext(cc(i, j)));
                }
            } else {
                for (std::int32_t i = 0; i < m; ++i)
                    if (beta == 0.0)
                        cc(i, j) = 0.0;
                    else if (beta != 1.0)
                        cc(i, j) = double(Ext(beta) * Ext(cc(i, j)));
                for (std::int32_t l = 0; l < k; ++l) {
                    const Ext t = Ext(alpha) * Ext(op_at(b, ldb, tb, l, j));
                    for (std::int32_t i = 0; i < m; ++i)
                        cc(i, j) = double(Ext(cc(i, j)) + t * Ext(op_at(a, lda, false, i, l)));
                }
            }
        }
        return;
    }
    const std::int32_t first = k % 128 == 0 ? 128 : k % 128;
    for (std::int32_t j = 0; j < n; ++j)
        for (std::int32_t i = 0; i < m; ++i) {
            double v = cc(i, j);
            std::int32_t kb = first;
            for (std::int32_t k0 = 0; k0 < k; k0 += kb, kb = 128) {
                const double bb = k0 == 0 ? beta : 1.0;
                double even;
                if (kb == 128 && bb == 1.0)
                    even = v;
                else if (bb == 0.0)
                    even = 0.0;
                else
                    even = bb * v;
                double odd = 0.0;
                for (std::int32_t l = 0; l < kb; ++l) {
                    const double packed = alpha * op_at(a, lda, ta, i, k0 + l);
                    const double p = packed * op_at(b, ldb, tb, k0 + l, j);
                    if (l % 2 == 0)
                        even = even + p;
                    else
                        odd = odd + p;
                }
                v = odd + even;
            }
            cc(i, j) = v;
        }
}

// y = alpha op(A) x + beta y for valid arguments; vectors by the classic
// convention.  N: one chain per row, then y + alpha s.  T: per portion of
// rows (all of them for a unit incx, else 1024 at a time) eight parts
// joined by the fixed tree, the rest added in order, then y + alpha s.
inline void ref_gemv(bool trans, std::int32_t m, std::int32_t n, double alpha, const double* a, std::int32_t lda,
                     const double* x, std::int32_t incx, double beta, double* y, std::int32_t incy) {
    if (m == 0 || n == 0 || (alpha == 0.0 && beta == 1.0)) return;
    const std::int32_t lx = trans ? m : n, ly = trans ? n : m;
    auto xi = [&](std::int32_t i) { return x[(incx > 0 ? std::int64_t{i} : std::int64_t{i} - (lx - 1)) * incx]; };
    auto yi = [&](std::int32_t i) -> double& {
        return y[(incy > 0 ? std::int64_t{i} : std::int64_t{i} - (ly - 1)) * incy];
    };
    if (beta != 1.0)
        for (std::int32_t i = 0; i < ly; ++i) yi(i) = beta == 0.0 ? 0.0 : beta * yi(i);
    if (alpha == 0.0) return;
    if (!trans) {
        for (std::int32_t i = 0; i < m; ++i) {
            double s = 0.0;
            for (std::int32_t j = 0; j < n; ++j) s = s + a[i + std::int64_t{j} * lda] * xi(j);
            yi(i) = yi(i) + alpha * s;
        }
        return;
    }
    const std::int32_t portion = incx == 1 ? m : 1024;
    for (std::int32_t i0 = 0; i0 < m; i0 += portion) {
        const std::int32_t len = m - i0 < portion ? m - i0 : portion;
        for (std::int32_t j = 0; j < n; ++j) {
            const double* aj = a + std::int64_t{j} * lda + i0;
            double part[8] = {};
            const std::int32_t full = len / 8 * 8;
            for (std::int32_t i = 0; i < full; ++i) part[i % 8] = part[i % 8] + aj[i] * xi(i0 + i);
            double s = ((part[0] + part[4]) + (part[2] + part[6])) + ((part[1] + part[5]) + (part[3] + part[7]));
            for (std::int32_t i = full; i < len; ++i) s = s + aj[i] * xi(i0 + i);
            yi(j) = yi(j) + alpha * s;
        }
    }
}

}  // namespace mivor::testing
