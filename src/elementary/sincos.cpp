// g_dsin, g_dcos, pk_dsin, pk_dcos: sine and cosine of a REAL(8) radian
// argument.
//
// Reduction (a = |x|), chosen so that the common range never multiplies by
// 2/pi:
//   a < pi/4            r = a;
//   a < 9pi/4           a ladder of exact shifts: r = (a - C1) - C2 with
//                       C1 + C2 = q pi/2 (q = 1..4) as a double-double;
//                       a - C1 is exact (Sterbenz), the low part is carried;
//   a < 1.05e8          two-piece Cody-Waite with k = round(a 2/pi),
//   a < 3.53e15         the same with k split in two (trig_reduce.h);
//   otherwise, Inf, NaN refused: error 203 (sin(NaN) is refused on purpose,
//                       not propagated).
// Evaluation on t = |r| = th + tl: j = round(256 t) (by adding BH = 2^44,
// whose ulp is 1/256), d = th - j/256 (exact), and row j of the tables:
//   sin t = (th + th s0) + (tl (1 - th^2/2) + th d ((s1 + s2 d) + d^2 (s3 + s4 d)))
//           with th s0 (up to 0.08) exact and th + th s0 carried as a
//           double-double, so that only the small remaining terms round;
//   cos t = c0 + ((cl - tl th) + d ((c1 + c2 d) + d^2 (c3 + c4 d))).
// The quadrant k mod 4 picks the table and the sign.
//
// Accuracy: the fits are good to 1.5e-18 (sin t / t - 1) and 1.1e-17 (cos t,
// below 0.1 ulp of the result), c0 + cl carries the constant term to
// 2^-106, th s0 is exact, and the other rounding errors before the last
// addition are below 2^-62: results are within 0.6 ulp (measured with
// `mivor accuracy`).  Near a
// multiple of pi/2 above 9pi/4 the reduced argument has an absolute error
// below 2^-105 (a < 1.05e8) or 2^-79 (a < 3.53e15); the ladder's constants
// HP2 and PI2 are the library's, 3 units of their last place from pi/2 - HP1
// and pi - PI1, which is an absolute error below 2^-103 there.
//
// Refused arguments report 203 (direct form); without a retry the result is
// the quiet NaN (IEEE results) or 0.7071067811865476 = sin(pi/4), a value
// deliberately inside [-1, 1].
#include <emmintrin.h>

#include <array>
#include <bit>

#include "elementary/lanes.h"
#include "elementary/quadrant_pair.h"
#include "elementary/sincos_data.h"
#include "elementary/trig_reduce.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

