// The REAL(16) operators against GCC's __float128 (libgcc's soft-fp,
// correctly rounded, ties to even) on pairs drawn to stress the hard cases.
// Inside the normal range the results must be the same bits; at its edges
// the operators' own rules apply (no subnormals: a report instead).
//
// Pairs per operator: MIVOR_QUAD_PAIRS (default 1000000).  The acceptance
// run is MIVOR_QUAD_PAIRS=10000000.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "mivor/mivor.h"
#include "quad/arith_operands.h"
#include "support/recording_handler.h"

namespace mivor::testing {
namespace {

long pairs_per_operator() {
    if (const char* env = std::getenv("MIVOR_QUAD_PAIRS")) {
        const long n = std::strtol(env, nullptr, 10);
        if (n > 0) return n;
    }
    return 1000000;
}

__float128 to_f128(const mivor_real16& q) {
    __float128 f;
    std::memcpy(&f, &q, sizeof f);
    return f;
}
mivor_real16 from_f128(__float128 f) {
    mivor_real16 q;
    std::memcpy(&q, &f, sizeof q);
    return q;
}

std::string hex(const mivor_real16& q) {
    char buf[48];
    std::snprintf(buf, sizeof buf, "%08X %08X %08X %08X", q.w[3], q.w[2], q.w[1], q.w[0]);
    return buf;
}

struct Tally {
    long exact = 0;      // compared bit for bit
    long overflow = 0;   // reference infinite, overflow reported
    long underflow = 0;  // reference subnormal or zero, underflow reported
    long failures = 0;
};

void run(Op op, std::uint64_t seed) {
    using Fn = mivor_real16* (*)(mivor_real16*, const mivor_real16*, const mivor_real16*);
    Fn fn = op == Op::add ? g_aqaq : op == Op::sub ? g_aqsq : op == Op::mul ? g_aqmq : g_aqdq;
    const std::int32_t overflow_number = op == Op::div ? 278 : 1397;
    const std::int32_t underflow_number = op == Op::div ? 279 : 1398;

    RecordingHandler handler;  // declines every report; IEEE fallbacks
    Stream s(seed);
    Tally t;
    const long n = pairs_per_operator();
    for (long i = 0; i < n; ++i) {
        const Pair p = draw(s, op);
        const __float128 fx = to_f128(p.x), fy = to_f128(p.y);
        const __float128 f = op == Op::add ? fx + fy : op == Op::sub ? fx - fy : op == Op::mul ? fx * fy : fx / fy;
        const mivor_real16 expected = from_f128(f);
        mivor_real16 got;
        handler.clear();
        fn(&got, &p.x, &p.y);
        const std::uint32_t field = field_of(expected);
        const auto& numbers = handler.reports();
        bool ok;
        if (field == 0x7FFF) {  // the reference overflowed
            ok = numbers.size() == 1 && numbers[0].number == overflow_number;
            t.overflow += ok;
        } else if (field >= 2) {
            ok = numbers.empty() && std::memcmp(&got, &expected, sizeof got) == 0;
            t.exact += ok;
        } else if (field == 1) {
            // Exact value at least 2^-16382: same bits.  Below it, IEEE
            // rounds on the subnormal grid up to the smallest normal; the
            // operator may reach it too or report underflow.
            ok = (numbers.empty() && std::memcmp(&got, &expected, sizeof got) == 0) ||
                 (numbers.size() == 1 && numbers[0].number == underflow_number);
            t.exact += ok && numbers.empty();
            t.underflow += ok && !numbers.empty();
        } else if (f == 0 && (op == Op::add || op == Op::sub) && (fx == fy || fx == -fy)) {
            // Exact cancellation: +0 without a report, like IEEE.
            ok = numbers.empty() && std::memcmp(&got, &expected, sizeof got) == 0;
            t.exact += ok;
        } else {
            ok = numbers.size() == 1 && numbers[0].number == underflow_number &&
                 got.w[0] == 0 && got.w[1] == 0 && got.w[2] == 0 && got.w[3] == 0;
            t.underflow += ok;
        }
        if (!ok && ++t.failures <= 10) {
            ADD_FAILURE() << "pair " << i << ": x = " << hex(p.x) << ", y = " << hex(p.y) << "\n  got      "
                          << hex(got) << " (" << numbers.size() << " reports)\n  expected " << hex(expected);
        }
    }
    std::printf("%ld pairs: %ld bit-identical, %ld overflows, %ld underflows, %ld failures\n", n, t.exact,
                t.overflow, t.underflow, t.failures);
    EXPECT_EQ(t.failures, 0);
    // The draw is meant to stay mostly inside the range.
    EXPECT_GT(t.exact, n * 9 / 10);
}

// Results a hair from a representable number, where the digits below the
// last kept bit are long runs of zeros or ones: quotients x / y with
// x = fl(q y), exact quotients (x = q y with a short q), and products of x
// with fl(1 / x) and fl(2 / x), near the place where the product's leading
// one moves.  There the division's digit estimates come closest to the
// bits kept and must give way to the exact remainder.
TEST(QuadArithOracle, ResultsNextToRepresentableNumbers) {
    RecordingHandler handler;
    Stream s(0xE4AC7u);
    const long n = pairs_per_operator() / 4;
    long failures = 0;
    auto check = [&](const char* what, mivor_real16 (*op)(const mivor_real16&, const mivor_real16&),
                     __float128 expected_f, const mivor_real16& x, const mivor_real16& y) {
        const mivor_real16 expected = from_f128(expected_f);
        handler.clear();
        const mivor_real16 got = op(x, y);
        if ((!handler.reports().empty() || std::memcmp(&got, &expected, sizeof got) != 0) && ++failures <= 10) {
            ADD_FAILURE() << what << ": x = " << hex(x) << ", y = " << hex(y) << "\n  got      " << hex(got)
                          << "\n  expected " << hex(expected);
        }
    };
    auto divide = [](const mivor_real16& x, const mivor_real16& y) {
        mivor_real16 r;
        g_aqdq(&r, &x, &y);
        return r;
    };
    auto multiply = [](const mivor_real16& x, const mivor_real16& y) {
        mivor_real16 r;
        g_aqmq(&r, &x, &y);
        return r;
    };
    for (long i = 0; i < n; ++i) {
        const NearRepresentable d = near_representable(s);
        const mivor_real16 q = d.q, y = d.y;
        const __float128 fy128 = to_f128(y);
        const mivor_real16 x = from_f128(to_f128(q) * fy128);
        check("x / y, x = q y", divide, to_f128(x) / fy128, x, y);
        const mivor_real16 one_over = from_f128(1 / to_f128(x));
        const mivor_real16 two_over = from_f128(2 / to_f128(x));
        check("x * fl(1 / x)", multiply, to_f128(x) * to_f128(one_over), x, one_over);
        check("x * fl(2 / x)", multiply, to_f128(x) * to_f128(two_over), x, two_over);
    }
    EXPECT_EQ(failures, 0);
}

TEST(QuadArithOracle, Add) { run(Op::add, 0xA11u); }
TEST(QuadArithOracle, Subtract) { run(Op::sub, 0x5B5u); }
TEST(QuadArithOracle, Multiply) { run(Op::mul, 0x3A3u); }
TEST(QuadArithOracle, Divide) { run(Op::div, 0xD1Du); }

}  // namespace
}  // namespace mivor::testing
