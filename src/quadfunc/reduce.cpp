// Argument reduction for the radian circular functions: x = k pi/2 + r with
// |r| <= pi/4, for every finite REAL(16) argument (Payne and Hanek's
// method, with the bits of 2/pi from sincos_data.h).
//
// Method.  x = m 2^(e - 128) with m < 2^128.  x 2/pi modulo 4 needs only
// the bits of 2/pi whose products with m are not multiples of 4: word j
// of 2/pi (bits 64j + 1 .. 64j + 64) times m is a multiple of 2^(e - 192 -
// 64j), so the words before j0 = max(0, floor((e - 130)/64)) drop out.
// Eight words from j0 times m give the exact 640-bit product S, whose bit
// p0 = 128 + 64 (j0 + 8) - e has weight 1; p0 lies in (510, 639].  The
// words after them add less than 2^(128 - p0) < 2^-382 to the fraction.
// k mod 4 is bits p0 and p0 + 1, the fraction the bits below; a fraction
// of 1/2 or more counts as f - 1 with k + 1, so |f| <= 1/2.
//
// How small can f be?  For REAL(16) arguments |x - k pi/2| stays above
// 2^-120 or so of pi/2 (the continued fraction of 2/pi bounds how close
// M 2^E, M < 2^113, comes to a multiple of it); the 320 bits of f kept
// below p0 (all of them exact to 2^-382) leave more than 190 significant
// bits after any such cancellation.  f is rounded to 128 bits (2^-128)
// and r = f pi/2 with pi/2 rounded to 128 bits (2^-128) and the product
// rounded (2^-128): r is within 2^-126.4 relative.
#include "quadfunc/estimate.h"
#include "quadfunc/sincos.h"
#include "quadfunc/sincos_data.h"

namespace mivor::quadfunc {

using namespace sincos_data;

namespace {

// pi/4 2^128, cut: an argument in [1/2, 1) below it needs no reduction.
constexpr U128 kPiOver4Q0_128 = {0xC90FDAA22168C234u, 0xC4C6628B80DC1CD1u};

// 64 bits of the 640-bit S (least significant word first) from bit `from`
// upwards, zeros outside.
inline std::uint64_t bits_at(const std::uint64_t* S, int from) {
    if (from >= 640 || from <= -64) return 0;
    if (from < 0) return S[0] << -from;
    const int w = from >> 6, s = from & 63;
    std::uint64_t v = S[w] >> s;
    if (s != 0 && w + 1 < 10) v |= S[w + 1] << (64 - s);
    return v;
}

}  // namespace

Reduced reduce_radians(const Wide& a) {
    if (a.e < 0 || (a.e == 0 && less(a.m, kPiOver4Q0_128))) return Reduced{abs(a), 0};
    const std::int32_t e = a.e;
    const int j0 = e > 130 ? (e - 130) >> 6 : 0;
    // S = m * (words j0 .. j0+7 of 2/pi), 640 bits.
    std::uint64_t S[10] = {};
    multiply_accumulate(a.m, &kTwoOverPi[j0], 8, S);
    const int p0 = 128 + 64 * (j0 + 8) - e;
    unsigned k = static_cast<unsigned>(bits_at(S, p0)) & 3;
    // The 320 bits below the binary point, most significant word first.
    std::uint64_t f[5];
    for (int i = 0; i < 5; ++i) f[i] = bits_at(S, p0 - 64 * (i + 1));
    std::uint32_t neg = 0;
    if (f[0] >> 63) {  // f >= 1/2: f - 1, the next multiple
        ++k;
        neg = 1;
        std::uint64_t borrow = 1;  // 2^320 - F = ~F + 1
        for (int i = 4; i >= 0; --i) {
            f[i] = ~f[i] + borrow;
            borrow = borrow && f[i] == 0;
        }
    }
    // |f| = F / 2^320: normalise to 128 bits and round.
    int lead = 0;
    while (lead < 5 && f[lead] == 0) ++lead;
    if (lead == 5) return Reduced{kWideZero, k & 3};  // x a multiple of pi/2: impossible for finite x
    const int s = __builtin_clzll(f[lead]);
    auto word = [&f](int i) { return i < 5 ? f[i] : 0; };
    U128 m{word(lead), word(lead + 1)};
    std::uint64_t rest = word(lead + 2);
    if (s != 0) {
        m = U128{(m.hi << s) | (m.lo >> (64 - s)), (m.lo << s) | (rest >> (64 - s))};
        rest <<= s;
    }
    m = add64(m, rest >> 63);
    std::int32_t fe = -(64 * lead + s);
    if (is_zero(m)) {  // rounded up to 2^128
        m = U128{kTop64, 0};
        ++fe;
    }
    const Wide fw{m, fe, neg};
    return Reduced{mul(fw, kPiOver2()), k & 3};
}

}  // namespace mivor::quadfunc
