// Deterministic pseudo-random operands for the conversion and comparison
// tests: the same stream on every flavour (integer arithmetic only).
//
// REAL(16) operands are shaped to hit what goes wrong in conversions:
// exponents around the boundaries that matter to the function under test,
// fractions cut off below a random bit with that bit set or clear (exact
// ties and exact integers at every position), both zero patterns with
// and without lower bits, infinities, NaNs and exponent field 0.
#pragma once

#include <cstdint>
#include <cstring>

#include "mivor/types.h"
#include "support/streams.h"
#include <climits>

namespace quadtest {

// splitmix64.
struct Random {
    std::uint64_t state;
    std::uint64_t next() { return mivor::testing::splitmix64(state); }
    std::uint32_t below(std::uint32_t n) { return static_cast<std::uint32_t>(next() % n); }
    std::uint32_t word() { return static_cast<std::uint32_t>(next() >> 32); }
    bool coin() { return (next() >> 63) != 0; }
};

// Clears the fraction below bit j (0..111) and sets or clears bit j.
inline void cut_fraction(mivor_real16& v, int j, bool set) {
    for (int i = 0; i < 3; ++i) {
        const int below = j - 32 * i;  // bits of word i under bit j
        if (below >= 32) v.w[i] = 0;
        else if (below > 0) v.w[i] &= ~((std::uint32_t{1} << below) - 1);
    }
    if (j > 96) v.w[3] &= ~((std::uint32_t{1} << (j - 96)) - 1);
    const std::uint32_t bit = std::uint32_t{1} << (j % 32);
    v.w[j / 32] = set ? (v.w[j / 32] | bit) : (v.w[j / 32] & ~bit);
}

// A REAL(16) whose exponent field is `center` + [-spread, spread], sign and
// fraction random, the fraction cut in a quarter of the cases; one case in
// sixteen is a special pattern instead.
inline mivor_real16 real16_near(Random& r, int center, int spread) {
    mivor_real16 v;
    for (auto& w : v.w) w = r.word();
    if (r.below(16) == 0) {
        static constexpr std::uint32_t tops[] = {0x00000000, 0x80000000, 0x7FFF0000, 0xFFFF0000, 0x7FFF8000,
                                                 0xFFFF8000, 0x00000001, 0x80000001, 0x7FFEFFFF, 0x3FFF0000};
        v.w[3] = tops[r.below(10)];
        if (r.coin()) v.w[0] = v.w[1] = v.w[2] = 0;
        return v;
    }
    int field = center - spread + static_cast<int>(r.below(static_cast<std::uint32_t>(2 * spread + 1)));
    if (field < 0) field = 0;
    if (field > 0x7FFF) field = 0x7FFF;
    v.w[3] = (v.w[3] & 0x8000FFFFu) | (static_cast<std::uint32_t>(field) << 16);
    if (r.below(4) == 0) cut_fraction(v, static_cast<int>(r.below(112)), r.coin());
    return v;
}

// Any REAL(16) pattern at all.
inline mivor_real16 real16_any(Random& r) {
    mivor_real16 v;
    for (auto& w : v.w) w = r.word();
    return v;
}

// REAL(8) / REAL(4) patterns: subnormals, specials, any pattern.
inline double real8(Random& r) {
    std::uint64_t b = r.next();
    switch (r.below(8)) {
        case 0: b &= 0x800FFFFFFFFFFFFFu; break;                        // subnormal or zero
        case 1: b = (b & 0x8000000000000000u) | (r.coin() ? 0x7FF0000000000000u : 0); break;
        case 2: b |= 0x7FF0000000000000u; break;                        // NaN (or infinity)
        case 3: b = (b & 0x800FFFFFFFFFFFFFu) >> r.below(53); break;    // few significant bits
        default: break;
    }
    double d;
    std::memcpy(&d, &b, 8);
    return d;
}
inline float real4(Random& r) {
    std::uint32_t b = r.word();
    switch (r.below(8)) {
        case 0: b &= 0x807FFFFFu; break;
        case 1: b = (b & 0x80000000u) | (r.coin() ? 0x7F800000u : 0); break;
        case 2: b |= 0x7F800000u; break;
        case 3: b = (b & 0x807FFFFFu) >> r.below(24); break;
        default: break;
    }
    float f;
    std::memcpy(&f, &b, 4);
    return f;
}

// Integers: every width of magnitude, both signs, the extremes.
inline std::int64_t integer64(Random& r) {
    switch (r.below(8)) {
        case 0: return INT64_MIN;
        case 1: return INT64_MAX;
        case 2: return static_cast<std::int64_t>(r.below(5)) - 2;
        default: {
            const std::uint64_t m = r.next() >> r.below(64);
            return static_cast<std::int64_t>(r.coin() ? 0 - m : m);
        }
    }
}
inline std::int32_t integer32(Random& r) {
    switch (r.below(8)) {
        case 0: return INT32_MIN;
        case 1: return INT32_MAX;
        case 2: return static_cast<std::int32_t>(r.below(5)) - 2;
        default: {
            const std::uint32_t m = r.word() >> r.below(32);
            return static_cast<std::int32_t>(r.coin() ? 0 - m : m);
        }
    }
}

// Operand pairs for the comparisons: equal, differing in one bit, of
// opposite signs (zeros of both signs among them), or independent.
inline void comparison_pair(Random& r, mivor_real16& x, mivor_real16& y) {
    x = real16_near(r, 16383, 3);
    switch (r.below(4)) {
        case 0: y = x; break;
        case 1: y = x; y.w[r.below(4)] ^= std::uint32_t{1} << r.below(32); break;
        case 2: y = x; y.w[3] ^= 0x80000000u; break;
        default: y = real16_near(r, 16383, 3); break;
    }
    if (r.coin()) {
        const mivor_real16 t = x;
        x = y;
        y = t;
    }
}

}  // namespace quadtest
