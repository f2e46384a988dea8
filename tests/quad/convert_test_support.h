// Small helpers of the conversion and comparison tests: REAL(16) values by
// their words, bit patterns of the narrow kinds, and calls of the exports
// with their arguments by value.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ostream>

#include "mivor/mivor.h"
#include "support/bits.h"

namespace quadtest {

using mivor::testing::bits;
using mivor::testing::f32;
using mivor::testing::f64;
using mivor::testing::q;  // words most significant first

// Bit-for-bit equality, printed as words when a check fails.
struct Words {
    mivor_real16 v;
    bool operator==(const Words& o) const { return std::memcmp(&v, &o.v, sizeof v) == 0; }
};
inline std::ostream& operator<<(std::ostream& os, const Words& w) {
    char buf[48];
    std::snprintf(buf, sizeof buf, "%08X %08X %08X %08X", w.v.w[3], w.v.w[2], w.v.w[1], w.v.w[0]);
    return os << buf;
}
inline Words W(const mivor_real16& v) { return Words{v}; }
inline Words W(std::uint32_t w3, std::uint32_t w2 = 0, std::uint32_t w1 = 0, std::uint32_t w0 = 0) {
    return Words{q(w3, w2, w1, w0)};
}

// The exports with value arguments; REAL(16) results by value.
inline std::uint64_t dbleq(mivor_real16 x) { return bits(g_dbleq(&x)); }
inline std::uint32_t snglq(mivor_real16 x) { return bits(g_snglq(&x)); }
inline Words qextd(double d) {
    mivor_real16 r;
    g_qextd(&r, &d);
    return W(r);
}
inline Words qext(float f) {
    mivor_real16 r;
    g_qext(&r, &f);
    return W(r);
}
inline Words qfloat(std::int32_t i) {
    mivor_real16 r;
    g_qfloat(&r, &i);
    return W(r);
}
inline Words aqcj(std::int64_t i) {
    mivor_real16 r;
    g_aqcj(&r, &i);
    return W(r);
}
inline std::int32_t iqint(mivor_real16 x) { return g_iqint(&x); }
inline std::int64_t ajcq(mivor_real16 x) { return g_ajcq(&x); }
inline Words qint(mivor_real16 x) {
    mivor_real16 r;
    g_qint(&r, &x);
    return W(r);
}
inline Words gflq(mivor_real16 x) {
    mivor_real16 r;
    jwe_gflq(&r, &x);
    return W(r);
}

// Some values.
inline constexpr mivor_real16 kOne = q(0x3FFF0000);
inline constexpr mivor_real16 kMinusOne = q(0xBFFF0000);
inline constexpr mivor_real16 kTwo = q(0x40000000);
inline constexpr mivor_real16 kHalf = q(0x3FFE0000);
inline constexpr mivor_real16 kPlusZero = q(0);
inline constexpr mivor_real16 kMinusZero = q(0x80000000);
inline constexpr mivor_real16 kInf = q(0x7FFF0000);
inline constexpr mivor_real16 kMinusInf = q(0xFFFF0000);
inline constexpr mivor_real16 kNaN = q(0x7FFF8000);
inline constexpr mivor_real16 kHuge = q(0x7FFEFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF);

}  // namespace quadtest
