// Deterministic operand pairs for the REAL(16) operators, drawn to reach
// the hard cases of each operation rather than uniformly: exponent
// differences 0 to 150 with every sign pairing, bits just below the last
// kept bit forming exact and near halves, long runs of ones and zeros (carry
// and borrow chains), near-equal operands (massive cancellation, quotients
// near 1) and short significands (exact products and quotients).
//
// Pure integer code on a fixed seed: every flavour draws the same pairs.
#pragma once

#include <cstdint>

#include "mivor/types.h"
#include "support/streams.h"

namespace mivor::testing {

// splitmix64.
class Stream {
public:
    explicit Stream(std::uint64_t seed) : state_(seed) {}
    std::uint64_t next() { return splitmix64(state_); }
    std::uint32_t below(std::uint32_t n) { return static_cast<std::uint32_t>(next() % n); }
    bool coin() { return (next() & 1) != 0; }

private:
    std::uint64_t state_;
};

// A binary128 pattern from sign, exponent field and 112-bit fraction
// (fraction_high: 48 bits, fraction_low: 64 bits).
inline mivor_real16 compose(bool negative, std::uint32_t field, std::uint64_t fraction_high,
                            std::uint64_t fraction_low) {
    mivor_real16 q;
    q.w[0] = static_cast<std::uint32_t>(fraction_low);
    q.w[1] = static_cast<std::uint32_t>(fraction_low >> 32);
    q.w[2] = static_cast<std::uint32_t>(fraction_high);
    q.w[3] = (negative ? 0x80000000u : 0u) | ((field & 0x7FFFu) << 16) |
             static_cast<std::uint32_t>((fraction_high >> 32) & 0xFFFFu);
    return q;
}

inline std::uint32_t field_of(const mivor_real16& q) { return (q.w[3] >> 16) & 0x7FFFu; }
inline std::uint64_t fraction_high_of(const mivor_real16& q) {
    return (std::uint64_t{q.w[3] & 0xFFFFu} << 32) | q.w[2];
}
inline std::uint64_t fraction_low_of(const mivor_real16& q) { return (std::uint64_t{q.w[1]} << 32) | q.w[0]; }

constexpr std::uint64_t kHigh48 = (std::uint64_t{1} << 48) - 1;

struct Fraction {
    std::uint64_t high, low;  // 48 + 64 bits
};

// Fraction bits of several characters.
inline Fraction fraction(Stream& s) {
    switch (s.below(6)) {
        case 0:
        case 1:  // uniform
            return {s.next() & kHigh48, s.next()};
        case 2: {  // long runs: a few flips of a running bit
            std::uint64_t hi = 0, lo = 0;
            bool bit = s.coin();
            int next_flip = static_cast<int>(s.below(112));
            for (int i = 111; i >= 0; --i) {
                if (i == next_flip) {
                    bit = !bit;
                    next_flip = i - 1 - static_cast<int>(s.below(40));
                }
                if (bit) {
                    if (i >= 64) hi |= std::uint64_t{1} << (i - 64);
                    else lo |= std::uint64_t{1} << i;
                }
            }
            return {hi, lo};
        }
        case 3: {  // short significand: only the top few bits vary
            const unsigned keep = 1 + s.below(20);
            return {(s.next() & kHigh48) >> (48 - (keep < 48 ? keep : 48)) << (48 - (keep < 48 ? keep : 48)), 0};
        }
        case 4: {  // all ones but a few bits
            std::uint64_t hi = kHigh48, lo = ~std::uint64_t{0};
            for (unsigned n = s.below(3); n > 0; --n) {
                const unsigned b = s.below(112);
                if (b >= 64) hi &= ~(std::uint64_t{1} << (b - 64));
                else lo &= ~(std::uint64_t{1} << b);
            }
            return {hi, lo};
        }
        default: {  // sparse
            std::uint64_t hi = 0, lo = 0;
            for (unsigned n = s.below(4); n > 0; --n) {
                const unsigned b = s.below(112);
                if (b >= 64) hi |= std::uint64_t{1} << (b - 64);
                else lo |= std::uint64_t{1} << b;
            }
            return {hi, lo};
        }
    }
}

// Sets the fraction bits below bit `d` (counted in the 113-bit significand,
// bit 112 the implicit one) to a pattern around an exact half: these are
// the bits an alignment by d shifts out.
inline Fraction near_half_tail(Stream& s, Fraction f, unsigned d) {
    if (d == 0 || d > 112) return f;
    // Bit positions 0..111 of the fraction; the tail is d bits: d-1 .. 0.
    auto set = [&](unsigned b, bool v) {
        std::uint64_t& w = b >= 64 ? f.high : f.low;
        const std::uint64_t m = std::uint64_t{1} << (b >= 64 ? b - 64 : b);
        w = v ? (w | m) : (w & ~m);
    };
    const unsigned kind = s.below(4);
    for (unsigned b = 0; b < d; ++b) {
        bool v;
        if (b == d - 1) v = kind != 1;  // top of the tail: 1 (half or more), or 0 (just below)
        else v = kind == 1;             // 1000..0 / 0111..1
        set(b, v);
    }
    if (kind == 2) set(0, true);  // just above half
    if (kind == 3 && d > 1) set(s.below(d - 1), true);
    return f;
}

// A target exponent field for a product or quotient: anywhere in the
// range, one draw in eight within a few binades of either end (past it too).
inline std::int32_t result_field(Stream& s) {
    if (s.below(8) != 0) return 1 + static_cast<std::int32_t>(s.below(32766));
    const std::int32_t offset = static_cast<std::int32_t>(s.below(7)) - 3;
    return s.coin() ? 1 + offset : 32766 + offset;
}

enum class Op { add, sub, mul, div };

struct Pair {
    mivor_real16 x, y;
};

// A pair whose operands and most results lie in the normal range.
inline Pair draw(Stream& s, Op op) {
    const bool sx = s.coin(), sy = s.coin();
    Fraction fx = fraction(s), fy = fraction(s);
    std::uint32_t ex, ey;
    switch (op) {
        case Op::add:
        case Op::sub: {
            // One pair in sixteen at either end of the range: sums that
            // overflow, differences that fall below the smallest normal.
            unsigned d;
            const unsigned edge = s.below(16);
            if (edge == 0) {
                ex = 32766 - s.below(2);
                d = s.below(3);
            } else if (edge == 1) {
                ex = 1 + s.below(4);
                d = s.below(ex);
            } else {
                ex = 200 + s.below(32300);
                d = s.below(151);
            }
            ey = ex - d;
            if (s.below(4) == 0) fy = near_half_tail(s, fy, d);
            if (s.below(6) == 0) {  // near-equal magnitudes: massive cancellation
                fy = fx;
                ey = ex > 1 ? ex - s.below(2) : ex;
                fy.low ^= s.next() >> s.below(64);
                if (s.coin()) {
                    // Two draws: sequenced explicitly, since the operands
                    // of & are not, and the stream must not depend on the
                    // compiler's choice.
                    const std::uint64_t bits = s.next();
                    fy.high ^= bits & (kHigh48 >> s.below(48));
                }
            }
            if (s.coin()) {
                const std::uint32_t t = ex;
                ex = ey;
                ey = t;
                const Fraction f = fx;
                fx = fy;
                fy = f;
            }
            break;
        }
        case Op::mul: {
            // Result exponent anywhere in range, one in eight at its ends.
            const std::int32_t t = result_field(s);
            ex = 1 + s.below(32766);
            std::int32_t e = t - static_cast<std::int32_t>(ex) + 16383;
            if (e < 1) e = 1;
            if (e > 32766) e = 32766;
            ey = static_cast<std::uint32_t>(e);
            if (s.below(5) == 0) fy = Fraction{s.below(4) == 0 ? 0 : fy.high, 0};
            break;
        }
        case Op::div:
        default: {
            const std::int32_t t = result_field(s);
            ex = 1 + s.below(32766);
            std::int32_t e = static_cast<std::int32_t>(ex) - t + 16383;
            if (e < 1) e = 1;
            if (e > 32766) e = 32766;
            ey = static_cast<std::uint32_t>(e);
            const unsigned kind = s.below(5);
            if (kind == 0) {  // quotient near 1 (or near 2, or 1/2)
                fy = fx;
                fy.low ^= s.next() >> s.below(64);
                if (s.coin()) {
                    // Two draws: sequenced explicitly, since the operands
                    // of & are not, and the stream must not depend on the
                    // compiler's choice.
                    const std::uint64_t bits = s.next();
                    fy.high ^= bits & (kHigh48 >> s.below(48));
                }
            } else if (kind == 1) {  // short divisor: exact and periodic quotients
                fy = Fraction{fy.high & ~(kHigh48 >> (1 + s.below(24))), 0};
            }
            break;
        }
    }
    return {compose(sx, ex, fx.high, fx.low), compose(sy, ey, fy.high, fy.low)};
}

// Operands for results a hair from a representable number: q in [1, 2)
// (one in four with only its top 8 fraction bits, for exact quotients) and
// y within 2^+-20.  The caller divides fl(q y) by y, or multiplies
// x = fl(q y) by fl(1 / x) or fl(2 / x).
struct NearRepresentable {
    mivor_real16 q, y;
};

inline NearRepresentable near_representable(Stream& s) {
    const Fraction fq = fraction(s), fy = fraction(s);
    const bool short_q = s.below(4) == 0;
    const bool sq = s.coin(), sy = s.coin();
    const std::uint32_t ey = 16363 + s.below(41);
    return {compose(sq, 16383, short_q ? fq.high & ~((std::uint64_t{1} << 40) - 1) : fq.high, short_q ? 0 : fq.low),
            compose(sy, ey, fy.high, fy.low)};
}

}  // namespace mivor::testing
