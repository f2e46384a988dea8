// g_dlog, g_dlog2, g_dlog10, pk_dlog, pk_dlog10: logarithms in REAL(8).
//
// Method: x = 2^n (c_j + r) with x/2^n in [0.75, 1.5); c_j = (32 + j)/32 for
// the 16 intervals of width 1/32 above 1 and (32 + j)/64 for those of width
// 1/64 below, so r is exact: r = y - 1 in [0, 1/32) or y - 33/64 in
// [-1/64, 0) where y is x with its exponent and top five fraction bits
// replaced.  ln x = n ln 2 + ln c_j + r + r P_j(r), P_j of degree 7 fitted per
// interval, so no division is needed.  n ln 2 + ln c_j + r is summed in two
// exact Fast2Sum steps (|n ln2 hi| >= |ln c_j| unless n = 0, and each partial
// sum is at least as large in exponent as the next term) whose errors go,
// with the low parts, into the tail L; r P, p0 included, is rounded as it
// is evaluated and joins the tail, and S + (r P + L) rounds once at the end.
// The roundings inside P count r times ulp(P), up to 2^-5 ulp(S) each where
// |p0| and r are largest, so the result is 0.5 ulp plus up to about 0.07 for
// x in [1, 1.5) (0.572 measured), 0.54 in [0.75, 1) and close to 0.5 once n
// ln 2 dominates.
//
// Base 2 and 10 scale the pair (S, P r + L) by 1/ln b split in two, the top
// 26 bits of S times the 27-bit high part being exact: again one final
// rounding plus small terms.
//
// Special cases (the order of the tests matters, see below):
//   x >= 2^-1022 (normal, +Inf)   main path; +Inf is not special-cased and
//                                 gives 1024 ln 2 (log2: 1024).
//   0 < x < 2^-1022               x 2^52, the same path, n - 52.
//   +-0                           error 245, direct form; without a retry
//                                 -Inf, or -0x1.fffffffffffb6p+1023 when IEEE
//                                 results are off.
//   x < 0, NaN                    error 245; without a retry the quiet NaN,
//                                 or, with IEEE results off, the sign of x is
//                                 flipped and everything starts again: ln |x|
//                                 after one report.  A NaN stays a NaN and is
//                                 reported again on every pass until the
//                                 handler corrects it.  Both are kept on
//                                 purpose.
// The packed forms test whether ANY lane is >= 2^-1022; if so both lanes go
// through the main path, which has no range checks, so an out-of-range lane
// beside a good one is neither reported nor special-cased.  That too is
// deliberate.  Only when no lane qualifies does each lane take the scalar
// function, lane 0 first.
#include <emmintrin.h>

#include <bit>
#include <cstdint>

#include "elementary/log_data.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

using namespace mivor;
using namespace mivor::elementary;

