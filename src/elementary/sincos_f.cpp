// g_sin, g_cos, g_tan, g_cotan: REAL(4) circular functions of a radian
// argument, computed in double and rounded once.
//
// Reduction (a = |x| as a double, sign of x applied at the end):
//   a < pi/4         r = a, k = 0;
//   a < 823000.0     k = round(a 2/pi) < 2^19, r = ((a - k FP1) - k FP2) - k FP3
//                    with FP1 = hp (the REAL(4) pi/2, 0x3FC90FDB) and FP2 of
//                    24 bits each: both products and both subtractions are
//                    exact (a is a multiple of 2^-24, the partial results are
//                    below 1 and multiples of 2^-49), only k FP3 (< 2^-30)
//                    and the last subtraction round: |error| <= 2^-53 |r| + 2^-82;
//   otherwise, Inf, NaN refused: error 202 (sine, cosine) or 211 (tangent,
//                    cotangent).
// Then sin r and cos r by the polynomials of sincos_f_data.h (relative
// errors 2^-47.4 and 2^-43.5), tan and cot as their quotient.  The double
// result is within 2^-42 (relative) of the true value, so the rounding to
// REAL(4) is correct unless the value lies within 2^-42 of a midpoint: the
// exhaustive check over all 2^32 inputs found every result within 0.5 ulp
// plus 2^-18 ulp, and all but a handful correctly rounded.
//
// Fallbacks without a retry: 202 gives the quiet NaN or 0.70710677
// (0x3F3504F3); 211 gives the NaN or 1.0; 212 (g_cotan(+-0)) +Inf or
// 0x7F7FFFEE.
#include "elementary/sincos_f.h"
#include "elementary/sincos_f_data.h"
#include "elementary/trig_reduce.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

namespace mivor::elementary {
namespace {

using namespace sincos_f_data;

inline constexpr float hp = 0x1.921fb6p+0f;        // 0x3FC90FDB
inline constexpr float max = 823000.0f;            // 0x4948ED80
inline constexpr std::uint32_t kSubstitute_F = 0x3F3504F3u;  // 0.70710677
inline constexpr double QPd = trig::QP;
static_assert(double(hp) == FP1);

struct SinCos {
    double r;
    std::uint32_t k;
};

inline SinCos reduce(double a) {
    if (a < QPd) return {a, 0};
    const double s = a * trig::RHP + trig::BG;
    const double kd = s - trig::BG;
    return {((a - kd * FP1) - kd * FP2) - kd * FP3, trig::low32(s)};
}

using sincos_f::cos_poly;
using sincos_f::sin_poly;

inline constexpr double kQuadrantSign[4] = {0.0, 0.0, -0.0, -0.0};  // n & 2 negates

inline float with_sign(double v, __m128d sign) { return static_cast<float>(trig::flip_by(v, sign)); }

template <bool cosine>
float sin_or_cos(float x);
template <bool cotangent>
float tan_or_cot(float x);

// Refused arguments (|x| >= 823000, Inf, NaN) and cot(+-0); a retry starts
// again from the top with the corrected argument.
inline bool in_range(float x) { return trig::magnitude(double(x)) < double(max); }

template <bool cosine>
[[gnu::cold, gnu::noinline]] float refuse_sin_cos(float x) {
    return report::settle_direct(x, in_range, sin_or_cos<cosine>,
                                 report::fail(Error::sin_cos_refused_r4, _NaN_F, float_from_bits(kSubstitute_F)));
}
template <bool cotangent>
[[gnu::cold, gnu::noinline]] float refuse_tan_cot(float x) {
    return report::settle_direct(x, in_range, tan_or_cot<cotangent>,
                                 report::fail(Error::tan_cot_refused_r4, _NaN_F, 1.0f));
}
template <bool cotangent>
[[gnu::cold, gnu::noinline]] float pole(float x) {
    return report::settle_direct(x, [](float x) { return x != 0.0f; }, tan_or_cot<cotangent>,
                                 report::fail(Error::tan_cot_pole_r4, _Inf_F, kHuge_F));
}

template <bool cosine>
float sin_or_cos(float x) {
    const double xd = x;
    const double a = trig::magnitude(xd);
    if (!(a < double(max))) return refuse_sin_cos<cosine>(x);
    const SinCos rc = reduce(a);
    const std::uint32_t n = rc.k + (cosine ? 1 : 0);
    const double v = (n & 1) ? cos_poly(rc.r) : sin_poly(rc.r);
    __m128d sign = _mm_load_sd(&kQuadrantSign[n & 3]);
    if (!cosine) sign = _mm_xor_pd(sign, trig::sign_of(xd));
    return with_sign(v, sign);
}

template <bool cotangent>
float tan_or_cot(float x) {
    const double xd = x;
    const double a = trig::magnitude(xd);
    if (!(a < double(max))) return refuse_tan_cot<cotangent>(x);
    const SinCos rc = reduce(a);
    const bool odd = rc.k & 1;
    const double s = sin_poly(rc.r), c = cos_poly(rc.r);
    double v;
    if (odd != cotangent) {  // cos r / sin r
        if (s == 0.0) return pole<cotangent>(x);  // x = +-0
        v = c / s;
    } else {
        v = s / c;
    }
    return with_sign(odd ? -v : v, trig::sign_of(xd));
}

}  // namespace
}  // namespace mivor::elementary