namespace mivor::elementary {
namespace {

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
inline constexpr std::uint64_t flg1 = 0x7FFFFFFFFFFFFFFFu;
inline constexpr std::uint64_t flg2 = 0x8000000000000000u;
static_assert(flg1 == ~flg2);  // applied in SSE registers: kSignMask below and its andnot
inline constexpr std::uint64_t kSubstitute = 0x3FE6A09E667F3BCDu;  // 0.7071067811865476

// The scalar kernel keeps each double in lane 0 of an SSE register: the
// sign and magnitude steps are then one bitwise instruction each, where a
// double moved into a register for them would first have its upper lane
// cleared.  Same operations, same bits.
using Sd = __m128d;
inline Sd sd(double v) { return _mm_set_sd(v); }
inline constexpr Lanes kSignMask = twice(-0.0);  // flg2 in both lanes
static_assert(std::bit_cast<std::uint64_t>(-0.0) == flg2);

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

// [sin, cos, -sin, -cos](hi + lo) for n = 0, 1, 2, 3 (mod 4), from row
// sc[j][n & 1]; z = hi^2, P4 = (g1 + g2 d) + d^2 (g3 + g4 d):
//   sine, t < 1/4 (j < 64):  hi + (lo cs + hi (s0 + d P4)), where
//                            |s0 + d P4| <= t^2/6 < 1/96;
//   sine, t >= 1/4:          uh + ((ul + d w) + (lo cs + hi (d P4))), where
//                            uh + ul = t_j (1 + s0) exactly and w = 1 + s0,
//                            so that |d w| <= 2^-7 of the result;
//   cosine:                  c0 + (cl + (lo (-sn) + d P4)),
// with cs = 1 - z (1/2 - z/24) ~ cos(hi) and sn = hi (1 - z/6) ~ sin(hi)
// for the correction by lo.  In each form the terms that round are at most
// 1/96 (or 2^-7) of the result.
// `sign` (the sign of x for the sine, else zero) is applied with the
// quadrant's.
inline constexpr std::uint32_t kLargeRows = 64;  // t_j >= 1/4

// Sign masks of the quadrant: n & 2 negates.
inline constexpr double kQuadrantSign[4] = {0.0, 0.0, -0.0, -0.0};

inline double evaluate(ReducedLanes r, std::uint32_t n, Sd sign) {
    const Sd mask = lanes(kSignMask);
    const Sd sr = _mm_and_pd(r.hi, mask);
    const Sd hi = _mm_andnot_pd(mask, r.hi);
    const Sd lo = _mm_xor_pd(r.lo, sr);
    sign = _mm_xor_pd(sign, _mm_load_sd(&kQuadrantSign[n & 3]));
    // 0 <= hi < 1, so the low word of jb is j itself (its fraction bits
    // above those of j are zero): the row is the j-th pair of half rows,
    // the half of the quadrant's parity.
    const Sd jb = _mm_add_sd(hi, sd(BH));
    const std::uint32_t j = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_castpd_si128(jb)));
    const Sd d = _mm_sub_sd(hi, _mm_sub_sd(jb, sd(BH)));
    const double* g = tab::sc[j][n & 1];
    const auto G = [g](int i) { return _mm_load_sd(g + i); };
    const Sd z = _mm_mul_sd(hi, hi);
    // Sums and products are written with the row's coefficient second, so
    // that it is read as a memory operand (they commute, bit for bit).
    const Sd dp4 = _mm_mul_sd(d, _mm_add_sd(_mm_add_sd(_mm_mul_sd(d, G(2)), G(1)),
                                            _mm_mul_sd(_mm_mul_sd(d, d), _mm_add_sd(_mm_mul_sd(d, G(4)), G(3)))));
    Sd v;
    if (n & 1) {
        // lo (-sn) + dP4 = dP4 - lo sn: negation commutes with rounding.
        const Sd sn = _mm_mul_sd(hi, _mm_sub_sd(sd(1.0), _mm_mul_sd(z, sd(1.0 / 6))));
        v = _mm_add_sd(_mm_add_sd(_mm_sub_sd(dp4, _mm_mul_sd(lo, sn)), G(5)), G(0));
    } else {
        sign = _mm_xor_pd(sign, sr);
        const Sd cs = _mm_sub_sd(sd(1.0), _mm_mul_sd(z, _mm_sub_sd(sd(0.5), _mm_mul_sd(z, sd(1.0 / 24)))));
        if (j < kLargeRows)
            v = _mm_add_sd(hi, _mm_add_sd(_mm_mul_sd(lo, cs), _mm_mul_sd(hi, _mm_add_sd(dp4, G(0)))));
        else
            v = _mm_add_sd(_mm_add_sd(_mm_add_sd(_mm_mul_sd(d, G(7)), G(6)),
                                      _mm_add_sd(_mm_mul_sd(lo, cs), _mm_mul_sd(hi, dp4))),
                           G(5));
    }
    return _mm_cvtsd_f64(_mm_xor_pd(v, sign));
}

template <bool cosine>
double sin_or_cos(const double* arg);

// Refused argument (too large, infinite or NaN): report 203; a retry starts
// again from the top with the corrected argument.
template <bool cosine>
[[gnu::cold, gnu::noinline]] double refuse(double x) {
    return report::settle_direct(
        x, [](double x) { return trig::magnitude(x) < DSINMX; }, [](double x) { return sin_or_cos<cosine>(&x); },
        report::fail(Error::sin_cos_refused_r8, _NaN_D, double_from_bits(kSubstitute)));
}

