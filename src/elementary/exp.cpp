// g_dexp, _jwe_gdex, pk_dexp: e^x in REAL(8).
//
// Method: k = round(256 x / ln 2) by a shifter, r = x - (k/256) ln 2 in two
// steps (|r| <= ln 2/512 plus rounding slack), e^x = 2^(k>>8) 2^((k&255)/256)
// e^r with 2^(j/256) = hi + lo from the table `e` and e^r = 1 + r q(r), q of
// degree 3.  The sum y = (q (r hi) + lo) + hi rounds once at the end, so the
// error is 0.5 ulp plus the polynomial and the small terms (about 0.01 ulp).
//
// Scale: 2^m is built from the bits of the shifted sum, branch free.  Only
// the low 12 bits of m survive, so for m = -1023 (the narrow band
// -708.3984375 < x < -708.39776 of the fast path) the scale wraps to +0.0
// and so does the result.  That is kept on purpose: compiled programs see
// the same bits as before.
//
// Guarded path (|x| >= 708.3984375, not NaN):
//   x <= -709.089            +0.0 (underflow is not reported)
//   x >= 709.782             error 230, direct form; without a retry +Inf,
//                            or 0x7FEFFFFFFFFFFFB6 when IEEE results are off.
//                            The limit lies a little below ln(DBL_MAX) on
//                            purpose.
//   otherwise                same kernel, m added to the exponent field of y;
//                            for m = -1023 the addition stops at 2^-1022 and
//                            a multiplication by 0.5 rounds once into the
//                            subnormal range.
// The guarded path is plain double arithmetic, each step rounded to double,
// which is what the x87 version with a store after every step gives.
// NaN takes the fast path and comes out a NaN, unreported.
#include <emmintrin.h>

#include <bit>
#include <cstdint>

#include "elementary/exp_data.h"
#include "elementary/exp_kernel.h"
#include "elementary/exp_log.h"
#include "elementary/lanes.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

using namespace mivor;
using mivor::elementary::exp_e;
using mivor::elementary::Lanes;
using mivor::elementary::lanes;
using mivor::elementary::opaque;
using mivor::elementary::twice;
using namespace mivor::elementary::exp_kernel;

namespace {

constexpr double cmp1 = 0x1.6233p+9;                  // 708.3984375
constexpr double kUnderflow = -0x1.628b645a1cac1p+9;  // -709.089
constexpr double kOverflow = 0x1.62e4189374bc7p+9;    // 709.782

[[gnu::cold, gnu::noinline]] double guarded(double x) {
    return report::settle<report::Form::direct>(
        [](double x) -> report::Step<double, double> {
            if (!(x >= cmp1 || x <= -cmp1)) return g_dexp(&x);  // a corrected argument in range
            if (x <= kUnderflow) return 0.0;
            if (x >= kOverflow) return report::fail(Error::exp_overflow_r8, _Inf_D, kHuge_D);
            const Reduced red = reduce(x);
            const std::uint32_t j = static_cast<std::uint32_t>(red.s) & 255;
            const std::uint32_t addend = (static_cast<std::uint32_t>(red.s) - j) << 12;  // m * 2^20
            std::uint64_t yb = bits_of(red.y);
            if (addend == 0xC0100000u) {
                // m = -1023: scale to 2^-1022 by the exponent field (y >= 1
                // here, since x > -709.089 > -1023 ln 2 makes r > 0 at j = 0),
                // then round once into the subnormals.
                yb += std::uint64_t{0xC0100000u + 0x100000u} << 32;
                return double_from_bits(yb) * 0.5;
            }
            yb += std::uint64_t{addend} << 32;
            return double_from_bits(yb);
        },
        x);
}

}  // namespace

extern "C" MIVOR_DISPATCHED double g_dexp(const double* arg) {
    const double x = *arg;
    if (!(x >= cmp1 || x <= -cmp1)) {  // |x| < 708.3984375 or NaN
        return mivor::elementary::exp_kernel::fast(x);
    }
    return guarded(x);
}

// The entry the hyperbolic, gamma and complex functions call.
extern "C" double _jwe_gdex(const double* arg) { return g_dexp(arg); }

namespace {

// The constants of pk_dexp, two lanes each.
struct PackedConstants {
    Lanes magnitude, cmp1, big, lg2, lg2b, lg2c, p1, p2, p3, p4, one;
};
constexpr PackedConstants kPacked = {
    twice(std::bit_cast<double>(std::uint64_t{0x7FFFFFFFFFFFFFFFu})),
    twice(cmp1), twice(BIG), twice(LG2), twice(LG2B), twice(LG2C), twice(P1), twice(P2), twice(P3), twice(P4),
    twice(1.0),
};

}  // namespace

// Both lanes at once unless a lane needs the guarded path; then each lane
// goes through g_dexp in turn (lane 0 first), reports included.
extern "C" MIVOR_DISPATCHED __m128d pk_dexp(__m128d x) {
    const PackedConstants& k = opaque(kPacked);
    const __m128d mag = _mm_and_pd(x, lanes(k.magnitude));
    if (_mm_movemask_pd(_mm_cmpge_pd(mag, lanes(k.cmp1))) != 0) {
        alignas(16) double lane[2];
        _mm_store_pd(lane, x);
        const double r0 = g_dexp(&lane[0]);
        const double r1 = g_dexp(&lane[1]);
        return _mm_set_pd(r1, r0);
    }
    const __m128d big = lanes(k.big);
    const __m128d s = _mm_add_pd(big, _mm_mul_pd(x, lanes(k.lg2)));
    const __m128d t = _mm_sub_pd(s, big);
    const __m128d r = _mm_add_pd(_mm_add_pd(x, _mm_mul_pd(t, lanes(k.lg2b))), _mm_mul_pd(t, lanes(k.lg2c)));
    const __m128d r2 = _mm_mul_pd(r, r);
    const __m128d q = _mm_add_pd(_mm_add_pd(lanes(k.p1), _mm_mul_pd(lanes(k.p2), r)),
                                 _mm_mul_pd(_mm_add_pd(lanes(k.p3), _mm_mul_pd(lanes(k.p4), r)), r2));
    const __m128i sb = _mm_castpd_si128(s);
    const unsigned j0 = static_cast<unsigned>(_mm_cvtsi128_si32(sb)) & 255;
    const unsigned j1 = static_cast<unsigned>(_mm_extract_epi16(sb, 4)) & 255;
    const __m128d e0 = _mm_loadu_pd(&exp_e[j0].hi);
    const __m128d e1 = _mm_loadu_pd(&exp_e[j1].hi);
    const __m128d hi = _mm_unpacklo_pd(e0, e1);
    const __m128d lo = _mm_unpackhi_pd(e0, e1);
    const __m128d y = _mm_add_pd(_mm_add_pd(_mm_mul_pd(q, _mm_mul_pd(r, hi)), lo), hi);
    const __m128i scale = _mm_add_epi64(_mm_slli_epi64(_mm_srli_epi64(sb, 8), 52), _mm_castpd_si128(lanes(k.one)));
    return _mm_mul_pd(y, _mm_castsi128_pd(scale));
}
