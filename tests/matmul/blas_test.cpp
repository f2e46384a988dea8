// The Linux builds' dgemm_ and dgemv_: the library's products behind the
// reference-BLAS calling convention, and invalid arguments handed to the
// program's own xerbla_, which takes precedence over the library's weak one.
#include "mivor/blas.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "matmul/support.h"

namespace {
std::vector<std::pair<std::string, int>> g_xerbla_calls;
}

extern "C" void xerbla_(const char* srname, const std::int32_t* info, std::size_t len) {
    g_xerbla_calls.emplace_back(std::string(srname, len), *info);
}

namespace {

using namespace mivor::testing;

TEST(Blas, DgemmAndDgemvComputeTheLibrarysProducts) {
    Random r(51);
    const std::int32_t m = 37, n = 11, k = 140, lda = 140, ldb = 140, ldc = 40;
    std::vector<double> a(std::size_t(lda) * m), b(std::size_t(ldb) * n), c(std::size_t(ldc) * n);
    for (auto* v : {&a, &b, &c})
        for (double& x : *v) x = r.real();
    const double alpha = r.real(), beta = r.real();
    std::vector<double> want = c;
    ref_gemm(true, false, m, n, k, alpha, a.data(), lda, b.data(), ldb, beta, want.data(), ldc);
    dgemm_("T", "N", &m, &n, &k, &alpha, a.data(), &lda, b.data(), &ldb, &beta, c.data(), &ldc, 1, 1);
    EXPECT_TRUE(all_same(c.data(), want.data(), want.size()));

    std::vector<double> x(k * 2), y(m);
    for (auto* v : {&x, &y})
        for (double& e : *v) e = r.real();
    std::vector<double> want_y = y;
    const std::int32_t incx = -2, incy = 1;
    ref_gemv(true, k, m, alpha, a.data(), lda, x.data(), incx, beta, want_y.data(), incy);
    dgemv_("t", &k, &m, &alpha, a.data(), &lda, x.data(), &incx, &beta, y.data(), &incy, 1);
    EXPECT_TRUE(all_same(y.data(), want_y.data(), want_y.size()));
    EXPECT_TRUE(g_xerbla_calls.empty());
}

TEST(Blas, InvalidArgumentsGoToXerbla) {
    g_xerbla_calls.clear();
    const std::int32_t one = 1, two = 2, zero = 0;
    const double alpha = 1, beta = 0;
    double a[4] = {}, b[4] = {}, c[4] = {7, 7, 7, 7};
    dgemm_("N", "N", &two, &one, &one, &alpha, a, &one, b, &one, &beta, c, &two, 1, 1);  // lda < m
    dgemm_("N", "Q", &one, &one, &one, &alpha, a, &one, b, &one, &beta, c, &one, 1, 1);
    dgemv_("N", &one, &one, &alpha, a, &one, b, &one, &beta, c, &zero, 1);  // incy = 0
    const std::vector<std::pair<std::string, int>> want = {{"DGEMM ", 8}, {"DGEMM ", 2}, {"DGEMV ", 11}};
    EXPECT_EQ(g_xerbla_calls, want);
    for (double v : c) EXPECT_EQ(v, 7.0);
}

}  // namespace