using namespace mivor::elementary;

extern "C" MIVOR_DISPATCHED float g_sin(const float* arg) { return sin_or_cos<false>(*arg); }
extern "C" MIVOR_DISPATCHED float g_cos(const float* arg) { return sin_or_cos<true>(*arg); }
extern "C" MIVOR_DISPATCHED float g_tan(const float* arg) { return tan_or_cot<false>(*arg); }
extern "C" MIVOR_DISPATCHED float g_cotan(const float* arg) { return tan_or_cot<true>(*arg); }

// g_scns: (sin x, cos x) from one reduction and both polynomials, the same
// bits as g_sin and g_cos; a refused argument goes to the two single
// functions, so it is reported twice (202), each half with its own retry.
//
// The pair stays in one register from the polynomials to the store: the
// quadrant k exchanges the lanes when odd and sets their signs (sin: k = 2,
// 3 negative; cos: k = 1, 2), both chosen by masks from a row of k & 3, as
// random quadrants would mispredict a branch; one conversion rounds both
// lanes to REAL(4) as the single functions' conversions do.  The reduction
// has no short cut below pi/4 here: with k = 0 it gives r = |x| exactly, and
// the test costs a pair more than it saves.
namespace mivor::elementary {
namespace {

struct alignas(16) PairQuadrant {
    std::uint64_t swap[2];  // all ones: the lanes exchange
    std::uint64_t sign[2];  // the sign bits of (sin, cos) in this quadrant
};
inline constexpr std::uint64_t kAll = ~std::uint64_t{0}, kSignBit = std::uint64_t{1} << 63;
inline constexpr PairQuadrant kPairQuadrants[4] = {
    {{0, 0}, {0, 0}},
    {{kAll, kAll}, {0, kSignBit}},
    {{0, 0}, {kSignBit, kSignBit}},
    {{kAll, kAll}, {kSignBit, 0}},
};

[[gnu::cold, gnu::noinline]] mivor_complex4* refused_pair(mivor_complex4* result, float x) {
    const float s = sin_or_cos<false>(x);
    const float c = sin_or_cos<true>(x);
    result->re = s;
    result->im = c;
    return result;
}

}  // namespace
}  // namespace mivor::elementary

extern "C" MIVOR_DISPATCHED mivor_complex4* g_scns(mivor_complex4* result, const float* arg) {
    const float x = *arg;
    const double xd = x;
    const double a = trig::magnitude(xd);
    if (!(a < double(max))) return refused_pair(result, x);
    const double s = a * trig::RHP + trig::BG;
    const double kd = s - trig::BG;
    const double r = ((a - kd * FP1) - kd * FP2) - kd * FP3;
    const PairQuadrant& q = opaque(kPairQuadrants)[trig::low32(s) & 3];
    const __m128d both = sincos_f::sin_cos_poly(r);
    const __m128d crossed = _mm_shuffle_pd(both, both, 1);
    const __m128d swap = _mm_load_pd(reinterpret_cast<const double*>(q.swap));
    const __m128d v = _mm_or_pd(_mm_and_pd(swap, crossed), _mm_andnot_pd(swap, both));
    const __m128d sign = _mm_xor_pd(_mm_load_pd(reinterpret_cast<const double*>(q.sign)), trig::sign_of(xd));
    _mm_storel_pi(reinterpret_cast<__m64*>(result), _mm_cvtpd_ps(_mm_xor_pd(v, sign)));
    return result;
}
