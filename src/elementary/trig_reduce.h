// Reduction of a radian argument by multiples of pi/2 for the REAL(8)
// circular functions (g_dsin, g_dcos, g_dtan, g_dcotan, pk_dsin, pk_dcos).
//
// No table of the bits of 2/pi: arguments up to 1.05e8 are reduced with a
// split pi/2 whose products with k are exact, arguments up to 3.53e15 with k
// itself split in two, and anything larger is refused by the callers.
//
// Result: a = k pi/2 + hi + lo, |hi + lo| <= pi/4 (+ a few ulps), lo a
// correction of at most a few ulps of hi.
//
// Pieces of pi/2 (HPA, HPB as the library has them; HPD1, HPD2 generated):
//   HPA  25 significant bits, HPA + HPB = HP1, the double nearest pi/2;
//   HPB  24 significant bits;  HPC = pi/2 - HPA rounded (the two-piece form);
//   HPD1 24 significant bits, HPD2 rounded: pi/2 - HPA - HPB - HPD1 - HPD2
//        is below 2^-130.
#pragma once

#include <emmintrin.h>

#include <cstdint>

#include "elementary/sincos_data.h"
#include "frame/values.h"

namespace mivor::elementary::trig {

inline constexpr double RHP = 0x1.45f306dc9c882p-1;   // 2/pi   0x3FE45F306DC9C882
inline constexpr double BG = 0x1.8p+52;               // 1.5 2^52: adding it rounds to an integer
inline constexpr double HPA = 0x1.921fb5p+0;          // 0x3FF921FB50000000
inline constexpr double HPB = 0x1.110b46p-26;         // 0x3E5110B460000000
inline constexpr double HPC = 0x1.110b4611a6263p-26;  // 0x3E5110B4611A6263
inline constexpr double HP1 = 0x1.921fb54442d18p+0;   // pi/2 high  0x3FF921FB54442D18
inline constexpr double HP2 = 0x1.1a62633145c04p-54;  // pi/2 low   0x3C91A62633145C04
inline constexpr double QP = 0x1.921fb54442d18p-1;    // pi/4       0x3FE921FB54442D18
inline constexpr double QPM = -QP;
inline constexpr double XBIG = 0x1.908b1p+26;         // 1.05e8     0x419908B100000000
inline constexpr double DSINMX = 0x1.91508581d4p+51;  // 3.53e15    0x43291508581D4000
inline constexpr std::uint64_t flg5 = 0xFFFFFFFFF8000000u;
inline constexpr double HPD1 = sincos_data::HPD1;
inline constexpr double HPD2 = sincos_data::HPD2;

static_assert(HPA + HPB == HP1, "the short pieces add up to the double nearest pi/2");
static_assert(XBIG == 105000000.0 && DSINMX == 3530000000000000.0);

// Bit operations on doubles kept in the SSE registers: on i386 a 64-bit
// integer view of a double goes through memory, and the two 32-bit halves
// stall the store forwarding of every round trip.
inline std::uint32_t low32(double v) {
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_castpd_si128(_mm_set_sd(v))));
}
inline __m128d sign_of(double v) { return _mm_and_pd(_mm_set_sd(v), _mm_set_sd(-0.0)); }
inline double flip_by(double v, __m128d sign) { return _mm_cvtsd_f64(_mm_xor_pd(_mm_set_sd(v), sign)); }
inline double magnitude(double v) { return __builtin_fabs(v); }

struct Reduced {
    double hi, lo;
    std::uint32_t k;  // only k mod 4 matters to the callers
};

// s + e = a + b exactly (Knuth; no condition on the magnitudes).
inline void two_sum(double a, double b, double& s, double& e) {
    s = a + b;
    const double bb = s - a;
    e = (a - (s - bb)) + (b - bb);
}

// p + e = a b exactly (Dekker's product, no fused multiply-add): a and b
// are split into 26 + 27-bit halves (Veltkamp), whose products are exact.
inline void two_product(double a, double b, double& p, double& e) {
    constexpr double kSplit = 0x1p+27 + 1.0;
    p = a * b;
    const double as = kSplit * a, ah = as - (as - a), al = a - ah;
    const double bs = kSplit * b, bh = bs - (bs - b), bl = b - bh;
    e = (((ah * bh - p) + ah * bl) + al * bh) + al * bl;
}

