// The REAL(8) GEMM path beneath g_mt22blasd, and the GEMV path beneath
// g_mt21blasd: the routines with the classic BLAS argument lists, the
// blocking drivers, the packing routines and the work areas.  Internal to
// the library (the Linux flavours' dgemm_ and dgemv_ wrap the same
// routines).
//
// All matrices are column-major with a leading dimension in elements.
#pragma once

#include <cstddef>
#include <cstdint>

#include "matmul/gemm_kernels.h"
#include "matmul/gemv_kernels.h"

namespace mivor::matmul {

// ---- GEMM --------------------------------------------------------------

// C = alpha op(A) op(B) + beta C.  Letters N n (as stored) and T t C c
// (transposed).  Invalid arguments are detected in the classic order and
// silently ignored: the return value is their code (1 transa, 2 transb, 3 m,
// 4 n, 5 k, 8 lda, 10 ldb, 13 ldc) and C is untouched; 0 otherwise.  (The
// exported path ignores the code; the dgemm_ wrapper hands it to xerbla_.)
// `kernel`: the blocked path's kernel, null for the processor's fastest
// (tests name one).
int _jwe_gdgemm(const char* transa, const char* transb, const std::int32_t* m, const std::int32_t* n,
                const std::int32_t* k, const double* alpha, const double* a, const std::int32_t* lda, const double* b,
                const std::int32_t* ldb, const double* beta, double* c, const std::int32_t* ldc,
                const GemmKernel* kernel = nullptr);

// C(i, j) = C(i, j) + D(i, j) for i < m, j < n: one addition per element.
void _jwe_gdl_gema(std::int32_t m, std::int32_t n, const double* d, std::int32_t ldd, double* c, std::int32_t ldc);

// One product for a blocking driver: sizes at least 1, alpha not 0.
struct GemmProblem {
    std::int32_t m, n, k;
    double alpha;
    const double* a;
    std::int32_t lda;
    const double* b;
    std::int32_t ldb;
    double beta;
    double* c;
    std::int32_t ldc;
};

// A work area: room for the packed block of alpha op(A) and the packed
// panel of op(B), 64-byte aligned, in doubles.  The drivers size their
// blocks to it: a short k-block gets correspondingly more rows and columns.
struct WorkArea {
    double* a;
    double* b;
    std::int32_t a_size;  // at least kKBlock x the widest kernel's MR
    std::int32_t b_size;  // at least kKBlock x the widest kernel's NR
};

// The inner dimension is cut into blocks of kKBlock: the short block first.
inline constexpr std::int32_t kKBlock = 128;

// The blocking drivers, one per transposition pair (A then B; n as
// stored, t transposed).  They run `kernel` over the packed blocks.
void _jwe_gdl_gmnn(const GemmProblem& p, const WorkArea& w, const GemmKernel& kernel);
void _jwe_gdl_gmnt(const GemmProblem& p, const WorkArea& w, const GemmKernel& kernel);
void _jwe_gdl_gmtn(const GemmProblem& p, const WorkArea& w, const GemmKernel& kernel);
void _jwe_gdl_gmtt(const GemmProblem& p, const WorkArea& w, const GemmKernel& kernel);

// Packing of alpha op(A)(rows, k-block) into micro-panels of mr rows:
// panel s holds rows s mr .. s mr + mr - 1, value (r, k) at k mr + r, zero
// beyond the last row.  `a` points at the block's first element as stored.
void _jwe_gdl_gmcopya_n(std::int32_t mb, std::int32_t kb, double alpha, const double* a, std::int32_t lda,
                        double* packed, int mr);
void _jwe_gdl_gmcopya_t(std::int32_t mb, std::int32_t kb, double alpha, const double* a, std::int32_t lda,
                        double* packed, int mr);

// Runs one of the four drivers on `p` with a work area of its own: one of a
// few static areas when one is free, otherwise a small one on the stack.
// Both give the same bits; only the block sizes differ, and no block size
// but the k-block changes a sum.  `kernel` null: the processor's fastest;
// `static_area` false: the stack area at once (tests).
void blocked_gemm(bool transa, bool transb, const GemmProblem& p, const GemmKernel* kernel = nullptr,
                  bool static_area = true);

// ---- GEMV --------------------------------------------------------------

// Vectors follow the classic convention: a negative increment starts the
// walk at the far end.  first_of gives the element the walk starts from;
// element i (from 0) is then at first + i inc.
template <class T>
T* first_of(T* v, std::int32_t len, std::int32_t inc) {
    return inc > 0 || len == 0 ? v : v - static_cast<std::ptrdiff_t>(len - 1) * inc;
}

// y = alpha op(A) x + beta y.  Invalid arguments: silent, code returned (1
// trans, 2 m, 3 n, 6 lda, 8 incx, 11 incy), y untouched.
// `kernel` as for _jwe_gdgemm.
int _jwe_gdgemv(const char* trans, const std::int32_t* m, const std::int32_t* n, const double* alpha, const double* a,
                const std::int32_t* lda, const double* x, const std::int32_t* incx, const double* beta, double* y,
                const std::int32_t* incy, const GemvKernel* kernel = nullptr);

// The same, then y = y + z (codes as above, and 10 for incz, 13 for incy).
int _jwe_gdgemva(const char* trans, const std::int32_t* m, const std::int32_t* n, const double* alpha, const double* a,
                 const std::int32_t* lda, const double* x, const std::int32_t* incx, const double* z,
                 const std::int32_t* incz, const double* beta, double* y, const std::int32_t* incy);

// A transposition letter the GEMM and GEMV routines accept, and whether it
// transposes.
inline bool valid_trans(char t) { return t == 'N' || t == 'n' || t == 'T' || t == 't' || t == 'C' || t == 'c'; }
inline bool transposes(char t) { return t != 'N' && t != 'n'; }

}  // namespace mivor::matmul
