// g_mt22blasd and the GEMM path beneath it: products against the scalar
// reference of the stated order (x87 loops for small problems, k-blocks
// with even/odd chains otherwise), the trivial cases, the silent argument
// checks, the non-conforming report, and callers on several threads.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "matmul/support.h"
#include "support/recording_handler.h"
#include "support/threads.h"

namespace {

using namespace mivor::testing;

const double kNaN = std::numeric_limits<double>::quiet_NaN();

// A GEMM call through g_mt22blasd, its operands as plain column-major
// arrays with leading dimensions.
struct Gemm {
    char ta = 'N', tb = 'N';
    std::int32_t m = 0, n = 0, k = 0;  // of op(A) op(B)
    std::int32_t lda = 1, ldb = 1, ldc = 1, ldd = 1;
    double alpha = 1, beta = 0;
    std::vector<double> a, b, c, d;
    bool with_d = false;

    // Rows and columns of A and B as stored (what the descriptors carry).
    std::int32_t a_rows() const { return ta == 'T' ? k : m; }
    std::int32_t a_cols() const { return ta == 'T' ? m : k; }
    std::int32_t b_rows() const { return tb == 'T' ? n : k; }
    std::int32_t b_cols() const { return tb == 'T' ? k : n; }

    void fill(Random& r, std::int32_t extra_ld) {
        lda = std::max(1, a_rows() + extra_ld);
        ldb = std::max(1, b_rows() + extra_ld);
        ldc = std::max(1, m + extra_ld);
        ldd = std::max(1, m + 2 * extra_ld);
        a.resize(std::size_t(lda) * std::max(1, a_cols()));
        b.resize(std::size_t(ldb) * std::max(1, b_cols()));
        c.resize(std::size_t(ldc) * std::max(1, n));
        d.resize(std::size_t(ldd) * std::max(1, n));
        for (auto* v : {&a, &b, &c, &d})
            for (double& x : *v) x = r.real();
    }

    void run() {
        Desc da(a.data(), 2, 8, a_rows(), 8 * lda, a_cols());
        Desc db(b.data(), 2, 8, b_rows(), 8 * ldb, b_cols());
        Desc dc(c.data(), 2, 8, m, 8 * ldc, n);
        void* d_base = d.data();
        mivor_gemm_args args{&dc.d, &da.d, &db.d, with_d ? &d_base : nullptr, &ta, &tb, &alpha, &beta, &ldc,
                             &lda,  &ldb,  &ldd};
        g_mt22blasd(&args);
    }

    // What the description gives, on a copy of C.
    std::vector<double> expected() const {
        std::vector<double> want = c;
        ref_gemm(ta != 'N' && ta != 'n', tb != 'N' && tb != 'n', m, n, k, alpha, a.data(), lda, b.data(), ldb, beta,
                 want.data(), ldc);
        if (with_d)
            for (std::int32_t j = 0; j < n; ++j)
                for (std::int32_t i = 0; i < m; ++i) want[i + std::size_t(j) * ldc] += d[i + std::size_t(j) * ldd];
        return want;
    }
};

std::int32_t pick(Random& r, std::initializer_list<std::int32_t> values) {
    return values.begin()[r.below(static_cast<std::int32_t>(values.size()))];
}

double scalar(Random& r) {
    switch (r.below(7)) {
        case 0:
            return 0.0;
        case 1:
            return 1.0;
        case 2:
            return -1.0;
        case 3:
            return kNaN;
        default:
            return r.real();
    }
}

TEST(Gemm, ProductsFollowTheStatedOrder) {
    Random r(21);
    for (int c = 0; c < 400; ++c) {
        Gemm g;
        g.ta = r.below(2) ? 'T' : 'N';
        g.tb = r.below(2) ? 'T' : 'N';
        const bool big = r.below(5) == 0;
        g.m = big ? pick(r, {1, 9, 130, 200}) : pick(r, {0, 1, 2, 5, 7, 8, 9, 13, 33});
        g.n = big ? pick(r, {1, 7, 13}) : pick(r, {0, 1, 3, 7, 8, 9, 17});
        g.k = big ? pick(r, {127, 128, 129, 130, 256, 257}) : pick(r, {0, 1, 2, 6, 7, 8, 9, 31});
        g.alpha = scalar(r);
        g.beta = scalar(r);
        g.with_d = r.below(3) == 0;
        g.fill(r, r.below(3));
        const std::vector<double> want = g.expected();
        g.run();
        ASSERT_TRUE(all_same(g.c.data(), want.data(), want.size()))
            << "case " << c << ": " << g.ta << g.tb << " m " << g.m << " n " << g.n << " k " << g.k << " alpha "
            << g.alpha << " beta " << g.beta << " D " << g.with_d;
    }
}

TEST(Gemm, TrivialCasesAndTheSmallPath) {
    Random r(22);
    Gemm g;
    g.m = 9;
    g.n = 5;
    g.k = 4;
    g.fill(r, 0);
    // alpha = 0, beta = 0: +0.0 everywhere, NaNs in C dropped.
    for (double& x : g.c) x = kNaN;
    g.alpha = 0;
    g.beta = 0;
    g.run();
    for (double x : g.c) EXPECT_EQ(bits(x), 0u);
    // alpha = 0, beta = 1, and k = 0 with beta = 1: C as it was.
    for (double& x : g.c) x = kNaN;
    g.beta = 1;
    g.run();
    for (double x : g.c) EXPECT_TRUE(std::isnan(x));
    // 7 x 7 x 7 keeps the x87 register between terms: 1 + 2^-60 - 1 is
    // 2^-60 there, 0 in REAL(8).
    Gemm s;
    s.m = s.n = s.k = 7;
    s.fill(r, 0);
    // op(A) = A^T, so row 0 of op(A) is column 0 of A.
    for (double& x : s.a) x = 0;
    for (double& x : s.b) x = 0;
    s.a[0] = 1;
    s.a[1] = 0x1p-60;
    s.a[2] = -1;
    s.b[0] = s.b[1] = s.b[2] = 1;
    s.ta = 'T';
    s.alpha = 1;
    s.beta = 0;
    s.run();
    EXPECT_EQ(s.c[0], 0x1p-60);
}

TEST(Gemm, InvalidArgumentsAreIgnoredSilently) {
    RecordingHandler handler;
    Random r(23);
    Gemm g;
    g.m = 12;
    g.n = 10;
    g.k = 9;
    g.fill(r, 0);
    const std::vector<double> before = g.c;
    // lda smaller than the rows, an unknown letter, ldc too small: C
    // untouched, nothing reported.
    for (int variant = 0; variant < 3; ++variant) {
        Gemm h = g;
        if (variant == 0) h.lda = 11;
        if (variant == 1) h.tb = 'X';
        if (variant == 2) h.ldc = 11;
        h.run();
        EXPECT_EQ(h.c, before) << variant;
    }
    // With D given, an ldc too small for C adds nothing either: the sum
    // would land outside C.
    Gemm d = g;
    d.with_d = true;
    d.ldc = 11;
    d.run();
    EXPECT_EQ(d.c, before);
    // lda = 0 is read as 1: still too small for 12 rows.
    Gemm z = g;
    z.lda = 0;
    z.run();
    EXPECT_EQ(z.c, before);
    EXPECT_TRUE(handler.numbers().empty());
}

TEST(Gemm, NonConformingOperandsReport1375AndLeaveC) {
    RecordingHandler handler([](const Report&, jwe_control_area&) { return true; });
    Random r(24);
    Gemm g;
    g.m = 4;
    g.n = 3;
    g.k = 5;
    g.fill(r, 0);
    const std::vector<double> before = g.c;
    std::int32_t huge = 0x7FFFFFFF;
    Desc da(g.a.data(), 2, 8, 4, 32, 5), db(g.b.data(), 2, 8, huge, 8, 3), dc(g.c.data(), 2, 8, 4, 32, 3);
    void* d_base = g.d.data();
    mivor_gemm_args args{&dc.d, &da.d, &db.d, &d_base, &g.ta, &g.tb, &g.alpha, &g.beta, &g.ldc, &g.lda, &g.ldb, &g.ldd};
    g_mt22blasd(&args);
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{1375});
    EXPECT_EQ(g.c, before);
    EXPECT_TRUE(handler.reports()[0].cleared);
}