// The cosine is the sine a quadrant on; the sine takes the sign of x.
template <bool cosine>
inline double finish(ReducedLanes r, Sd xv) {
    if constexpr (cosine) return evaluate(r, r.k + 1, _mm_setzero_pd());
    return evaluate(r, r.k, _mm_and_pd(xv, lanes(kSignMask)));
}

// 1.05e8 <= |x| < 3.53e15, out of line.
template <bool cosine>
[[gnu::cold, gnu::noinline]] double beyond_xbig(Sd xv, Sd a) {
    const Reduced r = reduce_large(_mm_cvtsd_f64(a));
    return finish<cosine>({sd(r.hi), sd(r.lo), r.k}, xv);
}

// Sine (cosine = false) or cosine of *arg.  The hot path is a leaf:
// reports and the largest reduction are out of line.
template <bool cosine>
double sin_or_cos(const double* arg) {
    const Sd xv = _mm_load_sd(arg);
    const Sd a = _mm_andnot_pd(lanes(kSignMask), xv);
    // Plain comparisons: false for a NaN, which falls through to the refusal.
    const double ad = _mm_cvtsd_f64(a);
    ReducedLanes r;
    if (ad < Q9P) {
        r = ladder(a);
    } else if (ad < XBIG) {
        r = reduce_medium_lanes(a);
    } else if (ad < DSINMX) {
        return beyond_xbig<cosine>(xv, a);
    } else {
        return refuse<cosine>(_mm_cvtsd_f64(xv));
    }
    return finish<cosine>(r, xv);
}

// Both lanes at once when both |x| <= 1.05e8: the step-7 reduction of both
// lanes together (k for every lane, k = 0 for small ones), then each lane's
// reduced argument through `evaluate`, so a lane gives the scalar result
// whenever the two reductions agree (always below pi/4 and above 9pi/4).
// Evaluating the lanes one after the other is faster than a two-lane
// evaluation: the two lanes' table rows differ, and one expression covering
// the sine, small-sine and cosine forms with masks costs more instructions
// than the two branchy scalar ones.
// Constants of the two-lane reduction, each stored twice in a row (one
// aligned 16-byte pair), read through a pointer the compiler cannot see
// through, so that each is one memory operand instead of a scalar load and
// a shuffle.
struct alignas(16) PackedConstants {
    double kSigns[2] = {-0.0, -0.0};
    double kBg2[2] = {BG, BG};
    double kHpa2[2] = {HPA, HPA};
    double kHpb2[2] = {HPB, HPB};
    double kHpd12[2] = {HPD1, HPD1};
    double kHpd22[2] = {HPD2, HPD2};
    double kRhp2[2] = {RHP, RHP};
    double kXbig2[2] = {XBIG, XBIG};
};
inline constexpr PackedConstants kPacked{};

