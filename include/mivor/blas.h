/*
 * Reference-BLAS entry points of the Linux builds: dgemm_ and dgemv_ with the
 * Fortran calling convention (every argument by address, the hidden lengths
 * of the character arguments at the end), thin wrappers over the library's
 * GEMM and GEMV paths, so that a program linked against a BLAS (or built
 * with gfortran -fexternal-blas) gets its products from this library.
 *
 * Arguments are checked as reference BLAS checks them; an invalid one is
 * handed to xerbla_(name, position) and nothing is computed.  The library
 * brings a weak xerbla_ that prints the reference message and returns
 * (it does not stop the program); a program's own xerbla_ takes precedence.
 *
 * Not part of the Windows library, whose exports are exactly the export
 * table's.
 */
#ifndef MIVOR_BLAS_H
#define MIVOR_BLAS_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if !defined(_WIN32)
#define MIVOR_BLAS_API __attribute__((visibility("default")))

MIVOR_BLAS_API void dgemm_(const char *transa, const char *transb, const int32_t *m, const int32_t *n,
                           const int32_t *k, const double *alpha, const double *a, const int32_t *lda,
                           const double *b, const int32_t *ldb, const double *beta, double *c,
                           const int32_t *ldc, size_t transa_len, size_t transb_len);

MIVOR_BLAS_API void dgemv_(const char *trans, const int32_t *m, const int32_t *n, const double *alpha,
                           const double *a, const int32_t *lda, const double *x, const int32_t *incx,
                           const double *beta, double *y, const int32_t *incy, size_t trans_len);

MIVOR_BLAS_API void xerbla_(const char *srname, const int32_t *info, size_t srname_len);
#endif

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* MIVOR_BLAS_H */
