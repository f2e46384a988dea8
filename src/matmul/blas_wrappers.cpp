// dgemm_ and dgemv_ for Linux programs that expect a reference BLAS: the
// classic argument checks (the same as the GEMM and GEMV routines make, in
// the same order), an invalid argument reported through xerbla_, and
// otherwise exactly the library's product, in its order (x87 loops for the
// smallest GEMMs, the even/odd kernels otherwise).  The hidden lengths of
// the character arguments are not needed: only the first character counts.
//
// The default xerbla_ is weak so that a program's own, like the netlib
// test programs' which check the position reported, takes precedence.  It
// prints the reference message but, unlike the reference, does not stop
// the program: nothing in this library ends its caller.
//
// Not built into the Windows library, which exports exactly the table.
#if !defined(_WIN32)
#include <cstdio>

#include "matmul/gemm.h"
#include "mivor/blas.h"

using namespace mivor::matmul;

extern "C" {

__attribute__((weak)) void xerbla_(const char* srname, const std::int32_t* info, std::size_t srname_len) {
    std::size_t len = srname_len;
    while (len > 0 && srname[len - 1] == ' ') --len;
    std::printf(" ** On entry to %.*s parameter number %2d had an illegal value\n", static_cast<int>(len), srname,
                static_cast<int>(*info));
    std::fflush(stdout);
}

void dgemm_(const char* transa, const char* transb, const std::int32_t* m, const std::int32_t* n, const std::int32_t* k,
            const double* alpha, const double* a, const std::int32_t* lda, const double* b, const std::int32_t* ldb,
            const double* beta, double* c, const std::int32_t* ldc, std::size_t, std::size_t) {
    const std::int32_t info = _jwe_gdgemm(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc);
    if (info != 0) xerbla_("DGEMM ", &info, 6);
}

void dgemv_(const char* trans, const std::int32_t* m, const std::int32_t* n, const double* alpha, const double* a,
            const std::int32_t* lda, const double* x, const std::int32_t* incx, const double* beta, double* y,
            const std::int32_t* incy, std::size_t) {
    const std::int32_t info = _jwe_gdgemv(trans, m, n, alpha, a, lda, x, incx, beta, y, incy);
    if (info != 0) xerbla_("DGEMV ", &info, 6);
}

}  // extern "C"
#endif
