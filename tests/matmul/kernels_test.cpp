// Every GEMM and GEMV kernel built into this flavour and supported by this
// processor (reference, SSE2, AVX2, AVX-512) gives the bits of the scalar
// reference of the stated order, on edge tiles, every k-block shape, every
// transposition pair and every kind of start, and so gives the bits of
// every other kernel.  Internal: the exported path uses only the fastest.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "matmul/gemm.h"
#include "matmul/support.h"

namespace {

using namespace mivor::matmul;
using namespace mivor::testing;

std::vector<std::string> supported_names(bool gemm) {
    std::vector<std::string> names;
    if (gemm) {
        for (const GemmKernel* k : gemm_kernels())
            if (k->supported()) names.push_back(k->name);
    } else {
        for (const GemvKernel* k : gemv_kernels())
            if (k->supported()) names.push_back(k->name);
    }
    return names;
}

TEST(Kernels, TheFastestIsAmongTheSupported) {
    const GemmKernel& g = gemm_kernel();
    EXPECT_TRUE(g.supported());
    EXPECT_NE(std::string(g.name), "reference");
    EXPECT_TRUE(gemv_kernel().supported());
    const char* widest = find_gemm_kernel("avx512") ? "avx512" : find_gemm_kernel("avx2") ? "avx2" : "sse2";
    EXPECT_EQ(std::string(g.name), widest);
}

class GemmKernels : public ::testing::TestWithParam<std::string> {};

TEST_P(GemmKernels, GiveTheReferenceBits) {
    const GemmKernel* kernel = find_gemm_kernel(GetParam().c_str());
    ASSERT_NE(kernel, nullptr);
    Random r(41);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const char letters[] = {'N', 'n', 'T', 't', 'C', 'c'};
    for (int c = 0; c < 150; ++c) {
        const char ta = letters[r.below(6)], tb = letters[r.below(6)];
        const bool at = ta != 'N' && ta != 'n', bt = tb != 'N' && tb != 'n';
        // Sizes around every kernel's tile and the 128-term k-blocks.
        const std::int32_t m = 1 + r.below(r.below(4) ? 40 : 300);
        const std::int32_t n = 1 + r.below(r.below(4) ? 30 : 90);
        const std::int32_t k = r.below(3) ? 8 + r.below(60) : 120 + r.below(150);
        const double alpha = r.below(8) ? r.real() : r.below(2) ? -1.0 : nan;
        const double beta = r.below(4) == 0 ? 0.0 : r.below(3) == 0 ? 1.0 : r.below(8) ? r.real() : nan;
        const std::int32_t lda = (at ? k : m) + r.below(3), ldb = (bt ? n : k) + r.below(3), ldc = m + r.below(3);
        std::vector<double> a(std::size_t(lda) * (at ? m : k)), b(std::size_t(ldb) * (bt ? k : n)),
            cc(std::size_t(ldc) * n);
        for (auto* v : {&a, &b, &cc})
            for (double& x : *v) x = r.real();
        std::vector<double> want = cc, stack = cc;
        ref_gemm(at, bt, m, n, k, alpha, a.data(), lda, b.data(), ldb, beta, want.data(), ldc);
        ASSERT_EQ(
            _jwe_gdgemm(&ta, &tb, &m, &n, &k, &alpha, a.data(), &lda, b.data(), &ldb, &beta, cc.data(), &ldc, kernel),
            0);
        ASSERT_TRUE(all_same(cc.data(), want.data(), want.size()))
            << kernel->name << " case " << c << ": " << ta << tb << " " << m << " x " << n << " x " << k;
        // The small area on the stack: other block sizes, the same bits.
        if (c % 5 == 0) {
            blocked_gemm(at, bt, GemmProblem{m, n, k, alpha, a.data(), lda, b.data(), ldb, beta, stack.data(), ldc},
                         kernel, false);
            ASSERT_TRUE(all_same(stack.data(), want.data(), want.size())) << kernel->name << " stack area, case " << c;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllBuiltIn, GemmKernels, ::testing::ValuesIn(supported_names(true)),
                         [](const auto& info) { return info.param; });

class GemvKernels : public ::testing::TestWithParam<std::string> {};

TEST_P(GemvKernels, GiveTheReferenceBits) {
    const GemvKernel* kernel = find_gemv_kernel(GetParam().c_str());
    ASSERT_NE(kernel, nullptr);
    Random r(42);
    for (int c = 0; c < 300; ++c) {
        const char t = r.below(2) ? 'N' : 'T';
        const std::int32_t m = r.below(r.below(5) ? 80 : 2500), n = r.below(r.below(5) ? 40 : 300);
        const std::int32_t lda = (m > 0 ? m : 1) + r.below(3);
        const std::int32_t incx = r.below(3) ? 1 : -2, incy = r.below(3) ? 1 : 3;
        const std::int32_t lx = t == 'T' ? m : n, ly = t == 'T' ? n : m;
        const double alpha = r.real(), beta = r.below(3) ? r.real() : 0.0;
        std::vector<double> a(std::size_t(lda) * (n > 0 ? n : 1)), x(std::size_t(lx > 0 ? lx : 1) * 2),
            y(std::size_t(ly > 0 ? ly : 1) * 3);
        for (auto* v : {&a, &x, &y})
            for (double& e : *v) e = r.real();
        std::vector<double> want = y;
        ref_gemv(t == 'T', m, n, alpha, a.data(), lda, x.data(), incx, beta, want.data(), incy);
        ASSERT_EQ(_jwe_gdgemv(&t, &m, &n, &alpha, a.data(), &lda, x.data(), &incx, &beta, y.data(), &incy, kernel), 0);
        ASSERT_TRUE(all_same(y.data(), want.data(), want.size()))
            << kernel->name << " case " << c << ": " << t << " " << m << " x " << n << " incx " << incx;
    }
}

INSTANTIATE_TEST_SUITE_P(AllBuiltIn, GemvKernels, ::testing::ValuesIn(supported_names(false)),
                         [](const auto& info) { return info.param; });

TEST(Kernels, ArgumentCodesInTheClassicOrder) {
    const std::int32_t one = 1, zero = 0, minus = -1, two = 2;
    const double alpha = 1, beta = 0;
    double a[4] = {}, b[4] = {}, c[4] = {};
    const char n = 'N', bad = 'X';
    EXPECT_EQ(_jwe_gdgemm(&bad, &bad, &minus, &one, &one, &alpha, a, &one, b, &one, &beta, c, &one), 1);
    EXPECT_EQ(_jwe_gdgemm(&n, &bad, &minus, &one, &one, &alpha, a, &one, b, &one, &beta, c, &one), 2);
    EXPECT_EQ(_jwe_gdgemm(&n, &n, &minus, &one, &one, &alpha, a, &one, b, &one, &beta, c, &one), 3);
    EXPECT_EQ(_jwe_gdgemm(&n, &n, &one, &minus, &one, &alpha, a, &one, b, &one, &beta, c, &one), 4);
    EXPECT_EQ(_jwe_gdgemm(&n, &n, &one, &one, &minus, &alpha, a, &one, b, &one, &beta, c, &one), 5);
    EXPECT_EQ(_jwe_gdgemm(&n, &n, &two, &one, &one, &alpha, a, &one, b, &one, &beta, c, &two), 8);
    EXPECT_EQ(_jwe_gdgemm(&n, &n, &one, &one, &two, &alpha, a, &one, b, &one, &beta, c, &one), 10);
    EXPECT_EQ(_jwe_gdgemm(&n, &n, &two, &one, &one, &alpha, a, &two, b, &one, &beta, c, &one), 13);
    EXPECT_EQ(_jwe_gdgemv(&bad, &minus, &one, &alpha, a, &one, b, &one, &beta, c, &one), 1);
    EXPECT_EQ(_jwe_gdgemv(&n, &minus, &one, &alpha, a, &one, b, &one, &beta, c, &one), 2);
    EXPECT_EQ(_jwe_gdgemv(&n, &one, &minus, &alpha, a, &one, b, &one, &beta, c, &one), 3);
    EXPECT_EQ(_jwe_gdgemv(&n, &two, &one, &alpha, a, &one, b, &one, &beta, c, &one), 6);
    EXPECT_EQ(_jwe_gdgemv(&n, &one, &one, &alpha, a, &one, b, &zero, &beta, c, &one), 8);
    EXPECT_EQ(_jwe_gdgemv(&n, &one, &one, &alpha, a, &one, b, &one, &beta, c, &zero), 11);
    EXPECT_EQ(_jwe_gdgemva(&n, &one, &one, &alpha, a, &one, b, &one, c, &zero, &beta, c, &one), 10);
    EXPECT_EQ(_jwe_gdgemva(&n, &one, &one, &alpha, a, &one, b, &one, c, &one, &beta, c, &zero), 13);
    for (double v : c) EXPECT_EQ(v, 0.0);
}

}  // namespace
