// The sine-cosine pair kernel of g_dscn, shared with the callers that want
// both of one argument without a call (the complex exponential and the
// complex functions built on it): the reduction ladder below 9pi/4, the
// packed table of both rows of a point and the pair evaluation.  The
// single-function kernels of sincos.cpp use the same ladder and constants;
// every caller gets the bits of g_dsin and g_dcos (see sincos.cpp for the
// method and its error analysis).
#pragma once

#include <emmintrin.h>

#include <array>
#include <cstdint>

#include "elementary/lanes.h"
#include "elementary/quadrant_pair.h"
#include "elementary/sincos_data.h"
#include "elementary/trig_reduce.h"

namespace mivor::elementary::sincos_kernel {

using namespace trig;
namespace tab = sincos_data;

inline constexpr double Q3P = 0x1.2d97c7f3321d2p+1;  // 3pi/4  0x4002D97C7F3321D2
inline constexpr double Q5P = 0x1.f6a7a2955385ep+1;  // 5pi/4  0x400F6A7A2955385E
inline constexpr double Q7P = 0x1.5fdbbe9bba775p+2;  // 7pi/4  0x4015FDBBE9BBA775
inline constexpr double Q9P = 0x1.c463abeccb2bbp+2;  // 9pi/4  0x401C463ABECCB2BB
inline constexpr double PI1 = 0x1.921fb54442d18p+1;  // 0x400921FB54442D18
inline constexpr double PI2 = 0x1.1a62633145c04p-53; // 0x3CA1A62633145C04
inline constexpr double H3P = 0x1.2d97c7f3321d2p+2;  // 0x4012D97C7F3321D2
inline constexpr double H32 = 0x1.a79394c9e8a0ap-53; // 0x3CAA79394C9E8A0A
inline constexpr double TP1 = 0x1.921fb54442d18p+2;  // 0x401921FB54442D18
inline constexpr double TP2 = 0x1.1a62633145c07p-52; // 0x3CB1A62633145C07
inline constexpr double BH = 0x1p+44;                // 0x42B0000000000000

// The scalar kernel keeps each double in lane 0 of an SSE register: the
// sign and magnitude steps are then one bitwise instruction each, where a
// double moved into a register for them would first have its upper lane
// cleared.  Same operations, same bits.
using Sd = __m128d;
inline Sd sd(double v) { return _mm_set_sd(v); }
inline constexpr Lanes kSignMask = twice(-0.0);  // flg2 in both lanes

// The rungs: shift q of the ladder is C1 + C2 = q pi/2 (q = 0: no shift).
struct Shift {
    double c1, c2;
};
inline constexpr Shift kShifts[5] = {{0.0, 0.0}, {HP1, HP2}, {PI1, PI2}, {H3P, H32}, {TP1, TP2}};

// a = q pi/2 + hi + lo by exact shifts, 0 <= a < 9pi/4.  The rung is found
// by counting comparisons rather than by branches (random arguments would
// mispredict them).  u = a - c1 is exact (Sterbenz) and either 0 or at least
// ulp(c1) >= 2^-52 > |c2|, so the error of u - c2 is recovered exactly.
inline ReducedLanes ladder(Sd a) {
    const double ad = _mm_cvtsd_f64(a);
    const std::uint32_t q = std::uint32_t{ad >= QP} + std::uint32_t{ad >= Q3P} + std::uint32_t{ad >= Q5P} +
                            std::uint32_t{ad >= Q7P};
    const Shift& c = kShifts[q];
    const Sd u = _mm_sub_sd(a, _mm_load_sd(&c.c1));
    const Sd hi = _mm_sub_sd(u, _mm_load_sd(&c.c2));
    return {hi, _mm_sub_sd(_mm_sub_sd(u, hi), _mm_load_sd(&c.c2)), q};
}

inline constexpr std::uint32_t kLargeRows = 64;  // t_j >= 1/4

// Sign masks of the quadrant: n & 2 negates.
inline constexpr double kQuadrantSign[4] = {0.0, 0.0, -0.0, -0.0};

// The packed table of g_dscn: for every point j the coefficients 1..4 of
// the sine row and the cosine row side by side, (s_i, c_i), so that one
// aligned load feeds both lanes of the polynomial.  Built at compile time
// from the table of g_dsin: the same values.
struct alignas(16) PairRow {
    double g[4][2];
};
consteval std::array<PairRow, tab::kRows> make_pair_rows() {
    std::array<PairRow, tab::kRows> rows{};
    for (int j = 0; j < tab::kRows; ++j)
        for (int i = 0; i < 4; ++i) rows[j].g[i][0] = tab::sc[j][0][i + 1], rows[j].g[i][1] = tab::sc[j][1][i + 1];
    return rows;
}
inline constexpr std::array<PairRow, tab::kRows> kPairRows = make_pair_rows();

// sin and cos of k pi/2 + hi + lo, the sine with the sign `sx`: the forms
// of `evaluate` for both rows of the point, dP4 for both in one two-lane
// register (lane-wise the same operations, so the same bits as two calls
// of `evaluate`), then the sine form from the sine row and the cosine form
// from the cosine row, given to sin x and cos x as the quadrant says.
inline __m128d evaluate_pair(ReducedLanes r, Sd sx) {
    const Sd mask = lanes(kSignMask);
    const Sd sr = _mm_and_pd(r.hi, mask);
    const Sd hi = _mm_andnot_pd(mask, r.hi);
    const Sd lo = _mm_xor_pd(r.lo, sr);
    const Sd jb = _mm_add_sd(hi, sd(BH));
    const std::uint32_t j = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_castpd_si128(jb)));
    const Sd d = _mm_sub_sd(hi, _mm_sub_sd(jb, sd(BH)));
    const double* gs = tab::sc[j][0];
    const double* gc = tab::sc[j][1];
    const auto S = [gs](int i) { return _mm_load_sd(gs + i); };
    const auto C = [gc](int i) { return _mm_load_sd(gc + i); };
    const PairRow& pr = kPairRows[j];
    const auto G = [&pr](int i) { return _mm_load_pd(pr.g[i - 1]); };
    const __m128d dd = _mm_unpacklo_pd(d, d);
    const __m128d dp4 = _mm_mul_pd(dd, _mm_add_pd(_mm_add_pd(_mm_mul_pd(dd, G(2)), G(1)),
                                                 _mm_mul_pd(_mm_mul_pd(dd, dd), _mm_add_pd(_mm_mul_pd(dd, G(4)), G(3)))));
    const Sd dp4s = dp4;
    const Sd dp4c = _mm_unpackhi_pd(dp4, dp4);
    const Sd z = _mm_mul_sd(hi, hi);
    // The cosine form (cosine row).
    const Sd sn = _mm_mul_sd(hi, _mm_sub_sd(sd(1.0), _mm_mul_sd(z, sd(1.0 / 6))));
    const Sd vc = _mm_add_sd(_mm_add_sd(_mm_sub_sd(dp4c, _mm_mul_sd(lo, sn)), C(5)), C(0));
    // The sine form (sine row), with the sign of hi.
    const Sd cs = _mm_sub_sd(sd(1.0), _mm_mul_sd(z, _mm_sub_sd(sd(0.5), _mm_mul_sd(z, sd(1.0 / 24)))));
    Sd vs;
    if (j < kLargeRows)
        vs = _mm_add_sd(hi, _mm_add_sd(_mm_mul_sd(lo, cs), _mm_mul_sd(hi, _mm_add_sd(dp4s, S(0)))));
    else
        vs = _mm_add_sd(_mm_add_sd(_mm_add_sd(_mm_mul_sd(d, S(7)), S(6)),
                                   _mm_add_sd(_mm_mul_sd(lo, cs), _mm_mul_sd(hi, dp4s))),
                        S(5));
    vs = _mm_xor_pd(vs, sr);
    // k even: sin x = +-vs, cos x = +-vc; k odd: sin x = +-vc, cos x = -+vs.
    return to_quadrant(_mm_unpacklo_pd(vs, vc), r.k, sx);
}

// (sin x, cos x) in one register for |x| <= 1.05e8 (XBIG): the ladder of
// exact shifts below 9pi/4, the two-piece Cody-Waite step above.  (Both
// reductions, or both sine forms, kept by a mask measured slower than the
// branches on random arguments over [-10, 10].)
inline __m128d pair(double x) {
    const Sd xv = _mm_set_sd(x);
    const Sd a = _mm_andnot_pd(lanes(kSignMask), xv);
    const ReducedLanes r = _mm_cvtsd_f64(a) < Q9P ? ladder(a) : reduce_medium_lanes(a);
    return evaluate_pair(r, _mm_and_pd(xv, lanes(kSignMask)));
}

}  // namespace mivor::elementary::sincos_kernel
