// MATMUL: what the six element types share.  An entry point reads its two
// operand descriptors, checks that they conform, serves the zero-size
// shapes, computes one of three products into the caller's storage and then
// writes the result's shape into the result descriptor's cells.
//
//   MATRIX_A rank 1             vector x matrix   result(j), j < N
//   MATRIX_A rank 2, B rank 2   matrix x matrix   result(i, j), column order
//   MATRIX_A rank 2, B else     matrix x vector   result(i), i < M
//
// M = extent 1 of A, KB = extent 1 of B, N = extent 2 of B (0 for a
// vector B).  A rank of A other than 1 goes the matrix way with the extent
// 2 of such a descriptor read as 0 (nothing checks other ranks; this choice
// reads no cell that the descriptor may lack).
//
// Non-conforming operands (extent 2 of a matrix A, or extent 1 of a vector
// A, differing from KB) are error 1375 in the short form: the handler is
// told, its answer is not consulted, every stride and extent cell of the
// result up to its rank (at most the two this descriptor has) becomes 0 and
// no element is written.
#pragma once

#include <cstdint>
#include <cstring>

#include "matmul/operand.h"

namespace mivor::matmul {

enum class Shape { vector_matrix, matrix_matrix, matrix_vector };

struct Plan {
    bool compute = false;  // false: reported or served as zero-size; nothing left to do
    Shape shape = Shape::matrix_matrix;
    std::int32_t m = 0, k = 0, n = 0;
};

// The result's layout: contiguous, column order, `rows` = M (or N for a
// vector A).  stride 2 is formed in 32 bits from the stride 1 just written,
// as compiled code forms it.
inline void write_shape(mivor_descriptor* r, Shape shape, std::int32_t element_size, std::int32_t m, std::int32_t n) {
    *r->stride1 = element_size;
    if (shape == Shape::vector_matrix) {
        *r->extent1 = n;
        return;
    }
    *r->extent1 = m;
    if (shape == Shape::matrix_matrix) {
        *r->stride2 =
            static_cast<std::int32_t>(static_cast<std::uint32_t>(*r->stride1) * static_cast<std::uint32_t>(m));
        *r->extent2 = n;
    }
}

// After the report the result is empty: its stride and extent cells, up
// to its rank, become 0.
inline void empty_result(mivor_descriptor* r) {
    if (r->rank >= 1) *r->stride1 = *r->extent1 = 0;
    if (r->rank >= 2) *r->stride2 = *r->extent2 = 0;
}

template <class T>
Plan plan(const mivor_matmul_args* args, const Operand<T>& a, const Operand<T>& b) {
    const std::int32_t m = a.extent1, kb = b.extent1;
    const std::int32_t n = b.rank == 2 ? b.extent2 : 0;
    if (!conform_or_report(!((a.rank == 2 && a.extent2 != kb) || (a.rank == 1 && a.extent1 != kb)))) {
        empty_result(args->result);
        return {};
    }
    Plan p;
    p.m = m;
    p.n = n;
    p.k = a.rank == 1 ? a.extent1 : a.extent2;
    p.shape = a.rank == 1 ? Shape::vector_matrix : b.rank == 2 ? Shape::matrix_matrix : Shape::matrix_vector;
    const bool empty = m == 0 || kb == 0 || (a.rank != 1 && p.k == 0) || (b.rank == 2 && n == 0);
    if (empty) {
        // All-zero bits: +0.0 in every part of every element.
        write_shape(args->result, p.shape, sizeof(T), m, n);
        T* r = static_cast<T*>(args->result->base);
        std::int64_t count = p.shape == Shape::vector_matrix   ? n
                             : p.shape == Shape::matrix_vector ? m
                                                               : std::int64_t{m} * n;
        if (count > 0) std::memset(static_cast<void*>(r), 0, static_cast<std::size_t>(count) * sizeof(T));
        return {};
    }
    p.compute = true;
    return p;
}

// The products.  `Arith` supplies the accumulator and the three steps:
//   Acc zero();                          the starting value
//   void add(Acc& s, const T& a, const T& b);   s = s + a b (one term)
//   T store(const Acc& s);               s rounded to the element type
// and, for the blocked matrix x matrix of the floating-point-unit kinds,
//   T store_plus(const Acc& s, const T& r);     (s + r) rounded
template <class Arith, class T>
void vector_matrix(const Operand<T>& a, const Operand<T>& b, T* r, std::int32_t k_count, std::int32_t n) {
    for (std::int32_t j = 0; j < n; ++j) {
        typename Arith::Acc s = Arith::zero();
        for (std::int32_t k = 0; k < k_count; ++k) Arith::add(s, a.at(k), b.at(k, j));
        store(r + j, Arith::store(s));
    }
}

template <class Arith, class T>
void matrix_vector(const Operand<T>& a, const Operand<T>& b, T* r, std::int32_t m, std::int32_t k_count) {
    for (std::int32_t i = 0; i < m; ++i) {
        typename Arith::Acc s = Arith::zero();
        for (std::int32_t k = 0; k < k_count; ++k) Arith::add(s, a.at(i, k), b.at(k));
        store(r + i, Arith::store(s));
    }
}

// The call every entry point makes: plan, compute, write the shape.
// `Products` is a class with vector_matrix, matrix_matrix and
// matrix_vector members of the forms above.
template <class T, class Products>
void run(const void* block) {
    const auto* args = static_cast<const mivor_matmul_args*>(block);
    const Operand<T> a = read_operand<T>(args->a), b = read_operand<T>(args->b);
    const Plan p = plan(args, a, b);
    if (!p.compute) return;
    T* r = static_cast<T*>(args->result->base);
    switch (p.shape) {
        case Shape::vector_matrix:
            Products::vector_matrix(a, b, r, p.k, p.n);
            break;
        case Shape::matrix_vector:
            Products::matrix_vector(a, b, r, p.m, p.k);
            break;
        case Shape::matrix_matrix:
            Products::matrix_matrix(a, b, r, p.m, p.k, p.n);
            break;
    }
    write_shape(args->result, p.shape, sizeof(T), p.m, p.n);
}

}  // namespace mivor::matmul
