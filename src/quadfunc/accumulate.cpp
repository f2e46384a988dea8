// Acc256: see accumulate.h.
#include "quadfunc/accumulate.h"

namespace mivor::quadfunc {
namespace {

void add_words(std::uint64_t* w, const std::uint64_t* b) {
    std::uint64_t carry = 0;
    for (int i = 0; i < 4; ++i) {
        const std::uint64_t s = w[i] + carry;
        const std::uint64_t c1 = s < carry;
        w[i] = s + b[i];
        carry = c1 + (w[i] < b[i]);
    }
}
void negate_words(std::uint64_t* w) {
    std::uint64_t carry = 1;
    for (int i = 0; i < 4; ++i) {
        w[i] = ~w[i] + carry;
        carry = carry && w[i] == 0;
    }
}

}  // namespace

void Acc256::add(const Wide& a) {
    if (is_zero(a)) return;
    // a = m 2^(e - 128) = m 2^s units of 2^lsb.
    const std::int32_t s = a.e - 128 - lsb_;
    std::uint64_t b[4] = {0, 0, 0, 0};
    bool dropped = false;
    if (s >= 0) {
        // m << s within the window (the caller's bound keeps s <= 127).
        const int word = s >> 6, bit = s & 63;
        const std::uint64_t m[2] = {a.m.lo, a.m.hi};
        for (int i = 0; i < 2; ++i) {
            if (word + i < 4) b[word + i] |= m[i] << bit;
            if (bit != 0 && word + i + 1 < 4) b[word + i + 1] |= m[i] >> (64 - bit);
        }
    } else if (s > -128) {
        const U128 kept = shr(a.m, -s);
        dropped = !equal(shl(kept, -s), a.m);
        b[0] = kept.lo;
        b[1] = kept.hi;
    } else {
        dropped = true;
    }
    if (a.neg) {
        // -(B + f) = (-B - 1) + (1 - f) when bits were dropped.
        negate_words(b);
        if (dropped) {
            const std::uint64_t minus_one[4] = {~std::uint64_t{0}, ~std::uint64_t{0}, ~std::uint64_t{0}, ~std::uint64_t{0}};
            add_words(b, minus_one);
        }
    }
    add_words(w_, b);
    sticky_ = sticky_ || dropped;
}

Rounded Acc256::round() const {
    std::uint64_t m[4] = {w_[0], w_[1], w_[2], w_[3]};
    const bool neg = (m[3] >> 63) != 0;
    bool sticky = sticky_;
    if (neg) {
        // |W + f| = (-W - 1) + (1 - f) with a fraction, else -W.
        negate_words(m);
        if (sticky) {
            const std::uint64_t minus_one[4] = {~std::uint64_t{0}, ~std::uint64_t{0}, ~std::uint64_t{0}, ~std::uint64_t{0}};
            add_words(m, minus_one);
        }
    }
    int top = 3;
    while (top >= 0 && m[top] == 0) --top;
    if (top < 0) {
        // Zero in the window: only a fraction of a unit 2^lsb, far below any
        // result the accumulator is used for.
        return round_to_real16(Wide{{0, 0}, kZeroScale, neg ? 1u : 0u});
    }
    const int lead = top * 64 + 63 - __builtin_clzll(m[top]);  // leading bit index
    // The 128 bits from the leading one down, and whether anything lies
    // below them (jammed into the last of the 128 bits: 15 bits below the
    // REAL(16) significand, so the rounding sees a tie only when there is
    // one).
    auto bits_at = [&m](int from) -> std::uint64_t {  // 64 bits starting at bit `from`
        if (from >= 256) return 0;
        if (from < 0) return from > -64 ? m[0] << -from : 0;
        const int w = from >> 6, s = from & 63;
        std::uint64_t v = m[w] >> s;
        if (s != 0 && w + 1 < 4) v |= m[w + 1] << (64 - s);
        return v;
    };
    const int low = lead - 127;
    U128 sig{bits_at(low + 64), bits_at(low)};
    bool below = sticky;
    for (int i = 0; i < 4 && (i << 6) < low; ++i) {
        const int n = low - (i << 6);  // bits of word i below `low`
        const std::uint64_t mask = n >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << n) - 1;
        below = below || (m[i] & mask) != 0;
    }
    if (below) sig.lo |= 1;
    return round_to_real16(Wide{sig, lsb_ + lead + 1, neg ? 1u : 0u});
}

}  // namespace mivor::quadfunc
