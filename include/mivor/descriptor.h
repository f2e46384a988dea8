/*
 * The array descriptor and the argument blocks of the matrix entries
 * (g_matml*, jwe_gmd2, jwe_gmx2, g_mt21blasd, g_mt22blasd).
 *
 * On the 32-bit targets these are a fixed binary interface with compiled
 * code: every field sits at the byte offset pinned below, pointers are
 * 32-bit addresses.  The 64-bit build keeps the same fields in the same
 * order with 8-byte pointer slots.
 *
 * A descriptor does not hold strides and extents itself but the addresses
 * of signed 32-bit cells that do: MATMUL reads an operand's cells and
 * writes the result's.  Strides are in bytes; an element (i, j), counted
 * from 1, lies at base + (i - 1) * stride1 + (j - 1) * stride2.
 *
 * Usable from C and C++.
 */
#ifndef MIVOR_DESCRIPTOR_H
#define MIVOR_DESCRIPTOR_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct mivor_descriptor {
    void *base;          /* 0: element (1) or (1,1) */
    uint8_t unused_4;    /* 4: not read by the matrix entries */
    int8_t rank;         /* 5: 1 vector, 2 matrix */
    uint8_t unused_6[6]; /* 6..11 */
    int32_t *stride1;    /* 12: byte distance along dimension 1 */
    int32_t *extent1;    /* 16: elements along dimension 1 */
    int32_t *stride2;    /* 20: as stride1, dimension 2 (rank 2 only) */
    int32_t *extent2;    /* 24 */
} mivor_descriptor;

/* MATMUL (g_matmlr ... g_matmlz, jwe_gmd2, jwe_gmx2). */
typedef struct mivor_matmul_args {
    mivor_descriptor *result;
    mivor_descriptor *a;
    mivor_descriptor *b;
} mivor_matmul_args;

/* g_mt22blasd: C = alpha op(A) op(B) + beta C, then C = C + D if d != 0.
 * Only C's base address and the extents of A and B are read from the
 * descriptors. */
typedef struct mivor_gemm_args {
    mivor_descriptor *c;
    mivor_descriptor *a;
    mivor_descriptor *b;
    void *const *d;          /* 0, or the address of a cell holding D's base address */
    const char *transa;      /* one byte: N n T t C c */
    const char *transb;
    const double *alpha;
    const double *beta;
    const int32_t *ldc;
    const int32_t *lda;
    const int32_t *ldb;
    const int32_t *ldd;      /* read only when d != 0 */
} mivor_gemm_args;

/* g_mt21blasd: y = alpha op(A) x + beta y, then y = y + z if z != 0.
 * Increments are the byte strides of the vectors' descriptors over 8. */
typedef struct mivor_gemv_args {
    mivor_descriptor *y;     /* base and stride */
    mivor_descriptor *a;     /* extents */
    mivor_descriptor *x;     /* base, stride and extent */
    mivor_descriptor *z;     /* 0, or base and stride */
    const char *trans;
    const double *alpha;
    const double *beta;
    const int32_t *lda;
} mivor_gemv_args;

#ifdef __cplusplus
} /* extern "C" */
#endif

#ifdef __cplusplus
#  define MIVOR_DESCRIPTOR_ASSERT static_assert
#else
#  define MIVOR_DESCRIPTOR_ASSERT _Static_assert
#endif

#if UINTPTR_MAX == 0xFFFFFFFFu
MIVOR_DESCRIPTOR_ASSERT(offsetof(mivor_descriptor, rank) == 5, "rank");
MIVOR_DESCRIPTOR_ASSERT(offsetof(mivor_descriptor, stride1) == 12, "stride1");
MIVOR_DESCRIPTOR_ASSERT(offsetof(mivor_descriptor, extent1) == 16, "extent1");
MIVOR_DESCRIPTOR_ASSERT(offsetof(mivor_descriptor, stride2) == 20, "stride2");
MIVOR_DESCRIPTOR_ASSERT(offsetof(mivor_descriptor, extent2) == 24, "extent2");
MIVOR_DESCRIPTOR_ASSERT(sizeof(mivor_matmul_args) == 12, "three slots");
MIVOR_DESCRIPTOR_ASSERT(sizeof(mivor_gemm_args) == 48, "twelve slots");
MIVOR_DESCRIPTOR_ASSERT(sizeof(mivor_gemv_args) == 32, "eight slots");
#endif

#endif /* MIVOR_DESCRIPTOR_H */
