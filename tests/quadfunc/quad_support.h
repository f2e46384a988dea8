// Helpers for the tests of the REAL(16) elementary functions, through the
// exports only (every flavour): calls, REAL(16) values from doubles and by
// their words, distances in units of the last place, and the handler
// idioms the report tests share.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace mivor::testing {

using Q1 = mivor_real16* (*)(mivor_real16*, const mivor_real16*);
using Q2 = mivor_real16* (*)(mivor_real16*, const mivor_real16*, const mivor_real16*);

inline mivor_real16 call(Q1 f, const mivor_real16& x) {
    mivor_real16 r;
    EXPECT_EQ(f(&r, &x), &r);
    return r;
}
inline mivor_real16 call(Q2 f, const mivor_real16& y, const mivor_real16& x) {
    mivor_real16 r;
    EXPECT_EQ(f(&r, &y, &x), &r);
    return r;
}

// Exact conversions through the library's own widening.
inline mivor_real16 qd(double d) {
    mivor_real16 r;
    g_qextd(&r, &d);
    return r;
}
inline double dq(const mivor_real16& x) { return g_dbleq(&x); }

inline mivor_real16 neg(mivor_real16 x) {
    x.w[3] ^= 0x80000000u;
    return x;
}
// 2^k for -16382 <= k <= 16383.
inline mivor_real16 pow2q(int k) { return q(static_cast<std::uint32_t>(k + 16383) << 16); }

// The magnitude's position in the ordered list of REAL(16) patterns, as
// two halves (high, low).
struct Ordinal {
    std::uint64_t hi, lo;
};
inline Ordinal ordinal(const mivor_real16& x) {
    return {(std::uint64_t{x.w[3] & 0x7FFFFFFFu} << 32) | x.w[2], (std::uint64_t{x.w[1]} << 32) | x.w[0]};
}
// Units of the last place between two finite values of the same sign,
// saturated at 2^32.
inline std::uint64_t ulps(const mivor_real16& a, const mivor_real16& b) {
    if ((a.w[3] ^ b.w[3]) >> 31) return ~std::uint64_t{0};
    Ordinal x = ordinal(a), y = ordinal(b);
    if (x.hi < y.hi || (x.hi == y.hi && x.lo < y.lo)) std::swap(x, y);
    const std::uint64_t lo = x.lo - y.lo;
    const std::uint64_t hi = x.hi - y.hi - (x.lo < y.lo);
    return hi != 0 || lo > 0xFFFFFFFFu ? 0x100000000u : lo;
}

inline std::string hex(const mivor_real16& x) {
    char b[40];
    std::snprintf(b, sizeof b, "%08X %08X %08X %08X", x.w[3], x.w[2], x.w[1], x.w[0]);
    return b;
}

inline bool is_nan(const mivor_real16& x) {
    return (x.w[3] & 0x7FFF0000u) == 0x7FFF0000u && ((x.w[3] & 0xFFFFu) | x.w[2] | x.w[1] | x.w[0]) != 0;
}

inline constexpr mivor_real16 kInfQ = q(0x7FFF0000u);
inline constexpr mivor_real16 kMInfQ = q(0xFFFF0000u);
inline constexpr mivor_real16 kNaNQ = q(0x7FFF8000u);
inline constexpr mivor_real16 kHugeQ = q(0x7FFEFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu);
inline constexpr mivor_real16 kMHugeQ = q(0xFFFEFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu);
inline constexpr mivor_real16 kZero = q(0);
inline constexpr mivor_real16 kMZero = q(0x80000000u);
inline constexpr mivor_real16 kOne = q(0x3FFF0000u);

// Bit-for-bit equality of REAL(16) values (each side evaluated once).
inline ::testing::AssertionResult same_q(const char* a_expr, const char* b_expr, const mivor_real16& a,
                                         const mivor_real16& b) {
    if (same(a, b)) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << a_expr << " is " << hex(a) << ", expected " << b_expr << " = " << hex(b);
}
#define EXPECT_Q(actual, expected) EXPECT_PRED_FORMAT2(::mivor::testing::same_q, actual, expected)
#define ASSERT_Q(actual, expected) ASSERT_PRED_FORMAT2(::mivor::testing::same_q, actual, expected)

// What a report of a REAL(16) function must show: its number, the one
// operand with type code 11 and its bits, the cleared fields and the retry
// pointer.
inline void expect_report(const Report& r, std::int32_t number, const mivor_real16& operand) {
    EXPECT_EQ(r.number, number);
    EXPECT_EQ(r.count, 1u);
    EXPECT_EQ(r.type1, MIVOR_TYPE_REAL16);
    EXPECT_EQ(r.pad1, 0);
    EXPECT_Q(r.shown1<mivor_real16>(), operand);
    EXPECT_TRUE(r.cleared);
    EXPECT_EQ(r.retry_pointer, &jwe_lca.retry_word);
}

// A handler that replaces the first operand by `value` and asks for a
// retry, `times` times, then declines.
inline RecordingHandler::Decision correct_to(mivor_real16 value, int times = 1) {
    return [value, times, n = 0](const Report& r, jwe_control_area&) mutable {
        if (n++ >= times) return false;
        std::memcpy(r.first_operand, &value, sizeof value);
        return true;
    };
}

}  // namespace mivor::testing
