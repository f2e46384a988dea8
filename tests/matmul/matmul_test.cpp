// MATMUL through its six entry points and the aligned twins: the products
// against the scalar references of their summation orders, the shapes
// written back, the zero-size and non-conforming paths.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "matmul/support.h"
#include "support/recording_handler.h"

namespace {

using namespace mivor::testing;

constexpr std::int32_t kSentinel = 0x5A5A5A5A;

// The result storage and its descriptor, cells preset to a sentinel so that
// a cell that must not be written can be seen unwritten.
template <class T>
struct Result {
    std::vector<T> storage;
    Desc desc;
    explicit Result(std::size_t elements, int rank)
        : storage(elements + 1), desc(nullptr, rank, kSentinel, kSentinel, kSentinel, kSentinel) {
        std::memset(static_cast<void*>(storage.data()), 0xA5, storage.size() * sizeof(T));
        desc.d.base = storage.data();
    }
};

template <class T>
void call(void (*entry)(const void*), Result<T>& r, Strided<T>& a, Strided<T>& b) {
    mivor_matmul_args args{&r.desc.d, &a.desc->d, &b.desc->d};
    entry(&args);
}

// Random shapes (the block edges 7, 8, 9 and 0 and 1 among them), strides
// of any sign and with byte remainders, all three shape cases.
template <class T>
void random_products(void (*entry)(const void*), int cases, std::int32_t max_size, std::uint64_t seed) {
    Random rnd(seed);
    const std::int32_t sizes[] = {1, 2, 3, 7, 8, 9, 15, 16, 17, 24, 33};
    auto size = [&] {
        const std::int32_t s = sizes[rnd.below(std::size(sizes))];
        return s > max_size ? 1 + rnd.below(max_size) : s;
    };
    auto gap = [&](std::int32_t minimum) {
        const std::int32_t g = minimum + rnd.below(3);
        return rnd.below(4) == 0 ? -g : g;
    };
    for (int c = 0; c < cases; ++c) {
        const int shape = rnd.below(3);  // 0 mm, 1 mv, 2 vm
        const int rank_a = shape == 2 ? 1 : 2, rank_b = shape == 1 ? 1 : 2;
        const std::int32_t m = size(), k = size(), n = size();
        const std::int32_t slack = rnd.below(sizeof(T));
        // Column-major-like or row-major-like strides, both possible.
        const std::int32_t a1 = gap(1), a2 = rank_a == 2 ? (rnd.below(2) ? a1 * (m + 1) : gap(1) * 37) : 0;
        const std::int32_t b1 = gap(1), b2 = rank_b == 2 ? b1 * (k + rnd.below(3)) : 0;
        Strided<T> a(rnd, rank_a, rank_a == 2 ? m : k, rank_a == 2 ? k : 0, a1, a2, slack);
        Strided<T> b(rnd, rank_b, k, rank_b == 2 ? n : 0, b1, b2, slack);
        const std::size_t count = shape == 0 ? std::size_t(m) * n : shape == 1 ? m : n;
        Result<T> r(count, shape == 0 ? 2 : 1);
        call(entry, r, a, b);
        const std::vector<T> want = ref_matmul(a, rank_a, b, rank_b);
        ASSERT_EQ(want.size(), count);
        ASSERT_TRUE(all_same(r.storage.data(), want.data(), count))
            << "case " << c << " shape " << shape << " m " << m << " k " << k << " n " << n;
        EXPECT_EQ(r.desc.stride1, std::int32_t(sizeof(T)));
        EXPECT_EQ(r.desc.extent1, shape == 2 ? n : m);
        EXPECT_EQ(r.desc.stride2, shape == 0 ? std::int32_t(sizeof(T)) * m : kSentinel);
        EXPECT_EQ(r.desc.extent2, shape == 0 ? n : kSentinel);
        // Nothing written past the result.
        EXPECT_EQ(reinterpret_cast<const unsigned char*>(&r.storage[count])[0], 0xA5);
    }
}

TEST(Matmul, RegisterKindsFollowTheirOrders) {
    random_products<float>(g_matmlr, 300, 33, 1);
    random_products<double>(g_matmld, 300, 33, 2);
    random_products<double>(jwe_gmd2, 100, 33, 3);
    random_products<mivor_complex4>(g_matmlc, 200, 33, 4);
    random_products<mivor_complex8>(g_matmlx, 200, 33, 5);
    random_products<mivor_complex8>(jwe_gmx2, 100, 33, 6);
}

TEST(Matmul, Real16KindsFollowTheirOrders) {
    random_products<mivor_real16>(g_matmlq, 120, 9, 7);
    random_products<mivor_complex16>(g_matmlz, 60, 9, 8);
}

// Contiguous column-major operands from plain arrays.
template <class T>
struct Dense {
    std::vector<T> v;
    Desc desc;
    Dense(std::vector<T> values, std::int32_t rows, std::int32_t cols, int rank = 2)
        : v(std::move(values)), desc(nullptr, rank, sizeof(T), rows, std::int32_t(sizeof(T)) * rows, cols) {
        desc.d.base = v.data();
    }
};

template <class T>
void call(void (*entry)(const void*), Result<T>& r, Dense<T>& a, Dense<T>& b) {
    mivor_matmul_args args{&r.desc.d, &a.desc.d, &b.desc.d};
    entry(&args);
}

TEST(Matmul, NinthTermGoesIntoTheStoredBlockSum) {
    // Block 1 sums 2^53 + 1 in the register and stores 2^53 (a tie to
    // even); the ninth term then meets the stored value: 2^53 again.  One
    // running sum would have kept 2^53 + 2.
    Dense<double> a({0x1p53, 1, 0, 0, 0, 0, 0, 0, 1}, 1, 9);
    Dense<double> b(std::vector<double>(9, 1.0), 9, 1);
    Result<double> r(1, 2);
    call(g_matmld, r, a, b);
    EXPECT_EQ(r.storage[0], 0x1p53);
    // The vector form is one running sum.
    Dense<double> row({0x1p53, 1, 0, 0, 0, 0, 0, 0, 1}, 9, 1, 1);
    Result<double> v(1, 1);
    call(g_matmld, v, row, b);
    EXPECT_EQ(v.storage[0], 0x1p53 + 2);
}

TEST(Matmul, RegisterFormatHoldsWhatTheElementTypeCannot) {
    // 3e38 + 3e38 - 3e38 overflows REAL(4) half way, not the register.
    Dense<float> a({3e38f, 3e38f, -3e38f}, 1, 3);
    Dense<float> b({1, 1, 1}, 3, 1);
    Result<float> r(1, 2);
    call(g_matmlr, r, a, b);
    EXPECT_EQ(r.storage[0], 3e38f);
    // Products are exact in the register: (1 + 2^-23)^2 keeps its 2^-46.
    const float e = 1.0f + 0x1p-23f;
    Dense<float> c({e, -1.0f}, 1, 2);
    Dense<float> d({e, 1.0f + 0x1p-22f}, 2, 1);
    call(g_matmlr, r, c, d);
    EXPECT_EQ(r.storage[0], static_cast<float>(0x1p-46));
}

TEST(Matmul, CallersPrecisionControlDoesNotMatter) {
    // A caller running the x87 at 53 bits (as Windows programs often do)
    // gets the same bits.
    Random rnd(11);
    Strided<double> a(rnd, 2, 9, 20, 1, 9), b(rnd, 2, 20, 5, 1, 20);
    Result<double> r64(45, 2), r53(45, 2);
    call(g_matmld, r64, a, b);
    std::uint16_t saved, low;
    __asm__ __volatile__("fnstcw %0" : "=m"(saved));
    low = static_cast<std::uint16_t>((saved & ~0x0300) | 0x0200);
    __asm__ __volatile__("fldcw %0" : : "m"(low));
    call(g_matmld, r53, a, b);
    std::uint16_t after;
    __asm__ __volatile__("fnstcw %0" : "=m"(after));
    __asm__ __volatile__("fldcw %0" : : "m"(saved));
    EXPECT_EQ(after, low) << "the caller's control word comes back";
    EXPECT_TRUE(all_same(r53.storage.data(), r64.storage.data(), 45));
}

TEST(Matmul, AlignedTwinsAgreeWithTheUnalignedLoops) {
    // The same REAL(8)/COMPLEX(8) operands at an 8-byte multiple and 4 bytes off.
    Random rnd(12);
    for (int complex = 0; complex < 2; ++complex) {
        const std::int32_t m = 13, k = 19, n = 6, size = complex ? 16 : 8;
        std::vector<unsigned char> a_bytes(m * k * size + 16), b_bytes(k * n * size + 16);
        for (auto& x : a_bytes) x = 0;
        for (std::int32_t i = 0; i < m * k * size / 8; ++i) {
            const double v = rnd.real();
            std::memcpy(&a_bytes[8 + 8 * i], &v, 8);
        }
        for (std::int32_t i = 0; i < k * n * size / 8; ++i) {
            const double v = rnd.real();
            std::memcpy(&b_bytes[8 + 8 * i], &v, 8);
        }
        std::vector<unsigned char> a_off(a_bytes.size()), b_off(b_bytes.size());
        std::memcpy(a_off.data() + 4, a_bytes.data() + 8, a_bytes.size() - 8);
        std::memcpy(b_off.data() + 4, b_bytes.data() + 8, b_bytes.size() - 8);
        std::vector<unsigned char> r1(m * n * size), r2(m * n * size), r3(m * n * size);
        auto run = [&](void (*entry)(const void*), unsigned char* a, unsigned char* b, unsigned char* r) {
            Desc da(a, 2, size, m, size * m, k), db(b, 2, size, k, size * k, n), dr(r, 2, 0, 0, 0, 0);
            mivor_matmul_args args{&dr.d, &da.d, &db.d};
            entry(&args);
        };
        auto plain = complex ? g_matmlx : g_matmld;
        auto twin = complex ? jwe_gmx2 : jwe_gmd2;
        run(plain, a_bytes.data() + 8, b_bytes.data() + 8, r1.data());
        run(plain, a_off.data() + 4, b_off.data() + 4, r2.data());
        run(twin, a_off.data() + 4, b_off.data() + 4, r3.data());
        EXPECT_EQ(r1, r2) << "complex " << complex;
        EXPECT_EQ(r1, r3) << "complex " << complex;
    }
}

TEST(Matmul, EmptyInnerDimensionGivesZeros) {
    // 3 x 0 times 0 x 2: a 3 x 2 result of +0.0 in every bit.
    Dense<double> a({}, 3, 0), b({}, 0, 2);
    Result<double> r(6, 2);
    call(g_matmld, r, a, b);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(bits(r.storage[i]), 0u);
    EXPECT_EQ(bits(r.storage[6]), 0xA5A5A5A5A5A5A5A5u);
    EXPECT_EQ(r.desc.stride1, 8);
    EXPECT_EQ(r.desc.extent1, 3);
    EXPECT_EQ(r.desc.stride2, 24);
    EXPECT_EQ(r.desc.extent2, 2);

    // A negative extent is 0: the same for COMPLEX(16), every part zeroed.
    Dense<mivor_complex16> qa({}, 3, -5), qb({}, -1, 2);
    Result<mivor_complex16> qr(6, 2);
    call(g_matmlz, qr, qa, qb);
    const mivor_complex16 zero{};
    for (int i = 0; i < 6; ++i) EXPECT_TRUE(same_bits(qr.storage[i], zero));
    EXPECT_EQ(qr.desc.stride2, 96);

    // Matrix x vector with M = 0 writes no element and only dimension 1.
    Dense<float> fa({}, 0, 4), fb({1, 2, 3, 4}, 4, 1, 1);
    Result<float> fr(0, 1);
    call(g_matmlr, fr, fa, fb);
    EXPECT_EQ(fr.desc.stride1, 4);
    EXPECT_EQ(fr.desc.extent1, 0);
    EXPECT_EQ(fr.desc.stride2, kSentinel);
}

TEST(Matmul, NonConformingShapesReport1375AndEmptyTheResult) {
    // A handler that asks for a retry is not listened to: one report.
    RecordingHandler handler([](const Report&, jwe_control_area&) { return true; });
    RecordingHandler::scribble();
    Dense<double> a(std::vector<double>(6, 1.0), 2, 3), b(std::vector<double>(8, 1.0), 4, 2);
    Result<double> r(4, 2);
    call(g_matmld, r, a, b);
    ASSERT_EQ(handler.numbers(), std::vector<std::int32_t>{1375});
    EXPECT_TRUE(handler.reports()[0].cleared);
    EXPECT_EQ(handler.reports()[0].retry_pointer, &jwe_lca.retry_word);
    EXPECT_EQ(r.desc.stride1, 0);
    EXPECT_EQ(r.desc.extent1, 0);
    EXPECT_EQ(r.desc.stride2, 0);
    EXPECT_EQ(r.desc.extent2, 0);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(bits(r.storage[i]), 0xA5A5A5A5A5A5A5A5u);

    // A vector A is checked by its extent 1; a rank-1 result keeps
    // dimension 2 untouched.
    handler.clear();
    Dense<mivor_real16> qa({{}, {}, {}}, 3, 1, 1), qb({{}, {}}, 2, 1);
    Result<mivor_real16> qr(1, 1);
    call(g_matmlq, qr, qa, qb);
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{1375});
    EXPECT_EQ(qr.desc.extent1, 0);
    EXPECT_EQ(qr.desc.extent2, kSentinel);
}

TEST(Matmul, Real16SumsStartFromPlusZeroAndPassOperatorReportsOn) {
    RecordingHandler handler;
    const mivor_real16 minus_zero = q(0x80000000), one = q(0x3FFF0000), huge = q(0x7FFEFFFF, ~0u, ~0u, ~0u);
    Dense<mivor_real16> a({minus_zero, minus_zero}, 2, 1, 1), b({one, one}, 2, 1);
    Result<mivor_real16> r(1, 1);
    call(g_matmlq, r, a, b);
    EXPECT_TRUE(same(r.storage[0], q(0)));  // (+0 + -0) + -0 = +0
    // The matrix form starts from zero bits as well.
    Dense<mivor_real16> am({minus_zero}, 1, 1), bm({one}, 1, 1);
    call(g_matmlq, r, am, bm);
    EXPECT_TRUE(same(r.storage[0], q(0)));
    EXPECT_TRUE(handler.numbers().empty());
    // HUGE x HUGE overflows inside g_aqmq: its report reaches the handler.
    Dense<mivor_real16> ah({huge}, 1, 1), bh({huge}, 1, 1);
    call(g_matmlq, r, ah, bh);
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{1397});
}

}  // namespace