TEST(Gemm, OnlyUpperCaseTSwapsTheDescriptorsExtents) {
    // With "t" the extents are taken as they stand (A is m x k as
    // described) while the GEMM routine transposes A, so lda must cover k.
    Random r(25);
    Gemm g;
    g.m = 9;
    g.n = 4;
    g.k = 9;  // square, so both readings conform
    g.ta = 't';
    g.fill(r, 1);
    const std::vector<double> want = g.expected();
    g.run();
    EXPECT_TRUE(all_same(g.c.data(), want.data(), want.size()));
    // A 6 x 9 A with "t": conforming by its extent 2 (9 = rows of B),
    // but the transposing GEMM needs lda >= 9 rows of A^T as stored.
    Gemm h;
    h.m = 6;
    h.n = 2;
    h.k = 9;
    h.fill(r, 0);
    h.ta = 't';
    const std::vector<double> before = h.c;
    std::int32_t lda = 6;
    Desc da(h.a.data(), 2, 8, 6, 48, 9), db(h.b.data(), 2, 8, 9, 72, 2), dc(h.c.data(), 2, 8, 6, 48, 2);
    mivor_gemm_args args{&dc.d, &da.d, &db.d, nullptr, &h.ta, &h.tb, &h.alpha, &h.beta, &h.ldc, &lda, &h.ldb, &h.ldd};
    g_mt22blasd(&args);
    EXPECT_EQ(h.c, before) << "lda 6 < k 9: ignored";
}

TEST(Gemm, ConcurrentCallersGetTheirOwnResults) {
    // More threads than static work areas: some run on the stack area.
    constexpr int kThreads = 7;
    std::vector<Gemm> problems(kThreads);
    std::vector<std::vector<double>> want(kThreads);
    Random r(26);
    for (int t = 0; t < kThreads; ++t) {
        Gemm& g = problems[t];
        g.ta = t % 2 ? 'T' : 'N';
        g.tb = t % 3 ? 'N' : 'T';
        g.m = 150 + 13 * t;
        g.n = 40 + 7 * t;
        g.k = 200 + 31 * t;
        g.alpha = r.real();
        g.beta = t % 4 == 0 ? 0.0 : r.real();
        g.fill(r, t % 3);
        want[t] = g.expected();
    }
    std::vector<int> ok(kThreads, 0);
    run_concurrently(kThreads, [&](int t) {
        bool good = true;
        for (int round = 0; round < 3; ++round) {
            Gemm g = problems[t];
            g.run();
            good = good && all_same(g.c.data(), want[t].data(), want[t].size());
        }
        ok[t] = good;
    });
    for (int t = 0; t < kThreads; ++t) EXPECT_TRUE(ok[t]) << "thread " << t;
}

}  // namespace