namespace {

constexpr double T1 = 0.75;                               // n: x/2^n in [0.75, 1.5)
constexpr double T2 = 0x1p-1022;                          // smallest normal
constexpr std::uint64_t T3 = 0x7FF07FFFFFFFFFFFu;         // exponent and low 47 fraction bits
constexpr double lg2e = 0x1.62e42fefa3p-1;                // ln 2, high part: n*lg2e exact
constexpr double lg2es = 0x1.3de6af278ece6p-42;           // ln 2, low part
constexpr double norm = 0x1p+52;                          // scales subnormals up
constexpr double ctbl[2] = {1.0, 0x1.08p-1};              // 1, 33/64
constexpr std::uint32_t kT1High = 0x3FE80000u;            // high word of T1
constexpr std::uint64_t kNegHugeBits = 0xFFEFFFFFFFFFFFB6u;
constexpr std::uint64_t kTop26 = ~((std::uint64_t{1} << 27) - 1);
static_assert(std::bit_cast<std::uint64_t>(T1) >> 32 == kT1High);

enum class Base { e, two, ten };

// The table-dependent part of one argument.
struct Prep {
    double y_minus_c;  // r
    double dn;         // n
    unsigned j;
};

inline Prep prepare(double x, int n_offset) {
    const std::uint64_t w = bits_of(x);
    const auto hw = static_cast<std::uint32_t>(w >> 32);
    const std::int32_t n = static_cast<std::int32_t>(hw - kT1High) >> 20;
    const double y = double_from_bits((w & T3) - (static_cast<std::uint64_t>(n) << 52));
    const unsigned b = (hw >> 19) & 1;
    const unsigned f5 = (hw >> 15) & 31;
    return {y - ctbl[b], static_cast<double>(n + n_offset), f5 + b};
}

// ln x = S + lo.
struct Parts {
    double S, lo;
};

inline Parts ln_parts(const Prep& p) {
    const double r = p.y_minus_c;
    const LogSplit& t = log_atbl[p.j];
    const double a = p.dn * lg2e;
    const double S1 = a + t.hi;
    const double e1 = t.hi + (a - S1);
    const double S = S1 + r;
    const double e2 = r + (S1 - S);
    const double L = (e1 + e2) + (p.dn * lg2es + t.lo);
    const double* c = log_p[p.j].c;
    const double r2 = r * r;
    const double r4 = r2 * r2;
    const double P = ((c[0] + c[1] * r) + r2 * (c[2] + c[3] * r)) + r4 * ((c[4] + c[5] * r) + r2 * (c[6] + c[7] * r));
    return {S, P * r + L};
}

constexpr LogSplit scale_of(Base base) { return base == Base::two ? log_inv_ln2 : log_inv_ln10; }

template <Base base>
inline double finish(Parts q) {
    if constexpr (base == Base::e) {
        return q.S + q.lo;
    } else {
        constexpr LogSplit C = scale_of(base);
        constexpr double Cfull = C.hi + C.lo;
        const double Sh = double_from_bits(bits_of(q.S) & kTop26);
        const double Sl = q.S - Sh;
        return Sh * C.hi + ((Sl * C.hi + q.S * C.lo) + q.lo * Cfull);
    }
}

// Everything below the smallest normal: subnormals, zeros, negatives, NaN.
template <Base base>
[[gnu::cold, gnu::noinline]] double below_normal(double x) {
    for (;;) {
        if (x >= T2) return finish<base>(ln_parts(prepare(x, 0)));
        if (x > 0.0) return finish<base>(ln_parts(prepare(x * norm, -52)));
        const report::Verdict v = report::direct(245, x);
        if (v.retry) continue;
        if (x == 0.0) return v.ieee_results ? _MInf_D : double_from_bits(kNegHugeBits);
        if (v.ieee_results) return _NaN_D;
        x = -x;
    }
}

template <Base base>
inline double scalar_log(const double* arg) {
    const double x = *arg;
    if (x >= T2) [[likely]]
        return finish<base>(ln_parts(prepare(x, 0)));
    return below_normal<base>(x);
}

// Both lanes through the main path: the integer part per lane, the
// arithmetic two lanes at a time, in the order of ln_parts and finish.
template <Base base>
inline __m128d packed_log(__m128d x) {
    if (_mm_movemask_pd(_mm_cmpge_pd(x, _mm_set1_pd(T2))) == 0) {
        alignas(16) double lane[2];
        _mm_store_pd(lane, x);
        const double r0 = scalar_log<base>(&lane[0]);
        const double r1 = scalar_log<base>(&lane[1]);
        return _mm_set_pd(r1, r0);
    }
    // prepare() on both lanes: n from the high words, y by integer
    // subtraction, c_b by a mask from fraction bit 51; only the table
    // indices leave the vector unit.
    const __m128i w = _mm_castpd_si128(x);
    const __m128i hw = _mm_shuffle_epi32(w, _MM_SHUFFLE(3, 1, 3, 1));  // high words, twice
    const __m128i n32 = _mm_srai_epi32(_mm_sub_epi32(hw, _mm_set1_epi32(static_cast<int>(kT1High))), 20);
    const __m128d dn = _mm_cvtepi32_pd(n32);
    const __m128i n64 = _mm_shuffle_epi32(n32, _MM_SHUFFLE(1, 1, 0, 0));
    const __m128i yb = _mm_sub_epi64(_mm_and_si128(w, _mm_set1_epi64x(static_cast<long long>(T3))),
                                     _mm_slli_epi64(n64, 52));
    const __m128i bm = _mm_shuffle_epi32(_mm_srai_epi32(_mm_slli_epi64(w, 12), 31), _MM_SHUFFLE(3, 3, 1, 1));
    const __m128d cb = _mm_or_pd(_mm_and_pd(_mm_castsi128_pd(bm), _mm_set1_pd(ctbl[1])),
                                 _mm_andnot_pd(_mm_castsi128_pd(bm), _mm_set1_pd(ctbl[0])));
    const __m128d r = _mm_sub_pd(_mm_castsi128_pd(yb), cb);
    const auto h0 = static_cast<std::uint32_t>(_mm_cvtsi128_si32(hw));
    const auto h1 = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_shuffle_epi32(hw, _MM_SHUFFLE(1, 1, 1, 1))));
    const unsigned j0 = ((h0 >> 15) & 31) + ((h0 >> 19) & 1);
    const unsigned j1 = ((h1 >> 15) & 31) + ((h1 >> 19) & 1);
    const __m128d t0 = _mm_loadu_pd(&log_atbl[j0].hi);
    const __m128d t1 = _mm_loadu_pd(&log_atbl[j1].hi);
    const __m128d thi = _mm_unpacklo_pd(t0, t1);
    const __m128d tlo = _mm_unpackhi_pd(t0, t1);
    const __m128d a = _mm_mul_pd(dn, _mm_set1_pd(lg2e));
    const __m128d S1 = _mm_add_pd(a, thi);
    const __m128d e1 = _mm_add_pd(thi, _mm_sub_pd(a, S1));
    const __m128d S = _mm_add_pd(S1, r);
    const __m128d e2 = _mm_add_pd(r, _mm_sub_pd(S1, S));
    const __m128d L = _mm_add_pd(_mm_add_pd(e1, e2), _mm_add_pd(_mm_mul_pd(dn, _mm_set1_pd(lg2es)), tlo));
    __m128d c[8];
    for (int k = 0; k < 8; k += 2) {
        const __m128d a0 = _mm_loadu_pd(&log_p[j0].c[k]);
        const __m128d a1 = _mm_loadu_pd(&log_p[j1].c[k]);
        c[k] = _mm_unpacklo_pd(a0, a1);
        c[k + 1] = _mm_unpackhi_pd(a0, a1);
    }
    const __m128d r2 = _mm_mul_pd(r, r);
    const __m128d r4 = _mm_mul_pd(r2, r2);
    const __m128d lo01 = _mm_add_pd(c[0], _mm_mul_pd(c[1], r));
    const __m128d lo23 = _mm_add_pd(c[2], _mm_mul_pd(c[3], r));
    const __m128d hi45 = _mm_add_pd(c[4], _mm_mul_pd(c[5], r));
    const __m128d hi67 = _mm_add_pd(c[6], _mm_mul_pd(c[7], r));
    const __m128d P = _mm_add_pd(_mm_add_pd(lo01, _mm_mul_pd(r2, lo23)),
                                 _mm_mul_pd(r4, _mm_add_pd(hi45, _mm_mul_pd(r2, hi67))));
    const __m128d lo = _mm_add_pd(_mm_mul_pd(P, r), L);
    if constexpr (base == Base::e) {
        return _mm_add_pd(S, lo);
    } else {
        constexpr LogSplit C = scale_of(base);
        constexpr double Cfull = C.hi + C.lo;
        const __m128d Sh = _mm_and_pd(S, _mm_castsi128_pd(_mm_set1_epi64x(static_cast<long long>(kTop26))));
        const __m128d Sl = _mm_sub_pd(S, Sh);
        const __m128d Ch = _mm_set1_pd(C.hi);
        const __m128d tail = _mm_add_pd(_mm_add_pd(_mm_mul_pd(Sl, Ch), _mm_mul_pd(S, _mm_set1_pd(C.lo))),
                                        _mm_mul_pd(lo, _mm_set1_pd(Cfull)));
        return _mm_add_pd(_mm_mul_pd(Sh, Ch), tail);
    }
}

}  // namespace

extern "C" double g_dlog(const double* arg) { return scalar_log<Base::e>(arg); }
extern "C" double g_dlog2(const double* arg) { return scalar_log<Base::two>(arg); }
extern "C" double g_dlog10(const double* arg) { return scalar_log<Base::ten>(arg); }
extern "C" __m128d pk_dlog(__m128d x) { return packed_log<Base::e>(x); }
extern "C" __m128d pk_dlog10(__m128d x) { return packed_log<Base::ten>(x); }
