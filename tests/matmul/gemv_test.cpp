// g_mt21blasd and the GEMV path: products against the scalar reference
// (one chain per row for A as stored; eight parts and a fixed tree per
// portion of rows for A transposed), increments of either sign, the
// gathering in chunks of 1024, z, and the reports.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "matmul/support.h"
#include "support/recording_handler.h"

namespace {

using namespace mivor::testing;

const double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Gemv {
    char trans = 'N';
    std::int32_t rows = 0, cols = 0, lda = 1;  // A as stored
    std::int32_t incx = 1, incy = 1, incz = 1;
    double alpha = 1, beta = 0;
    std::vector<double> a, x, y, z;
    bool with_z = false;

    bool transposed() const { return trans != 'N' && trans != 'n'; }
    std::int32_t len_x() const { return transposed() ? rows : cols; }
    std::int32_t len_y() const { return transposed() ? cols : rows; }

    void fill(Random& r) {
        lda = std::max(lda, std::max(1, rows));
        a.resize(std::size_t(lda) * std::max(1, cols));
        x.resize(std::size_t(std::max(1, len_x())) * std::abs(incx));
        y.resize(std::size_t(std::max(1, len_y())) * std::abs(incy));
        z.resize(std::size_t(std::max(1, len_y())) * std::max(1, std::abs(incz)));
        for (auto* v : {&a, &x, &y, &z})
            for (double& e : *v) e = r.real();
    }

    void run() {
        // Increments reach the library as byte strides; x's extent is the
        // length of op(A)'s inner dimension.
        Desc dy(y.data(), 1, 8 * incy, len_y());
        Desc da(a.data(), 2, 8, rows, 8 * lda, cols);
        Desc dx(x.data(), 1, 8 * incx, len_x());
        Desc dz(z.data(), 1, 8 * incz, len_y());
        mivor_gemv_args args{&dy.d, &da.d, &dx.d, with_z ? &dz.d : nullptr, &trans, &alpha, &beta, &lda};
        g_mt21blasd(&args);
    }

    std::vector<double> expected() const {
        std::vector<double> want = y;
        ref_gemv(transposed(), rows, cols, alpha, a.data(), lda, x.data(), incx, beta, want.data(), incy);
        if (with_z) {
            const std::int32_t n = len_y();
            for (std::int32_t i = 0; i < n; ++i) {
                const std::int64_t iy = (incy > 0 ? i : i - (n - 1)) * std::int64_t{incy};
                const std::int64_t iz = (incz > 0 ? i : i - (n - 1)) * std::int64_t{incz};
                want[iy] = want[iy] + z[iz];
            }
        }
        return want;
    }
};

std::int32_t pick(Random& r, std::initializer_list<std::int32_t> values) {
    return values.begin()[r.below(static_cast<std::int32_t>(values.size()))];
}

TEST(Gemv, ProductsFollowTheStatedOrder) {
    Random r(31);
    for (int c = 0; c < 400; ++c) {
        Gemv g;
        g.trans = r.below(2) ? 'T' : 'N';
        const bool big = r.below(6) == 0;
        g.rows = big ? pick(r, {1023, 1024, 1025, 2000, 2100}) : pick(r, {0, 1, 2, 7, 8, 9, 15, 16, 17, 33, 70});
        g.cols = big ? pick(r, {1, 3, 9}) : pick(r, {0, 1, 2, 5, 8, 9, 31});
        g.lda = g.rows + r.below(3);
        g.incx = pick(r, {1, 1, -1, 2, -3});
        g.incy = pick(r, {1, 1, -1, 3, -2});
        g.incz = pick(r, {1, -1, 2});
        g.with_z = r.below(3) == 0;
        switch (r.below(6)) {
            case 0:
                g.alpha = 0;
                break;
            case 1:
                g.alpha = kNaN;
                break;
            default:
                g.alpha = r.real();
        }
        switch (r.below(6)) {
            case 0:
                g.beta = 0;
                break;
            case 1:
                g.beta = 1;
                break;
            case 2:
                g.beta = kNaN;
                break;
            default:
                g.beta = r.real();
        }
        g.fill(r);
        // An empty inner dimension: alpha becomes 0, y is only scaled.
        const std::vector<double> want = [&] {
            Gemv e = g;
            if ((g.transposed() ? g.rows : g.cols) == 0) {
                (g.trans == 'T' ? e.rows : e.cols) = 1;
                e.alpha = 0;
            }
            return e.expected();
        }();
        g.run();
        ASSERT_TRUE(all_same(g.y.data(), want.data(), want.size()))
            << "case " << c << ": " << g.trans << " " << g.rows << " x " << g.cols << " incx " << g.incx << " incy "
            << g.incy << " z " << g.with_z;
    }
}

TEST(Gemv, StridedXIsSummedInPortionsOf1024Rows) {
    // The same logical x, contiguous and with increment 2: for 2000 rows
    // the strided call adds each dot product in two portions.
    Random r(32);
    Gemv unit;
    unit.trans = 'T';
    unit.rows = 2000;
    unit.cols = 16;
    unit.fill(r);
    Gemv strided = unit;
    strided.incx = 2;
    strided.x.assign(4000, 0.0);
    for (int i = 0; i < 2000; ++i) strided.x[2 * i] = unit.x[i];
    const std::vector<double> want_unit = unit.expected(), want_strided = strided.expected();
    unit.run();
    strided.run();
    EXPECT_TRUE(all_same(unit.y.data(), want_unit.data(), 16));
    EXPECT_TRUE(all_same(strided.y.data(), want_strided.data(), 16));
    EXPECT_NE(unit.y, strided.y) << "two portions round differently from one";
}

TEST(Gemv, NegativeIncrementStartsAtTheFarEnd) {
    // y = A x with A = I (3 x 3), incy = -1: y's first element is the last
    // in memory.
    Gemv g;
    g.rows = g.cols = 3;
    g.lda = 3;
    g.a = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    g.x = {10, 20, 30};
    g.y = {0, 0, 0};
    g.incy = -1;
    g.run();
    EXPECT_EQ(g.y, (std::vector<double>{30, 20, 10}));
}

TEST(Gemv, EmptyAndInvalidCases) {
    RecordingHandler handler;
    Random r(33);
    // A 3 x 0 matrix times an empty vector: y = beta y.
    Gemv e;
    e.rows = 3;
    e.cols = 0;
    e.beta = 2;
    e.fill(r);
    std::vector<double> doubled = e.y;
    for (double& v : doubled) v = 2 * v;
    e.run();
    EXPECT_EQ(e.y, doubled);
    // z with incz = 0: nothing at all, not even the product.
    Gemv z;
    z.rows = 5;
    z.cols = 4;
    z.with_z = true;
    z.fill(r);
    z.incz = 0;
    const std::vector<double> before = z.y;
    z.run();
    EXPECT_EQ(z.y, before);
    // A stride of 4 bytes truncates to increment 0: ignored silently.
    Gemv s;
    s.rows = 5;
    s.cols = 4;
    s.fill(r);
    const std::vector<double> before_s = s.y;
    Desc dy(s.y.data(), 1, 4, 5), da(s.a.data(), 2, 8, 5, 40, 4), dx(s.x.data(), 1, 8, 4);
    mivor_gemv_args args{&dy.d, &da.d, &dx.d, nullptr, &s.trans, &s.alpha, &s.beta, &s.lda};
    g_mt21blasd(&args);
    EXPECT_EQ(s.y, before_s);
    EXPECT_TRUE(handler.numbers().empty());
}

TEST(Gemv, NonConformingOperandsReport1375) {
    RecordingHandler handler;
    Random r(34);
    Gemv g;
    g.rows = 4;
    g.cols = 6;
    g.fill(r);
    const std::vector<double> before = g.y;
    Desc dy(g.y.data(), 1, 8, 4), da(g.a.data(), 2, 8, 4, 32, 6), dx(g.x.data(), 1, 8, 5);
    mivor_gemv_args args{&dy.d, &da.d, &dx.d, nullptr, &g.trans, &g.alpha, &g.beta, &g.lda};
    g_mt21blasd(&args);
    // Upper-case T compares A's extent 1 with x's: 4 against 5.
    char t = 'T';
    args.trans = &t;
    g_mt21blasd(&args);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{1375, 1375}));
    EXPECT_EQ(g.y, before);
}

}  // namespace