// A reduced argument with hi and lo in lane 0 of SSE registers, for the
// kernels that keep their doubles there (sign operations without moves).
struct ReducedLanes {
    __m128d hi, lo;
    std::uint32_t k;
};

// 0 <= a <= 1.05e8.  k = round(a 2/pi) < 2^26.
//   k HPA (26 + 25 bits) and k HPB (26 + 24 bits) are exact; a - k HPA is a
//   multiple of ulp(a) (>= 2^-53 once k >= 1) below 2 and k HPB a multiple of
//   2^-49, so p = (a - k HPA) - k HPB is exact.  k HPD1 is exact, p - k HPD1
//   is carried as hi + e by two_sum, and k HPD2 (< 2^-53) is rounded once:
//   |hi + lo - (a - k pi/2)| <= 2^-106 + 2^26 2^-130 < 2^-105.
// The bound is absolute: close to a multiple of pi/2 it is what limits the
// relative accuracy of the reduced argument.
inline ReducedLanes reduce_medium_lanes(__m128d a) {
    const __m128d bg = _mm_set_sd(BG);
    const __m128d s = _mm_add_sd(_mm_mul_sd(a, _mm_set_sd(RHP)), bg);
    const __m128d kd = _mm_sub_sd(s, bg);
    const __m128d p = _mm_sub_sd(_mm_sub_sd(a, _mm_mul_sd(kd, _mm_set_sd(HPA))), _mm_mul_sd(kd, _mm_set_sd(HPB)));
    // two_sum(p, -t), t = k HPD1, written with t itself: the negations
    // commute with rounding to nearest, so hi and e are two_sum's.
    const __m128d t = _mm_mul_sd(kd, _mm_set_sd(HPD1));
    const __m128d hi = _mm_sub_sd(p, t);
    const __m128d bb = _mm_sub_sd(hi, p);
    const __m128d e = _mm_sub_sd(_mm_sub_sd(p, _mm_sub_sd(hi, bb)), _mm_add_sd(t, bb));
    return {hi, _mm_sub_sd(e, _mm_mul_sd(kd, _mm_set_sd(HPD2))),
            static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_castpd_si128(s)))};
}

inline Reduced reduce_medium(double a) {
    const ReducedLanes r = reduce_medium_lanes(_mm_set_sd(a));
    return {_mm_cvtsd_f64(r.hi), _mm_cvtsd_f64(r.lo), r.k};
}

// 1.05e8 <= a < 3.53e15.  k < 2^51 no longer gives exact products, so k is
// split by flg5 into kh (its top 26 bits) and kl = k - kh (at most 26 bits).
// Every product with HPA, HPB and HPD1 is exact, and the four subtractions
// from a are exact as well (each result is a multiple of the coarser lsb and
// fits in 53 bits); the two products with HPD1 go through two_sum and only
// k HPD2 (< 2^-28) is rounded:
//   |hi + lo - (a - k pi/2)| <= 2^-80 + 2^51 2^-130 < 2^-79.
// k = round(a 2/pi) is computed in double, so it may be off by one for the
// largest arguments; HP1 + HP2 moves the result back into [-pi/4, pi/4].
[[gnu::noinline]] inline Reduced reduce_large(double a) {
    const double s = a * RHP + BG;
    std::uint32_t k = low32(s);
    const double kd = s - BG;
    const double kh = double_from_bits(bits_of(kd) & flg5);
    const double kl = kd - kh;
    double p = a - kh * HPA;
    p -= kl * HPA;
    p -= kh * HPB;
    p -= kl * HPB;
    double hi, lo, e;
    two_sum(p, -(kh * HPD1), hi, lo);
    two_sum(hi, -(kl * HPD1), hi, e);
    lo += e;
    lo -= kd * HPD2;
    two_sum(hi, lo, hi, lo);
    if (hi > QP) {  // hi - HP1 is exact: HP1/2 = QP < hi < 2 HP1
        k += 1;
        two_sum(hi - HP1, lo - HP2, hi, lo);
    } else if (hi < QPM) {
        k -= 1;
        two_sum(hi + HP1, lo + HP2, hi, lo);
    }
    return {hi, lo, k};
}

}  // namespace mivor::elementary::trig