template <bool cosine>
__m128d packed(__m128d x) {
    const PackedConstants* K = &kPacked;
    __asm__("" : "+r"(K));
    const __m128d signs = _mm_load_pd(K->kSigns);
    const __m128d a = _mm_andnot_pd(signs, x);
    if (_mm_movemask_pd(_mm_cmple_pd(a, _mm_load_pd(K->kXbig2))) != 3) {
        alignas(16) double lane[2];
        _mm_store_pd(lane, x);
        const double r0 = sin_or_cos<cosine>(&lane[0]);  // as g_dsin / g_dcos would
        const double r1 = sin_or_cos<cosine>(&lane[1]);
        return _mm_set_pd(r1, r0);
    }
    const __m128d bg = _mm_load_pd(K->kBg2);
    const __m128d s = _mm_add_pd(_mm_mul_pd(a, _mm_load_pd(K->kRhp2)), bg);
    const __m128d kd = _mm_sub_pd(s, bg);
    const __m128d p = _mm_sub_pd(_mm_sub_pd(a, _mm_mul_pd(kd, _mm_load_pd(K->kHpa2))),
                                 _mm_mul_pd(kd, _mm_load_pd(K->kHpb2)));
    const __m128d mt = _mm_xor_pd(_mm_mul_pd(kd, _mm_load_pd(K->kHpd12)), signs);  // -k HPD1
    const __m128d hi = _mm_add_pd(p, mt);
    const __m128d bb = _mm_sub_pd(hi, p);
    const __m128d e = _mm_add_pd(_mm_sub_pd(p, _mm_sub_pd(hi, bb)), _mm_sub_pd(mt, bb));
    const __m128d lo = _mm_sub_pd(e, _mm_mul_pd(kd, _mm_load_pd(K->kHpd22)));

    // Quadrant n = k (+1 for the cosine) from the low word of each lane of s.
    const __m128i kv = _mm_castpd_si128(s);
    const auto k0 = static_cast<std::uint32_t>(_mm_cvtsi128_si32(kv)) + (cosine ? 1 : 0);
    const auto k1 = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_unpackhi_epi64(kv, kv))) + (cosine ? 1 : 0);
    const __m128d sx = cosine ? _mm_setzero_pd() : _mm_and_pd(x, signs);
    const double v0 = evaluate({hi, lo, k0}, k0, sx);
    const double v1 = evaluate({_mm_unpackhi_pd(hi, hi), _mm_unpackhi_pd(lo, lo), k1}, k1, _mm_unpackhi_pd(sx, sx));
    return _mm_set_pd(v1, v0);
}

}  // namespace
}  // namespace mivor::elementary

using namespace mivor::elementary;

extern "C" MIVOR_DISPATCHED double g_dsin(const double* arg) { return sin_or_cos<false>(arg); }
extern "C" MIVOR_DISPATCHED double g_dcos(const double* arg) { return sin_or_cos<true>(arg); }
extern "C" MIVOR_DISPATCHED __m128d pk_dsin(__m128d x) { return packed<false>(x); }
extern "C" MIVOR_DISPATCHED __m128d pk_dcos(__m128d x) { return packed<true>(x); }

namespace mivor::elementary {
namespace {

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

}  // namespace
}  // namespace mivor::elementary

// g_dscn: (sin x, cos x).  For |x| <= 1.05e8 one reduction (the ladder of
// exact shifts below 9pi/4, the two-piece Cody-Waite step with k for every
// argument above, as g_dsin and g_dcos and the two-lane kernel do), and
// both rows of the table point from the packed table, the sine form and the
// cosine form given to sin x and cos x as the quadrant says: the bits of
// g_dsin and g_dcos.  The ladder rather than k for every argument below
// 9pi/4 (pk_dsin's choice) keeps the pair equal to the single functions,
// and its exact shifts are the shorter dependency chain.  Otherwise
// (larger, infinite, NaN) g_dsin and then g_dcos, so a refused argument
// reports 203 twice.
namespace mivor::elementary {
namespace {
[[gnu::cold, gnu::noinline]] mivor_complex8* refused_pair(mivor_complex8* result, const double* arg) {
    const double s = sin_or_cos<false>(arg);
    const double c = sin_or_cos<true>(arg);
    result->re = s;
    result->im = c;
    return result;
}
}  // namespace
}  // namespace mivor::elementary

extern "C" MIVOR_DISPATCHED mivor_complex8* g_dscn(mivor_complex8* result, const double* arg) {
    const double x = *arg;
    const Sd xv = _mm_set_sd(x);
    const Sd a = _mm_andnot_pd(lanes(kSignMask), xv);
    if (!(_mm_cvtsd_f64(a) <= XBIG)) return refused_pair(result, arg);
    const ReducedLanes r = _mm_cvtsd_f64(a) < Q9P ? ladder(a) : reduce_medium_lanes(a);
    _mm_storeu_pd(&result->re, evaluate_pair(r, _mm_and_pd(xv, lanes(kSignMask))));
    return result;
}
