// Exact reduction of an angle in degrees or in quadrants (right angles) for
// the degree and quadrant circular functions, REAL(8) and REAL(4).
//
// The period is exact in these units, so the reduction is: x = 90 k + r or
// u = k + r with an integer k and r computed without rounding.  Results at
// multiples of a right angle are therefore exact (r = 0 gives sin 0 and
// cos 1 of the series), and only k mod 4 is kept.
#pragma once

#include <emmintrin.h>

#include <bit>
#include <cstdint>

#include "elementary/trig_reduce.h"
#include "frame/values.h"

namespace mivor::elementary::units {

struct Reduced {
    double r;         // |r| <= 45 (degrees) or 1/2 (quadrants)
    std::uint32_t k;  // only k mod 4 matters
};

inline constexpr double r90 = 0x1.6c16c16c16c17p-7;  // 1/90 rounded up, 0x3F86C16C16C16C17
inline constexpr std::uint32_t kDegreeLimitHigh = 0x4386899Bu;  // |x| >= 2.0299994561825997e17: refused
inline constexpr double kTwo52 = 0x1p+52;

// Degrees: x finite, |x| below the limit.  k = the integer nearest x/90,
// r = x - 90 k, signed (the sign of a zero result follows the quadrant's
// negation, not the sign of x: sind(-180) is -0 like sind(180)).
//   |x| < 45         k = 0, r = x.
//   45 <= |x| < 2^52 k by rounding x/90 (x r90, then 1.5 2^52 added and
//                    subtracted); 90 k < 2^53 is exact and so is x - 90 k
//                    (Sterbenz: x and 90 k are within 46 of each other and
//                    x >= 45).  x r90 is within 2^-52 |x/90| + ulp/2 < 0.01
//                    of x/90, so k may be one off when x/90 is within 0.01
//                    of a half-integer; r is then moved by 90, exactly.
//   |x| >= 2^52      x is an integer below 2^58: x mod 360 from its 53-bit
//                    significand on 32-bit words, ties (r = 45) taking the
//                    even k as the rounding does below.
inline Reduced reduce_degrees(double x) {
    const double a = trig::magnitude(x);
    if (a < 45.0) return {x, 0};
    if (a < kTwo52) {
        const double s = x * r90 + trig::BG;
        std::uint32_t k = trig::low32(s);
        double r = x - (s - trig::BG) * 90.0;
        if (r > 45.0) {
            r -= 90.0;
            k += 1;
        } else if (r < -45.0) {
            r += 90.0;
            k -= 1;
        }
        return {r, k};
    }
    // |x| = m 2^e, m < 2^53, 0 <= e <= 5: (m mod 360) 2^e mod 360, with
    // 2^32 = 256 (mod 360).
    const std::uint64_t b = bits_of(a);
    const std::uint64_t m = (b & 0x000FFFFFFFFFFFFFu) | 0x0010000000000000u;
    const auto e = static_cast<std::uint32_t>(b >> 52) - 1075u;
    const auto mh = static_cast<std::uint32_t>(m >> 32), ml = static_cast<std::uint32_t>(m);
    std::uint32_t n = ((mh % 360u) * 256u + ml % 360u) % 360u;
    n = (n << e) % 360u;
    if (x < 0.0) n = (360u - n) % 360u;
    std::uint32_t q = n / 90u;
    auto rr = static_cast<std::int32_t>(n - 90u * q);
    if (rr > 45 || (rr == 45 && (q & 1u))) {
        rr -= 90;
        q += 1;
    }
    return {static_cast<double>(rr), q};
}

// Quadrants: a = |u| finite.  k = the integer nearest a (ties to even, by
// adding and subtracting 2^52), r = a - k exact (both are multiples of
// ulp(a), and |r| <= 1/2).  From 2^52 on every double is an integer: r = 0
// and k mod 4 comes from the low bits of the significand.
inline Reduced reduce_quadrants(double a) {
    if (a < 0.5) return {a, 0};
    if (a < kTwo52) {
        const double s = a + kTwo52;
        return {a - (s - kTwo52), trig::low32(s)};
    }
    const std::uint32_t low = trig::low32(a);
    if (a < 2.0 * kTwo52) return {0.0, low & 3u};      // a = significand
    if (a < 4.0 * kTwo52) return {0.0, (low & 1u) << 1};  // a = 2 significand
    return {0.0, 0};                                     // a multiple of 4
}

// The quadrant series of g_dsinq and g_dcosq on |r| <= 1/2 (see
// sincos_units.cpp), with the leading product 2 r exact:
//   sin(r pi/2) = 2 r + r (a0 + t (a1 + ... + t a6)),  cos(r pi/2) = 1 + t (b1 + ... + t b7),
// t = r^2.  T = double gives the real functions' bits; the complex quadrant
// forms evaluate the same series in extended precision (long double), where
// only the fit's error (2.4e-17 relative) remains.
inline constexpr double a0 = -0.4292036732051034;  // pi/2 - 2
inline constexpr double a1 = -0.6459640975062443, a2 = 0.07969262624603957, a3 = -0.004681754132282516,
                        a4 = 0.00016044115029217513, a5 = -3.5986417556400512e-06, a6 = 5.6337210964493664e-08;
inline constexpr double b1 = -1.2337005501361697, b2 = 0.2536695079010466, b3 = -0.020863480763308,
                        b4 = 0.0009192602741467699, b5 = -2.5202036558203225e-05, b6 = 4.7106035811466514e-07,
                        b7 = -6.320557322797555e-09;

template <class T>
inline T sin_quadrants(T r) {
    const T t = r * r;
    return T(2) * r + r * (a0 + t * (a1 + t * (a2 + t * (a3 + t * (a4 + t * (a5 + t * a6))))));
}
template <class T>
inline T cos_quadrants(T r) {
    const T t = r * r;
    return T(1) + t * (b1 + t * (b2 + t * (b3 + t * (b4 + t * (b5 + t * (b6 + t * b7))))));
}

// [s, c, -s, -c][n mod 4] (sin, cos and their negations by the quadrant),
// without a branch on n: random quadrants would mispredict one half of the
// time, which costs more than computing both values.  The negation flips
// the sign bit, so the zeros of quadrants 2 and 3 are -0.
inline double by_quadrant(std::uint32_t n, double s, double c) {
    const __m128d odd = _mm_castsi128_pd(_mm_set1_epi32(-static_cast<std::int32_t>(n & 1)));
    const __m128d v = _mm_or_pd(_mm_and_pd(odd, _mm_set_sd(c)), _mm_andnot_pd(odd, _mm_set_sd(s)));
    const __m128d sign = _mm_castsi128_pd(_mm_slli_epi64(_mm_cvtsi32_si128(static_cast<int>((n >> 1) & 1)), 63));
    return _mm_cvtsd_f64(_mm_xor_pd(v, sign));
}

// The refusal test of the degree forms: |x| at or above 2.0299994561825997e17
// (high word 0x4386899B and above), infinite or NaN.  Compared as doubles:
// on i386 the high word of a double in memory is a store-forwarding stall.
inline constexpr double kDegreeLimit = 0x1.6899bp+57;
static_assert(std::bit_cast<std::uint64_t>(kDegreeLimit) == std::uint64_t{kDegreeLimitHigh} << 32);
inline bool degrees_refused(double x) { return !(trig::magnitude(x) < kDegreeLimit); }

}  // namespace mivor::elementary::units
